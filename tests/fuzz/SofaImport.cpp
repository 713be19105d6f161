// SPDX-License-Identifier: GPL-3.0-or-later
// A measured set as people bring it. The library that takes the container apart is the
// system's and does so in a child process: its loops and crashes are refusals like any other.
#include "Fuzzed.h"

#include "data/DataError.h"
#include "data/head/SofaReader.h"

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace orvane::kestrum::tools;

namespace {

/// Looking for new inputs, one that keeps the library busy is to cost little; those that are kept may be read slowly.
#ifdef KESTRUM_FUZZER
constexpr std::chrono::milliseconds limit(300);
#else
constexpr std::chrono::seconds limit(5);
#endif

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    static test::FileInMemory content;
    content.replace(test::Taken({bytes, count}).rest());
    MeasuredSet set;
    try {
        set = readSofa(content.path(), limit);
    } catch (const DataError& error) {
        test::promiseSentence(error.what());
        return 0;
    }
    test::promise(set.sampleRate >= 8000 && set.sampleRate <= 768000, "a rate that can be used");
    test::promise(!set.measurements.empty(), "at least one direction");
    for (const Measurement& measurement : set.measurements) {
        test::promise(std::isfinite(measurement.direction.x) && std::isfinite(measurement.direction.y) &&
                          std::isfinite(measurement.direction.z),
                      "directions are directions");
        for (const Samples& ear : measurement.ears) {
            test::promise(ear.size() == set.tapCount, "all responses of one length");
            test::promise(std::ranges::all_of(ear, [](auto tap) { return std::isfinite(tap); }),
                          "samples are numbers");
        }
    }
    return 0;
}
