// Filters: under which layout and language a property value is stored.
#pragma once

#include <cstddef>
#include <list>
#include <map>
#include <string>

#include "qlx/persistence/qlx_language.h"

/// How many attributes the hierarchy of filters has.
inline constexpr std::size_t FILTER_HIERARCHY_SIZE = 2;

/// The attributes' names, most general first: "Layout", "Language".
[[nodiscard]] QLX_API const std::string& QLX_GetFilterHierarchyName(std::size_t index);

/// A value for each attribute of the hierarchy; an empty one means the common layout, or English.
/// A value class; copies share one map until one of them is changed. User-interface thread.
class QLX_API QLX_PropertyFilter {
  public:
    /// The common layout and the current language.
    QLX_PropertyFilter();
    /// Takes the map as it is; a map of another size raises the assertion
    /// "mAttrMap.size() == FILTER_HIERARCHY_SIZE".
    explicit QLX_PropertyFilter(const std::map<std::string, std::string>& attributes);
    QLX_PropertyFilter(const QLX_PropertyFilter& other);
    QLX_PropertyFilter(QLX_PropertyFilter&& other) noexcept;
    QLX_PropertyFilter& operator=(const QLX_PropertyFilter& other);
    QLX_PropertyFilter& operator=(QLX_PropertyFilter&& other) noexcept;
    ~QLX_PropertyFilter();

    /// The layout and the current language; with an empty layout a default-constructed filter.
    [[nodiscard]] static QLX_PropertyFilter MakeFilter(const std::string& layout);
    /// A layout and a language.
    [[nodiscard]] static QLX_PropertyFilter MakeFilter(const std::string& layout,
                                                       QLX_Language::ELanguage language);
    /// The filter whose attributes are all empty, at the start of every chain.
    [[nodiscard]] static const QLX_PropertyFilter& RootFilter();
    /// One filter for the process: the common layout and the current language.
    [[nodiscard]] static const QLX_PropertyFilter& DefaultFilter();
    /// Takes over the current language; QLX_Language calls it.
    static void UpdateDefaultFilter();

    /// Whether any attribute of the hierarchy has a value.
    [[nodiscard]] bool HasParent() const;
    /// This filter with its most specific value emptied (language before layout). Without a parent
    /// it raises the assertion "HasParent()" and answers the default filter.
    [[nodiscard]] QLX_PropertyFilter GetParent() const;
    /// Puts into out the chain of the one filter in the list in: root first, each followed by a
    /// more specific one. The filter itself ends the chain when includeSelf is set. A list of
    /// another size raises the assertion "inputList.size() == 1"; an empty one leaves out empty.
    static void GetParentList(std::list<QLX_PropertyFilter>& out, std::list<QLX_PropertyFilter>& in,
                              bool includeSelf);
    /// The language of the "Language" attribute; an unknown code raises an assertion and is
    /// English.
    [[nodiscard]] QLX_Language::ELanguage GetLanguage() const;

    /// The attribute's value; empty when there is no such attribute.
    [[nodiscard]] std::string operator[](const std::string& attribute) const;
    /// Inserts the attribute when there is none.
    std::string& operator[](const std::string& attribute);
    [[nodiscard]] const std::map<std::string, std::string>& GetAttributes() const noexcept;

    /// Whether both share one map: equal without a comparison.
    [[nodiscard]] bool SharesMapWith(const QLX_PropertyFilter& other) const noexcept {
        return mShared == other.mShared;
    }
    friend bool operator==(const QLX_PropertyFilter& a, const QLX_PropertyFilter& b) {
        return a.mShared == b.mShared || a.GetAttributes() == b.GetAttributes();
    }
    friend bool operator!=(const QLX_PropertyFilter& a, const QLX_PropertyFilter& b) {
        return !(a == b);
    }
    friend bool operator<(const QLX_PropertyFilter& a, const QLX_PropertyFilter& b) {
        return a.mShared != b.mShared && a.IsBefore(b);
    }

    /// "Layout=... Language=..." for diagnostics, then attributes that are not the hierarchy's.
    [[nodiscard]] std::string ToString() const;

  private:
    struct Shared;
    void Unshare();
    [[nodiscard]] bool IsBefore(const QLX_PropertyFilter& other) const noexcept;

    Shared* mShared; // counted, never null but in a moved-from filter
};
