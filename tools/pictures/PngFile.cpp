// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/PngFile.h"

#include <png.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace orvane::kestrum::pictures {

namespace {

/// Even noise from 0 to 1 that depends on the pixel alone (a finalizer of integer hashes).
float noiseAt(std::uint32_t x, std::uint32_t y, std::uint32_t channel) noexcept {
    std::uint32_t hash = x * 0x9E3779B1u ^ (y + channel * 0x632BE5ABu) * 0x85EBCA77u;
    hash = (hash ^ (hash >> 16)) * 0x7FEB352Du;
    hash = (hash ^ (hash >> 15)) * 0x846CA68Bu;
    hash ^= hash >> 16;
    return static_cast<float>(hash >> 8) / 16777216.0f;
}

std::uint8_t rounded(float value, float noise) noexcept {
    return static_cast<std::uint8_t>(std::clamp(std::floor(value * 255.0f + noise), 0.0f, 255.0f));
}

/// To steps that are no more than one level once the colour is laid over something with this alpha.
std::uint8_t coarselyRounded(float value, float alpha) noexcept {
    const float step = std::floor(1 / std::max(alpha, 1.0f / 64));
    return static_cast<std::uint8_t>(std::clamp(std::floor(value * 255 / step + 0.5f) * step, 0.0f, 255.0f));
}

struct OpenFile {
    explicit OpenFile(const std::filesystem::path& path) : file(std::fopen(path.c_str(), "wb")) {
        if (file == nullptr)
            throw std::runtime_error(path.string() + " cannot be written");
    }
    ~OpenFile() { std::fclose(file); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    std::FILE* file;
};

std::vector<std::uint8_t> withoutAlpha(const Bytes& picture) {
    std::vector<std::uint8_t> result;
    result.reserve(picture.bytes.size() / 4 * 3);
    for (std::size_t i = 0; i < picture.bytes.size(); i += 4)
        result.insert(result.end(), &picture.bytes[i], &picture.bytes[i] + 3);
    return result;
}

/// @return false when the library reports an error, which it does by a long jump: no object is made after the mark.
bool encode(const std::vector<std::uint8_t>& bytes, int width, int height, bool plain, std::FILE* target) {
    png_structp writer = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(writer);
    if (setjmp(png_jmpbuf(writer)) != 0) {
        png_destroy_write_struct(&writer, &info);
        return false;
    }
    png_init_io(writer, target);
    png_set_IHDR(writer, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 plain ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(writer, 9);
    png_write_info(writer, info);
    for (int y = 0; y < height; ++y)
        png_write_row(writer, bytes.data() + static_cast<std::ptrdiff_t>(y) * width * (plain ? 3 : 4));
    png_write_end(writer, nullptr);
    png_destroy_write_struct(&writer, &info);
    return true;
}

bool opaque(const Bytes& picture) {
    for (std::size_t i = 3; i < picture.bytes.size(); i += 4)
        if (picture.bytes[i] != 255)
            return false;
    return true;
}

} // namespace

Bytes dithered(const Picture& picture) {
    Bytes result{picture.width, picture.height, {}};
    result.bytes.reserve(picture.pixels.size() * 4);
    const bool solid =
        std::ranges::all_of(picture.pixels, [](const Colour& pixel) { return pixel.alpha > 0.9999f; });
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const Colour& pixel = picture.at(x, y);
            const auto column = static_cast<std::uint32_t>(x), row = static_cast<std::uint32_t>(y);
            const std::uint8_t alpha = rounded(pixel.alpha, 0.5f);
            const float scale = alpha == 0 ? 0.0f : 1.0f / pixel.alpha;
            const auto put = [&](float value, std::uint32_t channel) {
                result.bytes.push_back(solid ? rounded(value, noiseAt(column, row, channel))
                                             : coarselyRounded(value * scale, pixel.alpha));
            };
            put(pixel.red, 0);
            put(pixel.green, 1);
            put(pixel.blue, 2);
            result.bytes.push_back(alpha);
        }
    return result;
}

void writePng(const Bytes& picture, const std::filesystem::path& path) {
    const OpenFile target(path);
    const bool plain = opaque(picture);
    if (!encode(plain ? withoutAlpha(picture) : picture.bytes, picture.width, picture.height, plain,
                target.file) ||
        std::fflush(target.file) != 0) // what is still buffered may not fit on the disk either
        throw std::runtime_error(path.string() + " cannot be written");
}

Bytes readPng(std::span<const std::uint8_t> png) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, png.data(), png.size()) == 0)
        throw std::runtime_error("no PNG");
    image.format = PNG_FORMAT_RGBA;
    Bytes result{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    result.bytes.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, result.bytes.data(), 0, nullptr) == 0)
        throw std::runtime_error("a damaged PNG");
    return result;
}

Bytes readPng(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        throw std::runtime_error(path.string() + " cannot be read");
    const std::vector<char> characters{std::istreambuf_iterator<char>(stream), {}};
    const std::vector<std::uint8_t> bytes(characters.begin(), characters.end());
    return readPng(bytes);
}

} // namespace orvane::kestrum::pictures
