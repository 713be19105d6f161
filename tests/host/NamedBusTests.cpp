// SPDX-License-Identifier: GPL-3.0-or-later
// Which loudspeaker plays which channel when a host names the channels of its bus: the framework then hands some over in an
// order of its own, and the plug-in plays them by their names. Every channel is fed alone; the reference is each loudspeaker,
// fed alone on a bus without names. The page for users says what comes out.
#include "BundleSupport.h"

#include "channels/ChannelNames.h"
#include "identify/ChannelFile.h"
#include "parameters/core/BusNames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace orvane::kestrum;
using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;
using ::testing::HasSubstr;

constexpr std::size_t length = 1024;
constexpr std::uint64_t stereo = 0x3;

/// A speaker of the interfaces: its own short name, its bit, and what our layouts call its channel.
struct NamedSpeaker {
    std::string_view name;
    unsigned bit;
    std::string_view brief;
};
constexpr std::array<NamedSpeaker, 19> speakers{{{"L", 0, "L"},
                                                 {"R", 1, "R"},
                                                 {"C", 2, "C"},
                                                 {"Lfe", 3, "LFE"},
                                                 {"Ls", 4, "Ls"},
                                                 {"Rs", 5, "Rs"},
                                                 {"Lc", 6, "Lc"},
                                                 {"Rc", 7, "Rc"},
                                                 {"Cs", 8, "Cs"},
                                                 {"Sl", 9, "Lss"},
                                                 {"Sr", 10, "Rss"},
                                                 {"Tc", 11, "Top"},
                                                 {"Tfl", 12, "Ltf"},
                                                 {"Tfc", 13, "Ctf"},
                                                 {"Tfr", 14, "Rtf"},
                                                 {"Trl", 15, "Ltr"},
                                                 {"Trr", 17, "Rtr"},
                                                 {"Tsl", 24, "Ltm"},
                                                 {"Tsr", 25, "Rtm"}}};

const NamedSpeaker& speakerCalled(std::string_view name) {
    return *std::ranges::find(speakers, name, &NamedSpeaker::name);
}

/// A bus as the interfaces name it, in their order, and the layout for it.
struct NamedBus {
    std::string_view layout;
    std::string_view names;

    std::vector<std::string> list() const {
        std::istringstream words{std::string(names)};
        return {std::istream_iterator<std::string>(words), {}};
    }
};
constexpr std::array<NamedBus, 28> buses{{{"Quad", "L R Ls Rs"},
                                          {"LRCS", "L R C Cs"},
                                          {"5.0 ITU", "L R C Ls Rs"},
                                          {"5.1 ITU", "L R C Lfe Ls Rs"},
                                          {"6.0", "L R C Ls Rs Cs"},
                                          {"6.1", "L R C Lfe Ls Rs Cs"},
                                          {"7.0", "L R C Ls Rs Sl Sr"},
                                          {"7.1", "L R C Lfe Ls Rs Sl Sr"},
                                          {"7.1 SDDS", "L R C Lfe Ls Rs Lc Rc"},
                                          {"5.0.2", "L R C Ls Rs Tfl Tfr"},
                                          {"5.1.2", "L R C Lfe Ls Rs Tsl Tsr"},
                                          {"5.0.4", "L R C Ls Rs Tfl Tfr Trl Trr"},
                                          {"5.1.4", "L R C Lfe Ls Rs Tfl Tfr Trl Trr"},
                                          {"7.0.2", "L R C Ls Rs Sl Sr Tsl Tsr"},
                                          {"7.1.2", "L R C Lfe Ls Rs Sl Sr Tsl Tsr"},
                                          {"8.0", "L R Ls Rs Tfl Tfr Trl Trr"},
                                          {"11.1", "L R C Lfe Ls Rs Tc Tfl Tfc Tfr Trl Trr"},
                                          {"13.1", "L R C Lfe Ls Rs Sl Sr Tc Tfl Tfc Tfr Trl Trr"},
                                          {"4.0", "L R Ls Rs"},
                                          {"9.1", "L R C Lfe Ls Rs Tfl Tfr Trl Trr"},
                                          {"5.0 Film", "L R C Ls Rs"},
                                          {"5.1 Film", "L R C Lfe Ls Rs"},
                                          {"5.1 ITU Logic", "L R C Lfe Ls Rs"},
                                          {"7.1 SDDS Logic", "L R C Lfe Ls Rs Sl Sr"},
                                          {"7.0.4", "L R C Ls Rs Sl Sr Tfl Tfr Trl Trr"},
                                          {"7.1.4", "L R C Lfe Ls Rs Sl Sr Tfl Tfr Trl Trr"},
                                          {"9.1.2", "L R C Lfe Ls Rs Lc Rc Sl Sr Tsl Tsr"},
                                          {"9.1.6", "L R C Lfe Ls Rs Lc Rc Sl Sr Tfl Tfr Trl Trr Tsl Tsr"}}};

