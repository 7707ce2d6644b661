// What pen modes, blends and patterns are in SVG: the blend mode of the compositing standard that
// gives the same pixels on an opaque canvas, or the one that comes nearest and words that say so.
#pragma once

#include <string>

#include "qlx/imaging/qlx_recording.h"

struct QLX_SVGLook {
    std::string style;  ///< of the group around the shapes: it must be the outermost; "" for none
    std::string note;   ///< what is not the same; "" when the pixels are
    double opacity = 1; ///< weighs all paint
    bool inverted = false;    ///< whether the source's colours are inverted before
    bool isPicture = false;   ///< opacity and inversion are the group's and not the paint's
    bool isPatterned = false; ///< the pen's pattern is the paint
};

/// Of one recorded call: its operation's, the pen's or the text's.
[[nodiscard]] QLX_SVGLook QLX_LookOfCall(const QLX_RecordedCall& call);

/// A mode with a colour laid down by alpha (0 to 1), or with a picture (null).
[[nodiscard]] QLX_SVGLook QLX_LookOfMode(EPenMode mode, const CRGBColor* color, double alpha);
[[nodiscard]] QLX_SVGLook QLX_LookOfBlend(QLX_Painter::EBlendMode blend);

/// The inside of a pattern element that stands for one cell of squares of a size: the unset ones in
/// the background's attributes (none when ""), the set ones in the foreground's.
[[nodiscard]] std::string QLX_PatternTile(EPenPattern pattern, double square,
                                          const std::string& foreground,
                                          const std::string& background);

// Text of attributes

/// The shortest digits that give the same float.
[[nodiscard]] std::string QLX_SVGNumber(double value);
[[nodiscard]] std::string QLX_SVGAttribute(const char* name, const std::string& value);
[[nodiscard]] std::string QLX_SVGAttribute(const char* name, double value);
/// An attribute such as fill with a colour, its opacity beside it where it is less than 1.
[[nodiscard]] std::string QLX_SVGPaint(const char* what, const CRGBColor& color, double alpha);
/// UTF-8 as XML takes it: markup escaped, and what XML 1.0 has no character for as U+FFFD.
[[nodiscard]] std::string QLX_SVGEscaped(std::string_view text);
