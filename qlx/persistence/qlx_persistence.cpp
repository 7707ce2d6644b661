#include "qlx/persistence/qlx_persistence.h"

#include <algorithm>

#include "basekit/cmn/cmn_assert.h"
#include "qlx/persistence/qlx_sourceformat.h"

namespace {
constexpr const char* kRootName = "viewhierarchy";
constexpr const char* kFilterMarker = "Filter";
constexpr const char* kDefaultLayout = "Default";

} // namespace

QLX_RawPropertyContainer::QLX_RawPropertyContainer() = default;
QLX_RawPropertyContainer::QLX_RawPropertyContainer(const std::string& name) : mName(name) {}

QLX_RawPropertyContainer::~QLX_RawPropertyContainer() {
    // Each child hands its own children up before it goes, so that no depth of tree makes this
    // recurse.
    while (QLX_RawPropertyContainer* const child = mFirstChild) {
        if (child->mFirstChild) {
            child->mLastChild->mNextSibling = child->mNextSibling;
            child->mNextSibling = child->mFirstChild;
            child->mFirstChild = nullptr;
            child->mLastChild = nullptr;
        }
        mFirstChild = child->mNextSibling;
        delete child;
    }
}

// Stores

void QLX_RawPropertyContainer::CheckNotFrozen() const { CMN_ASSERT(!mPropertiesFrozen); }

void QLX_RawPropertyContainer::SetBoolProperty(const std::string& name, bool value,
                                               const QLX_PropertyFilter& filter) {
    CheckNotFrozen();
    mFilterPropertyMap[filter].SetBoolProperty(name, value);
}

void QLX_RawPropertyContainer::SetInt32Property(const std::string& name, std::int32_t value,
                                                const QLX_PropertyFilter& filter) {
    CheckNotFrozen();
    mFilterPropertyMap[filter].SetInt32Property(name, value);
}

void QLX_RawPropertyContainer::SetInt64Property(const std::string& name, std::int64_t value,
                                                const QLX_PropertyFilter& filter) {
    CheckNotFrozen();
    mFilterPropertyMap[filter].SetInt64Property(name, value);
}

void QLX_RawPropertyContainer::SetIDTypeProperty(const std::string& name, std::uint32_t value,
                                                 const QLX_PropertyFilter& filter) {
    CheckNotFrozen();
    mFilterPropertyMap[filter].SetIDTypeProperty(name, value);
}

void QLX_RawPropertyContainer::SetStringProperty(const std::string& name, const std::string& value,
                                                 const QLX_PropertyFilter& filter) {
    CheckNotFrozen();
    mFilterPropertyMap[filter].SetStringProperty(name, value);
}

void QLX_RawPropertyContainer::SetStringKeyProperty(const std::string& name, const std::string& key,
                                                    const QLX_PropertyFilter& filter) {
    CheckNotFrozen();
    mFilterPropertyMap[filter].SetStringKeyProperty(name, key);
}

void QLX_RawPropertyContainer::SetColorProperty(const std::string& name, const CRGBColor& value,
                                                const QLX_PropertyFilter& filter) {
    CheckNotFrozen();
    mFilterPropertyMap[filter].SetColorProperty(name, value);
}

void QLX_RawPropertyContainer::SetPointProperty(const std::string& name, const VPoint& value,
                                                const QLX_PropertyFilter& filter) {
    CheckNotFrozen();
    mFilterPropertyMap[filter].SetPointProperty(name, value);
}

void QLX_RawPropertyContainer::SetRectProperty(const std::string& name, const VRect& value,
                                               const QLX_PropertyFilter& filter) {
    CheckNotFrozen();
    mFilterPropertyMap[filter].SetRectProperty(name, value);
}

