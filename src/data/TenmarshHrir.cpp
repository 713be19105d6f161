// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/TenmarshHrir.h"

#include "base/SampleBuffer.h"
#include "data/DataFileExceptions.h"
#include "data/IIrFile.h"
#include "data/IrFileFactory.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

constexpr std::int32_t gridStep = 5; ///< Degrees between grid points, in both angles.
constexpr std::int32_t azimuthCount = 73;
constexpr std::int32_t elevationCount = 37;
constexpr std::uint64_t slotCount = std::uint64_t{azimuthCount} * elevationCount;
constexpr std::int32_t front = 36; ///< Column of azimuth 0.
constexpr std::int32_t northPole = elevationCount - 1;

/// [azimuthCount][elevationCount] responses, each [2][length].
using Grid = std::array<const float*, slotCount>;

constexpr std::size_t slot(std::int32_t column, std::int32_t row) {
    return static_cast<std::size_t>(column * elevationCount + row);
}

static_assert(std::atomic<const Grid*>::is_always_lock_free);

/// From frames [count][length][2] to ears [count][2][length], in place.
void deinterleave(std::vector<float>& samples, std::uint64_t count, std::uint64_t length) {
    std::vector<float> left(length);
    std::vector<float> right(length);
    for (std::uint64_t index = 0; index < count; ++index) {
        float* const response = samples.data() + index * 2 * length;
        for (std::uint64_t frame = 0; frame < length; ++frame) {
            left[frame] = response[2 * frame];
            right[frame] = response[2 * frame + 1];
        }
        std::copy(left.begin(), left.end(), response);
        std::copy(right.begin(), right.end(), response + length);
    }
}

/// Visits the grid in the order of the file and lays out what `take(index, azimuthDegrees)` returns.
///
/// The file holds the south pole, then 72 columns from azimuth 0 down to -175 and on from +180 down to +5, 35
/// elevations each from -85 up; the north pole stands behind the first of them.
template <typename Take>
void fillGrid(Grid& grid, Take&& take) {
    std::uint64_t next = 0;
    grid[slot(front, 0)] = take(next++, 0);
    for (std::int32_t counter = 36; counter <= 107; ++counter) {
        const std::int32_t column = (counter / 72 + 1) * 72 - counter;
        for (std::int32_t row = 1; row < northPole; ++row)
            grid[slot(column, row)] = take(next++, (column - front) * gridStep);
        if (column != front)
            continue;
        const float* const south = grid[slot(front, 0)];
        const float* const north = take(next++, 0);
        for (std::int32_t each = 0; each < azimuthCount; ++each) {
            grid[slot(each, 0)] = south;
            grid[slot(each, northPole)] = north;
        }
    }
    for (std::int32_t row = 0; row < elevationCount; ++row) // -180 is +180
        grid[slot(0, row)] = grid[slot(azimuthCount - 1, row)];
}

/// One impulse per ear, with the time and the level difference of a source at this azimuth.
/// Shape   response [length][2], zeroed before.
void writeImpulses(float* response, std::uint64_t length, std::int32_t azimuthDegrees) {
    const float side = std::sin(static_cast<float>(azimuthDegrees) / 360.0f * 6.2831855f) + 1.0f;
    const float half = static_cast<float>(length) * 0.5f;
    const float leftTap = std::trunc(half * side * 0.5f);
    const float rightTap = -std::trunc(leftTap - half);
    response[2 * static_cast<std::uint64_t>(leftTap)] = (2.0f - side) * 1.65f * 0.5f * 0.6f + 0.4f;
    response[2 * static_cast<std::uint64_t>(rightTap) + 1] = side * 1.65f * 0.5f * 0.6f + 0.4f;
}

} // namespace

/// Everything of one rate. Never changed once it is published.
struct TenmarshHrir::Table {
    std::int32_t sampleRate = 0;
    std::int32_t bandLimitFactor = 1;
    std::uint64_t length = 0;            ///< Samples per ear.
    std::vector<float> measuredSamples;  ///< [responseCount][2][length]
    std::vector<float> syntheticSamples; ///< [responseCount][2][length]
    Grid measuredGrid{};                 ///< Into measuredSamples.
    Grid syntheticGrid{};                ///< Into syntheticSamples.
};

