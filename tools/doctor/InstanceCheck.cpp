// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/Checks.h"

#include "host/Module.h"

#include <charconv>
#include <fstream>
#include <optional>
#include <sstream>

namespace orvane::kestrum::doctor {

namespace fs = std::filesystem;

namespace {

/// What one process has mapped of the plug-in and of the link.
struct Mapped {
    bool plugin = false;
    bool link = false; ///< The present segment, not an older one of the same name.
};

/// One line of the kernel's table of mappings: address, permissions, offset, device, inode, path.
void takeLine(const std::string& line, const std::string& module, const std::string& segment, ino_t inode,
              Mapped& mapped) {
    const auto at = line.find('/');
    if (at == std::string::npos)
        return;
    const std::string path = line.substr(at);
    mapped.plugin = mapped.plugin || path.ends_with(module);
    std::istringstream fields(line);
    std::string skipped;
    ino_t number = 0;
    fields >> skipped >> skipped >> skipped >> skipped >> number;
    mapped.link = mapped.link || (path == segment && number == inode);
}

/// @return nothing for a process that may not be looked at.
std::optional<Mapped> mappedBy(const fs::path& process, const std::string& segment, ino_t inode) {
    std::ifstream file(process / "maps");
    if (!file)
        return std::nullopt;
    const std::string module = "/" + host::Module::binaryOf(bundleName).filename().string();
    Mapped mapped;
    for (std::string line; std::getline(file, line);)
        takeLine(line, module, segment, inode, mapped);
    return mapped;
}

bool isNumber(const std::string& text) {
    long number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    return failure == std::errc() && end == text.data() + text.size();
}

Finding tooEarly(const fs::path& process) {
    std::ifstream file(process / "comm");
    std::string program;
    std::getline(file, program);
    return {"tracker", Verdict::warning,
            inQuotes(program) + " (process " + process.filename().string() +
                ") has loaded the plug-in before this tracker was started, and does not follow it.",
            "# in " + inQuotes(program) + ", remove the plug-in and insert it again, or reopen the session"};
}

} // namespace

Findings checkInstances(const Places& places, ino_t inode) {
    Findings findings;
    std::error_code failure;
    const std::string segment = "/dev/shm/" + places.segment;
    fs::directory_iterator entry(places.below("/proc"), failure);
    for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
        if (!isNumber(entry->path().filename().string()))
            continue;
        const auto mapped = mappedBy(entry->path(), segment, inode);
        if (mapped && mapped->plugin && !mapped->link)
            findings.push_back(tooEarly(entry->path()));
    }
    return findings;
}

} // namespace orvane::kestrum::doctor
