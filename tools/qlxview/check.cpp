// qlxview check: what is wrong with descriptions, where it stands.
#include <algorithm>
#include <cstdio>

#include "classschema.h"
#include "command.h"
#include "description.h"
#include "findings.h"
#include "qlx/views/uviewserver.h"

namespace {
struct Options {
    std::vector<std::string> mFiles;
    std::vector<std::string> mKeyFiles;
    bool mJSON = false;
    bool mSARIF = false;
    bool mStrict = false;
};

/// Elements whose "class" names a registered class that reads them.
bool HasClass(const std::string& element) {
    return element == "view" || element == "behavior" || element == "adorner" ||
           element == "drawingenvironment" || element == "state";
}

/// Without blanks at both ends, the carriage return of a Windows line among them.
std::string WithoutBlanks(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    return first == std::string::npos
               ? std::string()
               : text.substr(first, text.find_last_not_of(" \t\r") + 1 - first);
}

class Checker {
  public:
    /// Takes the keys that code asks for from a file, a line each; blank lines and lines that begin
    /// with "//" are none. Throws Sys_FileError.
    void TakeKeysOfCode(const std::string& path) {
        const std::string text = Sys_File::ReadAll(Sys_FileLoc(path));
        int line = 0;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = std::min(text.find('\n', at), text.size());
            const std::string key = WithoutBlanks(text.substr(at, end - at));
            at = end + 1;
            ++line;
            if (!key.empty() && key.compare(0, 2, "//") != 0)
                mKeysOfCode.emplace(key, KeyOfCode{path, line, false});
        }
    }

    /// After the last file: keys of code that no table of any of them has.
    void CheckKeysOfCode() {
        for (const auto& [key, where] : mKeysOfCode)
            if (!where.mInTable)
                mFindings.push_back({where.mFile, where.mLine, 1, false, "string-missing",
                                     "the key \"" + key + "\" stands in no string table"});
    }

    void CheckFile(const std::string& path) {
        std::unique_ptr<Description> description;
        try {
            description = std::make_unique<Description>(path);
        } catch (const UnreadableError& error) {
            const QLX_SourceProblem& problem = error.GetProblem();
            mFindings.push_back({problem.mFile, problem.mLine, problem.mColumn, true, "unreadable",
                                 problem.mReason});
        }
        if (description) {
            mDescription = description.get();
            for (const QLX_SourceProblem& problem : mDescription->GetProblems())
                mFindings.push_back({problem.mFile, problem.mLine, problem.mColumn,
                                     problem.mSeverity == QLX_SourceProblem::kError, "source",
                                     problem.mReason});
            CheckWellKnown();
            for (const std::string& loss :
                 QLX_SourceViewFormat::FindUnwritable(*mDescription->GetRoot()))
                Add(PlaceOfPath(loss.substr(0, loss.find(": "))), true, "hidden",
                    "an attribute of the same name keeps this from being written: " + loss);
            mDescription->GetRoot()->SetCurrentFilter(QLX_PropertyFilter::RootFilter());
            CheckTree(*mDescription->GetRoot());
            CheckStrings();
            mUsedKeys.clear();
        }
    }

    [[nodiscard]] std::vector<Finding> TakeFindings() {
        std::stable_sort(mFindings.begin(), mFindings.end(),
                         [](const Finding& a, const Finding& b) {
                             return std::tie(a.mFile, a.mLine, a.mColumn) <
                                    std::tie(b.mFile, b.mLine, b.mColumn);
                         });
        return std::move(mFindings);
    }

  private:
    using Place = QLX_SourceObserver::Place;
    struct KeyOfCode {
        std::string mFile; // where it is named
        int mLine;
        bool mInTable = false;
    };

    void Add(Place place, bool error, const std::string& rule, const std::string& text) {
        mFindings.push_back(
            {mDescription->GetPath(), place.mLine, place.mColumn, error, rule, text});
    }

    void CheckWellKnown() {
        constexpr std::size_t kMostNamed = 1000;
        std::list<std::string> messages;
        const std::size_t count =
            mDescription->GetRoot()->VerifyWellKnownProperties(messages, kMostNamed);
        for (const std::string& message : messages)
            Add(PlaceOf(message), true, "well-known", message);
        if (count > messages.size())
            Add({0, 0}, true, "well-known",
                std::to_string(count - messages.size()) + " further attributes are missing, "
                                                          "empty or of another type");
    }

