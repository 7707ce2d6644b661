// Conversions between numbers, identifiers and text, XML escaping, and the little of UTF-8 that key
// handling and file readers need. All of it is independent of the locale.
#pragma once

#include <string>
#include <string_view>

#include "basekit/cmn/cmn_types.h"

// Identifiers

/// A four-character code as text: its four characters when all are printable ASCII (0x20 to 0x7E),
/// else the ten characters "0x" and eight capital hexadecimal digits.
[[nodiscard]] QLX_API std::string Cmn_IDToString(std::uint32_t id);

/// The inverse, defined for every text: four bytes are taken as they are, ten as the hexadecimal
/// form when they have it. Otherwise a shorter text is filled up with blanks, a longer one cut to
/// four bytes, and the empty text is 0.
[[nodiscard]] QLX_API std::uint32_t Cmn_StringToID(std::string_view text);

/// Takes only what Cmn_IDToString writes. Returns false and leaves id untouched for anything else.
[[nodiscard]] QLX_API bool Cmn_ParseID(std::string_view text, std::uint32_t& id);

// Numbers

/// The decimal number at the beginning of the text: blanks, a sign, digits; what follows is
/// ignored. 0 when there is no digit; held at the type's limits.
[[nodiscard]] QLX_API std::int32_t Cmn_StringToInt32(std::string_view text);
[[nodiscard]] QLX_API std::int64_t Cmn_StringToInt64(std::string_view text);

/// Takes only a whole decimal number within range, with an optional sign and nothing around it.
/// Returns false and leaves value untouched for anything else.
[[nodiscard]] QLX_API bool Cmn_ParseInt32(std::string_view text, std::int32_t& value);
[[nodiscard]] QLX_API bool Cmn_ParseInt64(std::string_view text, std::int64_t& value);

// XML

/// The text with & < > " ' as the entities that XML 1.0 predefines, and tab, line feed and carriage
/// return as character references, so that an attribute gives back exactly what was written.
[[nodiscard]] QLX_API std::string Cmn_XML_SimpleEscape(std::string_view text);

// UTF-8

/// How many bytes a character takes that begins with this byte: 1 to 4. A byte that cannot begin a
/// character counts as a character of its own.
[[nodiscard]] QLX_API int Cmn_UTF8Length(unsigned char leadByte);

/// The code point at position, which moves past it. A byte that belongs to no well-formed character
/// (overlong, surrogate, above 0x10FFFF, cut off) yields 0xFFFD and moves by one.
[[nodiscard]] QLX_API std::uint32_t Cmn_DecodeUTF8(std::string_view text, std::size_t& position);

/// Appends a code point; one that is none appends U+FFFD.
QLX_API void Cmn_AppendUTF8(std::string& text, std::uint32_t codePoint);

/// A full-width character (U+FF01 to U+FF5E) and the wide blank (U+3000) as their ASCII
/// equivalents; every other code point as it is.
[[nodiscard]] QLX_API std::uint32_t Cmn_FullWidthToASCII(std::uint32_t codePoint);