void QLX_RawPropertyContainer::SetProperty(const std::string& name, const std::string& typeName,
                                           const std::string& valueText,
                                           const QLX_PropertyFilter& filter) {
    CheckNotFrozen();
    switch (QLX_StringToPropertyType(typeName)) {
    case qlx_PropType_Bool:
        SetBoolProperty(name, QLX_TextToBool(valueText), filter);
        break;
    case qlx_PropType_Int32:
        SetInt32Property(name, QLX_TextToInt32(valueText), filter);
        break;
    case qlx_PropType_IDType:
        SetIDTypeProperty(name, QLX_TextToIDType(valueText), filter);
        break;
    case qlx_PropType_String:
        SetStringProperty(name, valueText, filter);
        break;
    case qlx_PropType_String_Key:
        SetStringKeyProperty(name, valueText, filter);
        break;
    case qlx_PropType_Color:
        SetColorProperty(name, QLX_TextToColor(valueText), filter);
        break;
    case qlx_PropType_Point:
        SetPointProperty(name, QLX_TextToPoint(valueText), filter);
        break;
    case qlx_PropType_Rect:
        SetRectProperty(name, QLX_TextToRect(valueText), filter);
        break;
    case qlx_PropType_Int64:
        SetInt64Property(name, QLX_TextToInt64(valueText), filter);
        break;
    case qlx_PropType_None:
        CMN_ASSERT(!"Invalid property type!");
        break;
    }
}

void QLX_RawPropertyContainer::FreezeProperties() {
    mPropertiesFrozen = true;
    for (QLX_RawPropertyContainer* child = GetFirstChild(); child; child = child->mNextSibling)
        child->FreezeProperties();
}

// Look-ups. What every one pays beyond the set's own look-up is one test: a container whose set may
// not be read as it is, because there is none or because somebody listens, takes the other road.

bool QLX_RawPropertyContainer::CallBool(std::string_view name, bool& value) const {
    if (!mHasCurrentSet || gQLX_ReadListener) [[unlikely]]
        return GetListenedTo<bool, &QLX_PropertySet::GetBoolProperty>(name, qlx_PropType_Bool,
                                                                      value);
    return mCurrentSet.GetBoolProperty(name, value);
}

bool QLX_RawPropertyContainer::CallInt32(std::string_view name, std::int32_t& value) const {
    if (!mHasCurrentSet || gQLX_ReadListener) [[unlikely]]
        return GetListenedTo<std::int32_t, &QLX_PropertySet::GetInt32Property>(
            name, qlx_PropType_Int32, value);
    return mCurrentSet.GetInt32Property(name, value);
}

bool QLX_RawPropertyContainer::CallInt32(std::string_view name, std::int64_t& value) const {
    if (!mHasCurrentSet || gQLX_ReadListener) [[unlikely]]
        return GetListenedTo<std::int64_t, &QLX_PropertySet::GetInt32Property>(
            name, qlx_PropType_Int32, value);
    return mCurrentSet.GetInt32Property(name, value);
}

bool QLX_RawPropertyContainer::CallInt64(std::string_view name, std::int64_t& value) const {
    if (!mHasCurrentSet || gQLX_ReadListener) [[unlikely]]
        return GetListenedTo<std::int64_t, &QLX_PropertySet::GetInt64Property>(
            name, qlx_PropType_Int64, value);
    return mCurrentSet.GetInt64Property(name, value);
}

bool QLX_RawPropertyContainer::CallIDType(std::string_view name, std::uint32_t& value) const {
    if (!mHasCurrentSet || gQLX_ReadListener) [[unlikely]]
        return GetListenedTo<std::uint32_t, &QLX_PropertySet::GetIDTypeProperty>(
            name, qlx_PropType_IDType, value);
    return mCurrentSet.GetIDTypeProperty(name, value);
}

bool QLX_RawPropertyContainer::GetStringProperty(std::string_view name, std::string& value) const {
    if (!mHasCurrentSet || gQLX_ReadListener) [[unlikely]]
        return GetListenedTo<std::string, &QLX_PropertySet::GetStringProperty>(
            name, qlx_PropType_String, value);
    return mCurrentSet.GetStringProperty(name, value);
}

bool QLX_RawPropertyContainer::GetStringKeyProperty(std::string_view name,
                                                    std::string& value) const {
    if (!mHasCurrentSet || gQLX_ReadListener) [[unlikely]]
        return GetListenedTo<std::string, &QLX_PropertySet::GetStringKeyProperty>(
            name, qlx_PropType_String_Key, value);
    return mCurrentSet.GetStringKeyProperty(name, value);
}

bool QLX_RawPropertyContainer::GetColorProperty(std::string_view name, CRGBColor& value) const {
    if (!mHasCurrentSet || gQLX_ReadListener) [[unlikely]]
        return GetListenedTo<CRGBColor, &QLX_PropertySet::GetColorProperty>(
            name, qlx_PropType_Color, value);
    return mCurrentSet.GetColorProperty(name, value);
}

