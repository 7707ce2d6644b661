#include "qlx/persistence/qlx_propertyset.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_internal.h"
#include "basekit/cmn/cmn_string.h"
#include "basekit/sys/sys_typedstream.h"
#include "qlx/persistence/qlx_nodepool.h"

using namespace QLX_PropertyBytes;

namespace {
// The order in which types are written.
constexpr QLX_PropertyType kTypeOrder[] = {
    qlx_PropType_Bool,   qlx_PropType_Int32,  qlx_PropType_Int64,
    qlx_PropType_IDType, qlx_PropType_String, qlx_PropType_String_Key,
    qlx_PropType_Color,  qlx_PropType_Point,  qlx_PropType_Rect};

constexpr int RankOf(QLX_PropertyType type) {
    for (int i = 0; i < 9; ++i)
        if (kTypeOrder[i] == type)
            return i;
    return 9;
}

bool gSortedXMLMode = false;

CRGBColor UnpackColor(std::uint64_t value) {
    return CRGBColor(static_cast<std::uint16_t>(value >> 48),
                     static_cast<std::uint16_t>(value >> 32),
                     static_cast<std::uint16_t>(value >> 16), static_cast<std::uint16_t>(value));
}

void AppendEscaped(std::string& out, std::string_view text) {
    if (text.find_first_of("&<>\"'\t\n\r") == std::string_view::npos)
        out += text;
    else
        out += Cmn_XML_SimpleEscape(text);
}
} // namespace

void QLX_PropertyBytes::CheckNameSize(std::size_t size) {
    if (size > kLongestName)
        throw std::length_error("a property's name has less than 256 MB");
}

std::uint64_t QLX_PropertyBytes::HashMiddle(std::string_view name) noexcept {
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
    std::uint64_t hash = 0;
    for (std::size_t at = 8; at + 8 < name.size(); at += 8) {
        hash = (hash ^ Load8(name.data() + at)) * kFactor;
        hash ^= hash >> 32;
    }
    return hash * kFactor;
}

// NH, the hash inside UMAC (RFC 4418): pairs of 32-bit words, each with a secret added, multiplied
// and summed up. Two names collide with a chance of one in four thousand million, whoever chose
// them. The secrets come from the salt by splitmix64.
std::uint64_t QLX_PropertyBytes::SaltedHash(QLX_PropertyType type, std::string_view name) noexcept {
    const auto scramble = [](std::uint64_t bits) {
        bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9u;
        bits = (bits ^ bits >> 27) * 0x94D049BB133111EBu;
        return bits ^ bits >> 31;
    };
    // Where the library was loaded and when: enough for those who cannot look into the process.
    static const std::uint64_t salt = scramble(
        reinterpret_cast<std::uintptr_t>(&salt) ^
        static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()));
    std::uint64_t state = salt;
    std::uint64_t sum = salt ^ (static_cast<std::uint64_t>(type) << 32 | name.size());
    for (std::size_t at = 0; at < name.size(); at += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, name.data() + at, std::min<std::size_t>(8, name.size() - at));
        const std::uint64_t secret = scramble(state += kHashFactor);
        const auto low = static_cast<std::uint32_t>(word) + static_cast<std::uint32_t>(secret);
        const auto high =
            static_cast<std::uint32_t>(word >> 32) + static_cast<std::uint32_t>(secret >> 32);
        sum += std::uint64_t{low} * high;
    }
    return scramble(sum);
}

QLX_PropertyBytes::Entry* QLX_PropertyBytes::Block::FindInLarge(const Key& key) noexcept {
    Key wanted = key;
    if (mIsSalted) [[unlikely]]
        wanted.mHash = SaltedHash(key.mType, key.mName);
    return mCellSize == 2 ? Probe<std::uint16_t>(wanted) : Probe<std::uint32_t>(wanted);
}

void QLX_PropertyBytes::Block::AddToLarge(std::size_t place, std::uint64_t hash) noexcept {
    constexpr std::size_t mostSteps = 64; // with a quarter of the cells taken chance makes a few
    if (mIsSalted) [[unlikely]]
        hash = SaltedHash(EntryAt(place).Type(), NameOf(EntryAt(place)));
    const std::size_t steps = mCellSize == 2 ? AddToCells<std::uint16_t>(place, hash)
                                             : AddToCells<std::uint32_t>(place, hash);
    if (steps > mostSteps && !mIsSalted) [[unlikely]] {
        mIsSalted = true;
        RebuildIndex();
    }
}

