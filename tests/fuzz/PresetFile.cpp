// SPDX-License-Identifier: GPL-3.0-or-later
// A .vstpreset file as "kestrum render --state" takes it.
#include "Fuzzed.h"

#include "host/HostError.h"
#include "host/PresetFile.h"

using namespace orvane::kestrum::host;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    Preset preset;
    try {
        preset = parsePreset(std::as_bytes(std::span(bytes, count)));
    } catch (const HostError& error) {
        test::promiseSentence(error.what());
        return 0;
    }
    test::promise(preset.state.component.size() <= count && preset.state.controller.size() <= count,
                  "no state is longer than the file");
    const Preset again = parsePreset(formatPreset(preset));
    test::promise(again.classId == preset.classId && again.state.component == preset.state.component &&
                      again.state.controller == preset.state.controller,
                  "what is read can be written and read again");
    return 0;
}
