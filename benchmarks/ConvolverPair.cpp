// SPDX-License-Identifier: GPL-3.0-or-later
// Our convolvers and zita-convolver over one and the same fixed matrix, in turns within one process: what one
// second of sound costs of a core, and whether both sound alike.
#include "EngineRun.h"
#include "Measure.h"
#include "Results.h"
#include "base/ISpatialProcessor.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/ReverbConvolutionFactory.h"
#include "data/FileReader.h"
#include "engine/fades/CrossFader.h"
#include "room/IReverbFilter.h"
#include "room/ReverbFilterFactory.h"
#include "room/ReverbImpulseResponse.h"
#include "support/FlushDenormals.h"

#include <zita-convolver.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using bench::HeadAndRooms;
using bench::Results;
using bench::sampleRate;
using test::Signal;

constexpr double turnSeconds = 3; ///< Of sound.
constexpr int pairCount = 15;
constexpr double residueLimitDb = -80;
constexpr const char* scene =
    "Mix Room Large"; ///< Responses of 4458 samples, of which whole blocks are played.
constexpr float reverbDecayPercent = 90;

using Ears = std::array<Signal, 2>;

/// Fixed responses: one pair for each input, and one for the mono sum of all inputs.
struct Matrix {
    std::uint64_t blockSize;
    std::vector<Ears> responses; ///< Equally long, whole blocks.
    Ears reverb;                 ///< Whole blocks; empty for none.
};

/// What the engine draws for a loudspeaker, measured by an impulse.
Ears drawnResponse(const test::Product& product, HeadAndRooms& data, const orvane::Speaker& speaker,
                   std::uint64_t blockSize, std::uint64_t partitionCount) {
    const auto processor = product.factory.createSpeakerProcessor(
        speaker.position, product.parameterSet.get(), sampleRate, blockSize, &data.store);
    Ears response;
    orvane::SampleBuffer input(1, blockSize);
    orvane::SampleBuffer output(2, blockSize);
    constexpr std::uint64_t settling = 4; // the first response fades in
    for (std::uint64_t block = 0; block < settling + partitionCount; ++block) {
        input.channelPointers[0][0] = block == settling ? 1.0f : 0.0f;
        processor->process(input, output);
        for (std::size_t ear = 0; ear < 2 && block >= settling; ++ear)
            response[ear].insert(response[ear].end(), output.channelPointers[ear],
                                 output.channelPointers[ear] + blockSize);
    }
    return response;
}

Ears longestReverb(std::uint64_t blockSize) {
    orvane::FileReader reader;
    constexpr std::uint32_t room = 28;
    const auto filter = orvane::ReverbFilterFactory().create(
        static_cast<std::int32_t>(sampleRate), blockSize,
        std::make_unique<orvane::ReverbImpulseResponse>(&reader), HeadAndRooms::folder(), room);
    const std::uint64_t length = filter->partitionCount() * blockSize;
    orvane::SampleBuffer buffer(2, length + blockSize);
    filter->update(buffer, reverbDecayPercent);
    Ears response;
    for (std::size_t ear = 0; ear < 2; ++ear)
        response[ear].assign(buffer.channelPointers[ear], buffer.channelPointers[ear] + length);
    return response;
}

struct Case {
    const char* layout;
    std::uint64_t blockSize;
    bool dense;
    bool withReverb;
};

Matrix matrixOf(const Case& chosen, HeadAndRooms& data) {
    constexpr std::uint64_t drawnLength = 4458;
    const test::Product product(&data.store, HeadAndRooms::folder());
    product.chooseLayout(chosen.layout);
    product.chooseScene(scene);
    product.updateMappers();
    Matrix matrix{chosen.blockSize, {}, {}};
    std::uint32_t seed = 1;
    for (const orvane::Speaker& listed : product.layouts->get(product.speakerSetup->getValue()).speakers) {
        orvane::Speaker speaker = listed;
        if (speaker.type == orvane::Speaker::Type::lowFrequency)
            speaker.position = orvane::SpatialPosition(0, 0, 1.5f); // as the engine places it
        matrix.responses.push_back(
            drawnResponse(product, data, speaker, chosen.blockSize, drawnLength / chosen.blockSize));
        if (chosen.dense)
            for (Signal& ear : matrix.responses.back())
                ear = test::noise(ear.size(), test::Seed{seed++});
    }
    if (chosen.withReverb)
        matrix.reverb = longestReverb(chosen.blockSize);
    return matrix;
}

