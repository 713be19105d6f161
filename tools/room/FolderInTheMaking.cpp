// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/FolderInTheMaking.h"

#include "data/DataError.h"

#include <array>
#include <cstdlib>
#include <string>
#include <system_error>

namespace orvane::kestrum::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::array endingSignals{SIGINT, SIGTERM, SIGHUP};

} // namespace

HeldSignals::HeldSignals() {
    sigemptyset(&held);
    for (const int number : endingSignals) {
        struct sigaction current {};
        if (sigaction(number, nullptr, &current) == 0 && current.sa_handler != SIG_IGN)
            sigaddset(&held, number);
    }
    pthread_sigmask(SIG_BLOCK, &held, &before);
}

HeldSignals::~HeldSignals() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }

bool HeldSignals::waiting() const {
    sigset_t all{};
    sigpending(&all);
    for (const int number : endingSignals)
        if (sigismember(&held, number) == 1 && sigismember(&all, number) == 1)
            return true;
    return false;
}

FolderInTheMaking::FolderInTheMaking(const fs::path& place) : target(fs::absolute(place).lexically_normal()) {
    if (!target.has_filename()) // "my-room/"
        target = target.parent_path();
    std::error_code failure;
    fs::create_directories(target.parent_path(), failure);
    std::string name = target.string() + ".part-XXXXXX";
    if (failure || mkdtemp(name.data()) == nullptr)
        refuse();
    path = name;
    fs::permissions(path, fs::perms(0755), failure); // as any new folder: the plug-in's host reads it
}

FolderInTheMaking::~FolderInTheMaking() {
    std::error_code ignored;
    if (!path.empty())
        fs::remove_all(path, ignored);
}

void FolderInTheMaking::finish() {
    if (signals.waiting())
        throw DataError("Stopped: \"" + target.string() + "\" is not made.");
    std::error_code failure;
    fs::rename(path, target, failure);
    if (failure)
        refuse();
    path.clear();
}

void FolderInTheMaking::refuse() const {
    throw DataError("The folder \"" + target.string() +
                    "\" cannot be made: name one where you may write, with room for 70 MB.");
}

} // namespace orvane::kestrum::tools
