// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "identify/ISpeech.h"

#include <string>

namespace orvane::kestrum::identify {

/// The speech synthesiser that Debian's package espeak-ng installs, run as a program.
class EspeakSpeech final : public ISpeech {
public:
    /// @param program its name on the search path, or where it lies.
    explicit EspeakSpeech(std::string program = "espeak-ng") : program(std::move(program)) {}
    render::Recording say(const std::string& words) override;

private:
    std::string program;
};

} // namespace orvane::kestrum::identify
