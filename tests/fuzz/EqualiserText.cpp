// SPDX-License-Identifier: GPL-3.0-or-later
// A headphone correction as text, up to the curve that is folded into a head.
#include "Fuzzed.h"

#include "data/DataError.h"
#include "data/headphones/HeadphoneCurve.h"
#include "data/headphones/ParametricEq.h"

#include <cmath>

using namespace orvane::kestrum::tools;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    try {
        const ParametricEq eq = parseParametricEq(test::Taken({bytes, count}).rest());
        test::promise(eq.filters.size() <= 200, "no more filters than are said to be taken");
        constexpr double highestHz = 20000;
        std::vector<double> gains(HeadphoneCurve::pointCount);
        for (std::size_t point = 0; point < gains.size(); ++point) {
            gains[point] = gainDb(eq, std::min(HeadphoneCurve::pointHz(point), highestHz));
            test::promise(std::isfinite(gains[point]), "every gain is a number");
        }
        const CurveLimits limits;
        const HeadphoneCurve curve(std::move(gains), limits);
        test::promise(curve.levelDb() >= limits.softestDb && curve.levelDb() <= limits.loudestDb,
                      "the level lies in its limits");
        test::promise(std::isfinite(curve.leastDb()) && std::isfinite(curve.mostDb()), "the curve is finite");
    } catch (const DataError& error) {
        test::promiseSentence(error.what());
    }
    return 0;
}
