// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/HrirBuilder.h"

#include "data/head/ArrivalRefinement.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

std::array<Samples, 2> assembled(const AlignedResponse& response, const AlignedSet& set, double originSeconds,
                                 RealTransform& transform) {
    return {assembleResponse(response, leftEar, set.sampleRate, originSeconds, transform),
            assembleResponse(response, rightEar, set.sampleRate, originSeconds, transform)};
}

constexpr double comparedToHz = 11314; ///< The top of the octave round 8 kHz.

/// @param leaveOut whether the direction asked for may help to answer.
InterauralErrors compareInterpolator(const AlignedSet& source, const AlignedSet& complete,
                                     double originSeconds, bool leaveOut) {
    RealTransform transform(source.transformSize);
    InterauralComparison comparison(comparedToHz);
    std::vector<Direction> sites = complete.directions();
    for (std::size_t index = 0; index < source.responses.size(); ++index) {
        const AlignedResponse& reference = source.responses[index];
        const Direction own = sites[index];
        if (leaveOut)
            sites.erase(sites.begin() + static_cast<std::ptrdiff_t>(index));
        std::vector<SiteWeight> weights = naturalWeights(sites, reference.direction);
        if (leaveOut) {
            sites.insert(sites.begin() + static_cast<std::ptrdiff_t>(index), own);
            for (SiteWeight& weight : weights)
                weight.site += weight.site >= index ? 1 : 0;
        }
        const AlignedResponse mixed = mixResponses(complete, weights, reference.direction);
        comparison.add({assembled(reference, source, originSeconds, transform), source.sampleRate,
                        assembled(mixed, complete, originSeconds, transform), complete.sampleRate});
    }
    return comparison.errors();
}

/// At the places that were measured themselves.
InterauralErrors compareFile(const AlignedSet& source, const ResponseSet& made, double originSeconds,
                             double highestHz) {
    constexpr double samePlaceDegrees = 0.1;
    RealTransform transform(source.transformSize);
    InterauralComparison comparison(std::min(comparedToHz, highestHz));
    const std::vector<GridPlace> places = gridPlaces();
    for (const AlignedResponse& reference : source.responses) {
        const int azimuth = 5 * static_cast<int>(std::lround(azimuthDegrees(reference.direction) / 5));
        const int elevation = 5 * static_cast<int>(std::lround(elevationDegrees(reference.direction) / 5));
        const std::size_t index = gridIndex(azimuth, elevation);
        if (angleBetween(places[index].direction(), reference.direction) * 57.3 > samePlaceDegrees)
            continue;
        comparison.add({assembled(reference, source, originSeconds, transform), source.sampleRate,
                        made.responses[index], static_cast<double>(made.file.sampleRate)});
    }
    return comparison.errors();
}

BuiltFile buildFile(const ResponseFile& file, const BuiltSet& built, const std::vector<AlignedResponse>& grid,
                    const WindowShape& window) {
    BuiltFile result;
    result.set = renderSet(file, built.complete, grid, built.originSeconds, window, result.kept);
    const std::vector<double> weights = gridWeights();
    const double rate = file.sampleRate;
    const double level = meanLevelDb(diffuseBands(result.set.responses, weights, rate, file.flatToHz));
    const double gain = std::pow(10.0, -level / 20);
    for (auto& response : result.set.responses)
        for (Samples& ear : response)
            for (double& sample : ear)
                sample *= gain;
    result.diffuse = diffuseBands(result.set.responses, weights, rate, file.flatToHz);
    for (const BandLevel& band : result.diffuse)
        result.worstDiffuseDb = std::max(result.worstDiffuseDb, std::abs(band.levelDb));
    result.medians = keptMedians(result.kept, gridPlaces());
    result.againstSource = compareFile(built.source, result.set, built.originSeconds, file.flatToHz);
    return result;
}

} // namespace

BuiltSet buildResponses(MeasuredSet measured, const BuildOptions& options) {
    BuiltSet built;
    built.ears = assignEars(measured);
    built.complete = alignResponses(measured);
    AlignedSet& set = built.complete;
    built.mergedCount = mergeRepeats(set);
    surveyCoverage(set.directions()); // refuses what cannot serve before the long work
    refineArrivals(set);
    const std::size_t measuredCount = set.responses.size();
    const SphericalHead sphere(set.distanceMetres, set.binWidthHz(), set.transformSize / 2 + 1);
    built.cap = completeLowerCap(set, sphere);
    const std::vector<double> weights = solidAngles(set.directions());
    applyFilter(set, inverseOf(diffuseField(set, weights), set.binWidthHz(), options.equalisation));
    built.rollOffLead = removeRollOffLead(set, weights, options.lowFrequencies);
    built.source = set;
    built.source.responses.resize(measuredCount);
    extendLowFrequencies(set, sphere, weights, options.lowFrequencies);
    const std::vector<AlignedResponse> grid = interpolateGrid(set);
    built.originSeconds = commonOrigin(set, grid, options.window);
    built.interpolator = compareInterpolator(built.source, set, built.originSeconds, false);
    built.leaveOneOut = compareInterpolator(built.source, set, built.originSeconds, true);
    for (std::size_t index = 0; index < responseFiles.size(); ++index)
        built.files[index] = buildFile(responseFiles[index], built, grid, options.window);
    return built;
}

std::vector<Figure> BuiltSet::figures() const {
    std::vector<Figure> list;
    const auto interaural = [&list](const std::string& where, const InterauralErrors& errors) {
        list.push_back(
            {where + ": time between the ears, worst", errors.worstDelaySeconds * 1e6, 20, false, "us"});
        list.push_back({where + ": level between the ears, mean", errors.meanLevelDb, 1, false, "dB"});
        list.push_back({where + ": level between the ears, worst", errors.worstLevelDb, 3, false, "dB"});
    };
    interaural("interpolator at " + std::to_string(interpolator.directionCount) + " measured directions",
               interpolator);
    for (const BuiltFile& file : files) {
        const std::string name(file.set.file.name);
        interaural(name + " at " + std::to_string(file.againstSource.directionCount) + " shared directions",
                   file.againstSource);
        list.push_back(
            {name + ": energy kept at the near ear, median", file.medians.near * 100, 99.5, true, "%"});
        list.push_back(
            {name + ": energy kept at the far ear, median", file.medians.far * 100, 97, true, "%"});
        list.push_back({name + ": diffuse field from 250 Hz to " +
                            std::to_string(std::lround(file.set.file.flatToHz / 1000)) + " kHz, worst band",
                        file.worstDiffuseDb, 1, false, "dB"});
    }
    return list;
}

} // namespace orvane::kestrum::tools
