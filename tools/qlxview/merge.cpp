// qlxview merge: brings the changes that two sides made to one description together.
//
// Theirs is merged into ours in place, so that ours keeps its comments and its order. Each
// property, each child's being there and the children's order are decided on their own: the side
// that changed it against the base wins; where both did, and differently, ours stays and a comment
// beside it says what theirs was.
#include <algorithm>
#include <cstdio>
#include <set>

#include "command.h"
#include "elements.h"

namespace {
struct Options {
    std::string mBase, mOurs, mTheirs, mOutput, mPath;
};

using Around = QLX_SourceComments::Around;

bool operator==(const Around& a, const Around& b) {
    return a.mBefore == b.mBefore && a.mBehind == b.mBehind;
}

class Merger {
  public:
    /// The base may be null: both sides began from nothing.
    Merger(Description* base, Description& ours, Description& theirs)
        : mBase(base), mOurs(ours), mTheirs(theirs) {}

    void Merge() {
        MergeElement(mBase ? mBase->GetRoot() : nullptr, *mOurs.GetRoot(), *mTheirs.GetRoot(),
                     mOurs.GetRoot()->GetName());
        MergeAround(mBase ? &mBase->GetComments().mFile : nullptr, mOurs.GetComments().mFile,
                    mTheirs.GetComments().mFile);
    }
    [[nodiscard]] const std::vector<std::string>& GetConflicts() const { return mConflicts; }

  private:
    using Container = QLX_RawPropertyContainer;

    void AddConflict(const std::string& path, const std::string& what, Around& around) {
        mConflicts.push_back(path + ": " + what);
        std::string comment;
        for (const char c : " merge conflict: " + what + " ") {
            if (c == '-' && !comment.empty() && comment.back() == '-')
                comment += ' '; // two hyphens would end the comment
            comment += c;
        }
        around.mBefore.push_back(comment);
    }

    // Comments

    template <class Map>
    static Around AroundOf(const Map& map, const typename Map::key_type& key) {
        const auto found = map.find(key);
        return found == map.end() ? Around() : found->second;
    }

    static void MergeAround(const Around* base, Around& ours, const Around& theirs) {
        if (ours == theirs || (base && theirs == *base))
            return;
        if (base ? ours == *base : ours == Around()) {
            ours = theirs;
            return;
        }
        const auto add = [](std::vector<std::string>& to, const std::vector<std::string>& from) {
            for (const std::string& comment : from)
                if (std::find(to.begin(), to.end(), comment) == to.end())
                    to.push_back(comment);
        };
        add(ours.mBefore, theirs.mBefore);
        add(ours.mBehind, theirs.mBehind);
    }

    void MergeElementComments(const Container* base, Container& ours, Container& theirs) {
        const auto merge = [&](auto member) {
            Around before;
            if (base)
                before = AroundOf(mBase->GetComments().*member, base);
            const Around after = AroundOf(mTheirs.GetComments().*member, &theirs);
            Around mine = AroundOf(mOurs.GetComments().*member, &ours);
            MergeAround(base ? &before : nullptr, mine, after);
            if (!(mine == Around()))
                (mOurs.GetComments().*member)[&ours] = mine;
        };
        merge(&QLX_SourceComments::mStart);
        merge(&QLX_SourceComments::mEnd);
    }

    /// A subtree of theirs that becomes ours keeps its comments.
    void TakeComments(Container& container) {
        QLX_SourceComments& from = mTheirs.GetComments();
        QLX_SourceComments& to = mOurs.GetComments();
        const auto move = [](auto& source, auto& target, const auto& key) {
            const auto found = source.find(key);
            if (found != source.end())
                target[key] = found->second;
        };
        move(from.mStart, to.mStart, &container);
        move(from.mEnd, to.mEnd, &container);
        for (const auto& property : PropertiesOf(&container))
            move(from.mProperties, to.mProperties, KeyOf(container, property.first));
        for (auto* child = container.GetFirstChild(); child; child = child->GetNextSibling())
            TakeComments(*child);
    }

    static PropertyKey KeyOf(const Container& container, const PropertyID& id) {
        return {&container, std::get<2>(id), std::get<1>(id), std::get<0>(id)};
    }

    // Elements

    void MergeElement(const Container* base, Container& ours, Container& theirs,
                      const std::string& path) {
        MergeProperties(base, ours, theirs, path);
        MergeElementComments(base, ours, theirs);
        MergeChildren(base, ours, theirs, path);
    }

