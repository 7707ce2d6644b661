#include "qlx/persistence/qlx_genericproperty.h"

#include <cinttypes>
#include <cstdio>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_string.h"

QLX_GenericProperty::QLX_GenericProperty() = default;

QLX_GenericProperty::QLX_GenericProperty(bool value, QLX_PropertyType type)
    : mType(type), mBool(value) {
    CMN_ASSERT(mType == qlx_PropType_Bool);
}

QLX_GenericProperty::QLX_GenericProperty(std::int32_t value, QLX_PropertyType type)
    : mType(type), mInt32(value) {
    CMN_ASSERT(mType == qlx_PropType_Int32);
}

QLX_GenericProperty::QLX_GenericProperty(std::int64_t value, QLX_PropertyType type)
    : mType(type), mInt64(value) {
    CMN_ASSERT(mType == qlx_PropType_Int64);
}

QLX_GenericProperty::QLX_GenericProperty(std::uint32_t value, QLX_PropertyType type)
    : mType(type), mIDType(value) {
    CMN_ASSERT(mType == qlx_PropType_IDType);
}

QLX_GenericProperty::QLX_GenericProperty(const std::string& value, QLX_PropertyType type)
    : mType(type), mString(value) {
    CMN_ASSERT(mType == qlx_PropType_String || mType == qlx_PropType_String_Key);
}

QLX_GenericProperty::QLX_GenericProperty(const char* value, QLX_PropertyType type)
    : QLX_GenericProperty(std::string(value), type) {}

QLX_GenericProperty::QLX_GenericProperty(const CRGBColor& value, QLX_PropertyType type)
    : mType(type), mColor(value) {
    CMN_ASSERT(mType == qlx_PropType_Color);
}

QLX_GenericProperty::QLX_GenericProperty(const VPoint& value, QLX_PropertyType type)
    : mType(type), mPoint(value) {
    CMN_ASSERT(mType == qlx_PropType_Point);
}

QLX_GenericProperty::QLX_GenericProperty(const VRect& value, QLX_PropertyType type)
    : mType(type), mRect(value) {
    CMN_ASSERT(mType == qlx_PropType_Rect);
}

bool QLX_GenericProperty::AsBool() const {
    CMN_ASSERT(mType == qlx_PropType_Bool);
    return mBool;
}

std::int32_t QLX_GenericProperty::AsInt32() const {
    CMN_ASSERT(mType == qlx_PropType_Int32);
    return mInt32;
}

std::int64_t QLX_GenericProperty::AsInt64() const {
    CMN_ASSERT(mType == qlx_PropType_Int64);
    return mInt64;
}

std::uint32_t QLX_GenericProperty::AsIDType() const {
    CMN_ASSERT(mType == qlx_PropType_IDType);
    return mIDType;
}

CRGBColor QLX_GenericProperty::AsColor() const {
    CMN_ASSERT(mType == qlx_PropType_Color);
    return mColor;
}

VPoint QLX_GenericProperty::AsPoint() const {
    CMN_ASSERT(mType == qlx_PropType_Point);
    return mPoint;
}

VRect QLX_GenericProperty::AsRect() const {
    CMN_ASSERT(mType == qlx_PropType_Rect);
    return mRect;
}

std::string QLX_GenericProperty::AsString() const {
    char text[4 * 21];
    switch (mType) {
    case qlx_PropType_Bool:
        return mBool ? "true" : "false";
    case qlx_PropType_Int32:
        return std::to_string(mInt32);
    case qlx_PropType_Int64:
        return std::to_string(mInt64);
    case qlx_PropType_IDType:
        return Cmn_IDToString(mIDType);
    case qlx_PropType_String:
    case qlx_PropType_String_Key:
        return mString;
    case qlx_PropType_Color:
        std::snprintf(text, sizeof text, "0x%x 0x%x 0x%x", mColor.GetRed(), mColor.GetGreen(),
                      mColor.GetBlue());
        return text;
    case qlx_PropType_Point:
        std::snprintf(text, sizeof text, "%" PRId64 " %" PRId64, std::int64_t{mPoint.v},
                      std::int64_t{mPoint.h});
        return text;
    case qlx_PropType_Rect:
        std::snprintf(text, sizeof text, "%" PRId64 " %" PRId64 " %" PRId64 " %" PRId64,
                      std::int64_t{mRect.Top()}, std::int64_t{mRect.Left()},
                      std::int64_t{mRect.Bottom()}, std::int64_t{mRect.Right()});
        return text;
    case qlx_PropType_None:
        break;
    }
    CMN_ASSERT(!"Invalid Type");
    return {};
}

QLX_GenericProperty* QLX_GenericProperty::FromString(const std::string&,
                                                     const std::string& valueText) {
    CMN_ASSERT(false);
    return new QLX_GenericProperty(valueText, qlx_PropType_String);
}

void QLX_GenericProperty::SetAttributes(const std::map<std::string, std::string>& attributes) {
    mAttributes = attributes;
}

std::string QLX_GenericProperty::GetAttributeValue(const std::string& name) const {
    const auto found = mAttributes.find(name);
    return found == mAttributes.end() ? std::string() : found->second;
}

std::string QLX_GenericProperty::GetAttributesAsString() const {
    std::string text;
    for (const auto& [name, value] : mAttributes)
        text.append(name).append("=\"").append(value).append("\" ");
    return text;
}
