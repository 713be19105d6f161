// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "binaural/ConvolutionFactory.h"
#include "engine/assembly/ComponentFactory.h"
#include "filters/ChannelProcessorManager.h"
#include "parameters/ParameterSet.h"
#include "parameters/StubComponentFactory.h"
#include "parameters/core/ParameterSet.h"
#include "reference/Biquad.h"
#include "reference/DirectConvolution.h"
#include "room/BinauralReverb.h"
#include "room/SpeakerBinauralReverbBuilder.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using test::Signal;

constexpr std::uint64_t blockSize = 64;
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// A response of noise that the test can compare with; draws it at a change of decay, lower for a lower one.
class NoiseFilter final : public IReverbFilter {
public:
    explicit NoiseFilter(std::uint64_t partitions, int* timesDrawn = nullptr)
        : partitions(partitions), timesDrawn(timesDrawn) {}

    static Signal response(std::uint64_t partitions, std::uint64_t ear) {
        return test::noise(partitions * blockSize, test::Seed{70 + static_cast<std::uint32_t>(ear)});
    }

    void update(SampleBuffer& buffer, float decay) override {
        hasChanged = decay != lastDecay;
        if (!hasChanged)
            return;
        lastDecay = decay;
        if (timesDrawn != nullptr)
            ++*timesDrawn;
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            for (std::uint64_t i = 0; i < responses[ear].size(); ++i)
                buffer.channelPointers[ear][i] = responses[ear][i] * decay / 100.0f;
    }
    std::uint64_t partitionCount() const noexcept override { return partitions; }
    std::int32_t bandLimitFactor() const noexcept override { return 1; }
    bool changed() const noexcept override { return hasChanged; }

private:
    std::uint64_t partitions;
    int* timesDrawn;
    std::array<Signal, 2> responses{response(partitions, 0), response(partitions, 1)};
    bool hasChanged = false;
    float lastDecay = notANumber;
};

/// Hands the input to both ears, so that nothing but the reverb's own gain is heard.
struct PassThrough final : IConvolution {
    void process(SampleSpan input, SampleBuffer& output, const SampleBuffer& /*response*/,
                 bool /*update*/) override {
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            std::copy_n(input.data, blockSize, output.channelPointers[ear]);
    }
    void processCrossfaded(SampleSpan, SampleBuffer&, SampleBuffer&, const SampleBuffer&, bool) override {
        FAIL() << "the reverb replaces its response without a fade";
    }
    void prepare(const SampleBuffer&) override {}
    void workAhead(std::uint64_t) override {}
    float outputGain() const noexcept override { return gain; }
    float gain = 1;
};

struct PassThroughBuilder final : IBinauralReverbBuilder {
    std::unique_ptr<IChannelProcessor> createInputFilters() const override {
        return std::make_unique<ChannelProcessorManager<IGenericBiquadFilter>>();
    }
    std::unique_ptr<IConvolution> createConvolution() const override {
        auto convolution = std::make_unique<PassThrough>();
        convolution->gain = gain;
        return convolution;
    }
    float gain = 1;
};

struct Reverb : ::testing::Test {
    /// A reverb whose output is its gain where the input is 1.
    std::unique_ptr<BinauralReverb> bare(BinauralReverb::DistanceLaw law = reverbDistanceLaw) {
        return std::make_unique<BinauralReverb>(blockSize, &parameters, std::make_unique<NoiseFilter>(1),
                                                builder, std::move(law));
    }

    /// The product's own, with `partitions` blocks of noise for a response.
    std::unique_ptr<ISpatialProcessor> whole(std::uint64_t partitions, double sampleRate,
                                             int* timesDrawn = nullptr,
                                             std::optional<float> expectedDecay = std::nullopt,
                                             const RenderOptions& options = {}) {
        return kestrum::core::ComponentFactory(options).createBinauralReverb(
            blockSize, sampleRate, &parameters, std::make_unique<NoiseFilter>(partitions, timesDrawn),
            expectedDecay);
    }

    /// Whole blocks of `signal` through a reverb.
    static std::array<Signal, 2> rendered(ISpatialProcessor& reverb, const Signal& signal) {
        SampleBuffer input(1, blockSize);
        SampleBuffer output(2, blockSize);
        std::array<Signal, 2> heard;
        for (std::size_t start = 0; start + blockSize <= signal.size(); start += blockSize) {
            std::copy_n(signal.begin() + static_cast<std::ptrdiff_t>(start), blockSize,
                        input.channelPointers[0]);
            reverb.process(input, output);
            for (std::uint64_t ear = 0; ear < 2; ++ear)
                heard[ear].insert(heard[ear].end(), output.channel(ear).begin(), output.channel(ear).end());
        }
        return heard;
    }

