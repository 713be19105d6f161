// SPDX-License-Identifier: GPL-3.0-or-later
#include "ipc/HeadRotation.h"

#include "ipc/EmptyHeadRotation.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <initializer_list>
#include <string>
#include <thread>
#include <vector>

namespace {

using orvane::HeadRotationMatrix;
using OrvaneIPC::HeadRotation;

HeadRotationMatrix filledWith(float value) {
    HeadRotationMatrix matrix;
    matrix.fill(value);
    return matrix;
}

// Expected bytes: the wire format, written out by hand; 1.0f is 00 00 80 3f.
TEST(HeadRotationRecord, StartsInactiveUnlockedAndAsTheIdentityInItsExactBytes) {
    using namespace std::string_literals;
    const HeadRotation::Data record;
    std::string bytes(72, 'x');
    static_assert(sizeof record == 72);
    std::memcpy(bytes.data(), &record, 72);
    const std::string one = "\0\0\x80\x3f"s;
    const std::string fourZeros(16, '\0');
    EXPECT_EQ(bytes, "\0\0\0\0"s + "\0\0\0\0"s + one + fourZeros + one + fourZeros + one + fourZeros + one);
}

TEST(HeadRotationRecord, TakesTheMatrixRowByRowAndTheFlagAsOneByte) {
    HeadRotation::Data record;
    HeadRotation rotation(&record);
    HeadRotationMatrix matrix;
    for (std::size_t index = 0; index < 16; ++index)
        matrix[index] = static_cast<float>(index) + 0.5f;
    rotation.setRotation(matrix);
    rotation.setActive(true);
    EXPECT_EQ(record.active, 1);
    EXPECT_EQ(record.lock, 0u);
    EXPECT_TRUE(std::equal(matrix.begin(), matrix.end(), std::begin(record.rotation)));
    rotation.setActive(false);
    EXPECT_EQ(record.active, 0);
    EXPECT_EQ(rotation.getRotation(), matrix); // the flag does not touch the matrix
}

TEST(HeadRotationRecord, AnyNonZeroByteMeansActive) {
    HeadRotation::Data record;
    const HeadRotation rotation(&record);
    for (const std::uint8_t byte : std::initializer_list<std::uint8_t>{1, 2, 128, 255}) {
        record.active = byte;
        EXPECT_TRUE(rotation.isActive());
    }
}

TEST(HeadRotationRecord, ReturnsATranslationRowUnchanged) {
    HeadRotation::Data record;
    HeadRotation rotation(&record);
    HeadRotationMatrix moved = orvane::identityRotation;
    moved[12] = -3.0f;
    moved[13] = 1e30f;
    moved[15] = 0.0f;
    rotation.setRotation(moved);
    EXPECT_EQ(rotation.getRotation(), moved);
}

TEST(HeadRotationRecord, ActivatingBeforeTheFirstMatrixShowsThePreviousOne) {
    HeadRotation::Data record;
    HeadRotation rotation(&record);
    rotation.setActive(true);
    EXPECT_TRUE(rotation.isActive());
    EXPECT_EQ(rotation.getRotation(), orvane::identityRotation);
    rotation.setRotation(filledWith(2));
    EXPECT_EQ(rotation.getRotation(), filledWith(2));
}

// Would hang, and so run into the time limit, if the flag stood under the lock.
TEST(HeadRotationRecord, TheFlagStandsOutsideTheLock) {
    HeadRotation::Data record;
    record.lock = 1;
    HeadRotation rotation(&record);
    rotation.setActive(true);
    EXPECT_TRUE(rotation.isActive());
    EXPECT_EQ(record.lock, 1u);
}

TEST(HeadRotationRecord, AReaderWaitsForAnotherProcessThatHoldsTheLock) {
    HeadRotation::Data record;
    record.lock = 1; // held by a writer that is half way through
    std::fill_n(std::begin(record.rotation), 8, 5.0f);
    const HeadRotation rotation(&record);
    std::atomic<bool> began{false};
    HeadRotationMatrix seen{};
    std::thread reader([&] {
        began = true;
        seen = rotation.getRotation();
    });
    while (!began)
        std::this_thread::yield();
    std::fill_n(std::begin(record.rotation) + 8, 8, 5.0f);
    std::atomic_ref(record.lock).store(0);
    reader.join();
    EXPECT_EQ(seen, filledWith(5));
    EXPECT_EQ(record.lock, 0u);
}

// Stress, for the thread sanitizer too: every matrix is whole.
TEST(HeadRotationRecord, ReadersNeverSeeATornMatrix) {
    HeadRotation::Data record;
    HeadRotation rotation(&record);
    rotation.setRotation(filledWith(0));
    std::atomic<int> torn{0};
    std::vector<std::thread> readers;
    readers.reserve(3);
    for (int reader = 0; reader < 3; ++reader)
        readers.emplace_back([&] {
            for (;;) {
                const bool running = !rotation.isActive();
                const HeadRotationMatrix matrix = rotation.getRotation();
                if (matrix != filledWith(matrix[0]))
                    torn = torn + 1;
                if (!running)
                    return;
            }
        });
    for (int round = 1; round <= 20000; ++round)
        rotation.setRotation(filledWith(static_cast<float>(round)));
    rotation.setActive(true); // the readers' sign to end
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(rotation.getRotation(), filledWith(20000));
    EXPECT_EQ(record.lock, 0u);
}

TEST(HeadRotationRecord, ReadingNeitherAllocatesNorLocksNorWaits) {
    HeadRotation::Data record;
    const HeadRotation rotation(&record);
    const OrvaneIPC::EmptyHeadRotation empty;
    const test::RealtimeScope scope;
    const bool active = rotation.isActive() || empty.isActive();
    const float sum = rotation.getRotation()[0] + empty.getRotation()[0];
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    EXPECT_FALSE(active);
    EXPECT_EQ(sum, 2.0f);
}

} // namespace
