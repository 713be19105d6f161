// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/IrFileFactory.h"

#include "data/DataFileExceptions.h"
#include "data/DiskFile.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

struct RateRow {
    std::int32_t rate = 0;       ///< Running rate in hertz.
    const char* suffix = "";     ///< Of the file's name.
    std::int32_t nativeRate = 0; ///< Rate of the file in hertz.
    std::uint64_t length = 0;    ///< Samples per ear of a head-related response at the running rate.
};

// clang-format off
constexpr RateRow rates[]{
    { 24000, "2", 24000,  70},
    { 44100, "0", 44100, 128},
    { 48000, "1", 48000, 139},
    { 88200, "0", 44100, 256},
    { 96000, "1", 48000, 278},
    {176400, "0", 44100, 512},
    {192000, "1", 48000, 556},
};
// clang-format on

constexpr const char* extension = ".dat";

} // namespace

std::unique_ptr<IIrFile> IrFileFactory::create(double sampleRate, const std::string& stem,
                                               const std::string& dataDirectory) const {
    // Compared as doubles: a rate beyond the integers, or none at all, must not be converted.
    const double whole = std::trunc(sampleRate);
    const auto* const row =
        std::ranges::find_if(rates, [&](const RateRow& candidate) { return candidate.rate == whole; });
    if (row == std::end(rates))
        throw sampleRateNotSupportedException();
    return std::make_unique<DiskFile>(dataDirectory + stem + row->suffix + extension, sampleRate,
                                      row->rate != row->nativeRate, row->nativeRate, row->length);
}

} // namespace orvane
