// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/Image.h"

#include <filesystem>
#include <string_view>

namespace orvane::kestrum::host::test {

/// @throws std::runtime_error when the file cannot be written; missing folders are made.
void writePng(const Image& image, const std::filesystem::path& file);
/// @throws std::runtime_error when there is no such picture.
Image readPng(const std::filesystem::path& file);

/// Part of a picture; what lies outside is black.
Image cut(const Image& image, int x, int y, int width, int height);
void paste(const Image& part, Image& onto, int x, int y);
/// Each pixel the mean of the `divisor` by `divisor` pixels that it covers; a remainder at the edges is left out.
Image shrink(const Image& image, int divisor);

struct Difference {
    int largest = 0;             ///< Of any colour of any pixel, out of 255.
    std::size_t countBeyond = 0; ///< Of the pixels, those that differ by more than the tolerance.
    Image picture;               ///< White where they differ by more, the first picture darkened elsewhere.
};
/// @throws std::runtime_error when the sizes differ.
Difference compare(const Image& first, const Image& second, int tolerance);

/// Whether someone who compares the two would call them the same: a few glyph edges may differ, a single digit may not.
/// @throws std::runtime_error when the sizes differ.
bool looksLike(const Image& seen, const Image& expected);

/// How many of the pixels lie within `tolerance` of a colour in each part.
int countOf(const Image& image, int red, int green, int blue, int tolerance);

/// Many pictures of one size, row by row from the upper left.
class ContactSheet {
public:
    ContactSheet(int columns, int rows, int cellWidth, int cellHeight);
    void add(const Image& picture);
    const Image& image() const { return sheet; }

private:
    static constexpr int gap = 4;
    int columnCount;
    int width;
    int height;
    int next = 0;
    Image sheet;
};

/// A GoogleTest failure unless the picture looks like the one of that name in docs/images; the seen picture and the
/// difference are then left in the build folder. With KESTRUM_REWRITE_PICTURES set, stores the picture instead, unless the stored
/// one already looks like it.
void expectLooksLike(const Image& seen, std::string_view name);

} // namespace orvane::kestrum::host::test