QLX_PropertyBytes::Entry* QLX_PropertyBytes::Block::FindOrAddToLarge(std::size_t place,
                                                                     std::uint64_t hash) noexcept {
    Entry* const earlier = FindInLarge(KeyOf(EntryAt(place).Type(), NameOf(EntryAt(place))));
    if (!earlier)
        AddToLarge(place, hash);
    return earlier;
}

void QLX_PropertyBytes::Block::RebuildIndex() noexcept {
    ClearIndex();
    const bool wasSalted = mIsSalted;
    for (std::size_t i = 0; i < mCount; ++i) {
        const Entry& entry = Entries()[i];
        AddToIndex(i, KeyOf(entry.Type(), NameOf(entry)).mHash);
        if (mIsSalted != wasSalted)
            return; // it was built anew on the way
    }
}

/// Keeps a replaced block until the end of an operation, whose arguments may lie in it.
struct QLX_PropertySet::Hold {
    Block* mBlock = nullptr;
    Hold() = default;
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    ~Hold() { Release(mBlock); }
};

// Memory

QLX_PropertySet::Block* QLX_PropertySet::NewBlock(std::size_t capacity, std::size_t dataCapacity,
                                                  QLX_NodePool* pool) {
    if (capacity > kMostValues || dataCapacity > kMostBytes)
        throw std::length_error("a property set holds no more than 1 GB");
    Block header{};
    header.mReferences = 1;
    header.mCapacity = static_cast<std::uint32_t>(capacity);
    header.mDataCapacity = static_cast<std::uint32_t>(dataCapacity);
    header.mCellSize = capacity <= Block::kNarrowCapacity   ? 1
                       : capacity <= Block::kMiddleCapacity ? 2
                                                            : 4;
    const std::size_t sparse = header.mCellSize == 1 ? 8 : 4;
    const std::size_t cells = capacity <= Block::kTinyCapacity ? 16
                              : capacity <= Block::kSmallCapacity
                                  ? 32
                                  : std::bit_ceil(sparse * capacity);
    header.mIndexShift = static_cast<std::uint8_t>(64 - std::countr_zero(cells));
    header.mEntriesOffset = static_cast<std::uint32_t>(sizeof(Block) + cells * header.mCellSize);
    header.mIsPooled = pool != nullptr;
    const std::size_t size = header.Size();
    Block* const block = new (pool ? pool->Allocate(size) : ::operator new(size)) Block(header);
    block->ClearIndex();
    return block;
}

void QLX_PropertySet::Release(Block* block) noexcept {
    if (!block || --block->mReferences != 0)
        return;
    if (block->mIsPooled)
        QLX_NodePool::Free(block, block->Size());
    else
        ::operator delete(block);
}

/// A copy of the block with room for as much as asked, without the garbage.
QLX_PropertySet::Block* QLX_PropertySet::CopyBlock(std::size_t capacity, std::size_t dataCapacity,
                                                   QLX_NodePool* pool) const {
    Block* const copy = NewBlock(capacity, dataCapacity, pool);
    if (!mBlock)
        return copy;
    copy->mCount = mBlock->mCount;
    copy->mIsSalted = mBlock->mIsSalted;
    std::memcpy(copy->Entries(), mBlock->Entries(), mBlock->mCount * sizeof(Entry));
    if (mBlock->mGarbage == 0) {
        std::memcpy(copy->Data(), mBlock->Data(), mBlock->mDataSize);
        copy->mDataSize = mBlock->mDataSize;
        const std::uint32_t moved = copy->DataOffset() - mBlock->DataOffset(); // may wrap
        for (std::size_t i = 0; i < copy->mCount; ++i)
            copy->Entries()[i].mNameOffset += moved;
    } else {
        for (std::size_t i = 0; i < copy->mCount; ++i) {
            Entry& entry = copy->Entries()[i];
            const auto move = [&](std::size_t from, std::size_t size) {
                const std::uint32_t to = copy->mDataSize;
                std::memcpy(copy->Data() + to, mBlock->Bytes() + from, size);
                copy->mDataSize += static_cast<std::uint32_t>(size);
                return to;
            };
            entry.mNameOffset = copy->DataOffset() + move(entry.mNameOffset, entry.NameSize());
            if (entry.HasPayload()) {
                const std::size_t size = entry.PayloadSize();
                entry.SetPayload(move(mBlock->DataOffset() + entry.PayloadOffset(), size), size);
            }
        }
    }
    if (copy->mEntriesOffset == mBlock->mEntriesOffset)
        std::memcpy(copy->Cells(), mBlock->Cells(), copy->mEntriesOffset - sizeof(Block));
    else
        copy->RebuildIndex();
    return copy;
}

