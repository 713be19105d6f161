// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SelectorId.h"

#include <nettle/sha2.h>

#include <array>

namespace orvane::kestrum::core {

std::uint32_t selectorId(std::string_view name) noexcept {
    sha256_ctx context;
    sha256_init(&context);
    for (const char c : name) { // byte by byte: names are short, and no pointer has to change its type
        const auto byte = static_cast<std::uint8_t>(c);
        sha256_update(&context, 1, &byte);
    }
    std::array<std::uint8_t, 4> digest{};
    sha256_digest(&context, digest.size(), digest.data());
    return std::uint32_t{digest[0]} | std::uint32_t{digest[1]} << 8U | std::uint32_t{digest[2]} << 16U |
           std::uint32_t{digest[3]} << 24U;
}

} // namespace orvane::kestrum::core
