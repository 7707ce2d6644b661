#include "qlx/persistence/qlx_binaryformat.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include "basekit/cmn/cmn_alert.h"
#include "basekit/cmn/cmn_assert.h"
#include "basekit/sys/sys_typedstream.h"
#include "qlx/persistence/qlx_treecode.h"

namespace {
constexpr const char* kDictionaryName = "Dictionary";
} // namespace

QLX_BinaryViewFormat::QLX_BinaryViewFormat(Sys_Store* store) : mStore(store) {}
QLX_BinaryViewFormat::~QLX_BinaryViewFormat() = default;

void QLX_BinaryViewFormat::WriteMementos(const std::map<std::string, QLX_ViewMemento*>& mementos) {
    // Keys that are free in the whole store; the dictionary takes one of its own.
    std::int32_t key = 0;
    for (const Sys_StoreEntry& entry : mStore->GetEntries())
        if (entry.mType == kStreamType)
            key = std::max(key, entry.mKey);
    const std::int32_t dictionaryKey = ++key;
    Sys_TypedOutStream dictionary;
    dictionary.WriteInt32(static_cast<std::int32_t>(mementos.size()));
    std::vector<std::string> streams; // all made before the first is appended: all or none
    for (const auto& [name, memento] : mementos) {
        dictionary.WriteString(name);
        dictionary.WriteInt32(++key);
        streams.push_back(EncodeMemento(*memento));
    }
    mStore->AppendStream(kStreamType, dictionaryKey, kDictionaryName, dictionary.GetBytes());
    key = dictionaryKey;
    // Under their keys alone: a description may be named as the dictionary is.
    for (const std::string& stream : streams)
        mStore->AppendStream(kStreamType, ++key, "", stream);
    mStore->Commit();
    mIndex.reset();
}

void QLX_BinaryViewFormat::ReadIndex() {
    if (mIndex)
        return;
    auto index = std::make_unique<Index>();
    const std::vector<Sys_StoreEntry> entries = mStore->GetEntries();
    std::map<std::int32_t, std::size_t> streams;
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (entries[i].mType == kStreamType)
            streams[entries[i].mKey] = i;
    // Later dictionaries overlay earlier ones.
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].mType != kStreamType || entries[i].mName != kDictionaryName ||
            streams[entries[i].mKey] != i)
            continue;
        const std::string bytes = mStore->ReadStream(i);
        Sys_TypedInStream in(bytes);
        std::int32_t count = 0;
        in.ReadInt32(count);
        std::set<std::int32_t> keys; // each description has a stream of its own
        for (std::int32_t n = 0; n < count && !in.HasFailed(); ++n) {
            std::string name;
            std::int32_t key = 0;
            if (!in.ReadString(name) || !in.ReadInt32(key))
                break;
            if (!keys.insert(key).second)
                throw std::runtime_error("the dictionary names the key " + std::to_string(key) +
                                         " twice");
            const auto stream = streams.find(key);
            if (stream == streams.end())
                throw std::runtime_error("the dictionary names \"" + name + "\" with the key " +
                                         std::to_string(key) + ", which no stream has");
            (*index)[name] = {key, stream->second};
        }
        if (in.HasFailed() || count < 0 || in.GetRemaining() != 0)
            throw std::runtime_error("the dictionary is damaged" +
                                     (in.HasFailed() ? " " + in.GetFailure() : std::string()));
    }
    mIndex = std::move(index);
}

bool QLX_BinaryViewFormat::HasKeyNamed(const std::string& name) {
    ReadIndex();
    return mIndex->count(name) != 0;
}

std::vector<std::string> QLX_BinaryViewFormat::GetNames() {
    ReadIndex();
    std::vector<std::string> names;
    for (const auto& entry : *mIndex)
        names.push_back(entry.first);
    return names;
}

std::uint64_t QLX_BinaryViewFormat::GetPackedSize(const std::string& name) {
    ReadIndex();
    const auto found = mIndex->find(name);
    return found == mIndex->end() ? 0 : mStore->GetEntries()[found->second.mStream].mSize;
}

QLX_ViewMemento* QLX_BinaryViewFormat::ReadMemento(const std::string& name, bool trim) {
    ReadIndex();
    const auto iter = mIndex->find(name);
    if (iter == mIndex->end())
        Cmn_ReportAlert(("There is no view description named \"" + name + "\".").c_str());
    CMN_ASSERT(iter != mIndex->end());
    if (iter == mIndex->end())
        return nullptr;
    const std::string bytes = mStore->ReadStream(iter->second.mStream);
    std::unique_ptr<QLX_ViewMemento> memento = DecodeMemento(bytes, name);
    QLX_RawPropertyContainer* const root = memento->GetRoot();
    if (trim) {
        // Trimming wants the current language selected; nothing was looked up yet.
        root->SetCurrentFilter(QLX_PropertyFilter::DefaultFilter());
        memento->TrimForLanguage();
    }
    root->FreezeProperties();
    root->SetCurrentFilter(QLX_PropertyFilter::DefaultFilter());
    return memento.release();
}

std::string QLX_BinaryViewFormat::EncodeMemento(const QLX_ViewMemento& memento) {
    return QLX_TreeCode::Encode(memento);
}

std::unique_ptr<QLX_ViewMemento> QLX_BinaryViewFormat::DecodeMemento(std::string_view bytes,
                                                                     const std::string& name) {
    return QLX_TreeCode::Decode(bytes, name, kMaximumDepth);
}
