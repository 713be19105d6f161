// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/Places.h"

#include "ipc/HeadRotation.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace orvane::kestrum::doctor {

namespace fs = std::filesystem;

namespace {

fs::path runtimeFolder(uid_t user) {
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    if (folder != nullptr && *folder != '\0')
        return fs::path(folder) / "orvane-kestrum";
    return "/tmp/orvane-kestrum-" + std::to_string(user);
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
    places.user = getuid();
    places.segment = OrvaneIPC::segmentName;
    places.runtime = runtimeFolder(places.user);
    if (!places.thisMachine())
        return places; // home and program belong to this one
    if (const char* const home = std::getenv("HOME"))
        places.home = home;
    std::error_code failure;
    places.program = fs::read_symlink("/proc/self/exe", failure).parent_path();
    return places;
}

bool mayUse(const fs::path& path, uid_t user, unsigned need) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return false;
    if (user != 0 && user == getuid()) {
        const int mode = static_cast<int>(need); // the bits of access(): R_OK 4, W_OK 2, X_OK 1
        return access(path.c_str(), mode) == 0;
    }
    const unsigned bits = status.st_uid == user && user != 0 ? status.st_mode >> 6U : status.st_mode;
    return (bits & need) == need;
}

fs::path firstClosed(const fs::path& path, uid_t user) {
    std::error_code failure;
    const fs::path resolved = fs::canonical(path, failure);
    fs::path above;
    for (const fs::path& part : resolved) {
        above /= part;
        const unsigned need = fs::is_directory(above, failure) ? 1U : 4U;
        if (!mayUse(above, user, need))
            return above;
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