    /// The place of the element whose path stands in a verification message.
    Place PlaceOf(const std::string& message) {
        const std::size_t start = message.find('"') + 1;
        return PlaceOfPath(message.substr(start, message.find('"', start) - start));
    }
    Place PlaceOfPath(const std::string& path) {
        const auto* const found = mDescription->GetRoot()->FindByPath(path);
        return found ? mDescription->GetPlace(found) : Place{0, 0};
    }

    void CheckTree(QLX_RawPropertyContainer& container) {
        CheckTexts(container);
        if (HasClass(container.GetName()))
            CheckClass(container);
        for (auto* child = container.GetFirstChild(); child; child = child->GetNextSibling())
            CheckTree(*child);
    }

    /// Texts that do not say what was read from them, keys, and layouts that no one can select.
    void CheckTexts(const QLX_RawPropertyContainer& container) {
        std::string identifier;
        if (mDescription->GetIdentifierText(&container, identifier) && !identifier.empty()) {
            const std::string reason = QLX_CheckPropertyText(qlx_PropType_IDType, identifier);
            if (!reason.empty())
                Add(mDescription->GetPlace(&container), false, "value",
                    "the identifier \"" + identifier + "\": " + reason);
        }
        for (const auto& [filter, set] : container.GetFilterPropertyMap()) {
            for (std::size_t i = 0; i < set.GetCount(); ++i) {
                const QLX_PropertyView view = set.GetAt(i);
                const std::string name(view.mName);
                const PropertyKey key{&container, filter, view.mType, name};
                std::string text;
                if (view.mType == qlx_PropType_String_Key)
                    mUsedKeys[std::string(view.mText)] = mDescription->GetPlace(key);
                else if (mDescription->GetValueText(key, text))
                    CheckText(key, text);
            }
            CheckFilter(container, filter, set);
        }
    }

    void CheckText(const PropertyKey& key, const std::string& text) {
        const std::string reason = QLX_CheckPropertyText(std::get<2>(key), text);
        if (!reason.empty())
            Add(mDescription->GetPlace(key), false, "value",
                "the property \"" + std::get<3>(key) + "\", \"" + text + "\": " + reason);
    }

    void CheckFilter(const QLX_RawPropertyContainer& container, const QLX_PropertyFilter& filter,
                     const QLX_PropertySet& set) {
        if (set.IsEmpty())
            return;
        const PropertyKey first{&container, filter, set.GetAt(0).mType,
                                std::string(set.GetAt(0).mName)};
        QLX_Language::ELanguage language = QLX_Language::English;
        if (!QLX_Language::FindLanguage(filter["Language"], language))
            Add(mDescription->GetPlace(first), true, "filter",
                "there is no language \"" + filter["Language"] + "\"; it counts as English");
        if (filter["Layout"] == "Default")
            Add(mDescription->GetPlace(first), true, "filter",
                "the layout \"Default\" means the common layout when it is selected, so no look-up "
                "sees what is stored under that name");
    }

    void CheckClass(QLX_RawPropertyContainer& container) {
        std::string className;
        container.GetStringProperty("class", className);
        if (className.empty())
            return; // a missing class is a well-known property's matter
        const Place place = mDescription->GetPlace(&container);
        if (!mSchema.IsKnown(className)) {
            Add(place, false, "class",
                "the class " + className + " is not known here; load its library with --load");
            return;
        }
        (void)mSchema.Get(className);
        (void)TViewServer::Get()->TakeProblems(); // of the schema's own empty container
        const ReadProperties reads =
            mSchema.GetFor(className, container, mDescription->GetMementoPtr());
        for (const TViewServerProblem& problem : TViewServer::Get()->TakeProblems())
            Add(place, true, "view", problem.mReason);
        for (const auto& [filter, set] : container.GetFilterPropertyMap())
            for (std::size_t i = 0; i < set.GetCount(); ++i)
                CheckIsRead(container, className, reads, filter, set.GetAt(i));
    }

    void CheckIsRead(const QLX_RawPropertyContainer& container, const std::string& className,
                     const ReadProperties& reads, const QLX_PropertyFilter& filter,
                     const QLX_PropertyView& view) {
        const std::string name(view.mName);
        bool required = false;
        if (QLX_SourceViewFormat::IsWellKnownProperty(container.GetName(), name, required) ||
            reads.count({name, view.mType}))
            return;
        std::string other;
        for (int type = 1; type < kQLX_PropertyTypeCount; ++type)
            if (reads.count({name, static_cast<QLX_PropertyType>(type)}))
                other = QLX_PropertyTypeToString(static_cast<QLX_PropertyType>(type));
        const std::string mine = QLX_PropertyTypeToString(view.mType);
        Add(mDescription->GetPlace(PropertyKey{&container, filter, view.mType, name}), false,
            "unread",
            other.empty() ? className + " reads no property \"" + name + "\""
                          : className + " reads the property \"" + name + "\" as " + other +
                                ", not as " + mine);
    }

