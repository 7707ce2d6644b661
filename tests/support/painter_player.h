// Plays bytes as calls of a painter: what the fuzzer and the tests of hostile arguments share.
#pragma once

#include <string>
#include <string_view>

#include "qlx/imaging/qlx_painter.h"

/// Makes calls of every kind with arguments out of the bytes, among them the limits of int, NaN,
/// infinities, malformed text, null pointers, and savers that end in any order. At most maximum
/// calls, so that a long input ends.
void PlayPainterBytes(const QLX_Painter::Ptr& painter, std::string_view bytes, int maximum = 60);

/// Plays bytes on pixels with guard bytes around every row at a scale that they choose, on the same
/// painter once its target is gone, and on a recorder whose text is read back. Returns what went
/// wrong, empty when nothing did.
[[nodiscard]] std::string BrokenPainterLaw(std::string_view bytes);
