// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/About.h"

#include "data/DataError.h"

#include <nettle/sha2.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cstdint>
#include <fstream>

namespace orvane::kestrum::tools {

std::string sha256OfFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw DataError("\"" + file.string() +
                        "\" cannot be read: name a file that exists and that you may read.");
    sha256_ctx context{};
    nettle_sha256_init(&context);
    std::array<char, 65536> block{};
    while (stream.read(block.data(), block.size()) || stream.gcount() > 0)
        nettle_sha256_update(&context, static_cast<std::size_t>(stream.gcount()),
                             reinterpret_cast<const std::uint8_t*>(block.data()));
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
    nettle_sha256_digest(&context, digest.size(), digest.data());
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const unsigned byte : digest) {
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

std::string aboutText(const std::filesystem::path& input, const Origin& origin) {
    nlohmann::ordered_json about;
    about["what"] = "Head-related responses for the plug-in Orvane KESTRUM";
    about["tool"] = "kestrum " KESTRUM_VERSION;
    about["method"] = methodNumber;
    about["input"] = {{"file", input.filename().string()}, {"sha256", sha256OfFile(input)}};
    about["origin"] = origin.title;
    about["licence"] = origin.licence.empty() ? "not stated by the file" : origin.licence;
    about["citation"] = origin.citation.empty() ? "not stated by the file" : origin.citation;
    return about.dump(4, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

} // namespace orvane::kestrum::tools