/// Makes the block ours alone, with room for further values and bytes.
inline void QLX_PropertySet::MakeRoom(std::size_t entries, std::size_t bytes, Hold& old) {
    if (!mBlock || mBlock->mReferences != 1 || mBlock->mCount + entries > mBlock->mCapacity ||
        mBlock->mDataSize + bytes > mBlock->mDataCapacity) [[unlikely]]
        GrowFor(entries, bytes, old);
}

void QLX_PropertySet::GrowFor(std::size_t entries, std::size_t bytes, Hold& old) {
    const std::size_t count = mBlock ? mBlock->mCount : 0;
    const std::size_t used = mBlock ? mBlock->mDataSize : 0;
    std::size_t capacity = count + entries;
    std::size_t dataCapacity = used + bytes;
    if (mBlock && mBlock->mReferences == 1) {
        // Growing: half as much again, so that a run of stores costs a constant each.
        if (capacity > mBlock->mCapacity)
            capacity = std::max({capacity, Block::kSmallCapacity,
                                 std::size_t{mBlock->mCapacity} + mBlock->mCapacity / 2});
        else
            capacity = mBlock->mCapacity;
        if (dataCapacity > mBlock->mDataCapacity) {
            dataCapacity -= mBlock->mGarbage;
            dataCapacity = std::max<std::size_t>(dataCapacity + dataCapacity / 2, 64);
        } else {
            dataCapacity = mBlock->mDataCapacity;
        }
    } else if (!mBlock) {
        capacity = std::max<std::size_t>(capacity, 4);
        dataCapacity = std::max<std::size_t>(dataCapacity, 64);
    }
    Block* const room = CopyBlock(capacity, std::min(dataCapacity, kMostBytes), nullptr);
    if (room->mDataSize + bytes > room->mDataCapacity) {
        Release(room);
        throw std::length_error("a property set holds no more than 1 GB");
    }
    old.mBlock = mBlock;
    mBlock = room;
}

QLX_PropertySet::QLX_PropertySet(const QLX_PropertySet& other) noexcept : mBlock(other.mBlock) {
    if (mBlock)
        ++mBlock->mReferences;
}

QLX_PropertySet::QLX_PropertySet(QLX_PropertySet&& other) noexcept
    : mBlock(std::exchange(other.mBlock, nullptr)) {}

QLX_PropertySet& QLX_PropertySet::operator=(const QLX_PropertySet& other) noexcept {
    if (this != &other) {
        if (other.mBlock)
            ++other.mBlock->mReferences;
        Release(std::exchange(mBlock, other.mBlock));
    }
    return *this;
}

QLX_PropertySet& QLX_PropertySet::operator=(QLX_PropertySet&& other) noexcept {
    std::swap(mBlock, other.mBlock);
    return *this;
}

QLX_PropertySet::~QLX_PropertySet() { Release(mBlock); }

void QLX_PropertySet::Clear() { Release(std::exchange(mBlock, nullptr)); }

QLX_PropertySet QLX_PropertySet::CopyCompact(QLX_NodePool* pool) const {
    QLX_PropertySet copy;
    if (!IsEmpty())
        copy.mBlock = CopyBlock(mBlock->mCount, mBlock->mDataSize - mBlock->mGarbage, pool);
    return copy;
}

// Look-ups

QLX_PropertySet::Entry* QLX_PropertySet::FindEntry(QLX_PropertyType type,
                                                   std::string_view name) const noexcept {
    return mBlock ? mBlock->Find(KeyOf(type, name)) : nullptr;
}

bool QLX_PropertySet::FindText(QLX_PropertyType type, std::string_view name,
                               std::string& value) const {
    const Entry* const entry = FindEntry(type, name);
    if (!entry)
        return false;
    value.assign(mBlock->Data() + entry->PayloadOffset(), entry->PayloadSize());
    return true;
}

