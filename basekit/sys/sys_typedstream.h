// Typed streams: numbers, bools and strings as bytes in a fixed byte order. A stream writes into
// memory and reads from memory; what lies on the disk is somebody else's matter.
#pragma once

#include <string>
#include <string_view>

#include "basekit/cmn/cmn_types.h"

/// Writes values one behind the other. Numbers stand least significant byte first, or most
/// significant first in swap mode, whatever the machine; a bool is one byte, 0 or 1; a string is
/// its length as an unsigned 32-bit number and its bytes.
class QLX_API Sys_TypedOutStream {
  public:
    explicit Sys_TypedOutStream(bool swap = false) : mSwap(swap) {}
    void SetSwapMode(bool swap) { mSwap = swap; }
    [[nodiscard]] bool GetSwapMode() const { return mSwap; }

    void WriteBool(bool value);
    void WriteUInt8(std::uint8_t value);
    void WriteInt16(std::int16_t value);
    void WriteUInt16(std::uint16_t value);
    void WriteInt32(std::int32_t value);
    void WriteUInt32(std::uint32_t value);
    void WriteInt64(std::int64_t value);
    void WriteUInt64(std::uint64_t value);
    /// Throws std::length_error for a string of 4 GB or more.
    void WriteString(std::string_view value);
    void WriteBytes(const void* bytes, std::size_t size);

    [[nodiscard]] const std::string& GetBytes() const { return mBytes; }
    /// Hands the bytes over and leaves the stream empty.
    [[nodiscard]] std::string TakeBytes();

  private:
    template <class Unsigned>
    void Put(Unsigned value);

    std::string mBytes;
    bool mSwap;
};

/// Reads what a Sys_TypedOutStream wrote. Never reads past its end: the first read that would do so
/// fails, every later one fails as well, and GetFailure tells where and why. A failed read returns
/// false and leaves its output untouched. The bytes are not owned and outlive the stream.
class QLX_API Sys_TypedInStream {
  public:
    Sys_TypedInStream(const void* bytes, std::size_t size, bool swap = false);
    explicit Sys_TypedInStream(std::string_view bytes, bool swap = false)
        : Sys_TypedInStream(bytes.data(), bytes.size(), swap) {}
    void SetSwapMode(bool swap) { mSwap = swap; }
    [[nodiscard]] bool GetSwapMode() const { return mSwap; }

    /// Any byte but 0 is true.
    bool ReadBool(bool& value);
    bool ReadUInt8(std::uint8_t& value);
    bool ReadInt16(std::int16_t& value);
    bool ReadUInt16(std::uint16_t& value);
    bool ReadInt32(std::int32_t& value);
    bool ReadUInt32(std::uint32_t& value);
    bool ReadInt64(std::int64_t& value);
    bool ReadUInt64(std::uint64_t& value);
    bool ReadString(std::string& value);
    /// The string's bytes where they stand.
    bool ReadStringView(std::string_view& value);
    bool ReadBytes(void* bytes, std::size_t size);

    [[nodiscard]] std::size_t GetPosition() const { return mPosition; }
    [[nodiscard]] std::size_t GetRemaining() const { return mSize - mPosition; }
    [[nodiscard]] bool HasFailed() const { return mFailed; }
    /// "at byte N: ..." for the first failure; empty while there was none.
    [[nodiscard]] const std::string& GetFailure() const { return mFailure; }
    /// Marks the stream as unreadable from here on; the first reason stays.
    void Fail(const std::string& reason);

  private:
    template <class Unsigned>
    bool Get(Unsigned& value);
    bool Need(std::size_t size);

    const unsigned char* mBytes;
    std::size_t mSize;
    std::size_t mPosition = 0;
    bool mSwap;
    bool mFailed = false;
    std::string mFailure;
};
