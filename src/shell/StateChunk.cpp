// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/StateChunk.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace orvane::kestrum {

namespace {

using Bytes = std::span<const unsigned char>;

// A chunk of this plug-in has some 400 characters and 7 tags. The reader's time grows with the square of the first, its
// use of the stack with the second.
constexpr std::size_t longestText = 65536;
constexpr std::ptrdiff_t mostTags = 256;

/// How many bytes the character at the head of `text` has; 0 where there is none by RFC 3629, section 4.
std::size_t characterLength(Bytes text) noexcept {
    const unsigned char lead = text[0];
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return 0;
    // The second byte shuts out what has a shorter form, the surrogates, and what lies beyond the last character.
    const unsigned char least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char greatest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (text[1] < least || text[1] > greatest)
        return 0;
    const auto continues = [](unsigned char byte) { return (byte & 0xC0) == 0x80; };
    return std::ranges::all_of(text.subspan(2, length - 2), continues) ? length : 0;
}

bool isUtf8(Bytes text) noexcept {
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0)
            return false;
        text = text.subspan(length);
    }
    return true;
}

/// Whether the last thing in the text is a tag, and no zero stands before it, which ends the text for the reader: it fills up what
/// has been broken off.
bool isClosed(std::string_view text) noexcept {
    constexpr std::string_view blank(" \t\r\n\0", 5);
    const std::size_t last = text.find_last_not_of(blank);
    return last != std::string_view::npos && text[last] == '>' && text.find('\0') > last;
}

/// Whether each "&" begins a number with its semicolon, or one of the five names that need no declaration. The reader takes what
/// another name stands for apart as if it were a document, and walks past its end.
bool referencesEnd(std::string_view text) noexcept {
    constexpr std::string_view hexadecimal = "0123456789abcdefABCDEF";
    constexpr std::string_view names[]{"amp;", "quot;", "apos;", "lt;", "gt;"};
    for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&', at)) {
        const std::string_view rest = text.substr(++at);
        if (std::ranges::any_of(names, [rest](std::string_view name) { return rest.starts_with(name); }))
            continue;
        if (!rest.starts_with('#'))
            return false;
        ++at;
        if (at < text.size() && (text[at] == 'x' || text[at] == 'X'))
            ++at;
        const std::size_t end = text.find_first_not_of(hexadecimal, at);
        if (end == std::string_view::npos || end == at || text[end] != ';')
            return false;
    }
    return true;
}

/// Whether there is a processing instruction but the declaration at the beginning. Where one stands in a tag or is not closed,
/// the reader goes round in a circle for ever.
bool hasInstructionWithin(std::string_view text) noexcept {
    return text.find("<?", 1) != std::string_view::npos;
}

} // namespace

bool isReadableState(Bytes chunk) noexcept {
    constexpr std::size_t headerLength = 8;
    if (chunk.size() <= headerLength)
        return false;
    std::uint32_t length = 0;
    for (std::size_t index = 0; index < 4; ++index)
        length |= static_cast<std::uint32_t>(chunk[4 + index]) << (8 * index);
    if (length == 0 || length > longestText || length > chunk.size() - headerLength)
        return false;
    const Bytes bytes = chunk.subspan(headerLength, length);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return isUtf8(bytes) && isClosed(text) && std::ranges::count(text, '<') <= mostTags &&
           text.find("<!DOCTYPE") == std::string_view::npos && !hasInstructionWithin(text) &&
           referencesEnd(text);
}

} // namespace orvane::kestrum