bool QLX_RawPropertyContainer::GetPointProperty(std::string_view name, VPoint& value) const {
    if (!mHasCurrentSet || gQLX_ReadListener) [[unlikely]]
        return GetListenedTo<VPoint, &QLX_PropertySet::GetPointProperty>(name, qlx_PropType_Point,
                                                                         value);
    return mCurrentSet.GetPointProperty(name, value);
}

bool QLX_RawPropertyContainer::GetRectProperty(std::string_view name, VRect& value) const {
    if (!mHasCurrentSet || gQLX_ReadListener) [[unlikely]]
        return GetListenedTo<VRect, &QLX_PropertySet::GetRectProperty>(name, qlx_PropType_Rect,
                                                                       value);
    return mCurrentSet.GetRectProperty(name, value);
}

// The getters that are compiled into those who call them stand in the library too, for who links to
// them by name.
namespace {
template <class Value>
using Getter = bool (QLX_RawPropertyContainer::*)(std::string_view, Value&) const;
QLX_KEPT constexpr Getter<bool> kGetBool = &QLX_RawPropertyContainer::GetBoolProperty;
QLX_KEPT constexpr Getter<std::int32_t> kGetInt32 = &QLX_RawPropertyContainer::GetInt32Property;
QLX_KEPT constexpr Getter<std::int64_t> kGetWidened = &QLX_RawPropertyContainer::GetInt32Property;
QLX_KEPT constexpr Getter<std::int64_t> kGetInt64 = &QLX_RawPropertyContainer::GetInt64Property;
QLX_KEPT constexpr Getter<std::uint32_t> kGetID = &QLX_RawPropertyContainer::GetIDTypeProperty;
} // namespace

// Filters

void QLX_RawPropertyContainer::AddFilter(const QLX_PropertyFilter& filter) {
    if (filter == QLX_PropertyFilter::DefaultFilter() || mName != kRootName)
        return;
    // Deliberate: past the setters, since selecting a filter is what frozen trees are for.
    mFilterPropertyMap[filter].SetStringProperty(kFilterMarker, kFilterMarker);
}

void QLX_RawPropertyContainer::SetCurrentFilter(QLX_PropertyFilter filter) {
    const auto& attributes = filter.GetAttributes();
    const auto layout = attributes.find(QLX_GetFilterHierarchyName(0));
    if (layout != attributes.end() && layout->second == kDefaultLayout) {
        std::map<std::string, std::string> common = attributes;
        common[QLX_GetFilterHierarchyName(0)].clear();
        filter = QLX_PropertyFilter(common);
    }
    if (mHasCurrentSet && filter == mCurrentFilter)
        return;
    AddFilter(filter);
    SetCurrentFilterImpl(filter);
}

void QLX_RawPropertyContainer::SetCurrentFilterImpl(const QLX_PropertyFilter& filter) {
    // The map that this container keeps for an equal filter, so that the children, which were given
    // the same one then, find theirs by its address.
    const MergedSet* const merged = FindMerged(filter);
    const QLX_PropertyFilter shared = merged ? merged->mFilter : filter;
    for (QLX_RawPropertyContainer* node = this; node; node = node->NextInTree(this))
        node->SelectHere(shared);
}

void QLX_RawPropertyContainer::SelectHere(const QLX_PropertyFilter& filter) {
    mCurrentFilter = filter;
    const MergedSet* const merged = mPropertiesFrozen ? FindMerged(filter) : nullptr;
    if (merged) {
        mCurrentSet = merged->mSet;
        mHasCurrentSet = true;
    } else {
        MergePropertySetsForFilter();
    }
}

QLX_RawPropertyContainer::MergedSet*
QLX_RawPropertyContainer::FindMerged(const QLX_PropertyFilter& filter) {
    for (MergedSet& merged : mMergedSets)
        if (merged.mFilter.SharesMapWith(filter))
            return &merged;
    for (MergedSet& merged : mMergedSets)
        if (merged.mFilter == filter)
            return &merged;
    return nullptr;
}

