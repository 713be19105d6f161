// SPDX-License-Identifier: GPL-3.0-or-later
// A reader as none of ours may be, which believes the length that it is told: what is built to find faults has to find it.
#include "Fuzzed.h"

#include <numeric>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    test::Taken taken({bytes, count});
    if (taken.byte() != 'K' || taken.byte() != '7')
        return 0;
    const std::size_t length = taken.byte();
    std::vector<char> content(taken.rest().begin(), taken.rest().end());
    content.push_back('\0'); // without a byte there is no memory to read beyond
    const int sum = std::accumulate(content.data(), content.data() + length, 0); // beyond its end
    test::promise(sum < 1 << 20, "a sum of 255 bytes is no larger");
    return 0;
}
