// SPDX-License-Identifier: GPL-3.0-or-later
#include "Arrangements.h"

#include <pluginterfaces/vst/vstspeaker.h>

#include <bit>

namespace rawhost {

namespace {

namespace Arr = Steinberg::Vst::SpeakerArr;

// By bit; empty where the interfaces name no speaker.
constexpr std::array<std::string_view, 50> speakerNames{
    "L",    "R",    "C",    "Lfe",  "Ls",    "Rs",    "Lc",    "Rc",    "Cs",    "Sl",
    "Sr",   "Tc",   "Tfl",  "Tfc",  "Tfr",   "Trl",   "Trc",   "Trr",   "Lfe2",  "M",
    "ACN0", "ACN1", "ACN2", "ACN3", "Tsl",   "Tsr",   "Lcs",   "Rcs",   "Bfl",   "Bfc",
    "Bfr",  "Pl",   "Pr",   "Bsl",  "Bsr",   "Brl",   "Brc",   "Brr",   "ACN4",  "ACN5",
    "ACN6", "ACN7", "ACN8", "ACN9", "ACN10", "ACN11", "ACN12", "ACN13", "ACN14", "ACN15"};

const std::array<Arrangement, namedArrangementCount> named{{{"Mono", Arr::kMono},
                                                            {"Stereo", Arr::kStereo},
                                                            {"StereoSurround", Arr::kStereoSurround},
                                                            {"StereoCenter", Arr::kStereoCenter},
                                                            {"StereoSide", Arr::kStereoSide},
                                                            {"StereoCLfe", Arr::kStereoCLfe},
                                                            {"StereoTF", Arr::kStereoTF},
                                                            {"StereoTS", Arr::kStereoTS},
                                                            {"StereoTR", Arr::kStereoTR},
                                                            {"StereoBF", Arr::kStereoBF},
                                                            {"CineFront", Arr::kCineFront},
                                                            {"30Cine", Arr::k30Cine},
                                                            {"31Cine", Arr::k31Cine},
                                                            {"30Music", Arr::k30Music},
                                                            {"31Music", Arr::k31Music},
                                                            {"40Cine", Arr::k40Cine},
                                                            {"41Cine", Arr::k41Cine},
                                                            {"40Music", Arr::k40Music},
                                                            {"41Music", Arr::k41Music},
                                                            {"50", Arr::k50},
                                                            {"51", Arr::k51},
                                                            {"60Cine", Arr::k60Cine},
                                                            {"61Cine", Arr::k61Cine},
                                                            {"60Music", Arr::k60Music},
                                                            {"61Music", Arr::k61Music},
                                                            {"70Cine", Arr::k70Cine},
                                                            {"71Cine", Arr::k71Cine},
                                                            {"71CineFullFront", Arr::k71CineFullFront},
                                                            {"70Music", Arr::k70Music},
                                                            {"71Music", Arr::k71Music},
                                                            {"71CineFullRear", Arr::k71CineFullRear},
                                                            {"71CineSideFill", Arr::k71CineSideFill},
                                                            {"71Proximity", Arr::k71Proximity},
                                                            {"80Cine", Arr::k80Cine},
                                                            {"81Cine", Arr::k81Cine},
                                                            {"80Music", Arr::k80Music},
                                                            {"81Music", Arr::k81Music},
                                                            {"90Cine", Arr::k90Cine},
                                                            {"91Cine", Arr::k91Cine},
                                                            {"100Cine", Arr::k100Cine},
                                                            {"101Cine", Arr::k101Cine},
                                                            {"Ambi1stOrderACN", Arr::kAmbi1stOrderACN},
                                                            {"Ambi2cdOrderACN", Arr::kAmbi2cdOrderACN},
                                                            {"Ambi3rdOrderACN", Arr::kAmbi3rdOrderACN},
                                                            {"80Cube", Arr::k80Cube},
                                                            {"71CineTopCenter", Arr::k71CineTopCenter},
                                                            {"71CineCenterHigh", Arr::k71CineCenterHigh},
                                                            {"71CineFrontHigh", Arr::k71CineFrontHigh},
                                                            {"71MPEG3D", Arr::k71MPEG3D},
                                                            {"71CineSideHigh", Arr::k71CineSideHigh},
                                                            {"81MPEG3D", Arr::k81MPEG3D},
                                                            {"90", Arr::k90},
                                                            {"50_4", Arr::k50_4},
                                                            {"91", Arr::k91},
                                                            {"51_4", Arr::k51_4},
                                                            {"70_2", Arr::k70_2},
                                                            {"71_2", Arr::k71_2},
                                                            {"91Atmos", Arr::k91Atmos},
                                                            {"70_4", Arr::k70_4},
                                                            {"71_4", Arr::k71_4},
                                                            {"111MPEG3D", Arr::k111MPEG3D},
                                                            {"70_6", Arr::k70_6},
                                                            {"71_6", Arr::k71_6},
                                                            {"90_4", Arr::k90_4},
                                                            {"91_4", Arr::k91_4},
                                                            {"90_6", Arr::k90_6},
                                                            {"91_6", Arr::k91_6},
                                                            {"100", Arr::k100},
                                                            {"101", Arr::k101},
                                                            {"101MPEG3D", Arr::k101MPEG3D},
                                                            {"102", Arr::k102},
                                                            {"110", Arr::k110},
                                                            {"111", Arr::k111},
                                                            {"122", Arr::k122},
                                                            {"130", Arr::k130},
                                                            {"131", Arr::k131},
                                                            {"140", Arr::k140}}};

} // namespace

std::size_t Arrangement::channelCount() const { return static_cast<std::size_t>(std::popcount(speakers)); }

std::vector<std::string_view> Arrangement::channelNames() const {
    std::vector<std::string_view> names;
    for (std::size_t bit = 0; bit < speakerNames.size(); ++bit)
        if ((speakers >> bit & 1) != 0)
            names.push_back(speakerNames[bit]);
    return names;
}

std::span<const Arrangement> namedArrangements() { return named; }

Arrangement lowBitArrangement(std::size_t channels) {
    return {"LowBits" + std::to_string(channels), (std::uint64_t{1} << channels) - 1};
}

std::vector<Arrangement> allArrangements() {
    std::vector<Arrangement> all(named.begin(), named.end());
    for (std::size_t channels = 1; channels <= mostChannels; ++channels)
        all.push_back(lowBitArrangement(channels));
    return all;
}

} // namespace rawhost
