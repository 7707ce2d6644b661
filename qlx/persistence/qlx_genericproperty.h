// One typed property value on its own, with attributes.
#pragma once

#include <map>
#include <string>

#include "qlx/persistence/qlx_property.h"

/// A value of one property type. Only the field that the type names means anything; the others are
/// zero. A type that does not fit the value raises an assertion and is kept.
class QLX_API QLX_GenericProperty {
  public:
    QLX_GenericProperty();
    QLX_GenericProperty(bool value, QLX_PropertyType type);
    QLX_GenericProperty(std::int32_t value, QLX_PropertyType type);
    QLX_GenericProperty(std::int64_t value, QLX_PropertyType type);
    QLX_GenericProperty(std::uint32_t value, QLX_PropertyType type);
    /// For both string types.
    QLX_GenericProperty(const std::string& value, QLX_PropertyType type);
    /// A literal is a string, never a bool.
    QLX_GenericProperty(const char* value, QLX_PropertyType type);
    QLX_GenericProperty(const CRGBColor& value, QLX_PropertyType type);
    QLX_GenericProperty(const VPoint& value, QLX_PropertyType type);
    QLX_GenericProperty(const VRect& value, QLX_PropertyType type);

    [[nodiscard]] QLX_PropertyType GetType() const noexcept { return mType; }

    // Another type raises an assertion and answers the field as it is.
    [[nodiscard]] bool AsBool() const;
    [[nodiscard]] std::int32_t AsInt32() const;
    [[nodiscard]] std::int64_t AsInt64() const;
    [[nodiscard]] std::uint32_t AsIDType() const;
    [[nodiscard]] CRGBColor AsColor() const;
    [[nodiscard]] VPoint AsPoint() const;
    [[nodiscard]] VRect AsRect() const;
    /// The value as text: 64-bit decimals for points and rectangles, a colour without its fourth
    /// component. Type none raises the assertion !"Invalid Type" and answers an empty text.
    [[nodiscard]] std::string AsString() const;

    /// Retired: raises the assertion "false" and answers a new string property that the caller
    /// owns.
    [[nodiscard]] static QLX_GenericProperty* FromString(const std::string& typeName,
                                                         const std::string& valueText);

    void SetAttributes(const std::map<std::string, std::string>& attributes);
    /// Empty when there is no such attribute.
    [[nodiscard]] std::string GetAttributeValue(const std::string& name) const;
    /// name="value" and a blank for each attribute, in name order.
    [[nodiscard]] std::string GetAttributesAsString() const;

  private:
    // The order of the fields is part of the binary interface.
    QLX_PropertyType mType = qlx_PropType_None;
    bool mBool = false;
    std::int32_t mInt32 = 0;
    std::int64_t mInt64 = 0;
    std::uint32_t mIDType = 0;
    std::string mString;
    CRGBColor mColor;
    VPoint mPoint;
    VRect mRect;
    std::map<std::string, std::string> mAttributes;
};
