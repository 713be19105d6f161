// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ClarifiedHrir.h"

namespace orvane {

ClarifiedHrir::ClarifiedHrir(const IHrir* hrir, bool simple, const IBinauralComponentFactory& factory)
    : hrir(hrir),
      simple(simple),
      length(hrir->length()),
      table(factory.clarityTable(length)),
      clarity(factory.createClarityProcessor(length, &clarityAmount)),
      result(2, 2 * length) {}

std::uint64_t ClarifiedHrir::compute(SampleBuffer& buffer, std::int32_t azimuthDegrees,
                                     std::int32_t elevationDegrees, float amount) {
    const std::uint64_t generation = hrir->getResponse(buffer, azimuthDegrees, elevationDegrees, simple);
    clarityAmount = amount;
    clarity->process(buffer);
    return generation;
}

std::uint64_t ClarifiedHrir::get(SampleBuffer& buffer, std::int32_t azimuthDegrees,
                                 std::int32_t elevationDegrees, float amount) {
    // A buffer that does not hold a whole response has less analysed, which no table knows of.
    if (table == nullptr || buffer.numSamples < length)
        return compute(buffer, azimuthDegrees, elevationDegrees, amount);
    const ClarityTable::Key key = keyOf(azimuthDegrees, elevationDegrees, amount);
    if (table->find(key, buffer))
        return key.generation;
    const std::uint64_t generation = computeAndStore(key, azimuthDegrees, elevationDegrees);
    buffer.copyFrom(result);
    return generation;
}

void ClarifiedHrir::fill(float amount) {
    if (table == nullptr)
        return;
    constexpr std::int32_t degreesPerCell = 5;
    for (std::int32_t azimuth = -180; azimuth <= 180; azimuth += degreesPerCell)
        for (std::int32_t elevation = -90; elevation <= 90; elevation += degreesPerCell) {
            const ClarityTable::Key key = keyOf(azimuth, elevation, amount);
            if (!table->contains(key))
                computeAndStore(key, azimuth, elevation);
        }
}

ClarityTable::Key ClarifiedHrir::keyOf(std::int32_t azimuthDegrees, std::int32_t elevationDegrees,
                                       float amount) const noexcept {
    return {hrir->generation(), hrir->cell(azimuthDegrees, elevationDegrees), simple, amount};
}

/// Into `result`; under the generation that the response really is of, which may be a later one than the key's.
std::uint64_t ClarifiedHrir::computeAndStore(ClarityTable::Key key, std::int32_t azimuthDegrees,
                                             std::int32_t elevationDegrees) {
    result.clear();
    key.generation = compute(result, azimuthDegrees, elevationDegrees, key.amount);
    table->store(key, result);
    return key.generation;
}

} // namespace orvane
