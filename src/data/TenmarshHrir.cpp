// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/TenmarshHrir.h"

#include "base/SampleBuffer.h"
#include "data/DataFileExceptions.h"
#include "data/IrFileFactory.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <utility>

namespace orvane {

namespace {

constexpr std::size_t azimuthCount = 73;
constexpr std::size_t elevationCount = 37;
constexpr std::size_t slotCount = azimuthCount * elevationCount;
constexpr std::size_t ahead = 36; ///< Azimuth column of 0 degrees.
constexpr std::int32_t degreesPerCell = 5;

using Responses = std::array<const float*, slotCount>;
using Grid = std::array<const float*, slotCount>;

constexpr std::size_t slot(std::size_t azimuth, std::size_t elevation) noexcept {
    return azimuth * elevationCount + elevation;
}

/// `count` responses of `length` stereo frames, in place: all left samples of a response, then all right
/// ones.
void deinterleave(std::vector<float>& samples, std::size_t count, std::size_t length) {
    std::vector<float> left(length);
    std::vector<float> right(length);
    for (std::size_t response = 0; response < count; ++response) {
        float* const start = samples.data() + response * 2 * length;
        for (std::size_t frame = 0; frame < length; ++frame) {
            left[frame] = start[2 * frame];
            right[frame] = start[2 * frame + 1];
        }
        std::copy(left.begin(), left.end(), start);
        std::copy(right.begin(), right.end(), start + length);
    }
}

/// Walks the responses in the order of the file: south pole, then 72 azimuth groups of 35 elevations, the
/// north pole behind the first group. `take(index, azimuthDegrees)` gives the response of an index.
template <typename Take>
void fillGrid(Grid& grid, Take take) {
    constexpr std::size_t lastElevation = elevationCount - 1;
    std::size_t next = 1;
    grid[slot(ahead, 0)] = take(0, 0);
    for (std::size_t c = ahead; c <= ahead + 71; ++c) {
        const std::size_t azimuth = (c / 72 + 1) * 72 - c;
        const int azimuthDegrees = (static_cast<int>(azimuth) - static_cast<int>(ahead)) * degreesPerCell;
        for (std::size_t elevation = 1; elevation < lastElevation; ++elevation)
            grid[slot(azimuth, elevation)] = take(next++, azimuthDegrees);
        if (azimuth == ahead) {
            grid[slot(ahead, lastElevation)] = take(next++, 0);
            for (std::size_t column = 0; column < azimuthCount; ++column) {
                grid[slot(column, 0)] = grid[slot(ahead, 0)];
                grid[slot(column, lastElevation)] = grid[slot(ahead, lastElevation)];
            }
        }
    }
    // -180 and +180 degrees are one direction.
    std::copy_n(grid.begin() + slot(azimuthCount - 1, 0), elevationCount, grid.begin());
}

/// The pair of impulses of one direction, interleaved.
void writeSyntheticPair(float* response, std::size_t length, int azimuthDegrees) noexcept {
    const float s = std::sin(static_cast<float>(azimuthDegrees) / 360.0f * 6.2831855f) + 1.0f;
    const float half = static_cast<float>(length) * 0.5f;
    const auto leftTap = static_cast<std::int32_t>(half * s * 0.5f);
    const auto beforeHalf = static_cast<std::int32_t>(static_cast<float>(leftTap) - half);
    response[2 * leftTap] = (2.0f - s) * 1.65f * 0.5f * 0.6f + 0.4f;
    response[1 - 2 * beforeHalf] = s * 1.65f * 0.5f * 0.6f + 0.4f;
}

} // namespace

/// Everything that a lookup reads; immutable once published.
struct TenmarshHrir::Table {
    std::int32_t sampleRate = 0;
    std::uint64_t length = 0;
    std::int32_t bandLimitFactor = 1;
    std::uint64_t generation = newHrirGeneration();
    std::vector<float> measuredSamples;
    std::vector<float> syntheticSamples;
    Responses measuredResponses{};
    Responses syntheticResponses{};
    Grid measuredGrid{};
    Grid syntheticGrid{};
};

TenmarshHrir::TenmarshHrir(std::unique_ptr<IHrirReader> hrirReader) : reader(std::move(hrirReader)) {}

TenmarshHrir::~TenmarshHrir() = default;

void TenmarshHrir::load(std::int32_t sampleRate, const std::string& dataDirectory) {
    const std::lock_guard lock(loadMutex);
    if (const Table* const loaded = current.load(std::memory_order_acquire);
        loaded != nullptr && loaded->sampleRate == sampleRate)
        return;
    const std::unique_ptr<IIrFile> file =
        IrFileFactory().create(static_cast<double>(sampleRate), "/OVNdata12", dataDirectory);
    auto table = std::make_unique<Table>();
    reader->read(*file, table->measuredSamples);

    const std::size_t length = file->length();
    const std::size_t count = file->responseCount();
    table->syntheticSamples.assign(2 * length * count, 0.0f);
    deinterleave(table->measuredSamples, count, length);
    for (std::size_t index = 0; index < count; ++index) {
        if (index >= slotCount)
            throw notEnoughSpaceForHRTFsException();
        table->measuredResponses[index] = table->measuredSamples.data() + index * 2 * length;
        table->syntheticResponses[index] = table->syntheticSamples.data() + index * 2 * length;
    }
    const auto checked = [](std::size_t index) {
        if (index >= slotCount)
            throw notEnoughSpaceForHRTFsException();
        return index;
    };
    fillGrid(table->measuredGrid,
             [&](std::size_t index, int /*azimuth*/) { return table->measuredResponses[checked(index)]; });
    fillGrid(table->syntheticGrid, [&](std::size_t index, int azimuthDegrees) {
        const float* const response = table->syntheticResponses[checked(index)];
        writeSyntheticPair(table->syntheticSamples.data() + (response - table->syntheticSamples.data()),
                           length, azimuthDegrees);
        return response;
    });
    deinterleave(table->syntheticSamples, count, length);

    table->sampleRate = sampleRate;
    table->length = length;
    table->bandLimitFactor = file->isUpsampled() ? sampleRate / file->nativeSampleRate() : 1;
    current.store(keep(std::move(table)), std::memory_order_release);
}

/// A set that was read before is used again, so that instances which take turns do not fill the memory.
const TenmarshHrir::Table* TenmarshHrir::keep(std::unique_ptr<const Table> table) {
    const auto same =
        std::find_if(tables.begin(), tables.end(), [&](const std::unique_ptr<const Table>& known) {
            // As bytes: equal numbers need not be equal sounds, as 0 and -0 are not.
            return known->sampleRate == table->sampleRate &&
                   std::ranges::equal(std::as_bytes(std::span(known->measuredSamples)),
                                      std::as_bytes(std::span(table->measuredSamples)));
        });
    if (same != tables.end())
        return same->get();
    tables.push_back(std::move(table));
    return tables.back().get();
}

std::int32_t TenmarshHrir::bandLimitFactor() const noexcept {
    const Table* const table = current.load(std::memory_order_acquire);
    return table != nullptr ? table->bandLimitFactor : 1;
}

std::uint64_t TenmarshHrir::length() const noexcept {
    const Table* const table = current.load(std::memory_order_acquire);
    return table != nullptr ? table->length : 0;
}

std::uint64_t TenmarshHrir::generation() const noexcept {
    const Table* const table = current.load(std::memory_order_acquire);
    return table != nullptr ? table->generation : emptyGeneration;
}

std::uint32_t TenmarshHrir::cell(std::int32_t azimuthDegrees, std::int32_t elevationDegrees) const noexcept {
    const std::int32_t a = (std::clamp(azimuthDegrees, -180, 180) + 180) / degreesPerCell;
    const std::int32_t e = (std::clamp(elevationDegrees, -90, 90) + 90) / degreesPerCell;
    return static_cast<std::uint32_t>(slot(static_cast<std::size_t>(a), static_cast<std::size_t>(e)));
}

std::uint64_t TenmarshHrir::getResponse(SampleBuffer& out, std::int32_t azimuthDegrees,
                                        std::int32_t elevationDegrees, bool simple) const noexcept {
    const Table* const table = current.load(std::memory_order_acquire);
    if (table == nullptr)
        return emptyGeneration;
    const Grid& grid = simple ? table->syntheticGrid : table->measuredGrid;
    const float* const response = grid[cell(azimuthDegrees, elevationDegrees)];
    const std::uint64_t count = std::min(table->length, out.numSamples);
    for (std::uint64_t ear = 0; ear < std::min<std::uint64_t>(2, out.numChannels); ++ear)
        std::copy_n(response + ear * table->length, count, out.channelPointers[ear]);
    return table->generation;
}

IHrir* processWideHrir(std::unique_ptr<IHrirReader> reader) {
    static TenmarshHrir store(std::move(reader));
    return &store;
}

} // namespace orvane
