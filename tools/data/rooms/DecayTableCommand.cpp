// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/DecayTableCommand.h"

#include "data/rooms/DecayCurves.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>
#include <ostream>

namespace orvane::kestrum::tools {

namespace {

struct DecayTableRequest {
    std::filesystem::path file;
    bool source = false;
};

void runDecayTable(const DecayTableRequest& request, std::ostream& out) {
    if (request.source)
        writeDecaySource(request.file);
    else
        writeDecayTable(request.file);
    out << "Wrote " << decayCurveCount << " decay curves of " << decayCurveLength << " gains to \""
        << request.file.string() << "\".\n";
}

} // namespace

void addDecayTableCommand(CLI::App& data, std::ostream& out) {
    CLI::App* const command = data.add_subcommand(
        "decay-table", "Writes the curves by which the plug-in shortens its reverb, as raw floats.");
    const auto request = std::make_shared<DecayTableRequest>();
    command->add_option("OUT", request->file, "The file to write")->required()->type_name("");
    command->add_flag("--source", request->source, "Write the plug-in's C++ source of the table instead");
    command->footer("Example:\n"
                    "  kestrum data decay-table decay.f32");
    command->callback([request, &out] { runDecayTable(*request, out); });
}

} // namespace orvane::kestrum::tools