template <QLX_PropertyType kType, class Value>
inline bool QLX_PropertySet::GetScalar(std::string_view name, Value& value) const {
    const Entry* const entry = FindEntry(kType, name);
    if (!entry)
        return false;
    value = static_cast<Value>(entry->mValue);
    return true;
}

bool QLX_PropertySet::GetBoolProperty(std::string_view name, bool& value) const {
    return GetScalar<qlx_PropType_Bool>(name, value);
}

bool QLX_PropertySet::GetInt32Property(std::string_view name, std::int32_t& value) const {
    return GetScalar<qlx_PropType_Int32>(name, value);
}

bool QLX_PropertySet::GetInt32Property(std::string_view name, std::int64_t& value) const {
    std::int32_t narrow = 0;
    if (!GetInt32Property(name, narrow))
        return false;
    value = narrow;
    return true;
}

bool QLX_PropertySet::GetInt64Property(std::string_view name, std::int64_t& value) const {
    return GetScalar<qlx_PropType_Int64>(name, value);
}

bool QLX_PropertySet::GetIDTypeProperty(std::string_view name, std::uint32_t& value) const {
    return GetScalar<qlx_PropType_IDType>(name, value);
}

bool QLX_PropertySet::GetStringProperty(std::string_view name, std::string& value) const {
    return FindText(qlx_PropType_String, name, value);
}

bool QLX_PropertySet::GetStringKeyProperty(std::string_view name, std::string& value) const {
    return FindText(qlx_PropType_String_Key, name, value);
}

bool QLX_PropertySet::GetColorProperty(std::string_view name, CRGBColor& value) const {
    const Entry* const entry = FindEntry(qlx_PropType_Color, name);
    if (!entry)
        return false;
    value = UnpackColor(entry->mValue);
    return true;
}

bool QLX_PropertySet::GetPointProperty(std::string_view name, VPoint& value) const {
    QLX_PropertyView view;
    if (!Find(qlx_PropType_Point, name, view))
        return false;
    value = view.mPoint;
    return true;
}

bool QLX_PropertySet::GetRectProperty(std::string_view name, VRect& value) const {
    QLX_PropertyView view;
    if (!Find(qlx_PropType_Rect, name, view))
        return false;
    value = view.mRect;
    return true;
}

bool QLX_PropertySet::HasProperty(QLX_PropertyType type, std::string_view name) const {
    return FindEntry(type, name) != nullptr;
}

std::size_t QLX_PropertySet::GetCount() const noexcept { return mBlock ? mBlock->mCount : 0; }

QLX_PropertyView QLX_PropertySet::GetAt(std::size_t index) const {
    return ViewOf(mBlock->Entries()[index]);
}

QLX_PropertyView QLX_PropertySet::ViewOf(const Entry& entry) const {
    QLX_PropertyView view;
    view.mName = mBlock->NameOf(entry);
    view.mType = entry.Type();
    const char* const payload = mBlock->Data() + entry.PayloadOffset();
    switch (view.mType) {
    case qlx_PropType_String:
    case qlx_PropType_String_Key:
        view.mText = std::string_view(payload, entry.PayloadSize());
        break;
    case qlx_PropType_Point:
        std::memcpy(static_cast<void*>(&view.mPoint), payload, sizeof view.mPoint);
        break;
    case qlx_PropType_Rect:
        std::memcpy(static_cast<void*>(&view.mRect), payload, sizeof view.mRect);
        break;
    case qlx_PropType_Color:
        view.mColor = UnpackColor(entry.mValue);
        break;
    default:
        view.mInteger = static_cast<std::int64_t>(entry.mValue);
    }
    return view;
}

bool QLX_PropertySet::Find(QLX_PropertyType type, std::string_view name,
                           QLX_PropertyView& view) const {
    const Entry* const entry = FindEntry(type, name);
    if (!entry)
        return false;
    view = ViewOf(*entry);
    return true;
}

bool operator==(const QLX_PropertySet& a, const QLX_PropertySet& b) {
    if (a.mBlock == b.mBlock)
        return true;
    if (a.GetCount() != b.GetCount())
        return false;
    for (std::size_t i = 0; i < a.GetCount(); ++i) {
        const QLX_PropertyView mine = a.GetAt(i);
        QLX_PropertyView theirs;
        if (!b.Find(mine.mType, mine.mName, theirs) || mine.mInteger != theirs.mInteger ||
            mine.mText != theirs.mText || PackColor(mine.mColor) != PackColor(theirs.mColor) ||
            mine.mPoint != theirs.mPoint || mine.mRect != theirs.mRect)
            return false;
    }
    return true;
}