    kestrum::core::ParameterSet parameters{std::make_unique<ParameterSet>()};
    PassThroughBuilder builder;
};

// The distance law.

TEST(ReverbDistanceLaw, HasTheValuesWorkedOutByHand) {
    EXPECT_EQ(reverbDistanceLaw(10, 1), 1.0f);
    EXPECT_EQ(reverbDistanceLaw(15, 1), 1.0f);
    EXPECT_FLOAT_EQ(reverbDistanceLaw(20, 1), 0.65625f); // (0.5625 - 1 + 1.75) / 2
    EXPECT_FLOAT_EQ(reverbDistanceLaw(30, 1), 0.25f);
    EXPECT_FLOAT_EQ(reverbDistanceLaw(35, 1), 0.5f * 0.5f * (9.0f / 49.0f)); // 1.75 - 35 / 20 = 0
    EXPECT_EQ(reverbDistanceLaw(40, 1), 0.0f);
    EXPECT_EQ(reverbDistanceLaw(1000, 1), 0.0f);
    EXPECT_EQ(reverbDistanceLaw(-5, 1), 1.0f);
    EXPECT_EQ(reverbDistanceLaw(notANumber, 1), 1.0f);
}

TEST(ReverbDistanceLaw, TakesTheProductOfBothFactors) {
    for (const float distance : {5.0f, 12.0f, 18.9f, 33.0f})
        EXPECT_FLOAT_EQ(reverbDistanceLaw(distance / 4, 4), reverbDistanceLaw(distance, 1));
}

TEST(ReverbDistanceLaw, FallsWithoutAStepFrom15To40Metres) {
    for (float p = 15.0f; p < 41.0f; p += 0.01f) {
        const float step = reverbDistanceLaw(p, 1) - reverbDistanceLaw(p + 0.01f, 1);
        ASSERT_GE(step, 0.0f) << p;
        ASSERT_LT(step, 0.002f) << p;
    }
}

// The smoothed gain.

/// Reference: the recursion with its stored coefficients, frame by frame, left then right: two steps a frame.
/// At -3 and 20 dB a last bit in either coefficient tells.
TEST_F(Reverb, TheGainTakesAStepForEachSampleOfEachEar) {
    for (const float gainDb : {-12.0f, -3.0f, 20.0f}) {
        parameters.setReverbGainDb(gainDb, false);
        const auto reverb = bare();
        const auto heard = rendered(*reverb, Signal(10 * blockSize, 1.0f));
        const float target = std::pow(10.0f, gainDb / 20.0f);
        float gain = 1.0f;
        for (std::size_t i = 0; i < heard[0].size(); ++i)
            for (std::size_t ear = 0; ear < 2; ++ear) {
                gain = gain * 0.99f + target * 0.00999999f;
                ASSERT_EQ(heard[ear][i], gain) << gainDb << " dB, " << i << ", ear " << ear;
            }
        EXPECT_NE(heard[0][0], heard[1][0]);
    }
}

/// Reference: the recursion, far beyond the place where it stands still, and on from there.
TEST_F(Reverb, ASettledGainGoesOnWithTheBitsOfItsRecursion) {
    const auto reverb = bare();
    float gain = 1.0f;
    for (const float gainDb : {-7.3f, -7.3f, 4.1f, -96.0f, 0.0f}) {
        parameters.setReverbGainDb(gainDb, false);
        const auto heard = rendered(*reverb, Signal(60 * blockSize, 1.0f));
        const float target = std::pow(10.0f, gainDb / 20.0f);
        for (std::size_t i = 0; i < heard[0].size(); ++i)
            for (std::size_t ear = 0; ear < 2; ++ear) {
                gain = gain * 0.99f + target * 0.00999999f;
                ASSERT_EQ(heard[ear][i], gain) << gainDb << " dB, " << i << ", ear " << ear;
            }
    }
}

