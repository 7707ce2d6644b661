// The tree that a view description is read into: containers with one property set a filter, and the
// memento that keeps a whole description with its string tables.
#pragma once

#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "basekit/cmn/cmn_internal.h"
#include "basekit/cmn/cmn_refcount.h"
#include "qlx/foundation/qlx_fwd.h"
#include "qlx/persistence/qlx_language.h"
#include "qlx/persistence/qlx_propertyfilter.h"
#include "qlx/persistence/qlx_propertyset.h"

/// One call of a container's getter, as a listener hears of it.
struct QLX_PropertyRead {
    const QLX_RawPropertyContainer* mContainer;
    std::string_view mName;
    QLX_PropertyType mType; ///< the type that was asked for
    bool mFound;
    std::string mText; ///< the caller's value after the call: the stored one, or its own default
};

/// Hears what the getters of containers are asked for, so that tools learn which properties a class
/// reads, with their types and defaults.
class QLX_API QLX_PropertyReadListener {
  public:
    virtual ~QLX_PropertyReadListener();
    virtual void PropertyRead(const QLX_PropertyRead& read) = 0;

    /// Installs a listener, not owned, for all containers; null switches off. Answers the previous
    /// one. Off, a getter pays one load and one test.
    static QLX_PropertyReadListener* SetListener(QLX_PropertyReadListener* listener);
};

/// A node of the property tree: a name, property sets by filter, child containers that it owns.
/// Look-ups read the set that is current, which overlays the values of the current filter's chain.
///
/// Children are grouped by name, groups in the order of their names, and within a group in the
/// order of adding. User-interface thread.
class QLX_API QLX_RawPropertyContainer {
  public:
    QLX_RawPropertyContainer();
    explicit QLX_RawPropertyContainer(const std::string& name);
    QLX_RawPropertyContainer(const QLX_RawPropertyContainer&) = delete;
    QLX_RawPropertyContainer& operator=(const QLX_RawPropertyContainer&) = delete;

    // Slot order is part of the binary interface: append, never move.
    // A store into a frozen container raises the assertion "!mPropertiesFrozen" and is done all the
    // same. What is stored becomes visible when a filter is selected anew.
    virtual ~QLX_RawPropertyContainer();
    virtual void SetBoolProperty(const std::string& name, bool value,
                                 const QLX_PropertyFilter& filter);
    virtual void SetInt32Property(const std::string& name, std::int32_t value,
                                  const QLX_PropertyFilter& filter);
    virtual void SetInt64Property(const std::string& name, std::int64_t value,
                                  const QLX_PropertyFilter& filter);
    virtual void SetIDTypeProperty(const std::string& name, std::uint32_t value,
                                   const QLX_PropertyFilter& filter);
    virtual void SetStringProperty(const std::string& name, const std::string& value,
                                   const QLX_PropertyFilter& filter);
    virtual void SetStringKeyProperty(const std::string& name, const std::string& key,
                                      const QLX_PropertyFilter& filter);
    virtual void SetColorProperty(const std::string& name, const CRGBColor& value,
                                  const QLX_PropertyFilter& filter);
    virtual void SetPointProperty(const std::string& name, const VPoint& value,
                                  const QLX_PropertyFilter& filter);
    virtual void SetRectProperty(const std::string& name, const VRect& value,
                                 const QLX_PropertyFilter& filter);
    /// For good, and for all children.
    virtual void FreezeProperties();
    /// Parses the text and calls the setter of the type. An unknown type name raises two assertions
    /// and stores nothing.
    virtual void SetProperty(const std::string& name, const std::string& typeName,
                             const std::string& valueText, const QLX_PropertyFilter& filter);

    // Look-ups in the current set: true and the value, or false and the output untouched. A filter
    // has to be current; otherwise the assertion "mHasCurrentSet" is raised and nothing is found.
    // Those of scalars are compiled into the code that calls them: a window asks for hundreds.
    QLX_API_INLINE bool GetBoolProperty(std::string_view name, bool& value) const;
    QLX_API_INLINE bool GetInt32Property(std::string_view name, std::int32_t& value) const;
    QLX_API_INLINE bool GetInt32Property(std::string_view name, std::int64_t& value) const;
    QLX_API_INLINE bool GetInt64Property(std::string_view name, std::int64_t& value) const;
    QLX_API_INLINE bool GetIDTypeProperty(std::string_view name, std::uint32_t& value) const;
    bool GetStringProperty(std::string_view name, std::string& value) const;
    bool GetStringKeyProperty(std::string_view name, std::string& value) const;
    bool GetColorProperty(std::string_view name, CRGBColor& value) const;
    bool GetPointProperty(std::string_view name, VPoint& value) const;
    bool GetRectProperty(std::string_view name, VRect& value) const;