void QLX_RawPropertyContainer::MergePropertySetsForFilter() {
    QLX_PropertySet set;
    // Most containers have values under the root filter alone: no chain is needed to see that.
    if (mFilterPropertyMap.size() == 1 &&
        mFilterPropertyMap.begin()->first == QLX_PropertyFilter::RootFilter()) {
        set = mFilterPropertyMap.begin()->second;
    } else if (!mFilterPropertyMap.empty()) {
        std::list<QLX_PropertyFilter> chain;
        std::list<QLX_PropertyFilter> end{mCurrentFilter};
        QLX_PropertyFilter::GetParentList(chain, end, /*includeSelf*/ true);
        for (const QLX_PropertyFilter& filter : chain) {
            const auto stored = mFilterPropertyMap.find(filter);
            if (stored != mFilterPropertyMap.end())
                set.Merge(stored->second);
        }
    }
    mCurrentSet = set;
    mHasCurrentSet = true;
    if (MergedSet* const merged = FindMerged(mCurrentFilter))
        merged->mSet = std::move(set);
    else
        mMergedSets.push_back({mCurrentFilter, std::move(set)});
}

void QLX_RawPropertyContainer::CopyFilterProperties(const QLX_PropertyFilter& from,
                                                    const QLX_PropertyFilter& to) {
    AddFilter(to);
    CopyFilterPropertiesImpl(from, to);
}

void QLX_RawPropertyContainer::CopyFilterPropertiesImpl(const QLX_PropertyFilter& from,
                                                        const QLX_PropertyFilter& to) {
    for (QLX_RawPropertyContainer* node = this; node; node = node->NextInTree(this)) {
        const QLX_PropertySet copy = node->mFilterPropertyMap[from];
        node->mFilterPropertyMap[to] = copy;
    }
}

std::set<std::string> QLX_RawPropertyContainer::GetFilterValues() const {
    std::set<std::string> values;
    for (const QLX_RawPropertyContainer* node = this; node; node = node->NextInTree(this))
        for (const auto& stored : node->mFilterPropertyMap)
            for (const auto& attribute : stored.first.GetAttributes())
                if (!attribute.second.empty())
                    values.insert(attribute.second);
    return values;
}

void QLX_RawPropertyContainer::TrimForLanguage() {
    const QLX_Language::ELanguage language = QLX_Language::GetCurrentLanguage();
    for (QLX_RawPropertyContainer* node = this; node; node = node->NextInTree(this)) {
        const QLX_PropertyFilter& mCurrentFilter = node->mCurrentFilter;
        const bool mPropertiesFrozen = node->mPropertiesFrozen;
        CMN_ASSERT(!mPropertiesFrozen);
        CMN_ASSERT(language == mCurrentFilter.GetLanguage());
        auto& sets = node->mFilterPropertyMap;
        for (auto stored = sets.begin(); stored != sets.end();) {
            const QLX_Language::ELanguage its = stored->first.GetLanguage();
            stored = its == QLX_Language::English || its == language ? std::next(stored)
                                                                     : sets.erase(stored);
        }
    }
}

// Tree

void QLX_RawPropertyContainer::AddChild(std::unique_ptr<QLX_RawPropertyContainer> child) {
    QLX_RawPropertyContainer* const added = child.release();
    added->mParent = this;
    added->mNextSibling = nullptr;
    mChildrenNumbered = false;
    if (mLastChild) {
        mChildrenSorted = mChildrenSorted && !(added->mName < mLastChild->mName);
        mLastChild->mNextSibling = added;
    } else {
        mFirstChild = added;
    }
    mLastChild = added;
}

std::unique_ptr<QLX_RawPropertyContainer>
QLX_RawPropertyContainer::RemoveChild(QLX_RawPropertyContainer* child) {
    if (!child || child->mParent != this)
        return nullptr;
    QLX_RawPropertyContainer* before = nullptr;
    for (QLX_RawPropertyContainer* at = mFirstChild; at != child; at = at->mNextSibling)
        before = at;
    (before ? before->mNextSibling : mFirstChild) = child->mNextSibling;
    if (mLastChild == child)
        mLastChild = before;
    child->mNextSibling = nullptr;
    child->mParent = nullptr;
    mChildrenNumbered = false;
    return std::unique_ptr<QLX_RawPropertyContainer>(child);
}

