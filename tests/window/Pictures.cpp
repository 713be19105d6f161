// SPDX-License-Identifier: GPL-3.0-or-later
#include "Pictures.h"

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

namespace orvane::kestrum::host::test {

namespace {

// The glyph edges of another version of the framework or of the font library move by a few levels; a control in the
// wrong place or a wrong value moves dozens of pixels by far more.
constexpr int glyphTolerance = 24;
constexpr std::size_t allowedCount = 16; ///< Less than one digit has: a wrong number is seen.

std::filesystem::path storedPicture(std::string_view name) {
    return std::filesystem::path(KESTRUM_STORED_PICTURES) / (std::string(name) + ".png");
}

} // namespace

void writePng(const Image& image, const std::filesystem::path& file) {
    std::filesystem::create_directories(file.parent_path());
    png_image control{};
    control.version = PNG_IMAGE_VERSION;
    control.width = static_cast<png_uint_32>(image.width);
    control.height = static_cast<png_uint_32>(image.height);
    control.format = PNG_FORMAT_RGB;
    if (png_image_write_to_file(&control, file.c_str(), 0, image.pixels.data(), 0, nullptr) == 0)
        throw std::runtime_error("The picture \"" + file.string() + "\" cannot be written.");
}

Image readPng(const std::filesystem::path& file) {
    png_image control{};
    control.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&control, file.c_str()) == 0)
        throw std::runtime_error("There is no picture \"" + file.string() + "\".");
    control.format = PNG_FORMAT_RGB;
    Image image(static_cast<int>(control.width), static_cast<int>(control.height));
    if (png_image_finish_read(&control, nullptr, image.pixels.data(), 0, nullptr) == 0)
        throw std::runtime_error("The picture \"" + file.string() + "\" is damaged.");
    return image;
}

Image cut(const Image& image, int x, int y, int width, int height) {
    Image part(width, height);
    for (int row = std::max(0, -y); row < std::min(height, image.height - y); ++row)
        for (int column = std::max(0, -x); column < std::min(width, image.width - x); ++column)
            std::memcpy(part.pixel(column, row), image.pixel(x + column, y + row), 3);
    return part;
}

void paste(const Image& part, Image& onto, int x, int y) {
    for (int row = std::max(0, -y); row < std::min(part.height, onto.height - y); ++row)
        for (int column = std::max(0, -x); column < std::min(part.width, onto.width - x); ++column)
            std::memcpy(onto.pixel(x + column, y + row), part.pixel(column, row), 3);
}

Image shrink(const Image& image, int divisor) {
    Image small(image.width / divisor, image.height / divisor);
    for (int row = 0; row < small.height; ++row)
        for (int column = 0; column < small.width; ++column)
            for (int colour = 0; colour < 3; ++colour) {
                int sum = 0;
                for (int down = 0; down < divisor; ++down)
                    for (int across = 0; across < divisor; ++across)
                        sum += image.pixel(column * divisor + across, row * divisor + down)[colour];
                const int count = divisor * divisor;
                small.pixel(column, row)[colour] = static_cast<std::uint8_t>((sum + count / 2) / count);
            }
    return small;
}

Difference compare(const Image& first, const Image& second, int tolerance) {
    if (first.width != second.width || first.height != second.height)
        throw std::runtime_error("The pictures differ in size: " + std::to_string(first.width) + " x " +
                                 std::to_string(first.height) + " and " + std::to_string(second.width) +
                                 " x " + std::to_string(second.height) + ".");
    Difference result{0, 0, Image(first.width, first.height)};
    for (std::size_t at = 0; at < first.pixels.size(); at += 3) {
        int largest = 0;
        for (std::size_t colour = at; colour < at + 3; ++colour)
            largest = std::max(largest, std::abs(first.pixels[colour] - second.pixels[colour]));
        result.largest = std::max(result.largest, largest);
        for (std::size_t colour = at; colour < at + 3; ++colour)
            result.picture.pixels[colour] =
                largest > tolerance ? std::uint8_t{255} : static_cast<std::uint8_t>(first.pixels[colour] / 3);
        result.countBeyond += largest > tolerance ? 1 : 0;
    }
    return result;
}

int countOf(const Image& image, int red, int green, int blue, int tolerance) {
    int count = 0;
    for (std::size_t at = 0; at < image.pixels.size(); at += 3)
        if (std::abs(image.pixels[at] - red) <= tolerance &&
            std::abs(image.pixels[at + 1] - green) <= tolerance &&
            std::abs(image.pixels[at + 2] - blue) <= tolerance)
            ++count;
    return count;
}

ContactSheet::ContactSheet(int columns, int rows, int cellWidth, int cellHeight)
    : columnCount(columns),
      width(cellWidth),
      height(cellHeight),
      sheet(columns * (cellWidth + gap) + gap, rows * (cellHeight + gap) + gap) {}

void ContactSheet::add(const Image& picture) {
    paste(cut(picture, 0, 0, width, height), sheet, gap + next % columnCount * (width + gap),
          gap + next / columnCount * (height + gap));
    ++next;
}

bool looksLike(const Image& seen, const Image& expected) {
    return compare(seen, expected, glyphTolerance).countBeyond <= allowedCount;
}

void expectLooksLike(const Image& seen, std::string_view name) {
    const auto stored = storedPicture(name);
    const std::filesystem::path folder(KESTRUM_SEEN_PICTURES);
    const auto left = folder / (std::string(name) + ".png");
    std::string reason = "there is no stored picture";
    if (std::filesystem::exists(stored)) {
        const Image expected = readPng(stored);
        reason = "the stored picture has another size";
        if (expected.width == seen.width && expected.height == seen.height) {
            if (looksLike(seen, expected))
                return;
            const auto difference = compare(seen, expected, glyphTolerance);
            writePng(difference.picture, folder / (std::string(name) + "-difference.png"));
            reason = std::to_string(difference.countBeyond) + " pixels differ";
        }
    }
    if (std::getenv("KESTRUM_REWRITE_PICTURES") != nullptr) {
        writePng(seen, stored);
        return;
    }
    writePng(seen, left);
    ADD_FAILURE() << left << " does not look like " << stored << ": " << reason
                  << ". When it looks right, scripts/screenshots takes it over.";
}

} // namespace orvane::kestrum::host::test
