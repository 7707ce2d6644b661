// A table of named, typed values: what a container answers look-ups from.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "qlx/persistence/qlx_propertyblock.h"

class QLX_NodePool;
class Sys_TypedInStream;
class Sys_TypedOutStream;

/// A look at one value of a set; valid until the set changes or goes. Only the member that the type
/// names is set.
struct QLX_PropertyView {
    std::string_view mName;
    QLX_PropertyType mType = qlx_PropType_None;
    std::int64_t mInteger = 0; ///< bool, int32, int64, idtype
    std::string_view mText;    ///< string, string key
    CRGBColor mColor;
    VPoint mPoint;
    VRect mRect;
};

/// Named values of all nine types. A name may stand under several types at once; a look-up names
/// both, and there is no conversion between them. Names are bytes, compared exactly.
///
/// All values lie in one block of memory that copies of the set share until one of them is changed,
/// so copying a set costs a count and a set without values costs no memory. User-interface thread.
class QLX_API QLX_PropertySet {
  public:
    QLX_PropertySet() noexcept = default;
    QLX_PropertySet(const QLX_PropertySet& other) noexcept;
    QLX_PropertySet(QLX_PropertySet&& other) noexcept;
    QLX_PropertySet& operator=(const QLX_PropertySet& other) noexcept;
    QLX_PropertySet& operator=(QLX_PropertySet&& other) noexcept;
    virtual ~QLX_PropertySet();

    // Look-ups: true and the value, or false and the output untouched, so that a caller's default
    // stands. None allocates, but for the text that a string look-up hands out.
    bool GetBoolProperty(std::string_view name, bool& value) const;
    bool GetInt32Property(std::string_view name, std::int32_t& value) const;
    /// Reads the int32 values and widens; never the int64 values.
    bool GetInt32Property(std::string_view name, std::int64_t& value) const;
    bool GetInt64Property(std::string_view name, std::int64_t& value) const;
    bool GetIDTypeProperty(std::string_view name, std::uint32_t& value) const;
    bool GetStringProperty(std::string_view name, std::string& value) const;
    bool GetStringKeyProperty(std::string_view name, std::string& value) const;
    bool GetColorProperty(std::string_view name, CRGBColor& value) const;
    bool GetPointProperty(std::string_view name, VPoint& value) const;
    bool GetRectProperty(std::string_view name, VRect& value) const;

    // Stores, replacing what has the same type and name.
    void SetBoolProperty(std::string_view name, bool value);
    void SetInt32Property(std::string_view name, std::int32_t value);
    void SetInt64Property(std::string_view name, std::int64_t value);
    void SetIDTypeProperty(std::string_view name, std::uint32_t value);
    void SetStringProperty(std::string_view name, std::string_view value);
    void SetStringKeyProperty(std::string_view name, std::string_view value);
    void SetColorProperty(std::string_view name, const CRGBColor& value);
    void SetPointProperty(std::string_view name, const VPoint& value);
    void SetRectProperty(std::string_view name, const VRect& value);
    /// Parses the text as the type reads it; false, and nothing stored, for type none.
    bool SetFromText(std::string_view name, QLX_PropertyType type, std::string_view text);
    /// Stores a value looked at in this or another set.
    void SetProperty(const QLX_PropertyView& value);

    [[nodiscard]] bool HasProperty(QLX_PropertyType type, std::string_view name) const;
    /// Whether there was one.
    bool RemoveProperty(QLX_PropertyType type, std::string_view name);
    /// Writes every value of another set into this one.
    void Merge(const QLX_PropertySet& over);
    void Clear();

    [[nodiscard]] std::size_t GetCount() const noexcept;
    [[nodiscard]] bool IsEmpty() const noexcept { return GetCount() == 0; }
    /// The values from 0 to GetCount() - 1, in the order in which they were first stored.
    [[nodiscard]] QLX_PropertyView GetAt(std::size_t index) const;
    /// False and the view untouched when there is none.
    bool Find(QLX_PropertyType type, std::string_view name, QLX_PropertyView& view) const;