    void MergeProperties(const Container* base, Container& ours, Container& theirs,
                         const std::string& path) {
        const PropertyMap before = PropertiesOf(base);
        const PropertyMap yours = PropertiesOf(&theirs);
        // Decided first and stored afterwards: a store moves what the views point to.
        std::vector<PropertyID> removed;
        std::vector<std::pair<PropertyID, QLX_PropertyView>> taken;
        {
            const PropertyMap mine = PropertiesOf(&ours);
            std::set<PropertyID> all;
            for (const PropertyMap* map : {&before, &mine, &yours})
                for (const auto& property : *map)
                    all.insert(property.first);
            for (const PropertyID& id : all) {
                const QLX_PropertyView* const b = Find(before, id);
                const QLX_PropertyView* const o = Find(mine, id);
                const QLX_PropertyView* const t = Find(yours, id);
                if (Same(o, t) || Same(b, t))
                    continue;
                if (!Same(b, o) && o) {
                    AddConflict(path,
                                PropertyLabel(id) + " is " + Say(o) + " here, was " + Say(b) +
                                    ", and is " + Say(t) + " there",
                                mOurs.GetComments().mProperties[KeyOf(ours, id)]);
                    continue;
                }
                if (!Same(b, o)) // removed here, changed there: what has a value is kept
                    AddConflict(path,
                                PropertyLabel(id) + " was removed here, was " + Say(b) +
                                    ", and is " + Say(t) + " there",
                                mOurs.GetComments().mProperties[KeyOf(ours, id)]);
                if (t)
                    taken.emplace_back(id, *t);
                else
                    removed.push_back(id);
            }
        }
        for (const PropertyID& id : removed) {
            auto& sets = ours.GetFilterPropertyMap();
            sets[std::get<2>(id)].RemoveProperty(std::get<1>(id), std::get<0>(id));
        }
        for (const auto& [id, view] : taken) {
            ours.GetFilterPropertyMap()[std::get<2>(id)].SetProperty(view);
            MergeAround(nullptr, mOurs.GetComments().mProperties[KeyOf(ours, id)],
                        AroundOf(mTheirs.GetComments().mProperties, KeyOf(theirs, id)));
        }
    }

    static const QLX_PropertyView* Find(const PropertyMap& map, const PropertyID& id) {
        const auto found = map.find(id);
        return found == map.end() ? nullptr : &found->second;
    }
    static bool Same(const QLX_PropertyView* a, const QLX_PropertyView* b) {
        return a && b ? SameValue(*a, *b) : !a && !b;
    }
    static std::string Say(const QLX_PropertyView* view) {
        return view ? QuotedValue(*view) : "absent";
    }

    using Children = std::map<std::string, Container*>;
    using Names = std::vector<std::string>;

    static Names NamesOf(const NamedChildren& children, const std::set<std::string>& among) {
        Names names;
        for (const auto& child : children)
            if (among.count(child.first))
                names.push_back(child.first);
        return names;
    }

    void MergeChildren(const Container* base, Container& ours, Container& theirs,
                       const std::string& path) {
        const NamedChildren beforeList = base ? NameChildren(*base) : NamedChildren();
        const NamedChildren mineList = NameChildren(ours);
        const NamedChildren yoursList = NameChildren(theirs);
        const Children before(beforeList.begin(), beforeList.end());
        const Children mine(mineList.begin(), mineList.end());
        const Children yours(yoursList.begin(), yoursList.end());
        std::map<std::string, std::unique_ptr<Container>> kept;
        const auto take = [&](const std::string& name, Container* child) {
            kept[name] = child->GetParent()->RemoveChild(child);
        };
        for (const auto& [name, child] : mineList) {
            const auto was = before.find(name);
            const auto theirsToo = yours.find(name);
            const std::string childPath = path + "/" + name;
            if (theirsToo != yours.end()) {
                MergeElement(was == before.end() ? nullptr : was->second, *child,
                             *theirsToo->second, childPath);
            } else if (was != before.end()) {
                if (SameTree(*was->second, *child)) {
                    ours.RemoveChild(child); // removed there, untouched here
                    continue;
                }
                AddConflict(childPath, "changed here, removed there",
                            mOurs.GetComments().mStart[child]);
            }
            take(name, child);
        }
        for (const auto& [name, child] : yoursList) {
            if (mine.count(name))
                continue;
            const auto was = before.find(name);
            if (was != before.end() && SameTree(*was->second, *child))
                continue; // removed here, untouched there
            TakeComments(*child);
            if (was != before.end())
                AddConflict(path + "/" + name, "removed here, changed there",
                            mOurs.GetComments().mStart[child]);
            take(name, child);
        }
        for (const std::string& name :
             MergeOrder(beforeList, mineList, yoursList, kept, ours, path))
            ours.AddChild(std::move(kept[name]));
    }

