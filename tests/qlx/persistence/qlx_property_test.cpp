// Types, values on their own, and values as text.
#include "qlx/persistence/qlx_genericproperty.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include <memory>

#include "tests/support/assertion_catcher.h"

namespace {
TEST(PropertyType, NamesAndTypesAreInverse) {
    for (int type = 1; type < kQLX_PropertyTypeCount; ++type)
        EXPECT_EQ(
            QLX_StringToPropertyType(QLX_PropertyTypeToString(static_cast<QLX_PropertyType>(type))),
            type);
    AssertionCatcher catcher;
    EXPECT_EQ(QLX_StringToPropertyType("Bool"), qlx_PropType_None);
    EXPECT_EQ(QLX_PropertyTypeToString(static_cast<QLX_PropertyType>(10)), "<unknown>");
    EXPECT_EQ(catcher.TakeTexts(), (std::vector<std::string>{"it != sStringToTypeMap.end()",
                                                             "it != sTypeToStringMap.end()"}));
}

TEST(PropertyText, ReadsAndTellsWhatItDidNotRead) {
    const struct {
        QLX_PropertyType mType;
        const char* mText;
        const char* mReadAs;
        bool mWhole;
    } rows[] = {
        {qlx_PropType_Bool, "true", "true", true},
        {qlx_PropType_Bool, "True", "false", false},
        {qlx_PropType_Bool, "1", "false", false},
        {qlx_PropType_Bool, " true", "false", false},
        {qlx_PropType_Int32, "-12", "-12", true},
        {qlx_PropType_Int32, "99999999999", "2147483647", false},
        {qlx_PropType_Int32, "12px", "12", false},
        {qlx_PropType_Int64, "9000000000", "9000000000", true},
        {qlx_PropType_IDType, "mute", "mute", true},
        {qlx_PropType_IDType, "too long", "too ", false},
        {qlx_PropType_Color, "0xff 0x80 0x0", "0xff 0x80 0x0", true},
        {qlx_PropType_Color, "0xff 0x80", "0xff 0x80 0x0", false},
        {qlx_PropType_Color, "255 128 0", "0x0 0x0 0x0", false},
        {qlx_PropType_Color, "0x1ffff 0 0", "0xffff 0x0 0x0", false},
        {qlx_PropType_Point, "3 -4", "3 -4", true},
        {qlx_PropType_Point, "4294967296 1", "2147483647 1", false},
        {qlx_PropType_Rect, "1 2 3 4", "1 2 3 4", true},
        {qlx_PropType_Rect, "1 2 3", "1 2 3 0", false},
        {qlx_PropType_Rect, "1 2 3 4 5", "1 2 3 4", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mText);
        const QLX_PropertyType type = row.mType;
        const std::string text = row.mText;
        const QLX_GenericProperty value =
            type == qlx_PropType_Bool     ? QLX_GenericProperty(QLX_TextToBool(text), type)
            : type == qlx_PropType_Int32  ? QLX_GenericProperty(QLX_TextToInt32(text), type)
            : type == qlx_PropType_Int64  ? QLX_GenericProperty(QLX_TextToInt64(text), type)
            : type == qlx_PropType_IDType ? QLX_GenericProperty(QLX_TextToIDType(text), type)
            : type == qlx_PropType_Color  ? QLX_GenericProperty(QLX_TextToColor(text), type)
            : type == qlx_PropType_Point  ? QLX_GenericProperty(QLX_TextToPoint(text), type)
                                          : QLX_GenericProperty(QLX_TextToRect(text), type);
        EXPECT_EQ(value.AsString(), row.mReadAs);
        EXPECT_EQ(QLX_CheckPropertyText(type, text).empty(), row.mWhole)
            << QLX_CheckPropertyText(type, text);
    }
    EXPECT_EQ(QLX_TextToColor("0x1 0x2 0x3").GetAlpha(), 0xFFFF);
    EXPECT_EQ(QLX_TextToRect("1 2 3 4"), VRect(/*left*/ 2, /*top*/ 1, /*right*/ 4, /*bottom*/ 3));
}

TEST(GenericProperty, AnotherTypeAssertsAndAnswersTheField) {
    AssertionCatcher catcher;
    const QLX_GenericProperty number(std::int32_t{5}, qlx_PropType_Bool);
    EXPECT_EQ(number.AsInt32(), 5);
    EXPECT_FALSE(number.AsBool());
    EXPECT_EQ(QLX_GenericProperty().AsString(), "");
    const std::unique_ptr<QLX_GenericProperty> retired(
        QLX_GenericProperty::FromString("int32", "7"));
    EXPECT_EQ(retired->AsString(), "7");
    EXPECT_EQ(retired->GetType(), qlx_PropType_String);
    EXPECT_EQ(catcher.TakeTexts(), (std::vector<std::string>{"mType == qlx_PropType_Int32",
                                                             "mType == qlx_PropType_Int32",
                                                             "!\"Invalid Type\"", "false"}));
}

TEST(GenericProperty, PointsHave64BitsAsTextButNotOnTheWayBack) {
    const VPoint point(1, std::int64_t{1} << 32);
    const std::string text = QLX_GenericProperty(point, qlx_PropType_Point).AsString();
    EXPECT_EQ(text, "4294967296 1");
    EXPECT_NE(QLX_TextToPoint(text), point);
}

TEST(GenericProperty, WritesAttributesInNameOrder) {
    QLX_GenericProperty value(true, qlx_PropType_Bool);
    EXPECT_EQ(value.GetAttributesAsString(), "");
    value.SetAttributes({{"b", "2"}, {"a", "1"}});
    EXPECT_EQ(value.GetAttributesAsString(), "a=\"1\" b=\"2\" ");
    EXPECT_EQ(value.GetAttributeValue("b"), "2");
    EXPECT_EQ(value.GetAttributeValue("c"), "");
}

/// Numbers as the C library reads them, held at the limits of 32 bits.
VRect SlowRect(const char* text) {
    std::int32_t numbers[4] = {};
    for (std::int32_t& number : numbers) {
        char* end = nullptr;
        const long long wide = std::strtoll(text, &end, 10);
        if (end == text)
            break;
        number = static_cast<std::int32_t>(std::clamp<long long>(wide, INT32_MIN, INT32_MAX));
        text = end;
    }
    return VRect(numbers[1], numbers[0], numbers[3], numbers[2]);
}

TEST(PropertyText, RectanglesAreWhatASlowReaderMakesOfThem) {
    std::mt19937 random(7);
    const std::string characters = "0123456789012345678901234567890    -+-x\t";
    for (int round = 0; round < 20'000; ++round) {
        std::string text;
        for (std::uint32_t size = random() % 40; size > 0; --size)
            text += characters[random() % characters.size()];
        const VRect slow = SlowRect(text.c_str());
        // A text that ends with its NUL, and one that goes on behind its end.
        EXPECT_EQ(QLX_TextToRect(text.c_str()), slow) << text;
        const std::string longer = text + "7";
        EXPECT_EQ(QLX_TextToRect(std::string_view(longer).substr(0, text.size())), slow) << text;
    }
}

TEST(PropertyText, ColoursKeepTheLowBitsOfWhatIsTooLarge) {
    const struct {
        const char* mText;
        CRGBColor mColor;
        const char* mComplaint;
    } rows[] = {
        {"0xff 0x80 0x0", CRGBColor(0xFF, 0x80, 0), ""},
        {"0xFFFF 0xabcd\t0xABCD", CRGBColor(0xFFFF, 0xABCD, 0xABCD), ""},
        {"0x1FFFF 0x10000 0x000012", CRGBColor(0xFFFF, 0, 0x12), "a number is out of range"},
        {"0x100000001 0x1 0x1", CRGBColor(1, 1, 1), "a number is out of range"},
        {"0x1 0x 0x1", CRGBColor(1, 0, 0),
         "1 of 3 numbers could be read, the others are taken as 0"},
        {"0x1 0x2 0x3 ", CRGBColor(1, 2, 3), "there is more after the last number"},
        {"1 2 3", CRGBColor(0, 0, 0), "0 of 3 numbers could be read, the others are taken as 0"},
        {"0", CRGBColor(0, 0, 0), "0 of 3 numbers could be read, the others are taken as 0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(QLX_TextToColor(row.mText), row.mColor) << row.mText;
        EXPECT_EQ(QLX_TextToColor(std::string_view(row.mText)), row.mColor) << row.mText;
        EXPECT_EQ(QLX_CheckPropertyText(qlx_PropType_Color, row.mText), row.mComplaint)
            << row.mText;
    }
}
} // namespace