/// Brings the chain into the order of names, keeping the order of adding within a name. Children
/// are added in any order and looked at later, so the chain is sorted once instead of kept sorted.
void QLX_RawPropertyContainer::SortChildren() const {
    std::vector<QLX_RawPropertyContainer*> children;
    for (QLX_RawPropertyContainer* child = mFirstChild; child; child = child->mNextSibling)
        children.push_back(child);
    std::stable_sort(children.begin(), children.end(),
                     [](const QLX_RawPropertyContainer* a, const QLX_RawPropertyContainer* b) {
                         return a->mName < b->mName;
                     });
    for (std::size_t i = 0; i < children.size(); ++i)
        children[i]->mNextSibling = i + 1 < children.size() ? children[i + 1] : nullptr;
    mFirstChild = children.front();
    mLastChild = children.back();
    mChildrenSorted = true;
}

QLX_RawPropertyContainer* QLX_RawPropertyContainer::GetFirstChild() const {
    if (!mChildrenSorted)
        SortChildren();
    return mFirstChild;
}

/// The next container of the tree below root, parents before children; null at the end.
QLX_RawPropertyContainer*
QLX_RawPropertyContainer::NextInTree(const QLX_RawPropertyContainer* root) const {
    if (QLX_RawPropertyContainer* const child = GetFirstChild())
        return child;
    for (const QLX_RawPropertyContainer* node = this; node != root; node = node->mParent)
        if (node->mNextSibling)
            return node->mNextSibling;
    return nullptr;
}

std::size_t QLX_RawPropertyContainer::CountChildren() const {
    std::size_t count = 0;
    for (const QLX_RawPropertyContainer* child = mFirstChild; child; child = child->mNextSibling)
        ++count;
    return count;
}

std::vector<QLX_RawPropertyContainer*> QLX_RawPropertyContainer::GetChildren() const {
    std::vector<QLX_RawPropertyContainer*> children;
    for (QLX_RawPropertyContainer* child = GetFirstChild(); child; child = child->mNextSibling)
        children.push_back(child);
    return children;
}

std::vector<QLX_RawPropertyContainer*>
QLX_RawPropertyContainer::GetChildren(std::string_view name) const {
    std::vector<QLX_RawPropertyContainer*> children;
    for (QLX_RawPropertyContainer* child = GetFirstChild(); child; child = child->mNextSibling)
        if (child->mName == name)
            children.push_back(child);
    return children;
}

/// All of them at once: asking each for its path takes the time of one walk, not of one for each.
void QLX_RawPropertyContainer::NumberChildren() const {
    if (mChildrenNumbered)
        return;
    const QLX_RawPropertyContainer* before = nullptr;
    for (const QLX_RawPropertyContainer* child = GetFirstChild(); child;
         child = child->mNextSibling) {
        child->mOrdinal = before && before->mName == child->mName ? before->mOrdinal + 1 : 1;
        before = child;
    }
    mChildrenNumbered = true;
}

std::string QLX_RawPropertyContainer::GetPath() const {
    std::string path;
    for (const QLX_RawPropertyContainer* node = this; node; node = node->mParent) {
        std::string step = node->mName;
        if (node->mParent) {
            node->mParent->NumberChildren();
            const QLX_RawPropertyContainer* const next = node->mNextSibling;
            if (node->mOrdinal > 1 || (next && next->mName == node->mName))
                step += "[" + std::to_string(node->mOrdinal) + "]";
            step.insert(0, 1, '/');
        }
        path.insert(0, step);
        if (path.size() > kLongestPath)
            return "..." + path.substr(path.size() - kLongestPath);
    }
    return path;
}

namespace {
/// The number in the brackets at a step's end, which are taken off; 1 without brackets.
std::uint32_t TakeOrdinal(std::string_view& step) {
    const std::size_t bracket = step.rfind('[');
    if (bracket == std::string_view::npos || step.back() != ']')
        return 1;
    std::uint32_t ordinal = 0;
    for (const char c : step.substr(bracket + 1, step.size() - bracket - 2)) {
        if (c < '0' || c > '9' || ordinal > 100'000'000)
            return 0;
        ordinal = ordinal * 10 + static_cast<std::uint32_t>(c - '0');
    }
    step = step.substr(0, bracket);
    return ordinal;
}
} // namespace

