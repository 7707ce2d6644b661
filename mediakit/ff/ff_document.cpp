#include "mediakit/ff/ff_document.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "basekit/sys/sys_typedstream.h"
#include "mediakit/ff/ff_checksum.h"

namespace {
constexpr std::string_view kMagic = "QLXFFDOC";
constexpr std::string_view kFooterMagic = "QLXFFTOC";
constexpr std::uint32_t kVersion = 1;
constexpr std::uint64_t kHeaderSize = 32;
constexpr std::uint64_t kFooterSize = 48;
constexpr std::uint64_t kAlignment = 16;
constexpr std::uint64_t kSmallestEntry = 4 + 4 + 4 + 8 + 8 + 4;

std::string WithChecksum(Sys_TypedOutStream& stream) {
    const std::uint32_t sum = FF_Checksum(stream.GetBytes());
    stream.WriteUInt32(sum);
    return stream.TakeBytes();
}

/// Whether the last four bytes are the checksum of those before.
bool IsWhole(std::string_view bytes) {
    std::uint32_t sum = 0;
    Sys_TypedInStream(bytes.substr(bytes.size() - 4)).ReadUInt32(sum);
    return sum == FF_Checksum(bytes.substr(0, bytes.size() - 4));
}
} // namespace

std::unique_ptr<FF_Document> FF_Document::Create(const Sys_FileLoc& loc,
                                                 Sys_FileSystem& fileSystem) {
    return std::make_unique<FF_Document>(
        std::make_unique<Sys_File>(loc, Sys_FileMode::Create, fileSystem));
}

std::unique_ptr<FF_Document> FF_Document::Open(const Sys_FileLoc& loc, Sys_FileMode mode,
                                               Sys_FileSystem& fileSystem) {
    auto file = std::make_unique<Sys_File>(loc, mode, fileSystem);
    if (file->GetSize() == 0)
        throw std::runtime_error(loc.GetPath() + ": the file is empty, no document");
    return std::make_unique<FF_Document>(std::move(file));
}

FF_Document::FF_Document(std::unique_ptr<Sys_File> file) : mFile(std::move(file)) {
    mEnd = mFile->GetSize();
    if (mEnd == 0)
        StartNew();
    else
        ReadLastTable();
}

FF_Document::~FF_Document() = default;

void FF_Document::Fail(const std::string& reason) const {
    throw std::runtime_error(mFile->GetLoc().GetPath() + ": " + reason);
}

void FF_Document::StartNew() {
    Sys_TypedOutStream header;
    header.WriteBytes(kMagic.data(), kMagic.size());
    header.WriteUInt32(kVersion);
    header.WriteUInt32(static_cast<std::uint32_t>(kHeaderSize));
    header.WriteUInt64(0);
    header.WriteUInt32(0);
    WriteAtEnd(WithChecksum(header));
    Commit();
}

void FF_Document::WriteAtEnd(std::string_view bytes) {
    mFile->SetPosition(mEnd);
    mFile->Write(bytes);
    mEnd += bytes.size();
}

void FF_Document::PadEnd() {
    const std::uint64_t over = mEnd % kAlignment;
    if (over != 0)
        WriteAtEnd(std::string(static_cast<std::size_t>(kAlignment - over), '\0'));
}

void FF_Document::ReadLastTable() {
    char bytes[kHeaderSize];
    mFile->SetPosition(0);
    const std::string_view header(bytes, mFile->Read(bytes, sizeof bytes));
    if (header.substr(0, kMagic.size()) != kMagic)
        Fail("this is no document");
    std::uint32_t version = 0;
    if (header.size() < kHeaderSize || !IsWhole(header))
        Fail("the document's header is damaged");
    Sys_TypedInStream(header.substr(kMagic.size())).ReadUInt32(version);
    if (version != kVersion)
        Fail("the document has the unknown version " + std::to_string(version));
    // A good footer with a bad table before it is a damaged disk's; a file of nothing else shall
    // not make opening read it once for each.
    mTableBudget = 4 * mEnd + 65536;
    // Footers stand at multiples of 16, the good one at the very end unless a write broke off.
    constexpr std::uint64_t kStep = 64 * 1024;
    if (mEnd >= kHeaderSize + kFooterSize) {
        std::uint64_t high = (mEnd - kFooterSize) / kAlignment * kAlignment;
        std::string block;
        for (;;) {
            const std::uint64_t low = high > kHeaderSize + kStep ? high - kStep : kHeaderSize;
            block.resize(static_cast<std::size_t>(high - low + kFooterSize));
            mFile->SetPosition(low);
            if (mFile->Read(block.data(), block.size()) != block.size())
                Fail("the file became shorter while it was read");
            for (std::uint64_t at = high;; at -= kAlignment) {
                const std::string_view footer =
                    std::string_view(block).substr(static_cast<std::size_t>(at - low), kFooterSize);
                if (footer.substr(0, kFooterMagic.size()) == kFooterMagic &&
                    ReadTableAt(at, footer)) {
                    mTorn = at + kFooterSize != mEnd;
                    return;
                }
                if (at == low)
                    break;
            }
            if (low == kHeaderSize)
                break;
            high = low - kAlignment;
        }
    }
    Fail("the document has no table of contents that can be read");
}