    /// The same names with the same values, whatever their order.
    friend QLX_API bool operator==(const QLX_PropertySet& a, const QLX_PropertySet& b);
    friend bool operator!=(const QLX_PropertySet& a, const QLX_PropertySet& b) { return !(a == b); }

    /// The set as property elements, a line each: indent tabs, the element with extraAttributes
    /// (which bring their own leading blank) as they are, and lineEnd. Names in excluded are left
    /// out. In sorted mode by name, then type; otherwise by type, then in the order of storing.
    [[nodiscard]] std::string ToXML(const std::string& extraAttributes, int indent,
                                    const char* lineEnd,
                                    const std::set<std::string>& excluded) const;
    using ElementHook = std::function<void(const QLX_PropertyView&)>;
    /// The same into a text that is there already, with the order as an argument. The hooks, when
    /// given, are called before an element's line and between the element and its line's end; they
    /// may append to the text.
    void AppendXML(std::string& out, std::string_view extraAttributes, int indent,
                   const char* lineEnd, const std::set<std::string>& excluded, bool sorted,
                   const ElementHook& before = {}, const ElementHook& behind = {}) const;
    /// For diagnostics: a line "name type value" each, sorted by name.
    [[nodiscard]] std::string ToString() const;
    /// A process-wide switch for ToXML, off at start.
    static void SetSortedXMLMode(bool sorted);
    [[nodiscard]] static bool GetSortedXMLMode();

    /// Nine sections, one a type (bool, int32, int64, idtype, string, string key, colour, point,
    /// rect): type code, count, entries.
    void StreamOut(Sys_TypedOutStream& stream) const;
    /// Adds what StreamOut wrote. A wrong type code raises the assertion "typeInStream == type" and
    /// is read as if right; where the stream ends early it ends too, and the stream knows why.
    void StreamIn(Sys_TypedInStream& stream);

    /// A copy that takes no more memory than its values need; the library's own readers have it in
    /// a pool's memory.
    [[nodiscard]] QLX_PropertySet CopyCompact(QLX_NodePool* pool = nullptr) const;
    /// Whether two sets share one block of memory.
    [[nodiscard]] bool SharesMemoryWith(const QLX_PropertySet& other) const noexcept {
        return mBlock && mBlock == other.mBlock;
    }

  private:
    friend class QLX_RawPropertyContainer; // looks up without a call between
    friend class QLX_PropertySetBuilder;
    using Block = QLX_PropertyBytes::Block;
    using Entry = QLX_PropertyBytes::Entry;
    struct Hold;
    template <QLX_PropertyType kType, class Value>
    bool GetScalar(std::string_view name, Value& value) const;
    static Block* NewBlock(std::size_t capacity, std::size_t dataCapacity, QLX_NodePool* pool);
    static void Release(Block* block) noexcept;
    [[nodiscard]] Entry* FindEntry(QLX_PropertyType type, std::string_view name) const noexcept;
    bool FindText(QLX_PropertyType type, std::string_view name, std::string& value) const;
    [[nodiscard]] Block* CopyBlock(std::size_t capacity, std::size_t dataCapacity,
                                   QLX_NodePool* pool) const;
    void MakeRoom(std::size_t entries, std::size_t bytes, Hold& old);
    void GrowFor(std::size_t entries, std::size_t bytes, Hold& old);
    Entry& Append(const QLX_PropertyBytes::Key& key);
    void StoreScalar(const QLX_PropertyBytes::Key& key, std::uint64_t value);
    void StoreBytes(const QLX_PropertyBytes::Key& key, const void* bytes, std::size_t size);
    [[nodiscard]] QLX_PropertyView ViewOf(const Entry& entry) const;

    Block* mBlock = nullptr; // counted; shared between copies; null for an empty set
};
