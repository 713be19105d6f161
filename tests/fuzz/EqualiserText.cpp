// SPDX-License-Identifier: GPL-3.0-or-later
// A headphone correction as text, and the gains that it comes to.
#include "Fuzzed.h"

#include "data/DataError.h"
#include "data/headphones/ParametricEq.h"

#include <cmath>

using namespace orvane::kestrum::tools;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    try {
        const ParametricEq eq = parseParametricEq(test::Taken({bytes, count}).rest());
        test::promise(eq.filters.size() <= 200, "no more filters than are said to be taken");
        // Tones from below to beyond what is heard.
        for (double frequencyHz = 10; frequencyHz < 24000; frequencyHz *= 1.1)
            test::promise(std::isfinite(gainDb(eq, frequencyHz)), "every gain is a number");
    } catch (const DataError& error) {
        test::promiseSentence(error.what());
    }
    return 0;
}
