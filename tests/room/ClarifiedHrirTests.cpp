// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ClarifiedHrir.h"

#include "binaural/BinauralComponentFactory.h"
#include "support/GridHead.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>

namespace {

using orvane::BinauralComponentFactory;
using orvane::ClarifiedHrir;
using orvane::SampleBuffer;

constexpr std::uint64_t headLength = 61; // a length, and so a table, of these tests alone
constexpr orvane::RenderOptions withoutTable{orvane::RenderPath::plain, orvane::InstructionSet::scalar};

SampleBuffer got(ClarifiedHrir& response, std::int32_t azimuth, std::int32_t elevation, float amount,
                 std::uint64_t samples = 2 * headLength) {
    SampleBuffer buffer(2, samples);
    response.get(buffer, azimuth, elevation, amount);
    return buffer;
}

SampleBuffer computed(ClarifiedHrir& response, std::int32_t azimuth, std::int32_t elevation, float amount,
                      std::uint64_t samples = 2 * headLength) {
    SampleBuffer buffer(2, samples);
    response.compute(buffer, azimuth, elevation, amount);
    return buffer;
}

bool sameBits(const SampleBuffer& a, const SampleBuffer& b) {
    for (std::uint64_t ear = 0; ear < 2; ++ear)
        if (std::memcmp(a.channelPointers[ear], b.channelPointers[ear], a.numSamples * sizeof(float)) != 0)
            return false;
    return true;
}

/// Null test: missed, found and worked out are one, for what direct sound and reflections want of it.
TEST(ClarifiedHrir, IsTheSameWhetherTheTableKnowsItOrNot) {
    test::GridHead head(headLength);
    ClarifiedHrir kept(&head, false, BinauralComponentFactory());
    ClarifiedHrir plain(&head, false, BinauralComponentFactory(withoutTable));
    for (const float amount : {0.0f, 0.65f, 1.0f, std::numeric_limits<float>::quiet_NaN()})
        for (std::int32_t azimuth = -180; azimuth <= 180; azimuth += 37)
            for (const std::uint64_t samples : {headLength, 2 * headLength, 3 * headLength}) {
                const SampleBuffer expected = computed(plain, azimuth, 20, amount, samples);
                EXPECT_TRUE(sameBits(got(kept, azimuth, 20, amount, samples), expected)) << azimuth;
                const std::uint64_t asked = head.asked;
                EXPECT_TRUE(sameBits(got(kept, azimuth, 20, amount, samples), expected)) << azimuth;
                EXPECT_EQ(head.asked, asked);
            }
}

TEST(ClarifiedHrir, AnalysesWhatABufferShorterThanTheResponseHolds) {
    test::GridHead head(headLength);
    ClarifiedHrir kept(&head, false, BinauralComponentFactory());
    got(kept, 10, 0, 0.5f);
    EXPECT_TRUE(sameBits(got(kept, 10, 0, 0.5f, 40), computed(kept, 10, 0, 0.5f, 40)));
}

TEST(ClarifiedHrir, KnowsEveryDirectionOnceItIsFilled) {
    test::GridHead head(headLength);
    ClarifiedHrir kept(&head, false, BinauralComponentFactory());
    kept.fill(0.65f);
    const std::uint64_t asked = head.asked;
    EXPECT_EQ(asked, 73u * 37u);
    ClarifiedHrir another(&head, false, BinauralComponentFactory());
    another.fill(0.65f);
    for (std::int32_t azimuth = -180; azimuth <= 180; ++azimuth)
        for (std::int32_t elevation = -90; elevation <= 90; elevation += 3)
            got(another, azimuth, elevation, 0.65f);
    EXPECT_EQ(head.asked, asked);
    got(another, 0, 0, 0.5f); // another amount
    EXPECT_EQ(head.asked, asked + 1);
}

TEST(ClarifiedHrir, TellsTheSyntheticResponsesFromTheMeasuredOnes) {
    test::GridHead head(headLength);
    ClarifiedHrir measured(&head, false, BinauralComponentFactory());
    ClarifiedHrir synthetic(&head, true, BinauralComponentFactory());
    EXPECT_FALSE(sameBits(got(measured, 0, 0, 0.5f), got(synthetic, 0, 0, 0.5f)));
    EXPECT_TRUE(sameBits(got(synthetic, 0, 0, 0.5f), computed(synthetic, 0, 0, 0.5f)));
}

TEST(ClarifiedHrir, NeverGivesWhatAReplacedSetWouldHaveGiven) {
    test::GridHead head(headLength);
    ClarifiedHrir kept(&head, false, BinauralComponentFactory());
    for (int set = 0; set < 10; ++set) {
        for (int again = 0; again < 2; ++again)
            EXPECT_TRUE(sameBits(got(kept, 30, 0, 0.5f), computed(kept, 30, 0, 0.5f)));
        head.replace();
    }
}

/// A set that is replaced between the look into the table and the copy out of the store.
TEST(ClarifiedHrir, KeepsAResponseUnderTheSetThatItReallyIsOf) {
    struct Racing final : orvane::IHrir {
        void load(std::int32_t, const std::string&) override {}
        std::int32_t bandLimitFactor() const noexcept override { return 1; }
        std::uint64_t length() const noexcept override { return headLength; }
        std::uint64_t generation() const noexcept override { return announced; }
        std::uint32_t cell(std::int32_t, std::int32_t) const noexcept override { return 3; }
        std::uint64_t getResponse(SampleBuffer& out, std::int32_t, std::int32_t,
                                  bool) const noexcept override {
            out.channelPointers[0][0] = level;
            return later;
        }
        std::uint64_t announced = orvane::newHrirGeneration();
        std::uint64_t later = orvane::newHrirGeneration();
        float level = 1.0f;
    } head;
    ClarifiedHrir kept(&head, false, BinauralComponentFactory());
    SampleBuffer buffer(2, 2 * headLength);
    EXPECT_EQ(kept.get(buffer, 0, 0, 0.0f), head.later);
    // Back to the announced set, which has another content.
    const SampleBuffer ofTheLater = buffer;
    head.level = 0.5f;
    std::swap(head.announced, head.later);
    EXPECT_TRUE(sameBits(got(kept, 0, 0, 0.0f), ofTheLater)); // announced: the later one, which is known
    head.announced = head.later;
    EXPECT_FALSE(sameBits(got(kept, 0, 0, 0.0f), ofTheLater));
}

TEST(ClarifiedHrir, GivesAResponseThatIsNotANumberAndForgetsItWithItsSet) {
    struct Broken final : orvane::IHrir {
        void load(std::int32_t, const std::string&) override {}
        std::int32_t bandLimitFactor() const noexcept override { return 1; }
        std::uint64_t length() const noexcept override { return headLength; }
        std::uint64_t generation() const noexcept override { return present; }
        std::uint32_t cell(std::int32_t, std::int32_t) const noexcept override { return 3; }
        std::uint64_t getResponse(SampleBuffer& out, std::int32_t, std::int32_t,
                                  bool) const noexcept override {
            out.channelPointers[0][5] = sample;
            return present;
        }
        std::uint64_t present = orvane::newHrirGeneration();
        float sample = std::numeric_limits<float>::quiet_NaN();
    } head;
    ClarifiedHrir kept(&head, false, BinauralComponentFactory());
    const SampleBuffer expected = computed(kept, 0, 0, 0.5f);
    EXPECT_TRUE(sameBits(got(kept, 0, 0, 0.5f), expected));
    EXPECT_TRUE(sameBits(got(kept, 0, 0, 0.5f), expected));
    EXPECT_TRUE(expected.channelPointers[0][0] != expected.channelPointers[0][0]);
    head.sample = 1.0f;
    head.present = orvane::newHrirGeneration();
    const SampleBuffer healthy = got(kept, 0, 0, 0.5f);
    EXPECT_TRUE(sameBits(healthy, computed(kept, 0, 0, 0.5f)));
    for (std::uint64_t i = 0; i < healthy.numSamples; ++i)
        ASSERT_EQ(healthy.channelPointers[0][i], healthy.channelPointers[0][i]) << i;
}

TEST(ClarifiedHrir, NeitherAllocatesNorLocksWhetherTheTableKnowsOrNot) {
    for (const std::uint64_t length : {70u, 128u, 139u, 256u, 278u, 512u, 556u}) {
        test::GridHead head(length);
        ClarifiedHrir kept(&head, false, BinauralComponentFactory());
        SampleBuffer buffer(2, 2 * length);
        const test::RealtimeScope scope;
        for (const std::int32_t azimuth : {0, 40, 0, 40})
            kept.get(buffer, azimuth, 0, 0.3f);
        EXPECT_EQ(scope.violations().total(), 0u) << length << ": " << scope.violations();
    }
}

} // namespace
