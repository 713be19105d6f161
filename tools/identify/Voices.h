// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "channels/ChannelNames.h"
#include "identify/ISpeech.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace orvane::kestrum::identify {

/// How loud a voice is, integrated by EBU R 128; none peaks above -1 dB of full scale.
inline constexpr double voiceLoudnessLufs = -20;

/// The low-frequency channel's tone: below what its own low pass lets through, above what headphones lose.
inline constexpr double toneFrequencyHz = 50, toneSeconds = 1.5, toneAmplitude = 0.1;

/// The recording of alsa-utils whose words are this short name's; empty for names that it has no recording of.
std::string_view recordingOf(std::string_view briefName);

/// Gives each channel the sound by which it is known: a recorded voice where there is one that says its name, a
/// synthetic one elsewhere, a tone for low frequencies. All voices are equally loud and begin at once.
class Voices {
public:
    /// @param speech outlives this; asked only for names without a recording.
    Voices(std::filesystem::path recordings, ISpeech& speech, unsigned sampleRate);

    /// @return one channel at the sample rate.
    /// @throws render::RenderError when a recording or the synthesiser is missing or yields nothing.
    std::vector<float> soundOf(const channels::Channel& channel) const;

private:
    std::filesystem::path recordings;
    ISpeech& speech;
    unsigned sampleRate;
};

/// Resamples, cuts silence off both ends and brings a voice to `voiceLoudnessLufs`.
/// @return empty when the recording is silent.
std::vector<float> preparedVoice(const render::Recording& recording, unsigned sampleRate);

/// A sine of `toneFrequencyHz` with soft ends.
std::vector<float> lowFrequencyTone(unsigned sampleRate);

} // namespace orvane::kestrum::identify