// Stores

/// Appends a name that is not there yet, for which there is room; its value is still 0.
QLX_PropertySet::Entry& QLX_PropertySet::Append(const Key& key) {
    CheckNameSize(key.mName.size());
    Block& block = *mBlock;
    const std::size_t index = block.mCount++;
    Entry& entry = block.Entries()[index];
    entry.mValue = 0;
    entry.mNameOffset = block.DataOffset() + block.mDataSize;
    entry.mSizeAndType = SizeAndType(key.mName.size(), key.mType);
    block.mDataSize += static_cast<std::uint32_t>(key.mName.size());
    Copy(block.Bytes() + entry.mNameOffset, key.mName.data(), key.mName.size());
    block.AddToIndex(index, key.mHash);
    return entry;
}

void QLX_PropertySet::StoreScalar(const Key& key, std::uint64_t value) {
    Entry* entry = mBlock ? mBlock->Find(key) : nullptr;
    const std::size_t index = entry ? static_cast<std::size_t>(entry - mBlock->Entries()) : 0;
    Hold old;
    if (entry) {
        MakeRoom(0, 0, old);
        entry = mBlock->Entries() + index;
    } else {
        MakeRoom(1, key.mName.size(), old);
        entry = &Append(key);
    }
    entry->mValue = value;
}

void QLX_PropertySet::StoreBytes(const Key& key, const void* bytes, std::size_t size) {
    Entry* entry = mBlock ? mBlock->Find(key) : nullptr;
    const std::size_t index = entry ? static_cast<std::size_t>(entry - mBlock->Entries()) : 0;
    Hold old;
    if (entry) {
        MakeRoom(0, size, old);
        entry = mBlock->Entries() + index;
        mBlock->mGarbage += static_cast<std::uint32_t>(entry->PayloadSize());
    } else {
        MakeRoom(1, key.mName.size() + size, old);
        entry = &Append(key);
    }
    Block& block = *mBlock;
    const std::size_t offset = block.mDataSize;
    entry->SetPayload(offset, size);
    block.mDataSize += static_cast<std::uint32_t>(size);
    Copy(block.Data() + offset, static_cast<const char*>(bytes), size);
}

void QLX_PropertySet::SetBoolProperty(std::string_view name, bool value) {
    StoreScalar(KeyOf(qlx_PropType_Bool, name), value);
}
void QLX_PropertySet::SetInt32Property(std::string_view name, std::int32_t value) {
    StoreScalar(KeyOf(qlx_PropType_Int32, name), static_cast<std::uint64_t>(std::int64_t{value}));
}
void QLX_PropertySet::SetInt64Property(std::string_view name, std::int64_t value) {
    StoreScalar(KeyOf(qlx_PropType_Int64, name), static_cast<std::uint64_t>(value));
}
void QLX_PropertySet::SetIDTypeProperty(std::string_view name, std::uint32_t value) {
    StoreScalar(KeyOf(qlx_PropType_IDType, name), value);
}
void QLX_PropertySet::SetStringProperty(std::string_view name, std::string_view value) {
    StoreBytes(KeyOf(qlx_PropType_String, name), value.data(), value.size());
}
void QLX_PropertySet::SetStringKeyProperty(std::string_view name, std::string_view value) {
    StoreBytes(KeyOf(qlx_PropType_String_Key, name), value.data(), value.size());
}
void QLX_PropertySet::SetColorProperty(std::string_view name, const CRGBColor& value) {
    StoreScalar(KeyOf(qlx_PropType_Color, name), PackColor(value));
}
void QLX_PropertySet::SetPointProperty(std::string_view name, const VPoint& value) {
    StoreBytes(KeyOf(qlx_PropType_Point, name), &value, sizeof value);
}
void QLX_PropertySet::SetRectProperty(std::string_view name, const VRect& value) {
    StoreBytes(KeyOf(qlx_PropType_Rect, name), &value, sizeof value);
}

