// What the text form of recordings knows of each call. For the sources of QLX_Recording only.
#pragma once

#include <span>

#include "qlx/imaging/qlx_recording.h"

/// One call: its name, what its arguments are, and which state it draws with.
struct QLX_CallEntry {
    const char* name;
    /// A letter an argument. b bool, i int, f float, s text, P point, R rectangle, O rectangle or
    /// null, C colour, N colour or null, F font, G region, Q region or null, Y polygon, W path, I
    /// image, M images, K canvas, A numbers or null, L colours; and the enumerations m pen mode, p
    /// pattern, r resolution, a alpha blend, k blend mode, j justification, v vertical one, x line
    /// join, t theme colour.
    const char* arguments;
    /// Letters of the state that matters, or null for a call that does not draw: f foreground,
    /// b background, h highlight, s pen size, m pen mode, p pattern, t text mode, n font, l pen
    /// place.
    const char* state;
};

[[nodiscard]] const QLX_CallEntry& QLX_GetCallEntry(EPainterCall call) noexcept;
/// The names of an enumeration's values by its letter, in their order; empty for other letters.
[[nodiscard]] std::span<const char* const> QLX_GetEnumerationNames(char letter) noexcept;