TEST_F(Reverb, AStepOfTheTargetMovesTheGainByAHundredthOfTheWay) {
    parameters.setReverbGainDb(0.0f, false);
    const auto reverb = bare();
    rendered(*reverb, Signal(20 * blockSize, 1.0f));
    const float before = rendered(*reverb, Signal(blockSize, 1.0f))[1].back();
    parameters.setReverbGainDb(-96.0f, false);
    const auto heard = rendered(*reverb, Signal(8 * blockSize, 1.0f));
    EXPECT_NEAR(heard[0][0], before * 0.99f, 1e-6f);
    float last = before;
    for (std::size_t i = 0; i < heard[0].size(); ++i)
        for (std::size_t ear = 0; ear < 2; ++ear) {
            ASSERT_LE(std::abs(heard[ear][i] - last), 0.0101f * last) << i;
            last = heard[ear][i];
        }
    EXPECT_NEAR(last, std::pow(0.99, 2.0 * 8.0 * blockSize), 1e-4);
}

/// The coefficients do not quite sum to 1: the gain settles a few millionths beside its target.
TEST_F(Reverb, TheGainSettlesAtGainTimesDistanceLaw) {
    parameters.setReverbGainDb(-6.0f, false);
    parameters.setDistance(10.0f, false);
    parameters.setDistanceScale(2.0f, false);
    const auto heard = rendered(*bare(), Signal(40 * blockSize, 1.0f));
    EXPECT_NEAR(heard[1].back(), std::pow(10.0, -0.3) * 0.65625, 1e-5);
    parameters.setDistanceScale(4.0f, false); // 40 m
    EXPECT_LT(rendered(*bare(), Signal(40 * blockSize, 1.0f))[1].back(), 1e-6f);
}

TEST_F(Reverb, AsksTheDistanceLawThatItIsGiven) {
    parameters.setDistance(3.5f, false);
    parameters.setDistanceScale(1.5f, false);
    const auto heard = rendered(*bare([](float distance, float scale) { return distance + 100.0f * scale; }),
                                Signal(40 * blockSize, 1.0f));
    EXPECT_NEAR(heard[1].back(), 153.5, 1e-3);
}

TEST_F(Reverb, TheConvolversGainAndTheAttenuationScaleTheWholeBlock) {
    builder.gain = 0.91875f;
    parameters.setAttenuationValue(25.0f, false); // 6 dB
    parameters.setReverbGainDb(0.0f, false);
    EXPECT_NEAR(rendered(*bare(), Signal(blockSize, 1.0f))[0][0], 0.91875 * std::pow(10.0, -0.3), 1e-6);
}

// What goes in.

TEST_F(Reverb, ASilentInputStaysSilentHoweverTheGainMoves) {
    const auto reverb = whole(4, 48000);
    for (const float gainDb : {-96.0f, 12.0f, -5.0f}) {
        parameters.setReverbGainDb(gainDb, false);
        const auto heard = rendered(*reverb, Signal(6 * blockSize));
        EXPECT_THAT(heard[0], test::Silence());
        EXPECT_THAT(heard[1], test::Silence());
    }
}

TEST_F(Reverb, AnInputWithoutChannelsOrSamplesGivesSilence) {
    const auto reverb = whole(4, 48000);
    SampleBuffer output(2, blockSize);
    for (const auto& [channels, samples] : {std::pair<std::uint64_t, std::uint64_t>{0, 0}, {0, 64}, {1, 0}}) {
        std::fill_n(output.channelPointers[0], blockSize, 1.0f);
        std::fill_n(output.channelPointers[1], blockSize, 1.0f);
        reverb->process(SampleBuffer(channels, samples), output);
        EXPECT_THAT(Signal(output.channel(0).begin(), output.channel(0).end()), test::Silence());
        EXPECT_THAT(Signal(output.channel(1).begin(), output.channel(1).end()), test::Silence());
    }
}

