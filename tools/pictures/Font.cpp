// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Font.h"

#include <cairo-ft.h>
#include <ft2build.h>

#include <cstdint>
#include <stdexcept>
#include <vector>
#include FT_FREETYPE_H

namespace orvane::kestrum::pictures {

namespace {

/// Lives as long as the program, as every face has to end before it.
FT_Library fontLibrary() {
    static FT_Library library = [] {
        FT_Library made = nullptr;
        if (FT_Init_FreeType(&made) != 0)
            throw std::runtime_error("the font library does not start");
        return made;
    }();
    return library;
}

} // namespace

struct Font::Face {
    explicit Face(const std::filesystem::path& file) {
        FT_Face freeType = nullptr;
        if (FT_New_Face(fontLibrary(), file.c_str(), 0, &freeType) != 0)
            throw std::runtime_error(file.string() + " cannot be read as a font");
        cairo = cairo_ft_font_face_create_for_ft_face(freeType, FT_LOAD_NO_HINTING);
        // The drawing library keeps glyphs of a face longer than its user does: it also ends the face.
        static const cairo_user_data_key_t key{};
        cairo_font_face_set_user_data(cairo, &key, freeType,
                                      [](void* ended) { FT_Done_Face(static_cast<FT_Face>(ended)); });
    }
    ~Face() { cairo_font_face_destroy(cairo); }
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;

    struct Line {
        std::vector<cairo_glyph_t> glyphs; ///< Placed from (0, 0).
        double width = 0;
    };

    Line line(const std::string& utf8, double height, double tracking) const {
        cairo_matrix_t size, identity;
        cairo_matrix_init_scale(&size, height, height);
        cairo_matrix_init_identity(&identity);
        cairo_font_options_t* const options = cairo_font_options_create();
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        cairo_scaled_font_t* const scaled = cairo_scaled_font_create(cairo, &size, &identity, options);
        cairo_font_options_destroy(options);

        cairo_glyph_t* glyphs = nullptr;
        int count = 0;
        const cairo_status_t status =
            cairo_scaled_font_text_to_glyphs(scaled, 0, 0, utf8.c_str(), static_cast<int>(utf8.size()),
                                             &glyphs, &count, nullptr, nullptr, nullptr);
        Line result;
        if (status == CAIRO_STATUS_SUCCESS) {
            cairo_text_extents_t extents;
            cairo_scaled_font_glyph_extents(scaled, glyphs, count, &extents);
            result.glyphs.assign(glyphs, glyphs + count);
            for (int i = 0; i < count; ++i)
                result.glyphs[static_cast<std::size_t>(i)].x += i * tracking * height;
            result.width = extents.x_advance + (count - 1) * tracking * height;
        }
        cairo_glyph_free(glyphs);
        cairo_scaled_font_destroy(scaled);
        if (status != CAIRO_STATUS_SUCCESS)
            throw std::runtime_error("the text \"" + utf8 + "\" cannot be set");
        return result;
    }

    cairo_font_face_t* cairo = nullptr;
};

Font::Font(const std::filesystem::path& file) : face(std::make_shared<Face>(file)) {}

Path Font::text(const std::string& utf8, double x, double baseline, double height, Align align,
                double tracking) const {
    Face::Line line = face->line(utf8, height, tracking);
    const double shift = align == Align::left ? 0 : align == Align::middle ? line.width / 2 : line.width;
    for (cairo_glyph_t& glyph : line.glyphs) {
        glyph.x += x - shift;
        glyph.y += baseline;
    }
    return [face = face, height, glyphs = std::move(line.glyphs)](cairo_t* context) {
        cairo_set_font_face(context, face->cairo);
        cairo_set_font_size(context, height);
        cairo_font_options_t* const options = cairo_font_options_create();
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        cairo_set_font_options(context, options);
        cairo_font_options_destroy(options);
        cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING); // glyphs are drawn for this rule
        cairo_glyph_path(context, glyphs.data(), static_cast<int>(glyphs.size()));
    };
}

double Font::width(const std::string& utf8, double height, double tracking) const {
    return face->line(utf8, height, tracking).width;
}

} // namespace orvane::kestrum::pictures
