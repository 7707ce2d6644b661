// qlxview diff and git-diff: what differs between two descriptions, element by element.
#include <algorithm>
#include <cstdio>

#include "command.h"
#include "elements.h"

namespace {
class Comparison {
  public:
    /// Either may be null: everything is new, or gone.
    void Compare(const QLX_RawPropertyContainer* before, const QLX_RawPropertyContainer* after,
                 const std::string& path) {
        if (!before || !after)
            mOut += (before ? "- " : "+ ") + path + "\n";
        CompareProperties(PropertiesOf(before), PropertiesOf(after), before && after, path);
        CompareChildren(before, after, path);
    }

    void CompareTables(const QLX_ViewMemento::StringTables& before,
                       const QLX_ViewMemento::StringTables& after) {
        for (int i = 0; i < QLX_Language::kLanguageCount; ++i) {
            const auto language = static_cast<QLX_Language::ELanguage>(i);
            CompareTable(TextsOf(before, language), TextsOf(after, language),
                         "string table " + std::string(QLX_Language::GetFileCode(language)));
        }
    }

    [[nodiscard]] const std::string& GetText() const { return mOut; }

  private:
    /// A line inside an element; the element's own line goes before the first.
    void Say(const std::string& path, bool heads, const std::string& line) {
        if (heads && mHead != path) {
            mOut += "  " + path + "\n";
            mHead = path;
        }
        mOut += line + "\n";
    }

    void CompareProperties(const PropertyMap& before, const PropertyMap& after, bool heads,
                           const std::string& path) {
        auto i = before.begin();
        auto j = after.begin();
        const auto gone = [&] {
            Say(path, heads, "-     " + PropertyLabel(i->first) + ": " + QuotedValue(i->second));
            ++i;
        };
        const auto added = [&] {
            Say(path, heads, "+     " + PropertyLabel(j->first) + ": " + QuotedValue(j->second));
            ++j;
        };
        while (i != before.end() || j != after.end()) {
            if (j == after.end() || (i != before.end() && i->first < j->first)) {
                gone();
            } else if (i == before.end() || j->first < i->first) {
                added();
            } else if (!SameValue(i->second, j->second)) {
                gone();
                added();
            } else {
                ++i;
                ++j;
            }
        }
    }

    void CompareChildren(const QLX_RawPropertyContainer* before,
                         const QLX_RawPropertyContainer* after, const std::string& path) {
        const NamedChildren mine = before ? NameChildren(*before) : NamedChildren();
        const NamedChildren theirs = after ? NameChildren(*after) : NamedChildren();
        const std::map<std::string, QLX_RawPropertyContainer*> old(mine.begin(), mine.end());
        const std::map<std::string, QLX_RawPropertyContainer*> now(theirs.begin(), theirs.end());
        std::vector<std::string> oldOrder, newOrder;
        for (const auto& child : mine)
            if (now.count(child.first))
                oldOrder.push_back(child.first);
        for (const auto& child : theirs)
            if (old.count(child.first))
                newOrder.push_back(child.first);
        if (oldOrder != newOrder) {
            std::string line = "~     order:";
            for (const std::string& name : newOrder)
                line += (&name == &newOrder.front() ? " " : ", ") + name;
            Say(path, /*heads*/ true, line);
        }
        for (const auto& child : mine)
            if (!now.count(child.first))
                Compare(child.second, nullptr, path + "/" + child.first);
        for (const auto& child : theirs) {
            const auto was = old.find(child.first);
            Compare(was == old.end() ? nullptr : was->second, child.second,
                    path + "/" + child.first);
        }
    }

    static std::map<std::string, std::string> TextsOf(const QLX_ViewMemento::StringTables& tables,
                                                      QLX_Language::ELanguage language) {
        std::map<std::string, std::string> texts;
        if (const auto table = tables.find(language); table != tables.end())
            for (const auto& [key, entry] : table->second)
                texts[key] = "\"" + entry.mLocalized + "\"" +
                             (entry.mSource.empty() ? "" : " (of \"" + entry.mSource + "\")");
        return texts;
    }