/// Reference: both filters and the convolution by definition in double precision, times the settled gain.
TEST_F(Reverb, IsTheFilteredInputConvolvedWithItsResponse) {
    constexpr std::uint64_t partitions = 5;
    for (const double sampleRate : {44100.0, 48000.0}) {
        SCOPED_TRACE(sampleRate);
        parameters.setReverbLowPassFrequency(6267.0f, false);
        parameters.setReverbHighPassFrequency(140.0f, false);
        parameters.setReverbDecayPercent(100.0f, false);
        parameters.setReverbGainDb(0.0f,
                                   false); // where the smoother begins: it moves by a few millionths only
        const Signal input = test::noise(20 * blockSize, test::Seed{5});
        const auto heard = rendered(*whole(partitions, sampleRate), input);

        std::vector<double> filtered(input.begin(), input.end());
        filtered = test::reference::filtered(filtered, test::reference::lowPass(6267, 0.707, sampleRate));
        filtered = test::reference::filtered(filtered, test::reference::highPass(140, 0.707, sampleRate));
        const Signal band(filtered.begin(), filtered.end());
        const double gain = sampleRate == 48000.0 ? 44100.0 / 48000.0 : 1.0;
        for (std::uint64_t ear = 0; ear < 2; ++ear) {
            std::vector<double> expected =
                test::reference::convolve(band, NoiseFilter::response(partitions, ear), 0, input.size());
            for (double& sample : expected)
                sample *= gain;
            // Rounding of transforms and of the high pass's coefficients, of samples around 5.
            EXPECT_THAT(heard[ear], test::CloseTo(expected, test::Tolerance{5e-4f}));
            EXPECT_GT(test::peak(heard[ear]), 3.0f);
        }
    }
}

TEST_F(Reverb, AMovedDecayRedrawsTheResponseOnceAndIsHeardInTheSameBlock) {
    int timesDrawn = 0;
    parameters.setReverbDecayPercent(100.0f, false);
    parameters.setReverbLowPassFrequency(20000.0f, false);
    const auto moving = whole(2, 44100, &timesDrawn);
    const auto steady = whole(2, 44100);
    const Signal input = test::noise(5 * blockSize, test::Seed{6});
    rendered(*moving, input);
    EXPECT_EQ(timesDrawn, 1);
    const Signal full = (rendered(*steady, input), rendered(*steady, input))[0];
    parameters.setReverbDecayPercent(50.0f, false);
    const Signal halved = rendered(*moving, input)[0];
    EXPECT_EQ(timesDrawn, 2);
    for (std::size_t i = 0; i < full.size(); ++i)
        ASSERT_NEAR(halved[i], 0.5f * full[i], 1e-5f) << i; // transforms' rounding
}

struct DecayCase {
    const char* name;
    std::optional<float> expected;
    int drawnAtBuilding;
    int drawnInAll;
};

class ExpectedDecays : public Reverb, public ::testing::WithParamInterface<DecayCase> {};

/// Null test against the plain path, which draws in the first block: the same bits, also beyond a later change.
TEST_P(ExpectedDecays, ChangeTheTimeOfDrawingAndNoBit) {
    const DecayCase& given = GetParam();
    for (const std::uint64_t partitions : {1u, 2u, 5u, 40u}) {
        parameters.setReverbDecayPercent(70.0f, false);
        int timesDrawn = 0;
        const auto fast = whole(partitions, 48000, &timesDrawn, given.expected);
        const auto plain = whole(partitions, 48000, nullptr, given.expected, {.path = RenderPath::plain});
        EXPECT_EQ(timesDrawn, given.drawnAtBuilding);
        const Signal input = test::noise(9 * blockSize, test::Seed{7});
        EXPECT_EQ(rendered(*fast, input), rendered(*plain, input)) << partitions;
        EXPECT_EQ(timesDrawn, given.drawnInAll);
        parameters.setReverbDecayPercent(90.0f, false);
        EXPECT_EQ(rendered(*fast, input), rendered(*plain, input)) << partitions;
        EXPECT_EQ(timesDrawn, given.drawnInAll + 1);
    }
}
INSTANTIATE_TEST_SUITE_P(RightWrongAndNone, ExpectedDecays,
                         ::testing::Values(DecayCase{"Right", 70.0f, 1, 1}, DecayCase{"Wrong", 55.0f, 1, 2},
                                           DecayCase{"None", std::nullopt, 0, 1}),
                         [](const auto& given) { return given.param.name; });

TEST_F(Reverb, WorkAheadChangesNoBit) {
    const auto ahead = whole(9, 48000, nullptr, 70.0f);
    const auto plain = whole(9, 48000, nullptr, std::nullopt, {.path = RenderPath::plain});
    const Signal input = test::noise(30 * blockSize, test::Seed{8});
    for (std::size_t start = 0; start < input.size(); start += blockSize) {
        for (std::uint64_t pending = start / blockSize % 7; pending < blockSize; pending += 13)
            ahead->workAhead(pending);
        const Signal block(input.begin() + static_cast<std::ptrdiff_t>(start),
                           input.begin() + static_cast<std::ptrdiff_t>(start + blockSize));
        ASSERT_EQ(rendered(*ahead, block), rendered(*plain, block)) << start;
    }
}