    // Filters

    /// On a container named "viewhierarchy" it leaves a marker in the filter's set, so that a
    /// filter without values is written and listed too; elsewhere, and for the default filter,
    /// nothing.
    void AddFilter(const QLX_PropertyFilter& filter);
    /// Selects the filter whose chain look-ups see, here and in all children. "Default" as the
    /// layout is the common one. The filter that is current already is not selected anew.
    void SetCurrentFilter(QLX_PropertyFilter filter);
    [[nodiscard]] const QLX_PropertyFilter& GetCurrentFilter() const { return mCurrentFilter; }
    [[nodiscard]] bool HasCurrentSet() const { return mHasCurrentSet; }
    /// The set that look-ups read; empty before a filter is current.
    [[nodiscard]] const QLX_PropertySet& GetCurrentSet() const { return mCurrentSet; }
    /// The set stored under one filter becomes a copy of the one under another, here and in all
    /// children; what was stored under to is gone.
    void CopyFilterProperties(const QLX_PropertyFilter& from, const QLX_PropertyFilter& to);
    /// The sets as stored, not merged.
    [[nodiscard]] std::map<QLX_PropertyFilter, QLX_PropertySet>& GetFilterPropertyMap() {
        return mFilterPropertyMap;
    }
    [[nodiscard]] const std::map<QLX_PropertyFilter, QLX_PropertySet>&
    GetFilterPropertyMap() const {
        return mFilterPropertyMap;
    }
    /// The non-empty attribute values of all filters stored here and in all children: the layouts
    /// and languages that a description provides.
    [[nodiscard]] std::set<std::string> GetFilterValues() const;
    /// Drops what is stored for languages other than English and the current one, here and in all
    /// children. The current language is to be the one that was selected.
    void TrimForLanguage();
    [[nodiscard]] bool IsFrozen() const { return mPropertiesFrozen; }

    // Tree

    [[nodiscard]] const std::string& GetName() const { return mName; }
    /// Null for a root.
    [[nodiscard]] QLX_RawPropertyContainer* GetParent() const { return mParent; }
    /// Takes the child over and puts it behind the children of its name.
    void AddChild(std::unique_ptr<QLX_RawPropertyContainer> child);
    /// Hands a child back; null when it is none.
    std::unique_ptr<QLX_RawPropertyContainer> RemoveChild(QLX_RawPropertyContainer* child);
    [[nodiscard]] std::size_t CountChildren() const;
    /// The first child; the others follow by GetNextSibling. Null when there is none.
    [[nodiscard]] QLX_RawPropertyContainer* GetFirstChild() const;
    [[nodiscard]] QLX_RawPropertyContainer* GetNextSibling() const { return mNextSibling; }
    [[nodiscard]] std::vector<QLX_RawPropertyContainer*> GetChildren() const;
    /// Those of one name.
    [[nodiscard]] std::vector<QLX_RawPropertyContainer*> GetChildren(std::string_view name) const;
    /// Names from the root, separated by '/', each with its place among siblings of one name, from
    /// 1, in brackets when there are several: "viewhierarchy/view[2]/behavior". Of a path that is
    /// longer than any file of a person's, the last kLongestPath bytes after "...".
    [[nodiscard]] std::string GetPath() const;
    static constexpr std::size_t kLongestPath = 4096;
    /// The container that GetPath tells so, this one or one inside it, where this is the root; null
    /// when there is none.
    [[nodiscard]] const QLX_RawPropertyContainer* FindByPath(std::string_view path) const;

    // Verification