TenmarshHrir::TenmarshHrir(std::unique_ptr<IHrirReader> givenReader) noexcept
    : reader(std::move(givenReader)) {}

TenmarshHrir::~TenmarshHrir() = default;

TenmarshHrir& TenmarshHrir::processWide(std::unique_ptr<IHrirReader> reader) {
    static TenmarshHrir store(std::move(reader));
    return store;
}

std::unique_ptr<const TenmarshHrir::Table>
TenmarshHrir::readTable(IHrirReader& reader, std::int32_t sampleRate, const std::string& dataDirectory) {
    const auto file = IrFileFactory().create(sampleRate, "/OVNdata12", dataDirectory);
    auto table = std::make_unique<Table>();
    reader.read(*file, table->measuredSamples);

    const std::uint64_t length = file->length();
    const std::uint64_t count = file->responseCount();
    if (count > slotCount)
        throw notEnoughSpaceForHRTFsException();
    deinterleave(table->measuredSamples, count, length);
    fillGrid(table->measuredGrid, [&](std::uint64_t index, std::int32_t) {
        if (index >= count)
            throw notEnoughSpaceForHRTFsException();
        return table->measuredSamples.data() + index * 2 * length;
    });
    table->syntheticSamples.assign(2 * length * count, 0.0f);
    fillGrid(table->syntheticGrid, [&](std::uint64_t index, std::int32_t azimuthDegrees) {
        if (index >= count)
            throw notEnoughSpaceForHRTFsException();
        float* const response = table->syntheticSamples.data() + index * 2 * length;
        writeImpulses(response, length, azimuthDegrees);
        return response;
    });
    deinterleave(table->syntheticSamples, count, length);

    table->sampleRate = sampleRate;
    table->length = length;
    table->bandLimitFactor = file->isUpsampled() ? sampleRate / file->nativeSampleRate() : 1;
    return table;
}

void TenmarshHrir::load(std::int32_t sampleRate, const std::string& dataDirectory) {
    const std::lock_guard lock(loadMutex);
    auto known =
        std::ranges::find_if(tables, [&](const auto& table) { return table->sampleRate == sampleRate; });
    if (known == tables.end()) {
        tables.push_back(readTable(*reader, sampleRate, dataDirectory));
        known = tables.end() - 1;
    }
    current.store(known->get(), std::memory_order_release);
}

std::int32_t TenmarshHrir::bandLimitFactor() const noexcept {
    const Table* const table = current.load(std::memory_order_acquire);
    return table != nullptr ? table->bandLimitFactor : 1;
}

std::uint64_t TenmarshHrir::length() const noexcept {
    const Table* const table = current.load(std::memory_order_acquire);
    return table != nullptr ? table->length : 0;
}

void TenmarshHrir::getResponse(SampleBuffer& out, std::int32_t azimuthDegrees, std::int32_t elevationDegrees,
                               bool simple) const noexcept {
    const Table* const table = current.load(std::memory_order_acquire);
    if (table == nullptr) {
        out.clear();
        return;
    }
    // Clamped before the shift, so that no angle can overflow it.
    const std::int32_t column = (std::clamp(azimuthDegrees, -180, 180) + 180) / gridStep;
    const std::int32_t row = (std::clamp(elevationDegrees, -90, 90) + 90) / gridStep;
    const float* ear = (simple ? table->syntheticGrid : table->measuredGrid)[slot(column, row)];
    const std::uint64_t count = std::min(table->length, out.numSamples);
    for (std::uint64_t channel = 0; channel < std::min<std::uint64_t>(out.numChannels, 2); ++channel) {
        float* const target = out.channelPointers[channel];
        std::fill(std::copy_n(ear, count, target), target + out.numSamples, 0.0f);
        ear += table->length;
    }
}

} // namespace orvane
