// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/DoctorCommand.h"

#include "doctor/Checks.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <stdexcept>

namespace orvane::kestrum::doctor {

namespace {

struct VerdictName {
    const char* shown;
    const char* inJson;
};

/// In the order of Verdict.
constexpr std::array<VerdictName, 4> verdictNames{
    {{"good   ", "good"}, {"note   ", "note"}, {"WARNING", "warning"}, {"FAULT  ", "fault"}}};

const VerdictName& nameOf(Verdict verdict) { return verdictNames.at(static_cast<std::size_t>(verdict)); }

std::ptrdiff_t countOf(const Findings& findings, Verdict verdict) {
    return std::ranges::count_if(findings,
                                 [verdict](const Finding& finding) { return finding.verdict == verdict; });
}

/// Names of files, programs and senders are not ours: none of them may steer the terminal.
std::string printable(std::string text) {
    std::ranges::replace_if(
        text, [](unsigned char letter) { return letter < ' ' || letter == 127; }, '?');
    return text;
}

void tellJson(const Findings& findings, std::ostream& out) {
    nlohmann::ordered_json json;
    json["faults"] = countOf(findings, Verdict::fault);
    json["warnings"] = countOf(findings, Verdict::warning);
    json["findings"] = nlohmann::ordered_json::array();
    for (const Finding& finding : findings)
        json["findings"].push_back({{"subject", finding.subject},
                                    {"verdict", nameOf(finding.verdict).inJson},
                                    {"text", finding.text},
                                    {"remedy", finding.remedy}});
    out << json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
}

} // namespace

Findings checkEverything(const Places& places) {
    Findings all;
    for (const auto check : {checkBundle, checkHostFolders, checkData, checkManual, checkSound}) {
        const Findings some = check(places);
        all.insert(all.end(), some.begin(), some.end());
    }
    if (places.thisMachine()) { // shared memory is the running system's, wherever the files are looked for
        const Findings some = checkTracker(places);
        all.insert(all.end(), some.begin(), some.end());
    } else {
        for (Finding& finding : all)
            finding.remedy.clear();
    }
    return all;
}

void tell(const Findings& findings, bool asJson, std::ostream& out) {
    if (asJson) {
        tellJson(findings, out);
        return;
    }
    for (const Finding& finding : findings) {
        out << nameOf(finding.verdict).shown << "  " << finding.subject << ": " << printable(finding.text)
            << "\n";
        if (!finding.remedy.empty())
            out << "           " << printable(finding.remedy) << "\n";
    }
}

void requireNoFault(const Findings& findings) {
    const auto faults = countOf(findings, Verdict::fault);
    if (faults == 0)
        return;
    const bool mendable = std::ranges::any_of(findings, [](const Finding& finding) {
        return finding.verdict == Verdict::fault && !finding.remedy.empty();
    });
    throw std::runtime_error(std::to_string(faults) + (faults == 1 ? " fault was" : " faults were") +
                             " found" +
                             (mendable ? ": run the commands below each, then ask again."
                                       : ": mend them in that system, then ask again."));
}

void addDoctorCommand(CLI::App& program, std::ostream& out) {
    CLI::App* const command = program.add_subcommand(
        "doctor", "Finds out what keeps the plug-in from being seen, heard or turned.");
    const auto asJson = std::make_shared<bool>(false);
    const auto root = std::make_shared<std::filesystem::path>("/");
    command->add_flag("--json", *asJson, "Print the findings as one JSON object");
    command->add_option("--root", *root, "Look at another system's files below this folder")
        ->type_name("DIR");
    command->footer(
        "Examples:\n"
        "  kestrum doctor\n"
        "  kestrum doctor --json > findings.json || mail -s \"studio 2\" me < findings.json\n"
        "\n"
        "Below each finding stands the command that mends it. The exit code is 0 when no fault is found;\n"
        "warnings and notes are no faults.");
    command->callback([asJson, root, &out] {
        if (!std::filesystem::is_directory(*root))
            throw std::runtime_error(inQuotes(root->string()) +
                                     " is no folder: give one that holds a system with --root.");
        const Findings findings = checkEverything(currentPlaces(std::filesystem::canonical(*root)));
        tell(findings, *asJson, out);
        requireNoFault(findings);
    });
}

void addDoctorCommand(CLI::App& program) { addDoctorCommand(program, std::cout); }

} // namespace orvane::kestrum::doctor