/// What each channel of a bus sounds like when it is fed alone.
std::vector<Channels> heardAlone(PluginInstance& plugin) {
    const std::size_t count = plugin.inputChannelCount();
    const std::vector<float> sound = noise(1, length).front();
    std::vector<Channels> heard;
    for (std::size_t channel = 0; channel < count; ++channel) {
        Channels input = silence(count, length);
        input[channel] = sound;
        plugin.prepare(48000, 512, ProcessMode::offline);
        heard.push_back(play(plugin, input, 512));
        plugin.release();
    }
    return heard;
}

/// The names of the loudspeakers that play the bus's channels, in the bus's order; "?" for none.
std::vector<std::string> playedBy(const NamedBus& bus) {
    std::uint64_t arrangement = 0;
    for (const std::string& name : bus.list())
        arrangement |= std::uint64_t{1} << speakerCalled(name).bit;
    const std::vector<std::string> names = channels::briefNames(identify::layoutNamed(bus.layout));
    const auto unnamed = makeInstance(static_cast<unsigned>(names.size()), bus.layout);
    const std::vector<Channels> reference = heardAlone(*unnamed);
    const auto named = makeInstance(static_cast<unsigned>(names.size()), bus.layout);
    EXPECT_TRUE(named->setArrangements(arrangement, stereo));
    std::vector<std::string> players;
    for (const Channels& sound : heardAlone(*named)) {
        const auto found = std::ranges::find(reference, sound);
        players.push_back(
            found != reference.end() ? names[static_cast<std::size_t>(found - reference.begin())] : "?");
    }
    return players;
}

/// Where the channels belong. In a bus with side speakers, the interfaces' surrounds stand behind; in one with both side and
/// "left of centre", the latter stands where our layout has its wide pair.
std::vector<std::string> rightPlayers(const NamedBus& bus) {
    const std::vector<std::string> names = bus.list();
    const bool sides = std::ranges::count(names, "Sl") > 0;
    const auto playerOf = [sides](const std::string& name) {
        std::string player(speakerCalled(name).brief);
        if (sides && (player == "Ls" || player == "Rs"))
            player.insert(1, "r");
        if (sides && (player == "Lc" || player == "Rc"))
            player[1] = 'w';
        return player;
    };
    std::vector<std::string> players(names.size());
    std::ranges::transform(names, players.begin(), playerOf);
    return players;
}

bool isPlayedByName(std::string_view layout) {
    const auto table = core::namedLayoutTable();
    return std::ranges::find(table, layout, &core::NamedLayoutRow::layout) != table.end();
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

class NamedBuses : public ::testing::TestWithParam<NamedBus> {};

TEST_P(NamedBuses, ArePlayedAsThePageForUsersSays) {
    const NamedBus& bus = GetParam();
    const std::vector<std::string> players = playedBy(bus);
    const std::vector<std::string> right = rightPlayers(bus);
    if (isPlayedByName(bus.layout)) {
        EXPECT_EQ(players, right);
    }
    std::ifstream file(std::filesystem::path(KESTRUM_DOCS) / "hosts" / "named-buses.md");
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(page, HasSubstr("| " + std::string(bus.layout) + " | " + std::string(bus.names) + " | " +
                                joined(players) + " | " + (players == right ? "yes" : "**no**") + " |\n"));
}

/// Where the plug-in plays by name, a test above has a bus for it.
TEST(NamedBusPage, HasEveryLayoutThatIsPlayedByName) {
    for (const core::NamedLayoutRow& row : core::namedLayoutTable())
        EXPECT_NE(std::ranges::find(buses, row.layout, &NamedBus::layout), buses.end()) << row.layout;
}

std::string asTestName(const ::testing::TestParamInfo<NamedBus>& bus) {
    std::string name = "Bus_";
    for (const char letter : bus.param.layout)
        name += std::isalnum(static_cast<unsigned char>(letter)) != 0 ? letter : '_';
    return name;
}
INSTANTIATE_TEST_SUITE_P(OfEveryNamedLayout, NamedBuses, ::testing::ValuesIn(buses), asTestName);

} // namespace
