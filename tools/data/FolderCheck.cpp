// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/FolderCheck.h"

#include "data/About.h"
#include "data/DataError.h"
#include "data/Figures.h"
#include "data/ResponseSet.h"
#include "data/ReverbCalibration.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>

namespace orvane::kestrum::tools {

namespace {

constexpr const char* remakeRemedy = "make the set anew with \"kestrum data hrir\" or scripts/install-data.";
constexpr const char* remakeRoomsRemedy =
    "make the rooms anew with \"kestrum data reverb\" or scripts/install-data.";

bool silent(const Samples& samples) {
    return std::ranges::all_of(samples, [](double sample) { return sample == 0; });
}

void requireUsableSamples(const ResponseSet& set) {
    for (std::size_t index = 0; index < set.responses.size(); ++index)
        for (const Samples& ear : set.responses[index]) {
            if (!std::ranges::all_of(ear, [](double sample) { return std::isfinite(sample); }))
                throw DataError("response " + std::to_string(index) + " holds samples that are no numbers");
            if (silent(ear))
                throw DataError("response " + std::to_string(index) + " is silent at one ear");
        }
}

double requirePlausibleLevel(const ResponseSet& set) {
    constexpr double farOffDb = 12;
    const double level =
        meanLevelDb(diffuseBands(set.responses, gridWeights(), set.file.sampleRate, set.file.flatToHz));
    if (std::abs(level) > farOffDb)
        throw DataError("its mean level is " + std::to_string(std::lround(level)) +
                        " dB instead of about 0 dB");
    return level;
}

/// @return the delay between the ears for a source at +90 degrees.
double requireSides(const ResponseSet& set) {
    double rightDelay = 0;
    for (const int azimuth : {45, 60, 90, 120, 135})
        for (const int side : {1, -1}) {
            const auto& ears = set.responses[gridIndex(side * azimuth, 0)];
            const std::size_t near = side > 0 ? rightEar : leftEar;
            const double nearDb = bandLevelDb(ears[near], set.file.sampleRate, 500, 8000);
            const double farDb = bandLevelDb(ears[1 - near], set.file.sampleRate, 500, 8000);
            const double delay =
                interauralDelaySeconds(ears[leftEar], ears[rightEar], set.file.sampleRate) * side;
            if (nearDb <= farDb || delay <= 0)
                throw DataError(
                    "a source " + std::to_string(azimuth) + " degrees to the " +
                    (side > 0 ? "right" : "left") +
                    " is louder or earlier at the other ear: its ears or its azimuths are swapped");
            if (azimuth == 90 && side > 0)
                rightDelay = delay;
        }
    return rightDelay;
}

/// @return the largest peak of all rooms, in decibels.
double requireUsableRooms(const ReverbSet& set) {
    // The other rates' responses are scaled to filter alike, and their peaks fall elsewhere between the samples.
    constexpr double softerDb = 4;
    constexpr double louderDb = 7;
    double largest = -1000;
    for (const ReverbEntry& entry : set.entries) {
        const std::string room = "room " + std::to_string(entry.room);
        double peak = 0;
        for (const Samples& ear : entry.ears) {
            if (!std::ranges::all_of(ear, [](double sample) { return std::isfinite(sample); }))
                throw DataError(room + " holds samples that are no numbers");
            if (silent(ear))
                throw DataError(room + " is silent at one ear");
            for (const double sample : ear)
                peak = std::max(peak, std::abs(sample));
        }
        const double peakDb = 20 * std::log10(peak);
        const LevelRange range = levelRange(entry.room);
        if (peakDb < range.from - softerDb || peakDb > range.to + louderDb)
            throw DataError(room + " has its peak at " + std::to_string(std::lround(peakDb)) +
                            " dB, where no calibration puts it");
        largest = std::max(largest, peakDb);
    }
    return largest;
}

} // namespace

FileVerdict checkResponseFile(const ResponseFile& file, const std::filesystem::path& folder) {
    FileVerdict verdict{std::string(file.name), false, {}, {}};
    try {
        const ResponseSet set = readResponseSet(file, folder);
        requireUsableSamples(set);
        const double level = requirePlausibleLevel(set);
        const double delay = requireSides(set);
        std::ostringstream facts;
        facts << responseCount << " responses of " << file.length << " frames at " << file.sampleRate
              << " Hz, mean level " << std::showpos << std::fixed << std::setprecision(1) << level
              << std::noshowpos << " dB, " << std::setprecision(0) << delay * 1e6
              << " us between the ears at the side";
        verdict.finding = facts.str();
        verdict.sound = true;
    } catch (const DataError& error) {
        verdict.finding = error.what();
        verdict.remedy = remakeRemedy;
    }
    return verdict;
}

FileVerdict checkReverbFile(const ReverbFile& file, const std::filesystem::path& folder) {
    FileVerdict verdict{std::string(file.name), false, {}, {}};
    try {
        const ReverbSet set = readReverbSet(file, folder);
        const double largest = requireUsableRooms(set);
        std::ostringstream facts;
        facts << set.entries.size() << " rooms at " << file.sampleRate << " Hz, the largest peak at "
              << std::showpos << std::fixed << std::setprecision(1) << largest << " dB";
        verdict.finding = facts.str();
        verdict.sound = true;
    } catch (const DataError& error) {
        verdict.finding = error.what();
        verdict.remedy = remakeRoomsRemedy;
    }
    return verdict;
}

FileVerdict checkAbout(const std::filesystem::path& folder) {
    FileVerdict verdict{aboutFileName, false, {}, remakeRemedy};
    const AboutMethods methods = methodsOf(folder);
    if (methods.responses == 0)
        verdict.finding = "it is missing or does not say how the head was made";
    else if (methods.responses != methodNumber)
        verdict.finding = "the head was made by another version of this program";
    else if (methods.rooms != reverbMethodNumber) {
        verdict.finding = methods.rooms == 0 ? "it does not say how the rooms were made"
                                             : "the rooms were made by another version of this program";
        verdict.remedy = remakeRoomsRemedy;
    } else
        verdict = {aboutFileName, true, "head and rooms were made by this program's methods", {}};
    return verdict;
}

std::vector<FileRule> dataFolderRules() {
    std::vector<FileRule> rules;
    rules.reserve(responseFiles.size() + reverbFiles.size() + 1);
    for (const ResponseFile& file : responseFiles)
        rules.push_back({std::string(file.name), [&file](const std::filesystem::path& folder) {
                             return checkResponseFile(file, folder);
                         }});
    for (const ReverbFile& file : reverbFiles)
        rules.push_back({std::string(file.name), [&file](const std::filesystem::path& folder) {
                             return checkReverbFile(file, folder);
                         }});
    rules.push_back({aboutFileName, checkAbout});
    return rules;
}

std::vector<FileVerdict> checkDataFolder(const std::filesystem::path& folder) {
    const std::vector<FileRule> rules = dataFolderRules();
    std::vector<FileVerdict> verdicts;
    verdicts.reserve(rules.size());
    for (const FileRule& rule : rules)
        verdicts.push_back(rule.check(folder));
    return verdicts;
}

} // namespace orvane::kestrum::tools
