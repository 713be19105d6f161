// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/IrFileFactory.h"

#include "data/DataFileExceptions.h"
#include "data/DiskFile.h"

#include <algorithm>
#include <iterator>

namespace orvane {

namespace {

/// One running rate: the file's suffix, the rate stored in it, and the samples of a head-related response.
struct RateRow {
    std::int32_t sampleRate;
    const char* suffix;
    std::int32_t nativeSampleRate;
    std::uint64_t length;
};

constexpr RateRow rates[]{
    {24000, "2", 24000, 70},  {44100, "0", 44100, 128},  {48000, "1", 48000, 139},  {88200, "0", 44100, 256},
    {96000, "1", 48000, 278}, {176400, "0", 44100, 512}, {192000, "1", 48000, 556},
};

constexpr const char* extension = ".dat";

} // namespace

std::unique_ptr<IIrFile> IrFileFactory::create(double sampleRate, const std::string& stem,
                                               const std::string& dataDirectory) const {
    // Compared as a whole number below the next one, so that no rate is too large for an integer.
    const auto* const row =
        std::find_if(std::begin(rates), std::end(rates), [sampleRate](const RateRow& candidate) {
            return sampleRate >= candidate.sampleRate && sampleRate < candidate.sampleRate + 1;
        });
    if (row == std::end(rates))
        throw sampleRateNotSupportedException();
    return std::make_unique<DiskFile>(dataDirectory + stem + row->suffix + extension, sampleRate,
                                      row->sampleRate != row->nativeSampleRate, row->nativeSampleRate,
                                      row->length);
}

} // namespace orvane
