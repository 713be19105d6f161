// SPDX-License-Identifier: GPL-3.0-or-later
#include "identify/Listing.h"

#include "channels/ChannelNames.h"
#include "identify/TextTable.h"
#include "identify/Voices.h"
#include "parameters/core/MenuPresentation.h"
#include "parameters/core/Scene.h"
#include "parameters/core/SelectorId.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <string>

namespace orvane::kestrum::identify {

namespace {

using nlohmann::ordered_json;

/// The shortest digits that mean this number.
std::string digits(float value) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

/// Decibels and metres stand below each other by their points.
std::string tenths(float value) {
    std::array<char, 32> text{};
    return {text.data(),
            std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 1).ptr};
}

/// A float as its shortest digits read: 1.8, not 1.7999999523162842.
ordered_json number(float value) { return ordered_json::parse(digits(value)); }

const core::MenuEntry& menuEntry(std::span<const core::MenuEntry> menu, std::string_view name) {
    return *std::ranges::find(menu, name, &core::MenuEntry::name);
}

std::string menuName(const core::MenuEntry& entry) {
    return entry.shownAs == entry.name ? std::string() : std::string(entry.shownAs);
}

std::string place(const core::SpeakerRow& speaker) {
    if (speaker.lowFrequency)
        return "";
    return digits(speaker.azimuth) + (speaker.elevation != 0 ? "/" + digits(speaker.elevation) : "");
}

/// Every entry of a menu with the header that it stands under.
void eachWithSection(
    std::span<const core::MenuEntry> menu,
    const std::function<void(std::size_t, const core::MenuEntry&, std::string_view)>& visit) {
    std::string_view section;
    for (std::size_t index = 0; index < menu.size(); ++index) {
        if (!menu[index].sectionBefore.empty())
            section = menu[index].sectionBefore;
        visit(index, menu[index], section);
    }
}

ordered_json channelsJson(const core::LayoutRow& layout) {
    ordered_json list = ordered_json::array();
    for (const channels::Channel& channel : channels::channelsOf(layout)) {
        ordered_json one{{"channel", list.size() + 1}, {"name", channel.brief}, {"spoken", channel.spoken}};
        one["lowFrequency"] = channel.speaker.lowFrequency;
        if (!channel.speaker.lowFrequency) {
            one["azimuth"] = number(channel.speaker.azimuth);
            one["elevation"] = number(channel.speaker.elevation);
        }
        list.push_back(std::move(one));
    }
    return list;
}

ordered_json layoutJson(const core::LayoutRow& layout) {
    ordered_json json;
    eachWithSection(core::layoutMenu(), [&](std::size_t index, const core::MenuEntry& entry,
                                            std::string_view section) {
        if (entry.name == layout.name)
            json = {
                {"index", index}, {"name", entry.name}, {"menuName", entry.shownAs}, {"section", section}};
    });
    json["id"] = core::selectorId(layout.name);
    json["channelCount"] = layout.speakers.size();
    json["channels"] = channelsJson(layout);
    return json;
}

ordered_json sceneJson(std::size_t index, const core::Scene::Preset& scene, const core::MenuEntry& entry,
                       std::string_view section) {
    ordered_json json{
        {"index", index}, {"name", scene.name}, {"menuName", entry.shownAs}, {"section", section}};
    json["id"] = core::selectorId(scene.name);
    json["room"] = static_cast<std::uint32_t>(scene.roomType);
    json["reflections"] = {{"on", scene.reflectionsOn},
                           {"gainDb", number(scene.reflectionGainDb)},
                           {"lowPassHz", number(scene.reflectionLowPassFrequency)},
                           {"highPassHz", number(scene.reflectionHighPassFrequency)}};
    json["reverb"] = {{"on", scene.reverbOn},
                      {"gainDb", number(scene.reverbGainDb)},
                      {"lowPassHz", number(scene.reverbLowPassFrequency)},
                      {"highPassHz", number(scene.reverbHighPassFrequency)},
                      {"decayPercent", number(scene.reverbDecayPercent)}};
    json["wallsMetres"] = nullptr; // the room's own
    if (scene.customRoom)
        json["wallsMetres"] = {
            {"ceiling", number(scene.ceilingDistance)}, {"front", number(scene.frontDistance)},
            {"back", number(scene.backDistance)},       {"right", number(scene.rightDistance)},
            {"left", number(scene.leftDistance)},       {"floor", number(scene.floorDistance)}};
    json["sourceDistanceMetres"] = number(scene.sourceDistance);
    json["gainDb"] = number(scene.masterGainDb);
    return json;
}

} // namespace