bool QLX_PropertySet::SetFromText(std::string_view name, QLX_PropertyType type,
                                  std::string_view text) {
    switch (type) {
    case qlx_PropType_Bool:
        SetBoolProperty(name, QLX_TextToBool(text));
        return true;
    case qlx_PropType_Int32:
        SetInt32Property(name, QLX_TextToInt32(text));
        return true;
    case qlx_PropType_IDType:
        SetIDTypeProperty(name, QLX_TextToIDType(text));
        return true;
    case qlx_PropType_String:
        SetStringProperty(name, text);
        return true;
    case qlx_PropType_String_Key:
        SetStringKeyProperty(name, text);
        return true;
    case qlx_PropType_Color:
        SetColorProperty(name, QLX_TextToColor(text));
        return true;
    case qlx_PropType_Point:
        SetPointProperty(name, QLX_TextToPoint(text));
        return true;
    case qlx_PropType_Rect:
        SetRectProperty(name, QLX_TextToRect(text));
        return true;
    case qlx_PropType_Int64:
        SetInt64Property(name, QLX_TextToInt64(text));
        return true;
    case qlx_PropType_None:
        break;
    }
    return false;
}

void QLX_PropertySet::SetProperty(const QLX_PropertyView& value) {
    switch (value.mType) {
    case qlx_PropType_String:
        SetStringProperty(value.mName, value.mText);
        break;
    case qlx_PropType_String_Key:
        SetStringKeyProperty(value.mName, value.mText);
        break;
    case qlx_PropType_Color:
        SetColorProperty(value.mName, value.mColor);
        break;
    case qlx_PropType_Point:
        SetPointProperty(value.mName, value.mPoint);
        break;
    case qlx_PropType_Rect:
        SetRectProperty(value.mName, value.mRect);
        break;
    case qlx_PropType_Bool:
    case qlx_PropType_Int32:
    case qlx_PropType_IDType:
    case qlx_PropType_Int64:
        StoreScalar(KeyOf(value.mType, value.mName), static_cast<std::uint64_t>(value.mInteger));
        break;
    case qlx_PropType_None:
        break;
    }
}

bool QLX_PropertySet::RemoveProperty(QLX_PropertyType type, std::string_view name) {
    const Entry* const found = FindEntry(type, name);
    if (!found)
        return false;
    const std::size_t index = static_cast<std::size_t>(found - mBlock->Entries());
    Hold old;
    MakeRoom(0, 0, old);
    Entry* const entries = mBlock->Entries();
    mBlock->mGarbage +=
        static_cast<std::uint32_t>(entries[index].NameSize() + entries[index].PayloadSize());
    std::copy(entries + index + 1, entries + mBlock->mCount, entries + index);
    --mBlock->mCount;
    mBlock->RebuildIndex();
    return true;
}

void QLX_PropertySet::Merge(const QLX_PropertySet& over) {
    if (over.IsEmpty() || over.mBlock == mBlock)
        return;
    if (IsEmpty()) {
        *this = over;
        return;
    }
    Block* const from = over.mBlock;
    std::size_t missing = 0;
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < from->mCount; ++i) {
        const Entry& entry = from->Entries()[i];
        bytes += entry.PayloadSize();
        if (!FindEntry(entry.Type(), from->NameOf(entry))) {
            ++missing;
            bytes += entry.NameSize();
        }
    }
    Hold old;
    MakeRoom(missing, bytes, old);
    for (std::size_t i = 0; i < from->mCount; ++i) {
        const Entry& entry = from->Entries()[i];
        const Key key = KeyOf(entry.Type(), from->NameOf(entry));
        if (entry.HasPayload())
            StoreBytes(key, from->Data() + entry.PayloadOffset(), entry.PayloadSize());
        else
            StoreScalar(key, entry.mValue);
    }
}

// Text

void QLX_PropertySet::SetSortedXMLMode(bool sorted) { gSortedXMLMode = sorted; }
bool QLX_PropertySet::GetSortedXMLMode() { return gSortedXMLMode; }