/// The engine's convolvers and sums while nothing moves, without anything else that an engine does.
class Ours {
public:
    explicit Ours(const Matrix& matrix)
        : blockSize(matrix.blockSize),
          fader(2, std::min<std::uint64_t>(blockSize, 64)),
          speaker(2, blockSize),
          mono(1, blockSize),
          mix(2, blockSize),
          silence(2, blockSize) {
        for (const Ears& response : matrix.responses)
            convolvers.push_back(prepared(orvane::ConvolutionFactory(), response));
        if (!matrix.reverb[0].empty())
            reverb = prepared(orvane::ReverbConvolutionFactory(), matrix.reverb);
    }

    /// @param input [channels][blockSize]
    const orvane::SampleBuffer& process(const orvane::SampleBuffer& input) {
        mix.clear();
        mono.clear();
        for (std::size_t channel = 0; channel < convolvers.size(); ++channel) {
            convolvers[channel]->process(input.channel(channel), speaker, silence, false);
            fader.buffer().copyFrom(speaker); // from the response to itself
            fader.apply(speaker);
            speaker.multiplyBy(1.0f);
            mix.addFrom(speaker);
        }
        if (reverb != nullptr) {
            for (std::size_t channel = 0; channel < convolvers.size(); ++channel)
                mono.addFrom(orvane::SampleBuffer(&input.channelPointers[channel], 1, blockSize));
            reverb->process(mono.channel(0), speaker, silence, false);
            mix.addFrom(speaker);
        }
        return mix;
    }

private:
    template <typename Factory>
    std::unique_ptr<orvane::IConvolution> prepared(Factory factory, const Ears& response) const {
        const std::uint64_t partitions = response[0].size() / blockSize;
        auto convolver = factory.create(sampleRate, blockSize, partitions, 1);
        orvane::SampleBuffer buffer(2, response[0].size() + blockSize);
        for (std::size_t ear = 0; ear < 2; ++ear)
            std::ranges::copy(response[ear], buffer.channelPointers[ear]);
        convolver->prepare(buffer);
        return convolver;
    }

    std::uint64_t blockSize;
    std::vector<std::unique_ptr<orvane::IConvolution>> convolvers;
    std::unique_ptr<orvane::IConvolution> reverb; ///< Null for none.
    orvane::CrossFader fader;
    orvane::SampleBuffer speaker, mono, mix, silence;
};

/// One object of the other library: its own partition sizes from one block up, vector mode.
class ZitaProcessor {
public:
    ZitaProcessor(const std::vector<const Ears*>& responses, std::uint64_t blockSize) {
        std::size_t longest = 0;
        for (const Ears* const response : responses)
            longest = std::max(longest, (*response)[0].size());
        const auto quantum = static_cast<std::uint32_t>(blockSize);
        constexpr float everyInputReachesEveryOutput = 1.0f;
        processor.set_options(Convproc::OPT_VECTOR_MODE);
        check(processor.configure(static_cast<std::uint32_t>(responses.size()), 2,
                                  static_cast<std::uint32_t>(longest), quantum, quantum, Convproc::MAXPART,
                                  everyInputReachesEveryOutput));
        for (std::uint32_t input = 0; input < responses.size(); ++input)
            for (std::uint32_t ear = 0; ear < 2; ++ear) {
                Signal samples = (*responses[input])[ear];
                check(processor.impdata_create(input, ear, 1, samples.data(), 0,
                                               static_cast<std::int32_t>(samples.size())));
            }
        check(processor.start_process(0, SCHED_OTHER));
    }
    ~ZitaProcessor() {
        processor.stop_process();
        processor.cleanup();
    }
    ZitaProcessor(const ZitaProcessor&) = delete;
    ZitaProcessor& operator=(const ZitaProcessor&) = delete;

