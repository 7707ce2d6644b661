#include "qlx/persistence/qlx_propertyfilter.h"

#include <utility>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_internal.h"

namespace {
const std::string& Name(std::size_t index) {
    static const std::string names[FILTER_HIERARCHY_SIZE] = {"Layout", "Language"};
    return names[index];
}
constexpr std::size_t kLayout = 0;
constexpr std::size_t kLanguage = 1;
} // namespace

const std::string& QLX_GetFilterHierarchyName(std::size_t index) { return Name(index); }

/// The map and who shares it. Once a reference into the map was handed out it is nobody else's any
/// more: copies then take a map of their own, so that a later write through it stays here.
struct QLX_PropertyFilter::Shared {
    explicit Shared(std::map<std::string, std::string> attributes)
        : mAttrMap(std::move(attributes)) {
        for (std::size_t i = 0; i < FILTER_HIERARCHY_SIZE; ++i) {
            const auto found = mAttrMap.find(Name(i));
            mValues[i] = found == mAttrMap.end() ? nullptr : &found->second;
        }
        mIsPlain =
            mValues[kLayout] && mValues[kLanguage] && mAttrMap.size() == FILTER_HIERARCHY_SIZE;
    }
    int mReferences = 1;
    bool mMayBeShared = true;
    bool mIsPlain; // has the hierarchy's attributes and no others
    std::map<std::string, std::string> mAttrMap;
    const std::string* mValues[FILTER_HIERARCHY_SIZE]; // in the map; null where there is none

    Shared* Share() {
        if (!mMayBeShared)
            return new Shared(mAttrMap);
        ++mReferences;
        return this;
    }
    [[nodiscard]] bool HasMapBefore(const Shared& other) const noexcept;
    static void Release(Shared* shared) {
        if (shared && --shared->mReferences == 0)
            delete shared;
    }
};

namespace {
std::map<std::string, std::string> MakeMap(const std::string& layout, const std::string& language) {
    return {{Name(kLayout), layout}, {Name(kLanguage), language}};
}

QLX_PropertyFilter& DefaultFilterVariable() {
    static QLX_PropertyFilter filter =
        QLX_PropertyFilter::MakeFilter(std::string(), QLX_Language::GetCurrentLanguage());
    return filter;
}
} // namespace

QLX_PropertyFilter::QLX_PropertyFilter() : mShared(nullptr) {
    // The default filter is what this would build; sharing its map saves that.
    mShared = DefaultFilterVariable().mShared->Share();
}

QLX_PropertyFilter::QLX_PropertyFilter(const std::map<std::string, std::string>& attributes)
    : mShared(new Shared(attributes)) {
    if (attributes.size() != FILTER_HIERARCHY_SIZE)
        Cmn_Assert("mAttrMap.size() == FILTER_HIERARCHY_SIZE", __FILE__, __LINE__);
}

QLX_PropertyFilter::QLX_PropertyFilter(const QLX_PropertyFilter& other)
    : mShared(other.mShared->Share()) {}
QLX_PropertyFilter::QLX_PropertyFilter(QLX_PropertyFilter&& other) noexcept
    : mShared(std::exchange(other.mShared, nullptr)) {}

QLX_PropertyFilter& QLX_PropertyFilter::operator=(const QLX_PropertyFilter& other) {
    if (this != &other && mShared != other.mShared) {
        Shared* const shared = other.mShared->Share();
        Shared::Release(std::exchange(mShared, shared));
    }
    return *this;
}

QLX_PropertyFilter& QLX_PropertyFilter::operator=(QLX_PropertyFilter&& other) noexcept {
    std::swap(mShared, other.mShared);
    return *this;
}

QLX_PropertyFilter::~QLX_PropertyFilter() { Shared::Release(mShared); }

void QLX_PropertyFilter::Unshare() {
    if (mShared->mReferences == 1)
        return;
    Shared* const own = new Shared(mShared->mAttrMap);
    Shared::Release(std::exchange(mShared, own));
}

QLX_PropertyFilter QLX_PropertyFilter::MakeFilter(const std::string& layout) {
    if (layout.empty())
        return QLX_PropertyFilter();
    return MakeFilter(layout, QLX_Language::GetCurrentLanguage());
}

QLX_PropertyFilter QLX_PropertyFilter::MakeFilter(const std::string& layout,
                                                  QLX_Language::ELanguage language) {
    if (layout.empty() && language == QLX_Language::English)
        return RootFilter(); // one map for it: most comparisons of filters then end at once
    return QLX_PropertyFilter(MakeMap(layout, QLX_Language::EnumToString(language)));
}

