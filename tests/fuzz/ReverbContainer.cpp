// SPDX-License-Identifier: GPL-3.0-or-later
// The container of reverb responses, as the plug-in reads it: two bytes the count of floats, four each the size of the table
// and the entry, then the file.
#include "Fuzzed.h"

#include "data/DataFileExceptions.h"
#include "data/FileReader.h"

#include <algorithm>
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

    std::vector<float> samples;
    try {
        samples = orvane::FileReader().read(content.path(), floatCount, tableSize, entry);
    } catch (const orvane::wavNotReadableException&) {
        test::promise(entry != 0 && 2 + 4 * std::uint64_t{entry} > file.size(),
                      "only a file that ends before the entry of the table is refused");
        return 0;
    }
    const auto wanted = expected(file, floatCount, tableSize, entry);
    test::promise(std::ranges::equal(std::as_bytes(std::span(samples)), std::as_bytes(std::span(wanted))),
                  "what the file holds at the entry, and zeros behind its end");
    return 0;
}
