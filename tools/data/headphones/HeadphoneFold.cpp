// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/headphones/HeadphoneFold.h"

#include "data/DataError.h"
#include "data/OnAllCores.h"
#include "data/measures/Rendering.h"
#include "data/sets/About.h"
#include "data/sets/WholeFile.h"

#include <algorithm>
#include <functional>

namespace orvane::kestrum::tools {

namespace {

constexpr std::size_t roomFilterLength = 16384; ///< A third of a second: all that a bounded correction rings.

/// The first samples of a response filtered, no more than there were.
Samples filteredAndCut(const Samples& response, const Samples& filter, const Samples& fade) {
    Samples result(response.size());
    for (std::size_t frame = 0; frame < result.size(); ++frame) {
        double sum = 0;
        for (std::size_t tap = 0; tap <= frame; ++tap)
            sum += filter[tap] * response[frame - tap];
        result[frame] = fade[frame] * sum;
    }
    return result;
}

Samples endFade(const ResponseFile& file) {
    WindowShape shape;
    shape.fadeInSeconds = 0;
    return windowOf(shape, file.length, file.sampleRate);
}

void replaceHead(const ResponseFile& file, const HeadphoneCurve& curve, const std::filesystem::path& folder,
                 std::vector<FollowedBand>& followed) {
    ResponseSet set = readResponseSet(file, folder);
    followed = foldIntoHead(set, curve);
    writeResponseSet(set, folder);
}

void replaceRooms(const ReverbFile& file, const HeadphoneCurve& curve, const std::filesystem::path& folder) {
    ReverbSet set = readReverbSet(file, folder);
    foldIntoRooms(set, curve);
    writeReverbSet(set, folder);
}

} // namespace

std::vector<FollowedBand> foldIntoHead(ResponseSet& set, const HeadphoneCurve& curve) {
    const Samples filter = curve.minimumPhase(set.file.sampleRate, set.file.length);
    const Samples fade = endFade(set.file);
    const std::vector<double> weights = gridWeights();
    FollowMeter meter(curve, set.file.sampleRate);
    for (std::size_t index = 0; index < set.responses.size(); ++index)
        for (Samples& ear : set.responses[index]) {
            const Samples before = ear;
            ear = filteredAndCut(before, filter, fade);
            meter.add(before, ear, weights[index]);
        }
    return meter.bands();
}

void foldIntoRoom(ReverbEntry& entry, const HeadphoneCurve& curve, double sampleRate) {
    const Samples filter = curve.minimumPhase(sampleRate, roomFilterLength);
    for (Samples& ear : entry.ears) {
        const std::size_t length = ear.size();
        RealTransform transform(powerOfTwoFrom(length + roomFilterLength));
        Spectrum spectrum = transform.forward(ear);
        const Spectrum factors = transform.forward(filter);
        std::ranges::transform(spectrum, factors, spectrum.begin(), std::multiplies<>());
        ear = transform.inverse(spectrum);
        ear.resize(length);
    }
}

void foldIntoRooms(ReverbSet& set, const HeadphoneCurve& curve) {
    onAllCores(set.entries.size(),
               [&](std::size_t index) { foldIntoRoom(set.entries[index], curve, set.file.sampleRate); });
}

FoldReport foldHeadphones(const std::filesystem::path& folder, const Headphones& headphones,
                          const std::filesystem::path& source, const std::string& about) {
    FoldReport report;
    withdrawAbout(folder);
    for (std::size_t index = 0; index < responseFiles.size(); ++index)
        replaceHead(responseFiles[index], headphones.curve, folder, report.heads[index]);
    for (const ReverbFile& file : reverbFiles)
        replaceRooms(file, headphones.curve, folder);
    copyWhole(source, folder / headphones.copyName);
    writeAbout(about, folder);
    return report;
}

std::optional<Headphones> headphonesIn(const std::filesystem::path& folder) {
    const std::optional<AboutHeadphones> about = aboutHeadphones(folder);
    if (!about)
        return std::nullopt;
    Headphones headphones = readHeadphones(folder / about->copyName);
    if (headphones.sha256 != about->sha256)
        throw DataError(
            "\"" + (folder / about->copyName).string() +
            "\" is not the correction that the set was made with: make the set anew with \"kestrum data "
            "hrir --name NAME --headphone-eq FILE\".");
    return headphones;
}

} // namespace orvane::kestrum::tools