    /// A finding in a language's string table, where the key stands.
    void AddInTable(QLX_Language::ELanguage language, const std::string& key,
                    const std::string& rule, const std::string& text) {
        const Place place = mDescription->GetKeyPlace(language, key);
        mFindings.push_back({mDescription->GetTableLoc(language).GetPath(), place.mLine,
                             place.mColumn, false, rule, text});
    }

    void CheckStrings() {
        const auto& tables = mDescription->GetMemento().GetStringTables();
        const auto english = tables.find(QLX_Language::English);
        for (const auto& [language, table] : tables) {
            const std::string code = QLX_Language::GetFileCode(language);
            for (const auto& [key, place] : mUsedKeys)
                if (!table.count(key))
                    Add(place, true, "string-missing",
                        std::string("the key \"").append(key) + "\" has no text in the table " +
                            code);
            for (const auto& [key, entry] : table) {
                const auto ofCode = mKeysOfCode.find(key);
                if (ofCode != mKeysOfCode.end())
                    ofCode->second.mInTable = true;
                if (!mUsedKeys.count(key) && ofCode == mKeysOfCode.end())
                    AddInTable(language, key, "string-unused",
                               "the key \"" + key + "\" is not used");
                else if (entry.mLocalized.empty())
                    AddInTable(language, key, "string-untranslated",
                               "the key \"" + key + "\" has an empty text");
                else
                    CheckSource(english == tables.end() ? nullptr : &english->second, language, key,
                                entry);
            }
        }
        if (tables.empty() && !mUsedKeys.empty())
            Add(mUsedKeys.begin()->second, true, "string-missing",
                "there are string keys but no string table beside the file");
    }

    void CheckSource(const QLX_StringTable* english, QLX_Language::ELanguage language,
                     const std::string& key, const QLX_StringTableEntry& entry) {
        if (!english || entry.mSource.empty())
            return;
        const auto source = english->find(key);
        if (source != english->end() && source->second.mLocalized != entry.mSource)
            AddInTable(language, key, "string-stale",
                       "the English text of the key \"" + key +
                           "\" changed since it was translated");
    }

    const Description* mDescription = nullptr;
    ClassSchema mSchema;
    std::map<std::string, Place> mUsedKeys;       // by properties of the description
    std::map<std::string, KeyOfCode> mKeysOfCode; // by what TakeKeysOfCode read
    std::vector<Finding> mFindings;
};

void AddCheckCommand(CLI::App& app, const char* name) {
    CLI::App* const command =
        app.add_subcommand(name, "Tells what is wrong with descriptions and their string tables");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->mFiles, "XML sources")->required();
    CLI::Option* const json = command->add_flag("--json", options->mJSON, "The findings as JSON");
    command->add_flag("--sarif", options->mSARIF, "The findings as SARIF 2.1.0")->excludes(json);
    command->add_option("--used-keys", options->mKeyFiles,
                        "A text file of string keys that code uses, a line each");
    command->add_flag("--strict", options->mStrict, "Warnings, too, make the exit status 1");
    command->footer("Exit status 1 when there are errors.\n"
                    "Example: qlxview --load ./libhost.so check --sarif views/*.xml > views.sarif");
    command->callback([options] {
        Checker checker;
        for (const std::string& path : options->mKeyFiles)
            checker.TakeKeysOfCode(path);
        for (const std::string& path : options->mFiles)
            checker.CheckFile(path);
        checker.CheckKeysOfCode();
        const std::vector<Finding> findings = checker.TakeFindings();
        const std::string text = options->mSARIF  ? FindingsAsSARIF(findings)
                                 : options->mJSON ? FindingsAsJSON(findings)
                                                  : FindingsAsText(findings);
        std::fwrite(text.data(), 1, text.size(), stdout);
        for (const Finding& finding : findings)
            if (finding.mError || options->mStrict)
                gExitStatus = kExitFound;
    });
}
const ToolCommand gCheck(10, "check", AddCheckCommand);
} // namespace

std::vector<Finding> CheckDescription(const std::string& path) {
    Checker checker;
    checker.CheckFile(path);
    return checker.TakeFindings();
}