    /// Appends a message for each well-known property, here and in all children, that is required
    /// and absent or empty, or stored with another type than its own.
    void VerifyWellKnownProperties(std::list<std::string>& messages) const;
    /// Adds no more than so many and answers how many there would be.
    std::size_t VerifyWellKnownProperties(std::list<std::string>& messages, std::size_t most) const;
    /// The first half of it for one property of this container; true when all is well.
    bool VerifyRequiredWellKnownProperty(const std::string& property, QLX_PropertyType type,
                                         std::list<std::string>& messages) const;

  protected:
    void SetCurrentFilterImpl(const QLX_PropertyFilter& filter);
    void CopyFilterPropertiesImpl(const QLX_PropertyFilter& from, const QLX_PropertyFilter& to);
    void MergePropertySetsForFilter();

  private:
    friend class QLX_XMLParser;
    friend class QLX_BinaryViewFormat;
    struct MergedSet {
        QLX_PropertyFilter mFilter;
        QLX_PropertySet mSet;
    };

    template <class Value>
    using SetGetter = bool (QLX_PropertySet::*)(std::string_view, Value&) const;
    template <QLX_PropertyType kType, class Value>
    [[nodiscard]] QLX_PropertyBytes::Answer LookUp(std::string_view name, Value& value) const;
    // The getters of the same names as calls into the library, for what is not looked up in place.
    bool CallBool(std::string_view name, bool& value) const;
    bool CallInt32(std::string_view name, std::int32_t& value) const;
    bool CallInt32(std::string_view name, std::int64_t& value) const;
    bool CallInt64(std::string_view name, std::int64_t& value) const;
    bool CallIDType(std::string_view name, std::uint32_t& value) const;
    template <class Value, SetGetter<Value> kGet>
    bool GetListenedTo(std::string_view name, QLX_PropertyType type, Value& value) const;
    void CheckNotFrozen() const;
    void SelectHere(const QLX_PropertyFilter& filter);
    [[nodiscard]] MergedSet* FindMerged(const QLX_PropertyFilter& filter);
    void SortChildren() const;
    void NumberChildren() const;
    [[nodiscard]] QLX_RawPropertyContainer* NextInTree(const QLX_RawPropertyContainer* root) const;

    std::string mName;
    // The children as a chain, sorted by name when first looked at after one came out of order.
    mutable QLX_RawPropertyContainer* mFirstChild = nullptr;  // owned
    mutable QLX_RawPropertyContainer* mLastChild = nullptr;   // owned
    mutable QLX_RawPropertyContainer* mNextSibling = nullptr; // owned by the parent
    QLX_RawPropertyContainer* mParent = nullptr;              // not owned
    mutable bool mChildrenSorted = true;
    bool mPropertiesFrozen = false;
    bool mHasCurrentSet = false;
    mutable bool mChildrenNumbered = false; // whether the children's mOrdinal is right
    mutable std::uint32_t mOrdinal = 0;     // from 1, among siblings of the same name
    QLX_PropertyFilter mCurrentFilter;
    QLX_PropertySet mCurrentSet; // shares its memory with one of mMergedSets
    std::map<QLX_PropertyFilter, QLX_PropertySet> mFilterPropertyMap;
    std::vector<MergedSet> mMergedSets; // one a filter that was made current
};

/// Null while nobody listens; not owned. Set by QLX_PropertyReadListener::SetListener alone.
extern QLX_API QLX_PropertyReadListener* gQLX_ReadListener;

template <QLX_PropertyType kType, class Value>
QLX_MERGED inline QLX_PropertyBytes::Answer QLX_RawPropertyContainer::LookUp(std::string_view name,
                                                                             Value& value) const {
    // A set without memory is empty, or none is current.
    if (!mCurrentSet.mBlock || gQLX_ReadListener) [[unlikely]]
        return QLX_PropertyBytes::Answer::kAskLibrary;
    return QLX_PropertyBytes::LookUp<kType>(*mCurrentSet.mBlock, name, value);
}

QLX_MERGED inline bool QLX_RawPropertyContainer::GetBoolProperty(std::string_view name,
                                                                 bool& value) const {
    const auto answer = LookUp<qlx_PropType_Bool>(name, value);
    if (answer == QLX_PropertyBytes::Answer::kAskLibrary) [[unlikely]]
        return CallBool(name, value);
    return answer == QLX_PropertyBytes::Answer::kFound;
}

