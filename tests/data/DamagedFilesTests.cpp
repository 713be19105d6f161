// SPDX-License-Identifier: GPL-3.0-or-later
// Seeded damage: whatever a file holds, a reader either fills what it was asked for or throws one of its own
// exceptions. Reads and writes out of bounds are the sanitizers' to see.
#include "data/DataFileExceptions.h"
#include "data/DiskFile.h"
#include "data/FileReader.h"
#include "data/WaveFrames.h"
#include "support/WaveFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

constexpr int rounds = 4000;

using Random = std::mt19937;

std::size_t below(Random& random, std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

/// Flips, overwrites, cuts and doubles a few bytes.
std::string damaged(std::string bytes, Random& random) {
    constexpr char telling[]{0, 1, 'd', 16, 24, 32, 127, -128, -1};
    for (std::size_t change = 0; change <= below(random, 4) && !bytes.empty(); ++change) {
        // Most of what can be wrong lies in the first bytes.
        const std::size_t place =
            below(random, below(random, 2) == 0 ? bytes.size() : std::min<std::size_t>(48, bytes.size()));
        switch (below(random, 4)) {
        case 0:
            bytes[place] = static_cast<char>(bytes[place] ^ (1 << below(random, 8)));
            break;
        case 1:
            bytes[place] = telling[below(random, std::size(telling))];
            break;
        case 2:
            bytes.resize(place);
            break;
        default:
            bytes.insert(place, bytes.substr(place, below(random, 9)));
            break;
        }
    }
    return bytes;
}

std::string noise(Random& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(below(random, 256));
    return bytes;
}

class DamagedFiles : public ::testing::Test {
protected:
    /// True when the frames were read; false after one of the reader's exceptions. Anything else escapes.
    bool readsFrames(const std::string& bytes) {
        test::writeBytes(path, bytes);
        std::vector<float> samples(16 + 1, guard);
        bool whole = true;
        try {
            orvane::readWaveFrames(orvane::DiskFile(path, 48000, false, 48000, 0), samples, 8, 2);
        } catch (const orvane::wavNotReadableException&) {
            whole = false;
        } catch (const orvane::numberOfChannelsMismatchException&) {
            whole = false;
        } catch (const orvane::wavChunckSizeShortException&) {
            whole = false;
        } catch (const orvane::wavBitWrongException&) {
            whole = false;
        }
        EXPECT_EQ(samples.back(), guard);
        return whole;
    }

    static constexpr float guard = 12345.0f;
    test::TemporaryFolder folder;
    std::string path = folder.file("damaged");
    Random random{20240611};
};

TEST_F(DamagedFiles, AWaveFileIsReadWholeOrRefused) {
    const std::string floats = test::waveBytes({}, std::vector<float>(16, 0.5f));
    const std::string integers =
        test::waveBytes({.formatTag = 1, .bits = 16}, std::vector<std::int16_t>(16, 99));
    int read = 0;
    for (int round = 0; round < rounds; ++round)
        read += readsFrames(damaged(round % 2 == 0 ? floats : integers, random)) ? 1 : 0;
    EXPECT_GT(read,
              rounds /
                  20); // the damage leaves some readable and makes some unreadable, else it tests nothing
    EXPECT_LT(read, rounds * 19 / 20);
}

TEST_F(DamagedFiles, NoiseIsNoWaveFile) {
    for (int round = 0; round < rounds / 4; ++round) {
        std::string bytes = noise(random, below(random, 300));
        if (bytes.size() > 36 && round % 2 == 0) { // past the first checks
            bytes.replace(22, 2, test::bytesOf(std::uint16_t{2}));
            bytes.replace(34, 2, test::bytesOf(static_cast<std::uint16_t>(round % 4 == 0 ? 16 : 32)));
        }
        readsFrames(bytes);
    }
}

TEST_F(DamagedFiles, AContainerGivesAsManyFloatsAsWantedOrIsRefused) {
    std::string whole = "??";
    for (std::uint32_t entry = 0; entry < 10; ++entry)
        whole += test::bytesOf(entry);
    whole += noise(random, 128);
    int read = 0;
    for (int round = 0; round < rounds; ++round) {
        test::writeBytes(path, damaged(whole, random));
        const std::uint64_t count = below(random, 40);
        try {
            const auto samples =
                orvane::FileReader().read(path, count, static_cast<std::uint32_t>(below(random, 12)),
                                          static_cast<std::uint32_t>(below(random, 12)));
            EXPECT_EQ(samples.size(), count);
            ++read;
        } catch (const orvane::wavNotReadableException&) {
            continue;
        }
    }
    EXPECT_GT(read, rounds / 20);
    EXPECT_LT(read, rounds);
}

} // namespace