bool FF_Document::ReadTableAt(std::uint64_t footerOffset, std::string_view footerBytes) {
    if (!IsWhole(footerBytes))
        return false;
    Sys_TypedInStream footer(footerBytes.substr(kFooterMagic.size()));
    std::uint64_t ownOffset = 0, tableOffset = 0, tableSize = 0;
    std::uint32_t tableSum = 0, generation = 0;
    footer.ReadUInt64(ownOffset);
    footer.ReadUInt64(tableOffset);
    footer.ReadUInt64(tableSize);
    footer.ReadUInt32(tableSum);
    footer.ReadUInt32(generation);
    // A footer knows its place, so that a document inside a stream is not taken for this one.
    if (ownOffset != footerOffset || tableOffset < kHeaderSize || tableOffset > footerOffset ||
        tableSize > footerOffset - tableOffset || tableSize > mTableBudget)
        return false;
    mTableBudget -= tableSize;
    std::string table(static_cast<std::size_t>(tableSize), '\0');
    mFile->SetPosition(tableOffset);
    if (mFile->Read(table.data(), table.size()) != table.size() || FF_Checksum(table) != tableSum)
        return false;
    std::vector<Stream> streams;
    if (!ParseTable(table, tableOffset, streams))
        return false;
    mStreams = std::move(streams);
    mGeneration = generation;
    return true;
}

bool FF_Document::ParseTable(std::string_view table, std::uint64_t end,
                             std::vector<Stream>& streams) const {
    Sys_TypedInStream in(table);
    std::uint32_t count = 0;
    if (!in.ReadUInt32(count) || count > in.GetRemaining() / kSmallestEntry)
        return false;
    streams.resize(count);
    std::uint64_t total = 0; // streams share no bytes, so together they are no more than the file
    for (Stream& stream : streams) {
        if (!in.ReadUInt32(stream.mEntry.mType) || !in.ReadInt32(stream.mEntry.mKey) ||
            !in.ReadString(stream.mEntry.mName) || !in.ReadUInt64(stream.mOffset) ||
            !in.ReadUInt64(stream.mEntry.mSize) || !in.ReadUInt32(stream.mChecksum))
            return false;
        if (stream.mOffset < kHeaderSize || stream.mOffset > end ||
            stream.mEntry.mSize > end - stream.mOffset || stream.mEntry.mSize > end - total)
            return false;
        total += stream.mEntry.mSize;
    }
    return in.GetRemaining() == 0;
}

std::vector<Sys_StoreEntry> FF_Document::GetEntries() const {
    std::vector<Sys_StoreEntry> entries;
    entries.reserve(mStreams.size());
    for (const Stream& stream : mStreams)
        entries.push_back(stream.mEntry);
    return entries;
}

std::string FF_Document::ReadStream(std::size_t index) {
    if (index >= mStreams.size())
        Fail("there is no stream " + std::to_string(index));
    const Stream& stream = mStreams[index];
    std::string bytes(static_cast<std::size_t>(stream.mEntry.mSize), '\0');
    mFile->SetPosition(stream.mOffset);
    if (mFile->Read(bytes.data(), bytes.size()) != bytes.size() ||
        FF_Checksum(bytes) != stream.mChecksum)
        Fail("the stream \"" + stream.mEntry.mName + "\" (key " +
             std::to_string(stream.mEntry.mKey) + ") is damaged");
    return bytes;
}

void FF_Document::AppendStream(std::uint32_t type, std::int32_t key, const std::string& name,
                               std::string_view bytes) {
    PadEnd();
    Stream stream{{type, key, name, bytes.size()}, mEnd, FF_Checksum(bytes)};
    WriteAtEnd(bytes);
    mAppended.push_back(std::move(stream));
}

void FF_Document::Commit() {
    std::vector<Stream> streams = mStreams;
    streams.insert(streams.end(), mAppended.begin(), mAppended.end());
    Sys_TypedOutStream table;
    table.WriteUInt32(static_cast<std::uint32_t>(streams.size()));
    for (const Stream& stream : streams) {
        table.WriteUInt32(stream.mEntry.mType);
        table.WriteInt32(stream.mEntry.mKey);
        table.WriteString(stream.mEntry.mName);
        table.WriteUInt64(stream.mOffset);
        table.WriteUInt64(stream.mEntry.mSize);
        table.WriteUInt32(stream.mChecksum);
    }
    PadEnd();
    const std::uint64_t tableOffset = mEnd;
    WriteAtEnd(table.GetBytes());
    PadEnd();
    // The footer says that all before it is there, so it is written only once that is so.
    mFile->Flush();
    Sys_TypedOutStream footer;
    footer.WriteBytes(kFooterMagic.data(), kFooterMagic.size());
    footer.WriteUInt64(mEnd);
    footer.WriteUInt64(tableOffset);
    footer.WriteUInt64(table.GetBytes().size());
    footer.WriteUInt32(FF_Checksum(table.GetBytes()));
    footer.WriteUInt32(mGeneration + 1);
    footer.WriteUInt32(0);
    WriteAtEnd(WithChecksum(footer));
    mFile->Flush();
    mStreams = std::move(streams);
    mAppended.clear();
    ++mGeneration;
    mTorn = false;
}
