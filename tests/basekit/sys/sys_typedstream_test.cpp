// Typed streams: bytes in both orders, and reading what is not all there.
#include "basekit/sys/sys_typedstream.h"

#include <gtest/gtest.h>

namespace {
void WriteAll(Sys_TypedOutStream& out) {
    out.WriteBool(true);
    out.WriteInt16(-2);
    out.WriteInt32(-3);
    out.WriteUInt32(0xFEDCBA98u);
    out.WriteInt64(std::int64_t{-4} << 40);
    out.WriteString("\xC3\xA4\0b");
    out.WriteString("");
}

bool ReadAll(Sys_TypedInStream& in) {
    bool flag = false;
    std::int16_t small = 0;
    std::int32_t middle = 0;
    std::uint32_t unsignedValue = 0;
    std::int64_t large = 0;
    std::string text, empty = "x";
    return in.ReadBool(flag) && flag && in.ReadInt16(small) && small == -2 &&
           in.ReadInt32(middle) && middle == -3 && in.ReadUInt32(unsignedValue) &&
           unsignedValue == 0xFEDCBA98u && in.ReadInt64(large) && large == std::int64_t{-4} << 40 &&
           in.ReadString(text) && text == "\xC3\xA4" && in.ReadString(empty) && empty.empty();
}

TEST(TypedStream, ReadsBackInBothOrders) {
    for (const bool swap : {false, true}) {
        SCOPED_TRACE(swap);
        Sys_TypedOutStream out(swap);
        WriteAll(out);
        Sys_TypedInStream in(out.GetBytes(), swap);
        EXPECT_TRUE(ReadAll(in));
        EXPECT_EQ(in.GetRemaining(), 0u);
    }
}

TEST(TypedStream, ByteOrderIsFixed) {
    Sys_TypedOutStream out;
    out.WriteUInt32(0x01020304u);
    out.SetSwapMode(true);
    out.WriteUInt32(0x01020304u);
    out.WriteString("ab");
    EXPECT_EQ(out.GetBytes(), std::string("\4\3\2\1\1\2\3\4\0\0\0\2ab", 14));
}

TEST(TypedStream, FailsAtEveryTruncationAndStaysFailed) {
    Sys_TypedOutStream out;
    WriteAll(out);
    for (std::size_t size = 0; size < out.GetBytes().size(); ++size) {
        SCOPED_TRACE(size);
        Sys_TypedInStream in(out.GetBytes().data(), size);
        EXPECT_FALSE(ReadAll(in));
        EXPECT_TRUE(in.HasFailed());
        std::uint8_t byte = 7;
        EXPECT_FALSE(in.ReadUInt8(byte)); // even where bytes are left
        EXPECT_EQ(byte, 7);
    }
}

TEST(TypedStream, LyingStringLengthTakesNoMemory) {
    Sys_TypedOutStream out;
    out.WriteUInt32(0xFFFFFFFFu);
    Sys_TypedInStream in(out.GetBytes());
    std::string text = "kept";
    EXPECT_FALSE(in.ReadString(text));
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(in.GetFailure(), "at byte 4: 4294967295 bytes expected, 0 left");
}
} // namespace
