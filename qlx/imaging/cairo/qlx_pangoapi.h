// Pango's functions by pointer. Its library, with GLib and HarfBuzz behind it, is loaded for the
// first text that needs it: joined, combined or right to left. Most programs never do.
#pragma once

#include <pango/pangofc-fontmap.h>
#include <pango/pangoft2.h>

// clang-format off
#define QLX_PANGO_FUNCTIONS(F) \
    F(g_free) F(g_object_unref) F(g_type_check_instance_is_a) F(pango_attr_font_features_new) \
    F(pango_attr_list_insert) F(pango_attr_list_new) F(pango_attr_list_unref) \
    F(pango_context_set_round_glyph_positions) F(pango_fc_font_get_pattern) \
    F(pango_fc_font_get_type) F(pango_fc_font_map_set_config) \
    F(pango_fc_font_map_set_default_substitute) F(pango_font_description_free) \
    F(pango_font_description_new) F(pango_font_description_set_absolute_size) \
    F(pango_font_description_set_family) F(pango_font_description_set_weight) \
    F(pango_font_map_create_context) F(pango_ft2_font_map_new) \
    F(pango_ft2_font_map_set_resolution) F(pango_layout_get_cursor_pos) \
    F(pango_layout_get_line_readonly) F(pango_layout_line_get_x_ranges) \
    F(pango_layout_line_x_to_index) F(pango_layout_new) \
    F(pango_layout_set_attributes) F(pango_layout_set_font_description) \
    F(pango_layout_set_single_paragraph_mode) F(pango_layout_set_text)
// clang-format on

struct QLX_PangoFunctions {
// A declared name in parentheses would be none. NOLINTNEXTLINE(bugprone-macro-parentheses)
#define QLX_PANGO_FUNCTION(name) decltype(&::name) name = nullptr;
    QLX_PANGO_FUNCTIONS(QLX_PANGO_FUNCTION)
#undef QLX_PANGO_FUNCTION
};

/// Loads the library at the first call. Throws std::runtime_error when it is not there or lacks a
/// function. User-interface thread.
[[nodiscard]] const QLX_PangoFunctions& QLX_Pango();
