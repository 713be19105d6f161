// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/TrackCommand.h"

#include "track/Dialects.h"
#include "track/OpenTrack.h"
#include "track/TrackError.h"
#include "track/Tracker.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace orvane::kestrum::track {

namespace {

constexpr std::uint16_t usualOscPort = 9000;
constexpr std::array inputs{Input::osc, Input::openTrack, Input::replay, Input::demo};

/// What the command line says, before it has become TrackOptions.
struct CommandLine {
    TrackOptions options;
    std::uint16_t oscPort = usualOscPort;
    std::uint16_t openTrackPort = track::openTrackPort;
    bool listen = false;
    bool dialectsOnly = false;
    double predictMilliseconds = 0;
    std::string gridCentre = "on";
    std::vector<std::string> flips;
    std::vector<std::string> priority;
};

std::vector<Input> priorityOf(const std::vector<std::string>& names) {
    std::vector<Input> order;
    order.reserve(names.size() + inputs.size());
    for (const std::string& name : names)
        order.push_back(*std::ranges::find(inputs, name, nameOf));
    for (const Input input : inputs) // what is not named comes last, in the usual order
        if (std::ranges::find(order, input) == order.end())
            order.push_back(input);
    return order;
}

std::array<int, 3> signsOf(const std::vector<std::string>& flips) {
    const auto sign = [&flips](const char* angle) { return std::ranges::count(flips, angle) > 0 ? -1 : 1; };
    return {sign("yaw"), sign("pitch"), sign("roll")};
}

void requireRange(const char* option, double value, double least, double most) {
    if (value >= least && value <= most)
        return;
    const auto text = [](double number) { return CLI::detail::to_string(number); };
    throw TrackError(std::string(option) + " " + text(value) + " lies outside its range: choose " +
                     text(least) + " to " + text(most) + ".");
}

void requireRanges(const CommandLine& line) {
    const HeadTrackSettings& head = line.options.head;
    requireRange("--timeout", head.timeoutSeconds, 0.05, 60);
    requireRange("--glide", head.glideSeconds, 0, 10);
    requireRange("--smooth", head.smoothing.restCutoffHz, 0, 100);
    requireRange("--beta", head.smoothing.cutoffPerSpeed, 0, 10);
    requireRange("--predict", line.predictMilliseconds, 0, 200);
}

/// A movement that the program plays by itself needs no port, unless one is asked for.
void openPorts(CommandLine& line, const CLI::App& command) {
    NetworkOptions& network = line.options.network;
    const bool plays = line.options.demo || line.options.replay;
    if (!plays || command.count("--osc-port") > 0)
        network.oscPort = line.oscPort;
    if (!plays || command.count("--opentrack-port") > 0)
        network.openTrackPort = line.openTrackPort;
    network.reach = line.listen ? Reach::network : Reach::thisMachine;
}

void track(CommandLine& line, const CLI::App& command) {
    if (line.dialectsOnly) {
        writeDialects(std::cout);
        return;
    }
    requireRanges(line);
    openPorts(line, command);
    line.options.network.correction.signs = signsOf(line.flips);
    line.options.head.priority = priorityOf(line.priority);
    line.options.head.smoothing.predictSeconds = line.predictMilliseconds / 1000;
    line.options.gridCentre = line.gridCentre == "on";
    runTracker(line.options);
}

void addSources(CLI::App& command, CommandLine& line) {
    const auto group = [](CLI::Option* option) { return option->group("Sources"); };
    group(command.add_option("--osc-port", line.oscPort, "UDP port for OSC; default: 9000, 0: any free one"))
        ->type_name("PORT");
    group(command.add_option("--opentrack-port", line.openTrackPort,
                             "UDP port for opentrack's datagrams; default: 4242"))
        ->type_name("PORT");
    group(command.add_flag("--listen", line.listen,
                           "Hear phones and other machines, too, not only programs of this one"));
    group(command.add_flag("--demo", line.options.demo, "Look around slowly by itself"));
    group(command.add_option("--replay", line.options.replay,
                             "Play a CSV file with lines seconds,yaw,pitch,roll, then end"))
        ->type_name("FILE");
    group(command.add_option("--priority", line.priority,
                             "Who drives when several do, best first; default: osc,opentrack,replay,demo"))
        ->type_name("LIST")
        ->delimiter(',')
        ->check(CLI::IsMember({"osc", "opentrack", "replay", "demo"}).description(""));
    group(
        command.add_flag("--dialects", line.dialectsOnly, "Only print the OSC messages that are understood"));
}

void addMovement(CLI::App& command, CommandLine& line) {
    const auto group = [](CLI::Option* option) { return option->group("Movement"); };
    HeadTrackSettings& head = line.options.head;
    group(command.add_option("--flip", line.flips, "Turn the sender's yaw, pitch or roll about"))
        ->type_name("LIST")
        ->delimiter(',')
        ->check(CLI::IsMember({"yaw", "pitch", "roll"}).description(""));
    group(command.add_flag("--invert", line.options.network.correction.inverted,
                           "The sender tells the scene's turn for the head's, or the other way round"));
    group(command.add_option("--smooth", head.smoothing.restCutoffHz,
                             "Cutoff that calms a head at rest; default: 3, 0: no smoothing"))
        ->type_name("HZ");
    group(command.add_option("--beta", head.smoothing.cutoffPerSpeed,
                             "How much a degree a second raises the cutoff, in hertz; default: 0.2"))
        ->type_name("NUMBER");
    group(command.add_option("--predict", line.predictMilliseconds,
                             "How far ahead a movement is drawn out; default: 0"))
        ->type_name("MS");
    group(command.add_option("--timeout", head.timeoutSeconds,
                             "Silence after which the head glides back; default: 1"))
        ->type_name("SECONDS");
    group(command.add_option("--glide", head.glideSeconds, "Length of that glide; default: 1"))
        ->type_name("SECONDS");
    group(
        command.add_option("--grid-centre", line.gridCentre,
                           "Make up for the 2 degrees by which sources are heard too far right; default: on"))
        ->type_name("on|off")
        ->check(CLI::IsMember({"on", "off"}).description(""));
}

} // namespace

void addTrackCommand(CLI::App& program) {
    const auto line = std::make_shared<CommandLine>();
    CLI::App* const command = program.add_subcommand(
        "track", "Turns the heads of all plug-in instances as a head tracker, phone or camera says.");
    addSources(*command, *line);
    addMovement(*command, *line);
    command
        ->add_flag("--take-over", line->options.takeOver,
                   "Take the link even from a tracker of another maker")
        ->group("Link");
    command->footer("Examples:\n"
                    "  kestrum track\n"
                    "  kestrum track --listen --osc-port 8000\n"
                    "  kestrum track --demo\n"
                    "  kestrum track --replay walk.csv --smooth 0\n"
                    "\n"
                    "Start it before the plug-in is loaded: an instance looks for the link once.\n"
                    "Keys: r makes ahead where you look, c calibrates a sensor that sits askew, q ends.");
    command->callback([line, command] { track(*line, *command); });
}

} // namespace orvane::kestrum::track