    float* input(std::size_t channel) { return processor.inpdata(static_cast<std::uint32_t>(channel)); }
    const float* output(std::size_t ear) { return processor.outdata(static_cast<std::uint32_t>(ear)); }
    void process() {
        constexpr bool waitForTheWorkers = true;
        processor.process(waitForTheWorkers);
    }

private:
    static void check(int status) {
        if (status != 0)
            throw std::runtime_error("zita-convolver gives status " + std::to_string(status));
    }

    Convproc processor;
};

/// The other library with a matrix: the reverb as one more input of one object, or as an object of its own.
class Zita {
public:
    Zita(const Matrix& matrix, bool separate)
        : blockSize(matrix.blockSize), channelCount(matrix.responses.size()) {
        std::vector<const Ears*> responses;
        for (const Ears& response : matrix.responses)
            responses.push_back(&response);
        hasReverb = !matrix.reverb[0].empty();
        if (hasReverb && !separate)
            responses.push_back(&matrix.reverb);
        processors.push_back(std::make_unique<ZitaProcessor>(responses, blockSize));
        if (hasReverb && separate)
            processors.push_back(std::make_unique<ZitaProcessor>(std::vector{&matrix.reverb}, blockSize));
    }

    void process(const orvane::SampleBuffer& input, orvane::SampleBuffer& output) {
        ZitaProcessor& matrix = *processors.front();
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            std::copy_n(input.channelPointers[channel], blockSize, matrix.input(channel));
        if (hasReverb) {
            float* const mono =
                processors.size() == 1 ? matrix.input(channelCount) : processors.back()->input(0);
            std::fill_n(mono, blockSize, 0.0f);
            for (std::size_t channel = 0; channel < channelCount; ++channel)
                for (std::uint64_t i = 0; i < blockSize; ++i)
                    mono[i] += input.channelPointers[channel][i];
        }
        output.clear();
        for (const auto& processor : processors) {
            processor->process();
            for (std::size_t ear = 0; ear < 2; ++ear)
                for (std::uint64_t i = 0; i < blockSize; ++i)
                    output.channelPointers[ear][i] += processor->output(ear)[i];
        }
    }

private:
    std::uint64_t blockSize;
    std::size_t channelCount;
    bool hasReverb;
    std::vector<std::unique_ptr<ZitaProcessor>> processors;
};

/// The same noise for whoever plays next.
class Noise {
public:
    explicit Noise(std::uint64_t blockSize)
        : blockSize(blockSize),
          blocks(static_cast<std::uint64_t>(turnSeconds * sampleRate) / blockSize),
          channels(16) {
        for (std::uint32_t channel = 0; channel < channels.size(); ++channel)
            channels[channel] = test::noise(blocks * blockSize, test::Seed{100 + channel});
    }

    /// Calls `play(input block, output block)` for each block of a turn.
    template <typename Play>
    void turn(Ears& heard, Play play) {
        orvane::SampleBuffer output(2, blockSize);
        std::array<float*, 16> pointers{};
        for (std::uint64_t block = 0; block < blocks; ++block) {
            for (std::size_t channel = 0; channel < channels.size(); ++channel)
                pointers[channel] = channels[channel].data() + block * blockSize;
            play(orvane::SampleBuffer(pointers.data(), pointers.size(), blockSize), output);
            for (std::size_t ear = 0; ear < 2; ++ear)
                std::copy_n(output.channelPointers[ear], blockSize, heard[ear].data() + block * blockSize);
        }
    }

    std::uint64_t frames() const { return blocks * blockSize; }
    double seconds() const { return static_cast<double>(frames()) / sampleRate; }

private:
    std::uint64_t blockSize;
    std::uint64_t blocks; ///< Of a turn.
    std::vector<Signal> channels;
};

double residueDb(const Ears& heard, const Ears& reference) {
    double difference = 0;
    double power = 0;
    for (std::size_t ear = 0; ear < 2; ++ear)
        for (std::size_t i = 0; i < heard[ear].size(); ++i) {
            const double expected = static_cast<double>(reference[ear][i]);
            difference += std::pow(static_cast<double>(heard[ear][i]) - expected, 2);
            power += expected * expected;
        }
    return 10 * std::log10(difference / power + 1e-30);
}