    Names MergeOrder(const NamedChildren& before, const NamedChildren& mine,
                     const NamedChildren& yours,
                     const std::map<std::string, std::unique_ptr<Container>>& kept, Container& ours,
                     const std::string& path) {
        std::set<std::string> everywhere, here, there;
        for (const auto& child : mine)
            here.insert(child.first);
        for (const auto& child : yours)
            there.insert(child.first);
        for (const auto& child : before)
            if (here.count(child.first) && there.count(child.first))
                everywhere.insert(child.first);
        const Names was = NamesOf(before, everywhere);
        const Names mineNow = NamesOf(mine, everywhere);
        const Names yoursNow = NamesOf(yours, everywhere);
        const bool theirsLeads = mineNow == was && yoursNow != was;
        if (mineNow != was && yoursNow != was && mineNow != yoursNow)
            AddConflict(path, "the children's order changed here and there",
                        mOurs.GetComments().mStart[&ours]);
        const NamedChildren& first = theirsLeads ? yours : mine;
        const NamedChildren& second = theirsLeads ? mine : yours;
        Names order;
        for (const auto& child : first)
            if (kept.count(child.first))
                order.push_back(child.first);
        // What only the other side has goes behind what it follows there.
        auto at = order.begin();
        for (const auto& child : second) {
            if (!kept.count(child.first))
                continue;
            const auto found = std::find(order.begin(), order.end(), child.first);
            at = found != order.end() ? found + 1 : order.insert(at, child.first) + 1;
        }
        return order;
    }

    Description* mBase;
    Description& mOurs;
    Description& mTheirs;
    std::vector<std::string> mConflicts;
};

void Merge(const Options& options) {
    const std::string name = options.mPath.empty() ? options.mOurs : options.mPath;
    std::unique_ptr<Description> base;
    // Git hands over an empty file where both sides added one.
    if (!Sys_File::ReadAll(Sys_FileLoc(options.mBase)).empty())
        base = std::make_unique<Description>(options.mBase);
    Description ours(options.mOurs);
    Description theirs(options.mTheirs);
    for (Description* const side : {base.get(), &ours, &theirs}) {
        for (const std::string& loss : side ? side->FindLosses() : std::vector<std::string>()) {
            std::fprintf(stderr, "%s: not merged, because this would be lost: %s\n", name.c_str(),
                         loss.c_str());
            gExitStatus = kExitFailed;
        }
    }
    if (gExitStatus == kExitFailed)
        return;
    Merger merger(base.get(), ours, theirs);
    merger.Merge();
    Sys_SafeWriter::Replace(Sys_FileLoc(options.mOutput.empty() ? options.mOurs : options.mOutput),
                            ours.GetCanonicalText());
    for (const std::string& conflict : merger.GetConflicts()) {
        std::fprintf(stderr, "%s: conflict: %s\n", name.c_str(), conflict.c_str());
        gExitStatus = kExitFound;
    }
}

void AddMergeCommand(CLI::App& app, const char* name) {
    CLI::App* const command =
        app.add_subcommand(name, "Merges what two sides changed in a description");
    const auto options = std::make_shared<Options>();
    command->add_option("BASE", options->mBase, "What both sides began from")->required();
    command->add_option("OURS", options->mOurs, "One side; replaced by the result")->required();
    command->add_option("THEIRS", options->mTheirs, "The other side")->required();
    command->add_option("-o,--output", options->mOutput, "Write the result here instead");
    command->add_option("--path", options->mPath, "The file's name in messages");
    command->footer(
        "A conflict keeps our value and leaves a comment before it; the exit status is\n"
        "1 then. String tables are merged line by line, as any text is.\n"
        "Example: qlxview merge base.xml mine.xml theirs.xml -o Mix.xml");
    command->callback([options] { Merge(*options); });
}
const ToolCommand gMerge(61, "merge", AddMergeCommand);
} // namespace
