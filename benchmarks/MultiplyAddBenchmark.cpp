// SPDX-License-Identifier: GPL-3.0-or-later
// The inner loops of convolution: what the compiler makes of the plain loop against every kernel that the
// processor runs. Arguments: terms, bins. A run whose bits differ from the plain loop's is an error.
#include "PlainMultiplyAdd.h"
#include "binaural/MultiplyAdd.h"
#include "binaural/PartitionedSpectrum.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using orvane::PartitionedSpectrum;
using orvane::SpectrumTerm;
using orvane::TwoBlockTerm;
using orvane::fft::Complex;

/// The input spectra and both ears' responses, as a convolver holds them, and the sums of two blocks.
class Spectra {
public:
    explicit Spectra(const benchmark::State& state)
        : termCount(static_cast<std::uint64_t>(state.range(0))),
          binCount(static_cast<std::uint64_t>(state.range(1))),
          inputs(termCount + 1, binCount - 1),
          left(termCount, binCount - 1),
          right(termCount, binCount - 1),
          sums(4, binCount - 1) {
        std::mt19937 random(1);
        for (PartitionedSpectrum* const spectra : {&inputs, &left, &right})
            for (std::uint64_t slot = 0; slot < spectra->slotCount(); ++slot)
                for (std::uint64_t k = 0; k < binCount; ++k)
                    spectra->slot(slot).data[k] = {noise(random), noise(random)};
        for (std::uint64_t i = 0; i < termCount; ++i) {
            terms.push_back({inputs.slot(i).data, left.slot(i).data, right.slot(i).data});
            nextTerms.push_back({inputs.slot(i + 1).data, left.slot(i).data, right.slot(i).data});
            twoBlockTerms.push_back(
                {inputs.slot(i).data, inputs.slot(i + 1).data, left.slot(i).data, right.slot(i).data});
        }
    }

    Complex* sum(std::uint64_t index) { return sums.slot(index).data; }

    void clearSums() {
        for (std::uint64_t index = 0; index < 4; ++index)
            sums.slot(index).clear();
    }

    /// Whether the sums of the first blocks are, to the bit, what the plain loop adds up from zero.
    bool isRight(std::uint64_t blockCount) {
        PartitionedSpectrum expected(4, binCount - 1);
        for (std::uint64_t block = 0; block < blockCount; ++block)
            for (const SpectrumTerm& term : block == 0 ? terms : nextTerms) {
                bench::plainMultiplyAddSse2(expected.slot(2 * block).data, term.input, term.left, binCount);
                bench::plainMultiplyAddSse2(expected.slot(2 * block + 1).data, term.input, term.right,
                                            binCount);
            }
        for (std::uint64_t index = 0; index < 4; ++index)
            if (std::memcmp(expected.slot(index).data, sum(index), binCount * sizeof(Complex)) != 0)
                return false;
        return true;
    }

    std::uint64_t termCount;
    std::uint64_t binCount;
    PartitionedSpectrum inputs;
    PartitionedSpectrum left;
    PartitionedSpectrum right;
    PartitionedSpectrum sums;
    std::vector<SpectrumTerm> terms;
    std::vector<SpectrumTerm> nextTerms; ///< Of the next block.
    std::vector<TwoBlockTerm> twoBlockTerms;

private:
    static float noise(std::mt19937& random) { return static_cast<float>(random() >> 8) / 8388608.0f - 1.0f; }
};

/// Times `addUp(spectra)`, which adds the terms of that many blocks, after a look at its result.
template <typename AddUp>
void measure(benchmark::State& state, std::uint64_t blockCount, AddUp addUp) {
    Spectra spectra(state);
    addUp(spectra);
    if (!spectra.isRight(blockCount)) {
        state.SkipWithError("other bits than the plain loop's");
        return;
    }
    for (auto _ : state) {
        spectra.clearSums();
        addUp(spectra);
        benchmark::ClobberMemory();
    }
}

using PlainLoop = void (*)(Complex*, const Complex*, const Complex*, std::uint64_t) noexcept;

/// One ear after the other, as without fusing.
void plain(benchmark::State& state, PlainLoop loop) {
    measure(state, 1, [loop](Spectra& spectra) {
        for (const SpectrumTerm& term : spectra.terms)
            loop(spectra.sum(0), term.input, term.left, spectra.binCount);
        for (const SpectrumTerm& term : spectra.terms)
            loop(spectra.sum(1), term.input, term.right, spectra.binCount);
    });
}

void fused(benchmark::State& state, orvane::InstructionSet set) {
    measure(state, 1, [add = orvane::multiplyAddKernel(set).addTerms](Spectra& spectra) {
        add(spectra.sum(0), spectra.sum(1), spectra.terms.data(), spectra.termCount, spectra.binCount);
    });
}

/// Two blocks, one after the other.
void twiceOneBlock(benchmark::State& state, orvane::InstructionSet set) {
    measure(state, 2, [add = orvane::multiplyAddKernel(set).addTerms](Spectra& spectra) {
        add(spectra.sum(0), spectra.sum(1), spectra.terms.data(), spectra.termCount, spectra.binCount);
        add(spectra.sum(2), spectra.sum(3), spectra.nextTerms.data(), spectra.termCount, spectra.binCount);
    });
}

/// Two blocks at once.
void twoBlocks(benchmark::State& state, orvane::InstructionSet set) {
    measure(state, 2, [add = orvane::multiplyAddKernel(set).addTermsOfTwoBlocks](Spectra& spectra) {
        add(spectra.sum(0), spectra.sum(1), spectra.sum(2), spectra.sum(3), spectra.twoBlockTerms.data(),
            spectra.termCount, spectra.binCount);
    });
}

/// The long reverb at 512 samples, a room response at 64 and at 512.
void overAllSizes(benchmark::internal::Benchmark* run) {
    run->Args({431, 513})->Args({69, 65})->Args({9, 513})->Unit(benchmark::kMicrosecond);
}

const bool registered = [] {
    const auto sets = orvane::supportedInstructionSets();
    overAllSizes(benchmark::RegisterBenchmark("plain/sse2", plain, bench::plainMultiplyAddSse2));
    if (std::find(sets.begin(), sets.end(), orvane::InstructionSet::avx) != sets.end())
        overAllSizes(benchmark::RegisterBenchmark("plain/avx", plain, bench::plainMultiplyAddAvx));
    for (const orvane::InstructionSet set : sets) {
        constexpr const char* names[]{"scalar", "sse2", "avx", "avx512"};
        const std::string name = names[static_cast<std::size_t>(set)];
        overAllSizes(benchmark::RegisterBenchmark(("fused/" + name).c_str(), fused, set));
        overAllSizes(benchmark::RegisterBenchmark(("twice one block/" + name).c_str(), twiceOneBlock, set));
        overAllSizes(benchmark::RegisterBenchmark(("two blocks/" + name).c_str(), twoBlocks, set));
    }
    return true;
}();

} // namespace
