// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sets/FolderCheck.h"

#include "data/DataError.h"
#include "data/head/ResponseSet.h"
#include "data/measures/Figures.h"
#include "data/rooms/ReverbCalibration.h"
#include "data/sets/About.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>

namespace orvane::kestrum::tools {

namespace {

enum class Part { head, rooms };

/// What to do about a fault. With headphones folded in neither part can be made without the other, and rooms that are made
/// anew are the program's own.
std::string remedyFor(Part part, const std::filesystem::path& folder) {
    if (aboutHeadphones(folder))
        return "make the set anew with \"kestrum data hrir --name NAME --headphone-eq FILE\".";
    if (part == Part::head)
        return "make the set anew with \"kestrum data hrir\", or run the command that \"kestrum doctor\" "
               "names.";
    return std::string("make the rooms anew with \"kestrum data reverb\"") +
           (ownRooms(folder).empty() ? ", or run the command that \"kestrum doctor\" names."
                                     : ", then those of your own with \"kestrum room\".");
}

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

/// @param meantDb 0 but for a head with headphones folded in.
double requirePlausibleLevel(const ResponseSet& set, double meantDb) {
    constexpr double farOffDb = 12;
    const double level =
        meanLevelDb(diffuseBands(set.responses, gridWeights(), set.file.sampleRate, set.file.flatToHz));
    if (std::abs(level - meantDb) > farOffDb)
        throw DataError("its mean level is " + std::to_string(std::lround(level)) + " dB instead of about " +
                        std::to_string(std::lround(meantDb)) + " dB");
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

/// @param headphones can have moved every peak by any gain that they have at a frequency.
/// @param own rooms that a user has made.
/// @return the largest peak of all rooms, in decibels.
double requireUsableRooms(const ReverbSet& set, const AboutHeadphones& headphones,
                          const std::vector<int>& own) {
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
        const bool isOwn = std::ranges::find(own, entry.room) != own.end();
        const LevelRange range = isOwn ? ownRoomLevelRange(entry.room) : levelRange(entry.room);
        if (peakDb < range.from - softerDb + headphones.leastDb ||
            peakDb > range.to + louderDb + headphones.mostDb)
            throw DataError(room + " has its peak at " + std::to_string(std::lround(peakDb)) +
                            " dB, where no calibration puts it");
        largest = std::max(largest, peakDb);
    }
    return largest;
}

/// Gains of 0 dB for a set that is for any headphones.
AboutHeadphones headphonesOrNone(const std::filesystem::path& folder) {
    return aboutHeadphones(folder).value_or(AboutHeadphones{});
}

/// What is wrong with the headphones that a set is said to be for; nothing where all is right.
std::string headphoneFault(const std::filesystem::path& folder) {
    const std::optional<AboutHeadphones> headphones = aboutHeadphones(folder);
    if (!headphones)
        return "";
    try {
        if (sha256OfFile(folder / headphones->copyName) != headphones->sha256)
            return headphones->copyName + " is not the correction that the set was made with";
    } catch (const DataError&) {
        return headphones->copyName + ", the correction that the set was made with, is missing";
    }
    return "";
}

/// Which part of a set was made by other methods than this program's; nothing where none was.
std::string olderPart(const AboutMethods& methods, const std::filesystem::path& folder) {
    if (methods.responses != methodNumber)
        return "the head was made";
    if (methods.rooms != reverbMethodNumber)
        return "the rooms were made";
    const std::optional<AboutHeadphones> headphones = aboutHeadphones(folder);
    return headphones && headphones->method != headphoneMethodNumber ? "the headphones were folded in" : "";
}

} // namespace

FileVerdict checkResponseFile(const ResponseFile& file, const std::filesystem::path& folder) {
    FileVerdict verdict{std::string(file.name), false, {}, {}};
    try {
        const ResponseSet set = readResponseSet(file, folder);
        requireUsableSamples(set);
        const double level = requirePlausibleLevel(set, headphonesOrNone(folder).levelDb);
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
        verdict.remedy = remedyFor(Part::head, folder);
    }
    return verdict;
}

FileVerdict checkReverbFile(const ReverbFile& file, const std::filesystem::path& folder) {
    FileVerdict verdict{std::string(file.name), false, {}, {}};
    try {
        const ReverbSet set = readReverbSet(file, folder);
        const double largest = requireUsableRooms(set, headphonesOrNone(folder), ownRooms(folder));
        std::ostringstream facts;
        facts << set.entries.size() << " rooms at " << file.sampleRate << " Hz, the largest peak at "
              << std::showpos << std::fixed << std::setprecision(1) << largest << " dB";
        verdict.finding = facts.str();
        verdict.sound = true;
    } catch (const DataError& error) {
        verdict.finding = error.what();
        verdict.remedy = remedyFor(Part::rooms, folder);
    }
    return verdict;
}

FileVerdict checkAbout(const std::filesystem::path& folder) {
    const AboutMethods methods = methodsOf(folder);
    FileVerdict verdict{aboutFileName, false, {}, {}};
    verdict.remedy = remedyFor(methods.responses == methodNumber ? Part::rooms : Part::head, folder);
    if (methods.responses == 0)
        verdict.finding = "it is missing or does not say how the head was made";
    else if (methods.rooms == 0)
        verdict.finding = "it does not say how the rooms were made";
    else if (const std::string fault = headphoneFault(folder); !fault.empty())
        verdict.finding = fault;
    else if (const std::string part = olderPart(methods, folder); !part.empty()) {
        verdict.finding = part + " by another version of this program";
        verdict.outdated = true;
    } else {
        const std::string headphones = headphonesOrNone(folder).fileName;
        verdict = {aboutFileName,
                   true,
                   "head and rooms were made by this program's methods" +
                       (headphones.empty() ? "" : ", with the headphones of " + headphones + " folded in"),
                   {}};
    }
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

namespace {

void requireAll(const std::filesystem::path& folder, const std::vector<FileVerdict>& verdicts,
                const std::function<bool(const FileVerdict&)>& good) {
    const auto faults = std::ranges::count(verdicts, false, good);
    if (faults == 0)
        return;
    // What comes later in the list is made of what comes first.
    throw DataError("The data folder \"" + folder.string() + "\" has " + std::to_string(faults) +
                    (faults == 1 ? " file" : " files") +
                    " missing or not sound: " + std::ranges::find(verdicts, false, good)->remedy);
}

} // namespace

void requireSoundFolder(const std::filesystem::path& folder, const std::vector<FileVerdict>& verdicts) {
    requireAll(folder, verdicts, &FileVerdict::sound);
}

void requireUsableFolder(const std::filesystem::path& folder, const std::vector<FileVerdict>& verdicts) {
    requireAll(folder, verdicts,
               [](const FileVerdict& verdict) { return verdict.sound || verdict.outdated; });
}

} // namespace orvane::kestrum::tools