struct Pair {
    double ours;  ///< Share of a core.
    double zita;  ///< Share of a core, its worker threads included.
    double ratio; ///< Median of the pairs' ratios.
    double residueDb;
};

Pair measure(const Matrix& matrix, bool separate) {
    Ours ours(matrix);
    Zita zita(matrix, separate);
    Noise noise(matrix.blockSize);
    Ears oursHeard{Signal(noise.frames()), Signal(noise.frames())};
    Ears zitaHeard = oursHeard;
    std::vector<double> oursShares, zitaShares, ratios;
    double residue = -1000;
    for (int pair = 0; pair < pairCount; ++pair) {
        const double zitaStart = bench::processSeconds();
        noise.turn(zitaHeard, [&](const auto& input, auto& output) { zita.process(input, output); });
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // its workers finish
        const double zitaUsed = bench::processSeconds() - zitaStart;
        const double oursStart = bench::processSeconds();
        noise.turn(oursHeard, [&](const auto& input, auto& output) { output.copyFrom(ours.process(input)); });
        const double oursUsed = bench::processSeconds() - oursStart;
        residue = std::max(residue, residueDb(oursHeard, zitaHeard));
        if (pair == 0)
            continue; // caches
        oursShares.push_back(oursUsed / noise.seconds());
        zitaShares.push_back(zitaUsed / noise.seconds());
        ratios.push_back(oursUsed / zitaUsed);
    }
    return {bench::median(oursShares), bench::median(zitaShares), bench::median(ratios), residue};
}

void report(const Results& results, const Case& chosen, const Pair& pair, double engine) {
    const std::string room = chosen.withReverb ? "with the longest reverb" : "no reverb";
    Results::line({std::string(chosen.layout) + ", " + std::to_string(chosen.blockSize) + ", " +
                       (chosen.dense ? "dense noise" : "as drawn") + ", " + room,
                   bench::number(100 * pair.ours), bench::number(100 * pair.zita),
                   bench::number(pair.ratio, 2), chosen.dense ? "" : bench::number(100 * engine),
                   bench::number(pair.residueDb, 0)});
    const std::string layout = chosen.layout;
    const std::string key = layout.substr(0, layout.find(' ')) + "-" + std::to_string(chosen.blockSize) +
                            (chosen.dense ? "-dense" : "-drawn") + (chosen.withReverb ? "-reverb" : "-dry");
    results.record(key, {{"ours", pair.ours},
                         {"zita", pair.zita},
                         {"ratio", pair.ratio},
                         {"wholeEngine", engine},
                         {"residueDb", pair.residueDb}});
    results.goal("zita-" + key, pair.ratio);
}

void run(const Results& results) {
    HeadAndRooms data;
    const test::FlushDenormals flush;
    std::cout << "Percent of a core at 48 kHz, " << HeadAndRooms::description() << ", medians of "
              << pairCount - 1 << " pairs.\n\n";
    Results::heading(
        {"layout, block, responses", "ours", "zita-convolver", "ratio", "our whole engine", "residue, dB"});
    for (const char* const layout : {"7.1.4", "5.1 ITU"})
        for (const std::uint64_t blockSize : {512U, 64U})
            for (const bool withReverb : {false, true}) {
                const double engine =
                    bench::EngineRun({layout,
                                      scene,
                                      withReverb ? bench::Reverb::longest : bench::Reverb::none,
                                      blockSize,
                                      {}},
                                     data)
                        .share(4 * turnSeconds);
                for (const bool dense : {false, true}) {
                    const Case chosen{layout, blockSize, dense, withReverb};
                    const Matrix matrix = matrixOf(chosen, data);
                    Pair pair = measure(matrix, false);
                    if (withReverb) // whatever is better for the other one counts
                        if (const Pair separate = measure(matrix, true); separate.zita < pair.zita)
                            pair = separate;
                    report(results, chosen, pair, engine);
                    if (!(pair.residueDb < residueLimitDb))
                        throw std::runtime_error("the two sound different");
                }
            }
}

} // namespace

int main(int argumentCount, char** arguments) {
    return bench::runProgram("convolver_pair", argumentCount, arguments, run);
}
