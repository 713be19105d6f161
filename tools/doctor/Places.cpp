// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/Places.h"

#include "headlink/Access.h"
#include "headlink/TrackStatus.h"

#include "ipc/HeadRotation.h"

#include <unistd.h>

#include <cstdlib>
#include <deque>

namespace orvane::kestrum::doctor {

namespace fs = std::filesystem;

namespace {

constexpr int mostLinks = 40; ///< As the kernel follows.

/// Puts the parts of a path in front of those that wait.
void putInFront(std::deque<fs::path>& parts, const fs::path& path) {
    parts.insert(parts.begin(), path.begin(), path.end());
}

} // namespace

fs::path Places::below(const char* absolute) const { return root / fs::path(absolute).relative_path(); }

std::vector<fs::path> Places::hostFolders() const {
    std::vector<fs::path> folders;
    if (!home.empty())
        folders.push_back(home / ".vst3");
    folders.push_back(below("/usr/lib/vst3"));
    folders.push_back(below("/usr/local/lib/vst3"));
    return folders;
}

fs::path Places::manual() const {
    return below("/usr/share/Lorimond/Orvane KESTRUM/Orvane KESTRUM Manual.pdf");
}

Places currentPlaces(const fs::path& root) {
    Places places;
    places.root = root;
    places.foreign = root != "/";
    places.user = getuid();
    places.segment = OrvaneIPC::segmentName;
    places.runtime = headlink::statusPath().parent_path();
    if (!places.thisMachine())
        return places; // home and program belong to this one
    if (const char* const home = std::getenv("HOME"))
        places.home = home;
    std::error_code failure;
    places.program = fs::read_symlink("/proc/self/exe", failure).parent_path();
    return places;
}

fs::path firstClosed(const fs::path& path, uid_t user) {
    std::deque<fs::path> parts;
    putInFront(parts, fs::absolute(path));
    fs::path above = "/";
    for (int links = 0; !parts.empty() && links < mostLinks;) {
        const fs::path part = parts.front();
        parts.pop_front();
        if (part == "..") {
            above = above.parent_path();
            continue;
        }
        fs::path next = part.empty() || part == "." ? above : above / part;
        std::error_code failure;
        if (const fs::path target = fs::read_symlink(next, failure); !failure) {
            ++links;
            putInFront(parts, target);
            continue;
        }
        const fs::file_status status = fs::status(next, failure);
        if (!fs::exists(status))
            return {}; // not to be found, but not for lack of permission: what is above may be entered
        if (!headlink::mayUse(next, user, fs::is_directory(status) ? 1U : 4U))
            return next;
        above = next;
    }
    return {};
}

std::string inQuotes(const std::string& text) { return "\"" + text + "\""; }

std::string shellWord(const fs::path& path) {
    const std::string text = path.string();
    constexpr const char* plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+~";
    return text.find_first_not_of(plain) == std::string::npos ? text : inQuotes(text);
}

} // namespace orvane::kestrum::doctor
