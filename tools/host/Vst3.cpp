// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Vst3.h"

#include <algorithm>
#include <cstdint>

namespace orvane::kestrum::host {

namespace {

void appendUtf8(std::string& text, std::uint32_t point) {
    const auto add = [&text](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (point < 0x80) {
        add(point);
    } else if (point < 0x800) {
        add(0xC0 | (point >> 6));
        add(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        add(0xE0 | (point >> 12));
        add(0x80 | ((point >> 6) & 0x3F));
        add(0x80 | (point & 0x3F));
    } else {
        add(0xF0 | (point >> 18));
        add(0x80 | ((point >> 12) & 0x3F));
        add(0x80 | ((point >> 6) & 0x3F));
        add(0x80 | (point & 0x3F));
    }
}

constexpr bool isHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool isLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

} // namespace

std::string toUtf8(const Vst::TChar* text, std::size_t capacity) {
    std::string result;
    for (std::size_t index = 0; index < capacity && text[index] != 0; ++index) {
        std::uint32_t point = text[index];
        if (isHighSurrogate(point) && index + 1 < capacity && isLowSurrogate(text[index + 1]))
            point = 0x10000 + ((point - 0xD800) << 10) + (text[++index] - 0xDC00u);
        else if (isHighSurrogate(point) || isLowSurrogate(point))
            point = 0xFFFD; // half a pair means nothing by itself
        appendUtf8(result, point);
    }
    return result;
}

void copyAscii(std::string_view text, Vst::String128 destination) {
    const std::size_t length = std::min<std::size_t>(text.size(), 127);
    std::copy_n(text.begin(), length, destination);
    std::fill_n(destination + length, 128 - length, Vst::TChar{0});
}

std::string toHexadecimal(const TUID id) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (std::size_t index = 0; index < sizeof(TUID); ++index) {
        const auto byte = static_cast<unsigned char>(id[index]);
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

} // namespace orvane::kestrum::host
