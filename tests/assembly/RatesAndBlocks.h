// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

namespace test {

inline constexpr std::array<std::int32_t, 7> everyRate{24000, 44100, 48000, 88200, 96000, 176400, 192000};

/// Powers of two, and lengths whose transforms have large prime factors.
inline constexpr std::array<std::uint64_t, 12> manyBlockSizes{32,  64,  128, 139,  256,  441,
                                                              480, 512, 513, 1009, 1024, 2048};

struct RateAndBlock {
    std::int32_t sampleRate;
    std::uint64_t blockSize;
};

inline std::ostream& operator<<(std::ostream& stream, const RateAndBlock& setting) {
    return stream << setting.sampleRate << "Hz" << setting.blockSize;
}

/// Every rate with every block, or each block at one rate only.
inline std::vector<RateAndBlock> ratesAndBlocks(bool all) {
    std::vector<RateAndBlock> settings;
    for (std::size_t rate = 0; rate < everyRate.size(); ++rate)
        for (std::size_t block = 0; block < manyBlockSizes.size(); ++block)
            if (all || block % everyRate.size() == rate)
                settings.push_back({everyRate[rate], manyBlockSizes[block]});
    return settings;
}

} // namespace test