const QLX_RawPropertyContainer* QLX_RawPropertyContainer::FindByPath(std::string_view path) const {
    const auto takeStep = [&path] {
        const std::size_t slash = std::min(path.find('/'), path.size());
        const std::string_view step = path.substr(0, slash);
        path.remove_prefix(std::min(slash + 1, path.size()));
        return step;
    };
    if (takeStep() != mName)
        return nullptr;
    const QLX_RawPropertyContainer* found = this;
    while (found && !path.empty()) {
        std::string_view step = takeStep();
        const std::uint32_t ordinal = TakeOrdinal(step);
        found->NumberChildren();
        const QLX_RawPropertyContainer* child = found->GetFirstChild();
        while (child && (child->mOrdinal != ordinal || child->mName != step))
            child = child->mNextSibling;
        found = child;
    }
    return found;
}

// Verification

bool QLX_RawPropertyContainer::VerifyRequiredWellKnownProperty(
    const std::string& property, QLX_PropertyType type, std::list<std::string>& messages) const {
    for (const auto& stored : mFilterPropertyMap) {
        QLX_PropertyView value;
        if (!stored.second.Find(type, property, value))
            continue;
        const bool isIdentifier = type == qlx_PropType_IDType;
        if (isIdentifier ? value.mInteger != 0 : !value.mText.empty())
            return true;
    }
    messages.push_back("path: \"" + GetPath() + "\": required property \"" + property +
                       "\" missing or no value.");
    return false;
}

void QLX_RawPropertyContainer::VerifyWellKnownProperties(std::list<std::string>& messages) const {
    VerifyWellKnownProperties(messages, static_cast<std::size_t>(-1));
}

std::size_t QLX_RawPropertyContainer::VerifyWellKnownProperties(std::list<std::string>& messages,
                                                                std::size_t most) const {
    std::size_t count = 0;
    const auto& known = QLX_SourceViewFormat::GetWellKnownProperties();
    for (const QLX_RawPropertyContainer* node = this; node; node = node->NextInTree(this)) {
        const auto element = known.find(node->mName);
        if (element == known.end())
            continue;
        std::list<std::string> found;
        for (const QLX_WellKnownProperty& property : element->second) {
            if (property.mRequired)
                node->VerifyRequiredWellKnownProperty(property.mName, property.mType, found);
            for (const auto& stored : node->mFilterPropertyMap)
                for (int type = 1; type < kQLX_PropertyTypeCount; ++type)
                    if (type != property.mType &&
                        stored.second.HasProperty(static_cast<QLX_PropertyType>(type),
                                                  property.mName))
                        found.push_back("path: \"" + node->GetPath() + "\": property \"" +
                                        property.mName + "\" unsupported property type");
        }
        count += found.size();
        if (count <= most)
            messages.splice(messages.end(), found);
    }
    return count;
}

QLX_RawPropertyContainerFactory::~QLX_RawPropertyContainerFactory() = default;

QLX_RawPropertyContainer* QLX_RawPropertyContainerFactory::MakeContainer(const std::string& name) {
    return new QLX_RawPropertyContainer(name);
}

// Memento

QLX_ViewMemento::QLX_ViewMemento(QLX_RawPropertyContainer* root, const std::string& name)
    : mRoot(root), mName(name) {}
QLX_ViewMemento::~QLX_ViewMemento() = default;

std::string QLX_ViewMemento::GetLocalizedStringProperty(QLX_Language::ELanguage language,
                                                        const std::string& key) const {
    const auto table = mStringTables.find(language);
    if (table == mStringTables.end())
        return {};
    const auto entry = table->second.find(key);
    return entry == table->second.end() ? std::string() : entry->second.mLocalized;
}

std::string QLX_ViewMemento::GetLocalizedStringProperty(QLX_RawPropertyContainer* container,
                                                        const std::string& name) const {
    std::string key;
    if (!container->GetStringKeyProperty(name, key))
        return {};
    return GetLocalizedStringProperty(container->GetCurrentFilter().GetLanguage(), key);
}

void QLX_ViewMemento::TrimForLanguage() {
    const QLX_Language::ELanguage language = QLX_Language::GetCurrentLanguage();
    for (auto table = mStringTables.begin(); table != mStringTables.end();)
        table = table->first == QLX_Language::English || table->first == language
                    ? std::next(table)
                    : mStringTables.erase(table);
    mRoot->TrimForLanguage();
}
