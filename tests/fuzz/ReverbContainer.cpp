// SPDX-License-Identifier: GPL-3.0-or-later
// The container of reverb responses, as the plug-in reads it: two bytes the count of floats, four each the size of the table
// and the entry, then the file.
#include "Fuzzed.h"

#include "data/DataFileExceptions.h"
#include "data/FileReader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

/// What the description of the container says lies at an entry: zeros wherever the file does not reach.
std::vector<float> expected(std::string_view file, std::size_t count, std::uint64_t tableSize,
                            std::uint32_t entry) {
    std::vector<float> samples(count);
    if (entry == 0)
        return samples;
    std::uint32_t offset = 0;
    std::memcpy(&offset, file.data() + 2 + 4 * (std::uint64_t{entry} - 1), sizeof offset);
    const std::uint64_t start = 2 + 4 * tableSize + 8 * std::uint64_t{offset};
    if (start < file.size() && count > 0)
        std::memcpy(samples.data(), file.data() + start,
                    std::min<std::uint64_t>(file.size() - start, count * sizeof(float)));
    return samples;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    static test::FileInMemory content;
    test::Taken taken({bytes, count});
    std::uint64_t floatCount = taken.byte();
    floatCount = floatCount * 256 + taken.byte();
    const std::uint32_t tableSize = taken.number();
    const std::uint32_t entry = taken.number();
    const std::string_view file = taken.rest();
    content.replace(file);

    const bool entryIsThere = entry == 0 || 2 + 4 * std::uint64_t{entry} <= file.size();
    const auto wanted = entryIsThere ? expected(file, floatCount, tableSize, entry) : std::vector<float>();
    const bool sound = std::ranges::all_of(
        wanted, [](float sample) { return std::abs(sample) <= 1e6f; }); // false for no number
    std::vector<float> samples;
    try {
        samples = orvane::FileReader().read(content.path(), floatCount, tableSize, entry);
    } catch (const orvane::wavNotReadableException&) {
        test::promise(
            !entryIsThere || !sound,
            "only a file is refused that ends before the entry of the table, or holds no sound there");
        return 0;
    }
    test::promise(entryIsThere && sound, "what is no sound is not handed out");
    test::promise(std::ranges::equal(std::as_bytes(std::span(samples)), std::as_bytes(std::span(wanted))),
                  "what the file holds at the entry, and zeros behind its end");
    return 0;
}