namespace {
/// The value as the source format writes it, not yet escaped. Points and rectangles have 32 bits
/// there.
void AppendValueText(std::string& out, const QLX_PropertyView& view) {
    char text[64];
    switch (view.mType) {
    case qlx_PropType_Bool:
        out += view.mInteger ? "true" : "false";
        return;
    case qlx_PropType_IDType:
        out += Cmn_IDToString(static_cast<std::uint32_t>(view.mInteger));
        return;
    case qlx_PropType_String:
    case qlx_PropType_String_Key:
        out += view.mText;
        return;
    case qlx_PropType_Color:
        std::snprintf(text, sizeof text, "0x%x 0x%x 0x%x", view.mColor.GetRed(),
                      view.mColor.GetGreen(), view.mColor.GetBlue());
        out += text;
        return;
    case qlx_PropType_Point:
        std::snprintf(text, sizeof text, "%d %d", static_cast<int>(view.mPoint.v),
                      static_cast<int>(view.mPoint.h));
        out += text;
        return;
    case qlx_PropType_Rect:
        std::snprintf(text, sizeof text, "%d %d %d %d", static_cast<int>(view.mRect.Top()),
                      static_cast<int>(view.mRect.Left()), static_cast<int>(view.mRect.Bottom()),
                      static_cast<int>(view.mRect.Right()));
        out += text;
        return;
    default:
        out += std::to_string(view.mInteger);
    }
}
} // namespace

namespace {
void AppendElement(std::string& out, const QLX_PropertyView& view, std::string_view extraAttributes,
                   int indent) {
    out.append(static_cast<std::size_t>(std::max(indent, 0)), '\t');
    out += "<property name=\"";
    AppendEscaped(out, view.mName);
    out += "\" type=\"";
    out += QLX_PropertyTypeToString(view.mType);
    out += "\" value=\"";
    std::string value;
    AppendValueText(value, view);
    AppendEscaped(out, value);
    out += '"';
    out += extraAttributes;
    out += "/>";
}
} // namespace

void QLX_PropertySet::AppendXML(std::string& out, std::string_view extraAttributes, int indent,
                                const char* lineEnd, const std::set<std::string>& excluded,
                                bool sorted, const ElementHook& beforeLine,
                                const ElementHook& behind) const {
    std::vector<std::size_t> order;
    order.reserve(GetCount());
    for (std::size_t i = 0; i < GetCount(); ++i)
        if (excluded.empty() || !excluded.count(std::string(mBlock->NameOf(mBlock->Entries()[i]))))
            order.push_back(i);
    const auto before = [&](std::size_t a, std::size_t b) {
        if (sorted) {
            const int names =
                mBlock->NameOf(mBlock->Entries()[a]).compare(mBlock->NameOf(mBlock->Entries()[b]));
            if (names != 0)
                return names < 0;
        }
        return RankOf(mBlock->Entries()[a].Type()) < RankOf(mBlock->Entries()[b].Type());
    };
    std::stable_sort(order.begin(), order.end(), before);
    for (const std::size_t index : order) {
        const QLX_PropertyView view = GetAt(index);
        if (beforeLine)
            beforeLine(view);
        AppendElement(out, view, extraAttributes, indent);
        if (behind)
            behind(view);
        out += lineEnd;
    }
}

std::string QLX_PropertySet::ToXML(const std::string& extraAttributes, int indent,
                                   const char* lineEnd,
                                   const std::set<std::string>& excluded) const {
    std::string out;
    AppendXML(out, extraAttributes, indent, lineEnd, excluded, gSortedXMLMode);
    return out;
}

std::string QLX_PropertySet::ToString() const {
    std::vector<std::size_t> order(GetCount());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        const int names =
            mBlock->NameOf(mBlock->Entries()[a]).compare(mBlock->NameOf(mBlock->Entries()[b]));
        return names != 0
                   ? names < 0
                   : RankOf(mBlock->Entries()[a].Type()) < RankOf(mBlock->Entries()[b].Type());
    });
    std::string out;
    for (const std::size_t index : order) {
        const QLX_PropertyView view = GetAt(index);
        out += view.mName;
        out += ' ';
        out += QLX_PropertyTypeToString(view.mType);
        out += ' ';
        AppendValueText(out, view);
        out += '\n';
    }
    return out;
}

// Streams

