#include "basekit/sys/sys_typedstream.h"

#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

template <class Unsigned>
void Sys_TypedOutStream::Put(Unsigned value) {
    char bytes[sizeof(Unsigned)];
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        const std::size_t at = mSwap ? sizeof(Unsigned) - 1 - i : i;
        bytes[at] = static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
    }
    mBytes.append(bytes, sizeof bytes);
}

void Sys_TypedOutStream::WriteBool(bool value) { mBytes += value ? '\1' : '\0'; }
void Sys_TypedOutStream::WriteUInt8(std::uint8_t value) { mBytes += static_cast<char>(value); }
void Sys_TypedOutStream::WriteInt16(std::int16_t value) { Put(static_cast<std::uint16_t>(value)); }
void Sys_TypedOutStream::WriteUInt16(std::uint16_t value) { Put(value); }
void Sys_TypedOutStream::WriteInt32(std::int32_t value) { Put(static_cast<std::uint32_t>(value)); }
void Sys_TypedOutStream::WriteUInt32(std::uint32_t value) { Put(value); }
void Sys_TypedOutStream::WriteInt64(std::int64_t value) { Put(static_cast<std::uint64_t>(value)); }
void Sys_TypedOutStream::WriteUInt64(std::uint64_t value) { Put(value); }

void Sys_TypedOutStream::WriteString(std::string_view value) {
    if (value.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("a stream holds strings of less than 4 GB");
    Put(static_cast<std::uint32_t>(value.size()));
    mBytes += value;
}

void Sys_TypedOutStream::WriteBytes(const void* bytes, std::size_t size) {
    mBytes.append(static_cast<const char*>(bytes), size);
}

std::string Sys_TypedOutStream::TakeBytes() { return std::exchange(mBytes, std::string()); }

Sys_TypedInStream::Sys_TypedInStream(const void* bytes, std::size_t size, bool swap)
    : mBytes(static_cast<const unsigned char*>(bytes)), mSize(size), mSwap(swap) {}

void Sys_TypedInStream::Fail(const std::string& reason) {
    if (mFailed)
        return;
    mFailed = true;
    mFailure = "at byte " + std::to_string(mPosition) + ": " + reason;
}

bool Sys_TypedInStream::Need(std::size_t size) {
    if (mFailed)
        return false;
    if (size <= mSize - mPosition)
        return true;
    Fail(std::to_string(size) + " bytes expected, " + std::to_string(mSize - mPosition) + " left");
    return false;
}

template <class Unsigned>
bool Sys_TypedInStream::Get(Unsigned& value) {
    if (!Need(sizeof(Unsigned)))
        return false;
    std::uint64_t result = 0;
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        const std::size_t at = mSwap ? sizeof(Unsigned) - 1 - i : i;
        result |= static_cast<std::uint64_t>(mBytes[mPosition + at]) << (8 * i);
    }
    mPosition += sizeof(Unsigned);
    value = static_cast<Unsigned>(result);
    return true;
}

bool Sys_TypedInStream::ReadBool(bool& value) {
    std::uint8_t byte = 0;
    if (!Get(byte))
        return false;
    value = byte != 0;
    return true;
}

bool Sys_TypedInStream::ReadUInt8(std::uint8_t& value) { return Get(value); }
bool Sys_TypedInStream::ReadUInt16(std::uint16_t& value) { return Get(value); }
bool Sys_TypedInStream::ReadUInt32(std::uint32_t& value) { return Get(value); }
bool Sys_TypedInStream::ReadUInt64(std::uint64_t& value) { return Get(value); }

bool Sys_TypedInStream::ReadInt16(std::int16_t& value) {
    std::uint16_t raw = 0;
    if (!Get(raw))
        return false;
    value = static_cast<std::int16_t>(raw);
    return true;
}

bool Sys_TypedInStream::ReadInt32(std::int32_t& value) {
    std::uint32_t raw = 0;
    if (!Get(raw))
        return false;
    value = static_cast<std::int32_t>(raw);
    return true;
}

bool Sys_TypedInStream::ReadInt64(std::int64_t& value) {
    std::uint64_t raw = 0;
    if (!Get(raw))
        return false;
    value = static_cast<std::int64_t>(raw);
    return true;
}

bool Sys_TypedInStream::ReadStringView(std::string_view& value) {
    std::uint32_t size = 0;
    if (!Get(size) || !Need(size))
        return false;
    value = std::string_view(reinterpret_cast<const char*>(mBytes) + mPosition, size);
    mPosition += size;
    return true;
}

bool Sys_TypedInStream::ReadString(std::string& value) {
    std::string_view view;
    if (!ReadStringView(view))
        return false;
    value = view;
    return true;
}

bool Sys_TypedInStream::ReadBytes(void* bytes, std::size_t size) {
    if (!Need(size))
        return false;
    if (size)
        std::memcpy(bytes, mBytes + mPosition, size);
    mPosition += size;
    return true;
}