QLX_MERGED inline bool QLX_RawPropertyContainer::GetInt32Property(std::string_view name,
                                                                  std::int32_t& value) const {
    const auto answer = LookUp<qlx_PropType_Int32>(name, value);
    if (answer == QLX_PropertyBytes::Answer::kAskLibrary) [[unlikely]]
        return CallInt32(name, value);
    return answer == QLX_PropertyBytes::Answer::kFound;
}

QLX_MERGED inline bool QLX_RawPropertyContainer::GetInt32Property(std::string_view name,
                                                                  std::int64_t& value) const {
    const auto answer = LookUp<qlx_PropType_Int32>(name, value);
    if (answer == QLX_PropertyBytes::Answer::kAskLibrary) [[unlikely]]
        return CallInt32(name, value);
    return answer == QLX_PropertyBytes::Answer::kFound;
}

QLX_MERGED inline bool QLX_RawPropertyContainer::GetInt64Property(std::string_view name,
                                                                  std::int64_t& value) const {
    const auto answer = LookUp<qlx_PropType_Int64>(name, value);
    if (answer == QLX_PropertyBytes::Answer::kAskLibrary) [[unlikely]]
        return CallInt64(name, value);
    return answer == QLX_PropertyBytes::Answer::kFound;
}

QLX_MERGED inline bool QLX_RawPropertyContainer::GetIDTypeProperty(std::string_view name,
                                                                   std::uint32_t& value) const {
    const auto answer = LookUp<qlx_PropType_IDType>(name, value);
    if (answer == QLX_PropertyBytes::Answer::kAskLibrary) [[unlikely]]
        return CallIDType(name, value);
    return answer == QLX_PropertyBytes::Answer::kFound;
}

/// Makes the containers that readers fill; a host derives from it to have its own class made.
class QLX_API QLX_RawPropertyContainerFactory {
  public:
    virtual ~QLX_RawPropertyContainerFactory();
    /// A new container of that name, which the caller owns.
    [[nodiscard]] virtual QLX_RawPropertyContainer* MakeContainer(const std::string& name);
};

/// One key of a string table.
struct QLX_StringTableEntry {
    std::string mSource;    ///< what was translated; empty when the table does not say
    std::string mLocalized; ///< what the user reads
    friend bool operator==(const QLX_StringTableEntry&, const QLX_StringTableEntry&) = default;
};
using QLX_StringTable = std::map<std::string, QLX_StringTableEntry>;

/// A whole view description: the root container, which it owns, and the string tables by language.
class QLX_API QLX_ViewMemento : public Cmn_RefCountObject {
  public:
    using StringTables = std::map<QLX_Language::ELanguage, QLX_StringTable>;

    /// Takes the root over.
    QLX_ViewMemento(QLX_RawPropertyContainer* root, const std::string& name);
    ~QLX_ViewMemento() override;
    QLX_ViewMemento(const QLX_ViewMemento&) = delete;
    QLX_ViewMemento& operator=(const QLX_ViewMemento&) = delete;

    [[nodiscard]] QLX_RawPropertyContainer* GetRoot() const { return mRoot.get(); }
    [[nodiscard]] const std::string& GetName() const { return mName; }
    /// The folder of the file that it was read from, in which the files lie that it names; empty
    /// when it came from elsewhere.
    [[nodiscard]] const std::string& GetFolder() const { return mFolder; }
    void SetFolder(const std::string& folder) { mFolder = folder; }
    [[nodiscard]] StringTables& GetStringTables() { return mStringTables; }
    [[nodiscard]] const StringTables& GetStringTables() const { return mStringTables; }

    /// The localised text of a key in one language's table; empty when the table or the key is
    /// missing.
    [[nodiscard]] std::string GetLocalizedStringProperty(QLX_Language::ELanguage language,
                                                         const std::string& key) const;
    /// The localised text of a container's string-key property, in the language that the container
    /// has selected; empty when there is no such property.
    [[nodiscard]] std::string GetLocalizedStringProperty(QLX_RawPropertyContainer* container,
                                                         const std::string& name) const;
    /// Drops the tables and the properties of languages other than English and the current one.
    void TrimForLanguage();

  private:
    std::unique_ptr<QLX_RawPropertyContainer> mRoot;
    std::string mName;
    StringTables mStringTables;
    std::string mFolder;
};
