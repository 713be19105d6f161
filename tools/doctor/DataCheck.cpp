// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/Checks.h"
#include "doctor/Remedies.h"

#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"

#include <nlohmann/json.hpp>

#include <fstream>

namespace orvane::kestrum::doctor {

namespace fs = std::filesystem;

namespace {

constexpr const char* subject = "data";

/// A text in about.json, or "unknown".
std::string said(const nlohmann::json& about, const char* pointer) {
    const nlohmann::json::json_pointer at(pointer);
    return about.contains(at) && about[at].is_string() ? about[at].get<std::string>() : "unknown";
}

/// Which set is in use, as its about.json and the link tell it.
std::string description(const Places& places) {
    std::ifstream file(places.data() / tools::aboutFileName);
    const nlohmann::json about = nlohmann::json::parse(file, nullptr, false);
    std::error_code failure;
    const fs::path target = fs::read_symlink(places.data(), failure);
    std::string text = target.empty() ? "The folder " + inQuotes(places.data().string())
                                      : "The set " + inQuotes(target.filename().string());
    if (!about.is_object())
        return text;
    return text + ", " + said(about, "/origin") + ", made by " + said(about, "/tool") + " from input " +
           said(about, "/input/sha256").substr(0, 8);
}

Finding closedFinding(const fs::path& closed) {
    return {subject, Verdict::fault, "Not everybody may read " + inQuotes(closed.string()) + ".",
            openUp(closed)};
}

/// Files that cannot be opened say nothing about their content, so this comes first.
Findings closedFiles(const Places& places) {
    Findings findings;
    std::error_code failure;
    for (const tools::FileRule& rule : tools::dataFolderRules()) {
        const fs::path file = places.data() / rule.name;
        const fs::path closed = firstClosed(file, places.user);
        if (closed.empty())
            continue;
        findings.push_back(closedFinding(closed));
        if (fs::is_directory(closed, failure))
            break; // the same for every file
    }
    return findings;
}

Findings folderFaults(const Places& places) {
    const fs::path folder = places.data();
    if (const fs::path closed = firstClosed(folder, places.user); !closed.empty())
        return {closedFinding(closed)};
    std::error_code failure;
    const bool link = fs::is_symlink(fs::symlink_status(folder, failure));
    if (fs::is_directory(folder, failure))
        return {};
    if (link)
        return {{subject, Verdict::fault,
                 inQuotes(folder.string()) + " leads to " +
                     inQuotes(fs::read_symlink(folder, failure).string()) + ", which is not there.",
                 mendData(places)}};
    return {{subject, Verdict::fault,
             "There is no folder " + inQuotes(folder.string()) + ": the plug-in is muted.",
             mendData(places)}};
}

} // namespace

Findings checkData(const Places& places) {
    if (Findings faults = folderFaults(places); !faults.empty())
        return faults;
    Findings findings = closedFiles(places);
    if (!findings.empty())
        return findings;
    for (const tools::FileVerdict& verdict : tools::checkDataFolder(places.data()))
        if (!verdict.sound)
            findings.push_back(
                {subject, Verdict::fault, verdict.name + ": " + verdict.finding + ".", mendData(places)});
    if (findings.empty())
        findings.push_back(
            {subject, Verdict::good, description(places) + ", is complete and sound at every rate.", {}});
    return findings;
}

Findings checkManual(const Places& places) {
    const fs::path manual = places.manual();
    if (const fs::path closed = firstClosed(manual, places.user); !closed.empty())
        return {{"manual", Verdict::warning, "Not everybody may read " + inQuotes(closed.string()) + ".",
                 openUp(closed)}};
    std::error_code failure;
    if (!fs::is_regular_file(manual, failure))
        return {{"manual", Verdict::note,
                 "The help menu finds no manual: there is no " + inQuotes(manual.string()) + ".",
                 reinstallManual(places)}};
    return {
        {"manual", Verdict::good, "The help menu finds the manual, " + inQuotes(manual.string()) + ".", {}}};
}

} // namespace orvane::kestrum::doctor