    void CompareTable(const std::map<std::string, std::string>& before,
                      const std::map<std::string, std::string>& after, const std::string& head) {
        std::map<std::string, int> keys;
        for (const auto& entry : before)
            keys[entry.first];
        for (const auto& entry : after)
            keys[entry.first];
        for (const auto& key : keys) {
            const auto was = before.find(key.first);
            const auto is = after.find(key.first);
            if (was != before.end() && is != after.end() && was->second == is->second)
                continue;
            if (was != before.end())
                Say(head, /*heads*/ true, "-     " + key.first + ": " + was->second);
            if (is != after.end())
                Say(head, /*heads*/ true, "+     " + key.first + ": " + is->second);
        }
    }

    std::string mOut;
    std::string mHead;
};

const std::string kRootName = "viewhierarchy";

struct Options {
    std::string mBefore, mAfter;
    std::vector<std::string> mGitArguments;
    bool mNoStrings = false;
};

void Diff(const Options& options) {
    const auto before = LoadDescription(options.mBefore);
    const auto after = LoadDescription(options.mAfter);
    if (!before || !after) {
        gExitStatus = kExitFailed;
        return;
    }
    Comparison comparison;
    comparison.Compare(before->GetRoot(), after->GetRoot(), kRootName);
    // One without any table is one that was copied without them.
    const auto& oldTables = before->GetMemento().GetStringTables();
    const auto& newTables = after->GetMemento().GetStringTables();
    if (!options.mNoStrings && !oldTables.empty() && !newTables.empty())
        comparison.CompareTables(oldTables, newTables);
    if (comparison.GetText().empty())
        return;
    std::printf("--- %s\n+++ %s\n%s", options.mBefore.c_str(), options.mAfter.c_str(),
                comparison.GetText().c_str());
    gExitStatus = kExitFound;
}

/// What git calls: path, then file, hash and mode of the old and the new state. A status other than
/// 0 would make git give up.
void GitDiff(const Options& options) {
    const std::vector<std::string>& arguments = options.mGitArguments;
    if (arguments.size() < 7) {
        std::printf("* %s is not merged\n", arguments[0].c_str());
        return;
    }
    const auto load = [](const std::string& path) {
        return path == "/dev/null" || path == "nul" ? nullptr : LoadDescription(path);
    };
    const auto before = load(arguments[1]);
    const auto after = load(arguments[4]);
    std::printf("--- %s\n+++ %s\n", before ? ("a/" + arguments[0]).c_str() : "/dev/null",
                after ? ("b/" + arguments[0]).c_str() : "/dev/null");
    Comparison comparison;
    if (before || after)
        comparison.Compare(before ? before->GetRoot() : nullptr, after ? after->GetRoot() : nullptr,
                           kRootName);
    std::printf("%s", comparison.GetText().empty() ? "  only the form differs\n"
                                                   : comparison.GetText().c_str());
}

void AddDiffCommand(CLI::App& app, const char* name) {
    CLI::App* const command =
        app.add_subcommand(name, "Tells what differs between two descriptions, by element");
    const auto options = std::make_shared<Options>();
    command->add_option("BEFORE", options->mBefore, "An XML source")->required();
    command->add_option("AFTER", options->mAfter, "Another one")->required();
    command->add_flag("--no-strings", options->mNoStrings, "Leave the string tables out");
    command->footer(
        "Elements are the same when tag and identifier are (or name, or class), so\n"
        "moving and reformatting are no differences. Exit status 1 when there are any.\n"
        "Example: qlxview diff old/Mix.xml views/Mix.xml");
    command->callback([options] { Diff(*options); });
}

void AddGitDiffCommand(CLI::App& app, const char* name) {
    CLI::App* const command = app.add_subcommand(name, "What git calls; see install-git-drivers");
    const auto options = std::make_shared<Options>();
    command->add_option("ARGUMENT", options->mGitArguments, "As git passes them")->required();
    command->group(""); // not listed
    command->footer("Example: qlxview git-diff Mix.xml OLD HASH MODE NEW HASH MODE");
    command->callback([options] { GitDiff(*options); });
}

const ToolCommand gDiff(60, "diff", AddDiffCommand);
const ToolCommand gGitDiff(99, "git-diff", AddGitDiffCommand);
} // namespace
