// SPDX-License-Identifier: GPL-3.0-or-later
// What a host hands back with a session. The first byte says how the rest is to be taken: 0 as the whole chunk, else as its
// text, behind a header that fits, so that the tree itself is reached.
#include "TestProcessor.h"

#include "fuzz/Fuzzed.h"
#include "parameters/core/Scene.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

namespace {

using test::Processor;

/// No engine is built: the many requests for one are not what is looked at.
class NoEngine final : public orvane::IEngineManager {
public:
    void prepare(std::uint64_t, double) override {}
    void release() override {}
    void process(const orvane::SampleBuffer&, orvane::SampleBuffer&) override {}
    void setMuted(bool) noexcept override {}
};

struct Range {
    float least;
    float most;
};
constexpr std::array<Range, 4> ranges{{{0, 100}, {-100, 100}, {-180, 180}, {-96, 24}}};

struct Values {
    std::uint32_t layout = 0;
    std::uint32_t scene = 0;
    std::array<float, 4> numbers{}; ///< Ambience, focus, rotation, gain: as in `ranges`.

    bool operator==(const Values&) const = default;
};

std::array<orvane::kestrum::core::ISliderValue*, 4> sliders(Processor& processor) {
    auto& state = *processor.getProcessorState();
    return {state.getAmbience(), state.getFocus(), state.getHeadRotation(), state.getMasterGain()};
}

Values valuesOf(Processor& processor) {
    auto& state = *processor.getProcessorState();
    Values values{state.getSpeakerSetup()->getValue(), state.getScene()->getValue(), {}};
    for (std::size_t index = 0; index < ranges.size(); ++index)
        values.numbers[index] = sliders(processor)[index]->getValue();
    return values;
}

const Values before{0x4AB55920, 0xAE828ED9, {83, -41, -179, 24}}; ///< Far from all defaults.

void setValues(Processor& processor, const Values& values) {
    auto& state = *processor.getProcessorState();
    state.getSpeakerSetup()->setValue(values.layout);
    state.getScene()->setValue(values.scene);
    for (std::size_t index = 0; index < ranges.size(); ++index)
        sliders(processor)[index]->setValue(values.numbers[index]);
}

std::string chunkOf(Processor& processor) {
    juce::MemoryBlock chunk;
    processor.getStateInformation(chunk);
    return {static_cast<const char*>(chunk.getData()), chunk.getSize()};
}

/// The text that the header of a chunk tells of; none where it is not all there.
std::optional<std::string_view> textOf(std::string_view chunk) {
    constexpr std::size_t header = 8;
    if (chunk.size() <= header)
        return std::nullopt;
    std::uint32_t length = 0;
    for (std::size_t index = 0; index < 4; ++index)
        length |= static_cast<std::uint32_t>(static_cast<unsigned char>(chunk[4 + index])) << (8 * index);
    return length <= chunk.size() - header ? std::optional(chunk.substr(header, length)) : std::nullopt;
}

/// Takes each character apart and looks whether its number, written in the shortest way, is what stood there.
bool isUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const auto lead = static_cast<unsigned char>(text[at]);
        const std::size_t more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        if ((lead >= 0x80 && lead < 0xC0) || lead > 0xF7 || text.size() - at <= more)
            return false;
        std::uint32_t number = more == 0 ? lead : lead & (0x3Fu >> more);
        for (std::size_t index = 1; index <= more; ++index) {
            const auto byte = static_cast<unsigned char>(text[at + index]);
            if ((byte & 0xC0u) != 0x80u)
                return false;
            number = number << 6u | (byte & 0x3Fu);
        }
        const std::size_t shortest = number < 0x80 ? 0 : number < 0x800 ? 1 : number < 0x10000 ? 2 : 3;
        if (shortest != more || number > 0x10FFFF || (number >= 0xD800 && number < 0xE000))
            return false;
        at += more + 1;
    }
    return true;
}

std::string chunkFor(test::Taken& taken) {
    if (taken.byte() == 0)
        return std::string(taken.rest());
    const std::string_view text = taken.rest();
    std::string chunk = "VC2!";
    for (unsigned shift = 0; shift < 32; shift += 8)
        chunk += static_cast<char>(text.size() >> shift & 0xFFu);
    return chunk.append(text).append(1, '\0');
}

void promisePossible(Processor& processor, const Values& values) {
    processor.getSupportedLayouts()->get(
        values.layout); // throws for one that is not in the table, as the next does
    orvane::kestrum::core::Scene::get(values.scene);
    for (std::size_t index = 0; index < ranges.size(); ++index)
        test::promise(values.numbers[index] >= ranges[index].least &&
                          values.numbers[index] <= ranges[index].most,
                      "every number is one that could have been set by hand");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    static const bool withoutDisplay = setenv("DISPLAY", "none", 1) == 0;
    test::promise(withoutDisplay, "no display of the machine is touched");
    static const std::unique_ptr<Processor> processor =
        test::makeProcessor([](auto*, const auto&) { return std::make_unique<NoEngine>(); });

    test::Taken taken({bytes, count});
    const std::string chunk = chunkFor(taken);
    setValues(*processor, before);
    // From memory of its exact length: the sanitizer sees a reader that goes beyond it.
    const auto exact = std::make_unique<char[]>(chunk.size());
    std::copy(chunk.begin(), chunk.end(), exact.get());
    processor->setStateInformation(exact.get(), static_cast<int>(chunk.size()));
    const Values after = valuesOf(*processor);
    promisePossible(*processor, after);
    const auto text = textOf(chunk);
    test::promise((text && isUtf8(*text)) || after == before,
                  "a chunk that is cut off or no UTF-8 changes nothing");

    const std::string saved = chunkOf(*processor);
    setValues(*processor, before);
    processor->setStateInformation(saved.data(), static_cast<int>(saved.size()));
    test::promise(valuesOf(*processor) == after && chunkOf(*processor) == saved,
                  "what is saved comes back and is saved again byte for byte");
    return 0;
}
