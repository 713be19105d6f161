// SPDX-License-Identifier: GPL-3.0-or-later
// A file of head-related responses, as the plug-in reads it: first byte the rate's row, then the file. It is asked for a
// few responses of a few samples instead of 2522 of 70 or more; nothing in the reader knows these numbers.
#include "Fuzzed.h"

#include "data/DataFileExceptions.h"
#include "data/IIrFile.h"
#include "data/TenmarshHrirReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace {

class SmallFile final : public orvane::IIrFile {
public:
    SmallFile(std::string path, std::int32_t nativeRate, std::int32_t factor)
        : filePath(std::move(path)), nativeRate(nativeRate), factor(factor) {}

    std::string label() const override { return "0"; }
    std::string path() const override { return filePath; }
    bool isUpsampled() const noexcept override { return factor > 1; }
    std::int32_t nativeSampleRate() const noexcept override { return nativeRate; }
    std::uint64_t length() const noexcept override { return 3 * static_cast<std::uint64_t>(factor); }
    std::uint64_t responseCount() const noexcept override { return 5; }
    double sampleRate() const noexcept override { return static_cast<double>(nativeRate) * factor; }

private:
    std::string filePath;
    std::int32_t nativeRate;
    std::int32_t factor;
};

struct Row {
    std::int32_t nativeRate;
    std::int32_t factor;
};
constexpr std::array<Row, 7> rows{
    {{24000, 1}, {44100, 1}, {48000, 1}, {44100, 2}, {48000, 2}, {44100, 4}, {48000, 4}}};

/// @return whether it was read whole; its own refusals are the only other end.
bool reads(const orvane::IIrFile& file, std::vector<float>& samples) {
    try {
        orvane::TenmarshHrirReader().read(file, samples);
        return true;
    } catch (const orvane::wavNotReadableException&) {
    } catch (const orvane::numberOfChannelsMismatchException&) {
    } catch (const orvane::wavChunckSizeShortException&) {
    } catch (const orvane::wavBitWrongException&) {
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    static test::FileInMemory content;
    test::Taken taken({bytes, count});
    const Row row = rows[taken.byte() % rows.size()];
    content.replace(taken.rest());

    const SmallFile file(content.path(), row.nativeRate, row.factor);
    std::vector<float> samples;
    if (!reads(file, samples))
        return 0;
    test::promise(samples.size() == 2 * file.length() * file.responseCount(),
                  "as many samples as were asked for");
    test::promise(std::ranges::all_of(samples, [](float sample) { return std::abs(sample) <= 1e6f; }),
                  "what is no sound is not handed out");
    const auto factor = static_cast<std::size_t>(row.factor);
    for (std::size_t index = 0; index < samples.size(); ++index)
        test::promise(index / 2 % factor == 0 || std::bit_cast<std::uint32_t>(samples[index]) == 0,
                      "silence between the stored frames");
    return 0;
}