void QLX_PropertySet::StreamOut(Sys_TypedOutStream& stream) const {
    for (const QLX_PropertyType type : kTypeOrder) {
        std::int32_t count = 0;
        for (std::size_t i = 0; i < GetCount(); ++i)
            count += mBlock->Entries()[i].Type() == type;
        stream.WriteInt32(type);
        stream.WriteInt32(count);
        for (std::size_t i = 0; count > 0 && i < GetCount(); ++i) {
            if (mBlock->Entries()[i].Type() != type)
                continue;
            const QLX_PropertyView view = GetAt(i);
            stream.WriteString(view.mName);
            switch (type) {
            case qlx_PropType_Bool:
                stream.WriteBool(view.mInteger != 0);
                break;
            case qlx_PropType_Int32:
                stream.WriteInt32(static_cast<std::int32_t>(view.mInteger));
                break;
            case qlx_PropType_Int64:
                stream.WriteInt64(view.mInteger);
                break;
            case qlx_PropType_IDType:
                stream.WriteUInt32(static_cast<std::uint32_t>(view.mInteger));
                break;
            case qlx_PropType_Color:
                stream.WriteUInt16(view.mColor.GetRed());
                stream.WriteUInt16(view.mColor.GetGreen());
                stream.WriteUInt16(view.mColor.GetBlue());
                break;
            case qlx_PropType_Point:
                stream.WriteInt32(static_cast<std::int32_t>(view.mPoint.v));
                stream.WriteInt32(static_cast<std::int32_t>(view.mPoint.h));
                break;
            case qlx_PropType_Rect:
                stream.WriteInt32(static_cast<std::int32_t>(view.mRect.Top()));
                stream.WriteInt32(static_cast<std::int32_t>(view.mRect.Left()));
                stream.WriteInt32(static_cast<std::int32_t>(view.mRect.Bottom()));
                stream.WriteInt32(static_cast<std::int32_t>(view.mRect.Right()));
                break;
            default:
                stream.WriteString(view.mText);
            }
        }
    }
}

namespace {
/// Reads one value behind its name and stores it; nothing is stored when the stream ends in it.
void StreamInValue(Sys_TypedInStream& stream, QLX_PropertyType type, std::string_view name,
                   QLX_PropertySet& set) {
    switch (type) {
    case qlx_PropType_Bool: {
        bool value = false;
        if (stream.ReadBool(value))
            set.SetBoolProperty(name, value);
        break;
    }
    case qlx_PropType_Int32: {
        std::int32_t value = 0;
        if (stream.ReadInt32(value))
            set.SetInt32Property(name, value);
        break;
    }
    case qlx_PropType_Int64: {
        std::int64_t value = 0;
        if (stream.ReadInt64(value))
            set.SetInt64Property(name, value);
        break;
    }
    case qlx_PropType_IDType: {
        std::uint32_t value = 0;
        if (stream.ReadUInt32(value))
            set.SetIDTypeProperty(name, value);
        break;
    }
    case qlx_PropType_Color: {
        std::uint16_t red = 0, green = 0, blue = 0;
        if (stream.ReadUInt16(red) && stream.ReadUInt16(green) && stream.ReadUInt16(blue))
            set.SetColorProperty(name, CRGBColor(red, green, blue));
        break;
    }
    case qlx_PropType_Point: {
        std::int32_t vertical = 0, horizontal = 0;
        if (stream.ReadInt32(vertical) && stream.ReadInt32(horizontal))
            set.SetPointProperty(name, VPoint(horizontal, vertical));
        break;
    }
    case qlx_PropType_Rect: {
        std::int32_t top = 0, left = 0, bottom = 0, right = 0;
        if (stream.ReadInt32(top) && stream.ReadInt32(left) && stream.ReadInt32(bottom) &&
            stream.ReadInt32(right))
            set.SetRectProperty(name, VRect(left, top, right, bottom));
        break;
    }
    default: {
        std::string_view text;
        if (stream.ReadStringView(text)) {
            if (type == qlx_PropType_String)
                set.SetStringProperty(name, text);
            else
                set.SetStringKeyProperty(name, text);
        }
    }
    }
}
} // namespace

void QLX_PropertySet::StreamIn(Sys_TypedInStream& stream) {
    for (const QLX_PropertyType type : kTypeOrder) {
        std::int32_t typeInStream = 0;
        std::int32_t count = 0;
        if (!stream.ReadInt32(typeInStream))
            return;
        CMN_ASSERT(typeInStream == type);
        if (!stream.ReadInt32(count))
            return;
        if (count < 0) {
            stream.Fail("a count below zero");
            return;
        }
        // A count that lies ends with the bytes: each value takes some.
        for (std::int32_t i = 0; i < count; ++i) {
            std::string_view name;
            if (!stream.ReadStringView(name))
                return;
            StreamInValue(stream, type, name, *this);
            if (stream.HasFailed())
                return;
        }
    }
}