const QLX_PropertyFilter& QLX_PropertyFilter::RootFilter() {
    static const QLX_PropertyFilter filter(MakeMap(std::string(), std::string()));
    return filter;
}

const QLX_PropertyFilter& QLX_PropertyFilter::DefaultFilter() { return DefaultFilterVariable(); }

void QLX_PropertyFilter::UpdateDefaultFilter() {
    DefaultFilterVariable() = MakeFilter(std::string(), QLX_Language::GetCurrentLanguage());
}

bool QLX_PropertyFilter::HasParent() const {
    for (std::size_t i = 0; i < FILTER_HIERARCHY_SIZE; ++i) {
        const auto found = mShared->mAttrMap.find(Name(i));
        if (found != mShared->mAttrMap.end() && !found->second.empty())
            return true;
    }
    return false;
}

QLX_PropertyFilter QLX_PropertyFilter::GetParent() const {
    CMN_ASSERT(HasParent());
    for (std::size_t i = FILTER_HIERARCHY_SIZE; i-- > 0;) {
        const auto found = mShared->mAttrMap.find(Name(i));
        if (found == mShared->mAttrMap.end() || found->second.empty())
            continue;
        QLX_PropertyFilter parent(*this);
        parent.Unshare();
        parent.mShared->mAttrMap[Name(i)].clear();
        return parent == RootFilter() ? RootFilter() : parent;
    }
    return DefaultFilter();
}

void QLX_PropertyFilter::GetParentList(std::list<QLX_PropertyFilter>& out,
                                       std::list<QLX_PropertyFilter>& in, bool includeSelf) {
    const std::list<QLX_PropertyFilter>& inputList = in;
    CMN_ASSERT(inputList.size() == 1);
    out.clear();
    if (inputList.empty())
        return;
    QLX_PropertyFilter filter = inputList.front();
    if (includeSelf)
        out.push_front(filter);
    while (filter.HasParent()) {
        filter = filter.GetParent();
        out.push_front(filter);
    }
    // A filter with further attributes keeps them on its way up; its chain still starts at the
    // root.
    if (filter != RootFilter())
        out.push_front(RootFilter());
}

QLX_Language::ELanguage QLX_PropertyFilter::GetLanguage() const {
    return QLX_Language::StringToEnum((*this)[Name(kLanguage)]);
}

std::string QLX_PropertyFilter::operator[](const std::string& attribute) const {
    const auto found = mShared->mAttrMap.find(attribute);
    return found == mShared->mAttrMap.end() ? std::string() : found->second;
}

std::string& QLX_PropertyFilter::operator[](const std::string& attribute) {
    Unshare();
    mShared->mMayBeShared = false;
    mShared->mIsPlain = false; // the attribute may be a new one
    return mShared->mAttrMap[attribute];
}

const std::map<std::string, std::string>& QLX_PropertyFilter::GetAttributes() const noexcept {
    return mShared->mAttrMap;
}

namespace {
/// As compare, without a call where one is empty, as most values are.
inline int Compare(const std::string& a, const std::string& b) noexcept {
    if (!a.empty() && !b.empty())
        return a.compare(b);
    return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}
} // namespace

QLX_STANDS_ALONE bool QLX_PropertyFilter::Shared::HasMapBefore(const Shared& other) const noexcept {
    return mAttrMap < other.mAttrMap;
}

/// The order of the maps, in which "Language" comes before "Layout".
bool QLX_PropertyFilter::IsBefore(const QLX_PropertyFilter& other) const noexcept {
    const Shared& mine = *mShared;
    const Shared& theirs = *other.mShared;
    if (!mine.mIsPlain || !theirs.mIsPlain)
        return mine.HasMapBefore(theirs);
    const int order = Compare(*mine.mValues[kLanguage], *theirs.mValues[kLanguage]);
    return order != 0 ? order < 0 : Compare(*mine.mValues[kLayout], *theirs.mValues[kLayout]) < 0;
}

std::string QLX_PropertyFilter::ToString() const {
    std::string text;
    const auto append = [&text](const std::string& name, const std::string& value) {
        if (!text.empty())
            text += ' ';
        text += name + "=" + value;
    };
    for (std::size_t i = 0; i < FILTER_HIERARCHY_SIZE; ++i)
        append(Name(i), (*this)[Name(i)]);
    for (const auto& [name, value] : mShared->mAttrMap)
        if (name != Name(kLayout) && name != Name(kLanguage))
            append(name, value);
    return text;
}