TEST_F(Reverb, NeitherAllocatesNorLocks) {
    const auto reverb = whole(6, 48000);
    SampleBuffer input(1, blockSize);
    SampleBuffer output(2, blockSize);
    const test::RealtimeScope scope;
    for (int block = 0; block < 6; ++block) {
        parameters.setReverbDecayPercent(block < 3 ? 100.0f : 90.0f, false);
        parameters.setReverbLowPassFrequency(6000.0f + 100.0f * static_cast<float>(block), false);
        parameters.setReverbHighPassFrequency(20.0f * static_cast<float>(block), false);
        parameters.setReverbGainDb(static_cast<float>(-block), false);
        reverb->workAhead(blockSize / 2);
        reverb->process(input, output);
    }
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
}

// The builder.

/// Notes what it is set to.
struct RecordingFilter final : IGenericBiquadFilter {
    explicit RecordingFilter(std::vector<float>& frequencies, float& quality)
        : frequencies(frequencies), quality(quality) {}
    void process(SampleSpan /*buffer*/) override {}
    void setFrequency(float hertz) override { frequencies.push_back(hertz); }
    void setQ(float q) override { quality = q; }
    void setGain(float /*value*/) override {}
    void setInputGain(float /*value*/) override {}
    void process(SampleSpan /*in*/, SampleSpan /*out*/) override {}
    void reset() override {}

    std::vector<float>& frequencies;
    float& quality;
};

struct RecordingFactory final : test::StubComponentFactory {
    std::unique_ptr<IGenericBiquadFilter> createLowpassFilter(double sampleRate) const override {
        rates.push_back(sampleRate);
        return std::make_unique<RecordingFilter>(lowPass, lowPassQ);
    }
    std::unique_ptr<IGenericBiquadFilter> createRumbleFilter(double sampleRate) const override {
        rates.push_back(sampleRate);
        return std::make_unique<RecordingFilter>(highPass, highPassQ);
    }
    mutable std::vector<double> rates;
    mutable std::vector<float> lowPass;
    mutable std::vector<float> highPass;
    mutable float lowPassQ = 0;
    mutable float highPassQ = 0;
};

struct RecordingConvolutions final : IConvolutionFactory {
    std::unique_ptr<IConvolution> create(double rate, std::uint64_t block, std::uint64_t partitions,
                                         std::int32_t factor) override {
        EXPECT_EQ(rate, 96000.0);
        EXPECT_EQ(block, 480u);
        EXPECT_EQ(partitions, 17u);
        EXPECT_EQ(factor, 2);
        return std::make_unique<PassThrough>();
    }
};

TEST_F(Reverb, TheInputFiltersFollowTheParametersAndAHighPassOfZeroBecomesOne) {
    parameters.setReverbLowPassFrequency(10000.0f, false);
    parameters.setReverbHighPassFrequency(0.0f, false);
    const RecordingFactory factory;
    const kestrum::core::BinauralReverbBuilder reverbBuilder(96000, 480, 17, 2, &parameters, &factory,
                                                             std::make_unique<RecordingConvolutions>());
    const auto filters = reverbBuilder.createInputFilters();
    EXPECT_EQ(factory.rates, (std::vector<double>{96000, 96000}));
    EXPECT_EQ(factory.lowPassQ, 0.707f);
    EXPECT_EQ(factory.highPassQ, 0.707f);
    EXPECT_EQ(factory.highPass, (std::vector<float>{0})) << "the first setting has no guard";
    filters->process(SampleSpan());
    for (const float hertz : {-5.0f, 95.0f, notANumber}) {
        parameters.setReverbLowPassFrequency(8000.0f, false);
        parameters.setReverbHighPassFrequency(hertz, false);
        filters->process(SampleSpan());
    }
    EXPECT_EQ(factory.lowPass, (std::vector<float>{10000, 10000, 8000, 8000, 8000}));
    EXPECT_EQ(factory.highPass, (std::vector<float>{0, 1, 1, 95, 1}));
    EXPECT_NE(reverbBuilder.createConvolution(), nullptr);
}

/// A room outside the table has a response of no partitions, and a convolver needs one.
TEST_F(Reverb, ARoomWithoutAResponseIsSilent) {
    const auto reverb = whole(0, 48000);
    const auto heard = rendered(*reverb, test::noise(4 * blockSize, test::Seed{8}));
    EXPECT_THAT(heard[0], test::Silence());
    EXPECT_THAT(heard[1], test::Silence());
}

} // namespace