void printLayouts(std::ostream& out) {
    TextTable table({{"Layout"}, {"In the menu"}, {"Channels", TextTable::Side::right}, {"Bus order"}});
    for (const core::LayoutRow& layout : core::layoutTable()) {
        const core::MenuEntry& entry = menuEntry(core::layoutMenu(), layout.name);
        if (!entry.sectionBefore.empty())
            table.section(std::string(entry.sectionBefore));
        std::string order;
        for (const std::string& name : channels::briefNames(layout))
            order += (order.empty() ? "" : " ") + name;
        table.row({std::string(layout.name), menuName(entry), std::to_string(layout.speakers.size()), order});
    }
    table.print(out);
}

void printLayout(const core::LayoutRow& layout, std::ostream& out) {
    TextTable table({{"Channel", TextTable::Side::right},
                     {"Name"},
                     {"Azimuth/elevation", TextTable::Side::right},
                     {"Says"},
                     {"Voice"}});
    std::size_t number = 0;
    for (const channels::Channel& channel : channels::channelsOf(layout)) {
        const bool isRecorded = channel.unique && !recordingOf(channel.brief).empty();
        const bool tone = channel.speaker.lowFrequency;
        table.row({std::to_string(++number), channel.brief, place(channel.speaker),
                   tone ? "" : channel.spoken,
                   tone         ? "tone"
                   : isRecorded ? "recorded"
                                : "synthetic"});
    }
    table.print(out);
}

void printLayoutsJson(std::ostream& out) {
    ordered_json list = ordered_json::array();
    for (const core::LayoutRow& layout : core::layoutTable())
        list.push_back(layoutJson(layout));
    out << list.dump(2) << "\n";
}

void printLayoutJson(const core::LayoutRow& layout, std::ostream& out) {
    out << layoutJson(layout).dump(2) << "\n";
}

void printScenes(std::ostream& out) {
    using enum TextTable::Side;
    TextTable table({{"Scene"},
                     {"In the menu"},
                     {"Reflections dB", right},
                     {"Reverb dB", right},
                     {"Decay %", right},
                     {"Distance m", right},
                     {"Gain dB", right}});
    for (const core::Scene::Preset& scene : core::Scene::presets()) {
        const core::MenuEntry& entry = menuEntry(core::sceneMenu(), scene.name);
        if (!entry.sectionBefore.empty())
            table.section(std::string(entry.sectionBefore));
        table.row({std::string(scene.name), menuName(entry),
                   scene.reflectionsOn ? tenths(scene.reflectionGainDb) : "off",
                   scene.reverbOn ? tenths(scene.reverbGainDb) : "off",
                   scene.reverbOn ? digits(scene.reverbDecayPercent) : "", tenths(scene.sourceDistance),
                   tenths(scene.masterGainDb)});
    }
    table.print(out);
}

void printScenesJson(std::ostream& out) {
    ordered_json list = ordered_json::array();
    eachWithSection(core::sceneMenu(),
                    [&](std::size_t index, const core::MenuEntry& entry, std::string_view section) {
                        list.push_back(sceneJson(index, core::Scene::presets()[index], entry, section));
                    });
    out << list.dump(2) << "\n";
}

} // namespace orvane::kestrum::identify
