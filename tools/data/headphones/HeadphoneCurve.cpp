// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/headphones/HeadphoneCurve.h"

#include "data/DataError.h"
#include "data/headphones/ParametricEq.h"
#include "data/sets/About.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <memory>
#include <sstream>

namespace orvane::kestrum::tools {

namespace {

constexpr double firstPointHz = 10;
constexpr double pointsPerOctave = 96;
constexpr std::uintmax_t longestText = 1000000; ///< Bytes; real ones have a thousand.

double meanOfThirdOctaves(const std::vector<double>& curve) {
    constexpr double fromHz = 250;
    constexpr double toHz = 12000;
    constexpr std::size_t third = 32; // points
    double sum = 0;
    double count = 0;
    for (std::size_t point = 0; point < curve.size(); point += third) {
        const double hertz = HeadphoneCurve::pointHz(point);
        if (hertz < fromHz || hertz > toHz)
            continue;
        sum += curve[point];
        ++count;
    }
    return sum / count;
}

double valueAt(const std::vector<double>& curve, double frequencyHz) {
    const double place =
        std::clamp(pointsPerOctave * std::log2(std::max(frequencyHz, firstPointHz) / firstPointHz), 0.0,
                   static_cast<double>(curve.size() - 1));
    const auto below = std::min(static_cast<std::size_t>(place), curve.size() - 2);
    return std::lerp(curve[below], curve[below + 1], place - static_cast<double>(below));
}

/// Holds a curve still outside of two frequencies.
void holdOutside(std::vector<double>& curve, double fromHz, double toHz) {
    const double first = valueAt(curve, fromHz);
    const double last = valueAt(curve, toHz);
    for (std::size_t point = 0; point < curve.size(); ++point) {
        const double hertz = HeadphoneCurve::pointHz(point);
        if (hertz < fromHz)
            curve[point] = first;
        else if (hertz > toHz)
            curve[point] = last;
    }
}

struct CloseSound {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

struct Recording {
    std::vector<Samples> channels;
    double sampleRate = 0;
};

Recording readRecording(const std::filesystem::path& path) {
    constexpr int mostChannels = 2;
    constexpr sf_count_t mostFrames = 1 << 22;
    constexpr int lowestRate = 32000;
    SF_INFO info{};
    const std::unique_ptr<SNDFILE, CloseSound> file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file)
        throw DataError("it cannot be read as a sound file: export the response as WAV once more.");
    if (info.channels > mostChannels)
        throw DataError("it has " + std::to_string(info.channels) +
                        " channels: give a response of one channel, or of two for both ears.");
    if (info.samplerate < lowestRate)
        throw DataError("it has a sample rate of " + std::to_string(info.samplerate) +
                        " Hz: measure the headphones at 44100 Hz or more.");
    if (info.frames < 1 || info.frames > mostFrames)
        throw DataError("it holds " + std::to_string(info.frames) +
                        " samples: give the impulse response alone, some thousand samples.");
    const auto channelCount = static_cast<std::size_t>(info.channels);
    Samples interleaved(static_cast<std::size_t>(info.frames) * channelCount);
    if (sf_readf_double(file.get(), interleaved.data(), info.frames) != info.frames)
        throw DataError("it is shorter than it says: export the response once more.");
    Recording recording{std::vector<Samples>(channelCount), static_cast<double>(info.samplerate)};
    for (std::size_t index = 0; index < interleaved.size(); ++index)
        recording.channels[index % channelCount].push_back(interleaved[index]);
    return recording;
}

std::string contentOf(const std::filesystem::path& file) {
    std::error_code failure;
    const std::filesystem::file_status there = std::filesystem::status(file, failure);
    if (!std::filesystem::exists(there))
        throw DataError("\"" + file.string() +
                        "\" does not exist: name the headphones' equaliser or response with --headphone-eq.");
    if (!std::filesystem::is_regular_file(there))
        throw DataError("\"" + file.string() +
                        "\" is no plain file: save the headphones' equaliser or response in one first.");
    std::ifstream stream(file, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream)
        throw DataError("\"" + file.string() + "\" cannot be read: name a file that you may read.");
    return text;
}

Headphones fromText(const std::string& text, const CurveLimits& limits) {
    if (text.size() > longestText || text.find('\0') != std::string::npos)
        throw DataError(
            "it is neither a WAVE file nor a text: give a parametric equaliser's text or a response as WAV.");
    const ParametricEq eq = parseParametricEq(text);
    std::vector<double> curve(HeadphoneCurve::pointCount);
    for (std::size_t point = 0; point < curve.size(); ++point)
        curve[point] = gainDb(eq, std::min(HeadphoneCurve::pointHz(point), limits.highestHz));
    std::ostringstream description;
    description << eq.filters.size() << (eq.filters.size() == 1 ? " filter" : " filters") << " on, "
                << eq.filtersOff << " off, pre-amplification " << std::showpos << std::fixed
                << std::setprecision(1) << eq.preampDb << std::noshowpos << " dB";
    if (eq.headingLines > 0)
        description << ", " << eq.headingLines << (eq.headingLines == 1 ? " line" : " lines")
                    << " of heading";
    return {HeadphoneCurve(std::move(curve), limits), {}, {}, "headphones.txt", description.str()};
}

Headphones fromRecording(const std::filesystem::path& file, const CurveLimits& limits) {
    const Recording recording = readRecording(file);
    std::ostringstream description;
    description << "inverse of a measured response, " << recording.channels[0].size() << " samples at "
                << std::lround(recording.sampleRate) << " Hz"
                << (recording.channels.size() == 2 ? ", mean power of both channels" : "");
    return {HeadphoneCurve(inverseOfResponse(recording.channels, recording.sampleRate, limits), limits),
            {},
            {},
            "headphones.wav",
            description.str()};
}

} // namespace

double HeadphoneCurve::pointHz(std::size_t point) {
    return firstPointHz * std::exp2(static_cast<double>(point) / pointsPerOctave);
}

HeadphoneCurve::HeadphoneCurve(std::vector<double> askedDb, const CurveLimits& limits)
    : asked(std::move(askedDb)) {
    holdOutside(asked, limits.lowestHz, limits.highestHz);
    const double middle = meanOfThirdOctaves(asked);
    if (!(middle >= limits.softestDb && middle <= limits.loudestDb))
        throw DataError(
            "it changes the level by " + std::to_string(std::lround(middle)) +
            " dB in the mean, which is no correction of headphones: check the pre-amplification.");
    gains = asked;
    for (double& gain : gains)
        gain = std::clamp(gain, middle - limits.largestCutDb, middle + limits.largestBoostDb);
    level = meanOfThirdOctaves(gains);
}

double HeadphoneCurve::askedDb(double frequencyHz) const { return valueAt(asked, frequencyHz); }
double HeadphoneCurve::gainDb(double frequencyHz) const { return valueAt(gains, frequencyHz); }
double HeadphoneCurve::leastDb() const { return *std::ranges::min_element(gains); }
double HeadphoneCurve::mostDb() const { return *std::ranges::max_element(gains); }
bool HeadphoneCurve::bounded() const { return asked != gains; }

Samples HeadphoneCurve::minimumPhase(double sampleRate, std::size_t length) const {
    constexpr std::size_t smallest =
        65536; // bins less than 1 Hz apart: the cepstrum must not fold back on itself
    RealTransform transform(std::max(smallest, 4 * powerOfTwoFrom(length)));
    const double binWidthHz = sampleRate / static_cast<double>(transform.size());
    Samples magnitudes(transform.binCount());
    for (std::size_t bin = 0; bin < magnitudes.size(); ++bin)
        magnitudes[bin] = std::pow(10.0, gainDb(static_cast<double>(bin) * binWidthHz) / 20);
    Samples response = transform.inverse(transform.minimumPhase(magnitudes));
    response.resize(length);
    return response;
}

std::vector<double> inverseOfResponse(const std::vector<Samples>& channels, double sampleRate,
                                      const CurveLimits& limits) {
    constexpr double flatFromHz = 20;
    constexpr std::size_t smallest = 65536; // a sixth of an octave at 20 Hz holds several bins
    RealTransform transform(std::max(smallest, powerOfTwoFrom(channels[0].size())));
    Samples magnitudes(transform.binCount());
    for (const Samples& channel : channels) {
        if (!std::ranges::all_of(channel, [](double sample) { return std::isfinite(sample); }))
            throw DataError("it holds samples that are no numbers: export the response once more.");
        const Spectrum spectrum = transform.forward(channel);
        for (std::size_t bin = 0; bin < magnitudes.size(); ++bin)
            magnitudes[bin] += std::norm(spectrum[bin]) / static_cast<double>(channels.size());
    }
    std::ranges::transform(magnitudes, magnitudes.begin(), [](double power) { return std::sqrt(power); });
    const Samples smooth = smoothed(magnitudes, limits.smoothingOctaves);
    const double largest = *std::ranges::max_element(smooth);
    if (!(largest > 0))
        throw DataError("it is silent: export the response once more.");
    constexpr double floorRatio = 1e-5; // deeper than any limit reaches
    std::vector<double> curve(HeadphoneCurve::pointCount);
    const double toHz = std::min(limits.measuredToHz, 0.45 * sampleRate);
    for (std::size_t point = 0; point < curve.size(); ++point) {
        const double hertz = std::clamp(HeadphoneCurve::pointHz(point), flatFromHz, toHz);
        const double place = hertz * static_cast<double>(transform.size()) / sampleRate;
        const auto bin = static_cast<std::size_t>(place);
        const double magnitude = std::lerp(smooth[bin], smooth[bin + 1], place - static_cast<double>(bin));
        curve[point] = -20 * std::log10(std::max(magnitude, floorRatio * largest));
    }
    const double middle = meanOfThirdOctaves(curve);
    for (double& gain : curve)
        gain -= middle;
    return curve;
}

Headphones readHeadphones(const std::filesystem::path& file, const CurveLimits& limits) {
    const std::string content = contentOf(file);
    try {
        const bool wave = content.starts_with("RIFF") || content.starts_with("RF64");
        Headphones headphones = wave ? fromRecording(file, limits) : fromText(content, limits);
        headphones.fileName = file.filename().string();
        headphones.sha256 = sha256OfFile(file);
        return headphones;
    } catch (const DataError& error) {
        throw DataError("\"" + file.string() +
                        "\" cannot serve as a correction of headphones: " + error.what());
    }
}

} // namespace orvane::kestrum::tools
