// The closed set of property types, their names, and their values as text. User-interface thread.
#pragma once

#include <string>
#include <string_view>

#include "basekit/cmn/cmn_types.h"
#include "qlx/views/crgbcolor.h"
#include "qlx/views/ugeometry.h"

/// What a property holds. The numbers stand in streams.
enum QLX_PropertyType : std::int32_t {
    qlx_PropType_None = 0,
    qlx_PropType_Bool = 1,
    qlx_PropType_Int32 = 2,
    qlx_PropType_IDType = 3,     ///< unsigned 32-bit identifier, a four-character code
    qlx_PropType_String = 4,     ///< literal bytes
    qlx_PropType_String_Key = 5, ///< a key into the localised string tables
    qlx_PropType_Color = 6,
    qlx_PropType_Point = 7, ///< as text: vertical, then horizontal
    qlx_PropType_Rect = 8,  ///< as text: top, left, bottom, right
    qlx_PropType_Int64 = 9,
};
inline constexpr int kQLX_PropertyTypeCount = 10;

/// The type of a name, letter case included. An unknown name raises the assertion
/// "it != sStringToTypeMap.end()" and answers none.
[[nodiscard]] QLX_API QLX_PropertyType QLX_StringToPropertyType(const std::string& name);
/// The name of a type. An unknown type, none included, raises the assertion
/// "it != sTypeToStringMap.end()" and answers "<unknown>".
[[nodiscard]] QLX_API std::string QLX_PropertyTypeToString(QLX_PropertyType type);
/// The type of a name without an assertion: none when there is no such type.
[[nodiscard]] QLX_API QLX_PropertyType QLX_FindPropertyType(std::string_view name) noexcept;

/// Why a text is not wholly what its type reads from it: an empty text for "all is well", else a
/// reason for people, such as "read as false: neither true nor false".
[[nodiscard]] QLX_API std::string QLX_CheckPropertyText(QLX_PropertyType type,
                                                        std::string_view text);

// Text to value, as property elements are read. Numbers out of range are held at the limits of the
// type; what cannot be read leaves 0.
[[nodiscard]] QLX_API bool QLX_TextToBool(std::string_view text) noexcept;
[[nodiscard]] QLX_API std::int32_t QLX_TextToInt32(std::string_view text);
[[nodiscard]] QLX_API std::int64_t QLX_TextToInt64(std::string_view text);
[[nodiscard]] QLX_API std::uint32_t QLX_TextToIDType(std::string_view text);
/// Three hexadecimal numbers, each after "0x"; the fourth component is 0xFFFF.
[[nodiscard]] QLX_API CRGBColor QLX_TextToColor(std::string_view text);
[[nodiscard]] QLX_API CRGBColor QLX_TextToColor(const char* text);
/// Signed 32-bit decimals.
[[nodiscard]] QLX_API VPoint QLX_TextToPoint(std::string_view text);
[[nodiscard]] QLX_API VPoint QLX_TextToPoint(const char* text);
[[nodiscard]] QLX_API VRect QLX_TextToRect(std::string_view text);
[[nodiscard]] QLX_API VRect QLX_TextToRect(const char* text);
