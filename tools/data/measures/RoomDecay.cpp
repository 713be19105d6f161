// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/BandFilter.h"
#include "data/measures/RoomMeasures.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <optional>

namespace orvane::kestrum::tools {

namespace {

/// Level against time: level = offset + slope * seconds, in decibels of mean energy per sample.
struct Line {
    double offsetDb = 0;
    double slopeDbPerSecond = 0;
    double at(double seconds) const { return offsetDb + slopeDbPerSecond * seconds; }
    double timeOf(double levelDb) const { return (levelDb - offsetDb) / slopeDbPerSecond; }
};

/// Collects points of a line of least squares.
class LineFit {
public:
    void add(double x, double y) {
        ++count;
        const double dx = x - meanX;
        meanX += dx / static_cast<double>(count);
        meanY += (y - meanY) / static_cast<double>(count);
        squares += dx * (x - meanX);
        products += dx * (y - meanY);
    }
    std::size_t points() const { return count; }
    Line line() const {
        const double slope = squares > 0 ? products / squares : 0.0;
        return {meanY - slope * meanX, slope};
    }

private:
    std::size_t count = 0;
    double meanX = 0;
    double meanY = 0;
    double squares = 0;
    double products = 0;
};

/// Where a decay ends, and the energy that an undisturbed one would still bring from there on.
struct DecayEnd {
    std::size_t sample = 0;
    double missingEnergy = 0;
};

double meanOf(std::span<const double> energies) {
    double sum = 0;
    for (const double energy : energies)
        sum += energy;
    return energies.empty() ? 0.0 : sum / static_cast<double>(energies.size());
}

double levelDb(double energy) { return 10 * std::log10(std::max(energy, 1e-300)); }

/// The line through the levels of short windows from the loudest of them on, as far as they keep within two
/// bounds.
std::optional<Line> fitLevels(std::span<const double> energies, double sampleRate, std::size_t window,
                              double highestDb, double lowestDb) {
    std::vector<double> levels;
    for (std::size_t start = 0; start + window <= energies.size(); start += window)
        levels.push_back(levelDb(meanOf(energies.subspan(start, window))));
    if (levels.empty())
        return std::nullopt;
    LineFit fit;
    const auto loudest = static_cast<std::size_t>(std::ranges::max_element(levels) - levels.begin());
    for (std::size_t index = loudest; index < levels.size() && levels[index] >= lowestDb; ++index)
        if (levels[index] <= highestDb)
            fit.add((static_cast<double>(index) + 0.5) * static_cast<double>(window) / sampleRate,
                    levels[index]);
    constexpr std::size_t fewest = 3;
    const Line line = fit.line();
    return fit.points() >= fewest && line.slopeDbPerSecond < 0 ? std::optional(line) : std::nullopt;
}

/// Alternates between the noise behind the decay and the slope above the noise until both agree.
DecayEnd endOfDecay(std::span<const double> energies, double sampleRate) {
    constexpr double firstWindowSeconds = 0.01;
    constexpr double noiseShare = 0.1;
    constexpr double aboveNoiseDb = 10;
    constexpr double fittedDb = 20;
    constexpr int rounds = 5;
    std::size_t end = energies.size();
    while (end > 0 && energies[end - 1] <= 0)
        --end;
    const auto tail = static_cast<std::size_t>(static_cast<double>(energies.size()) * (1 - noiseShare));
    double noiseDb = levelDb(meanOf(energies.subspan(tail)));
    if (end <= tail)
        return {end, 0}; // silence behind the decay: no noise
    auto window = std::max<std::size_t>(1, static_cast<std::size_t>(firstWindowSeconds * sampleRate));
    std::optional<Line> line = fitLevels(energies, sampleRate, window, 1e9, noiseDb + aboveNoiseDb);
    if (!line)
        return {end, 0};
    for (int round = 0; round < rounds; ++round) {
        const double behindSeconds = line->timeOf(noiseDb - aboveNoiseDb);
        const auto behind =
            std::min(tail, static_cast<std::size_t>(std::max(0.0, behindSeconds) * sampleRate));
        noiseDb = levelDb(meanOf(energies.subspan(behind)));
        window = std::max<std::size_t>(
            1, static_cast<std::size_t>(-aboveNoiseDb / 5 / line->slopeDbPerSecond * sampleRate));
        const auto refined = fitLevels(energies, sampleRate, window, noiseDb + aboveNoiseDb + fittedDb,
                                       noiseDb + aboveNoiseDb);
        if (!refined)
            break;
        line = refined;
    }
    const double crossing = std::max(0.0, line->timeOf(noiseDb)) * sampleRate;
    if (crossing >= static_cast<double>(end))
        return {end, 0};
    const double nepersPerSample = -line->slopeDbPerSecond * std::numbers::ln10 / 10 / sampleRate;
    return {static_cast<std::size_t>(crossing), std::pow(10.0, noiseDb / 10) / nepersPerSample};
}

Samples decayOfEnergies(std::span<const double> energies, double sampleRate) {
    const DecayEnd end = endOfDecay(energies, sampleRate);
    Samples decay(end.sample);
    double sum = end.missingEnergy;
    for (std::size_t index = end.sample; index-- > 0;) {
        sum += energies[index];
        decay[index] = sum;
    }
    for (double& value : decay)
        value = 10 * std::log10(value / sum);
    return decay;
}

void addEnergies(Samples& energies, std::span<const double> response) {
    energies.resize(std::max(energies.size(), response.size()));
    for (std::size_t index = 0; index < response.size(); ++index)
        energies[index] += response[index] * response[index];
}

std::optional<DecayTime> fittedTime(std::span<const double> decayDb, double sampleRate, int rangeDb) {
    constexpr double highestDb = -5;
    constexpr double reserveDb = 10; // the floor has to lie that far below the range
    const double lowestDb = highestDb - rangeDb;
    if (decayDb.empty() || decayDb.back() > lowestDb - reserveDb)
        return std::nullopt;
    LineFit fit;
    for (std::size_t index = 0; index < decayDb.size() && decayDb[index] >= lowestDb; ++index)
        if (decayDb[index] <= highestDb)
            fit.add(static_cast<double>(index) / sampleRate, decayDb[index]);
    constexpr std::size_t fewest = 2;
    const Line line = fit.line();
    if (fit.points() < fewest || line.slopeDbPerSecond >= 0)
        return std::nullopt;
    return DecayTime{-60 / line.slopeDbPerSecond, rangeDb};
}

} // namespace

Samples energyDecayDb(std::span<const double> response, double sampleRate) {
    Samples energies;
    addEnergies(energies, response);
    return decayOfEnergies(energies, sampleRate);
}

Samples energyDecayDb(const EarResponses& response, double sampleRate) {
    Samples energies;
    for (const Samples& ear : response)
        addEnergies(energies, ear);
    return decayOfEnergies(energies, sampleRate);
}

DecayTime decayTime(std::span<const double> decayDb, double sampleRate) {
    for (const int rangeDb : {30, 20})
        if (const auto time = fittedTime(decayDb, sampleRate, rangeDb))
            return *time;
    return {};
}

Samples octaveBand(std::span<const double> response, double sampleRate, double centreHz) {
    return reversedBandPass(response, sampleRate, centreHz, 2).samples;
}

OctaveDecays octaveDecayTimes(const EarResponses& response, double sampleRate) {
    OctaveDecays decays{};
    for (std::size_t octave = 0; octave < decays.size(); ++octave) {
        if (roomOctavesHz[octave] * std::numbers::sqrt2 >= sampleRate / 2)
            continue;
        const EarResponses band{octaveBand(response[leftEar], sampleRate, roomOctavesHz[octave]),
                                octaveBand(response[rightEar], sampleRate, roomOctavesHz[octave])};
        decays[octave] = decayTime(energyDecayDb(band, sampleRate), sampleRate);
    }
    return decays;
}

double midDecaySeconds(const OctaveDecays& decays) {
    const double low = decays[2].seconds;
    const double high = decays[3].seconds;
    return low > 0 && high > 0 ? (low + high) / 2 : 0.0;
}

} // namespace orvane::kestrum::tools
