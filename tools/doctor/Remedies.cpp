// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/Remedies.h"

namespace orvane::kestrum::doctor {

namespace fs = std::filesystem;

namespace {

bool isPackage(const Places& places, const std::string& name) {
    std::error_code failure;
    return fs::exists(places.below(("/var/lib/dpkg/info/" + name + ".list").c_str()), failure);
}

std::string reinstall(const Places& places, const std::string& package, const std::string& otherwise) {
    if (isPackage(places, package))
        return "sudo apt-get install --reinstall " + package;
    return otherwise;
}

} // namespace

std::string reinstallPlugin(const Places& places) {
    std::error_code failure;
    if (fs::exists(places.below("/usr/local/share/orvane-kestrum/installed-files"), failure))
        return "sudo ./install.sh   # in the unpacked tar ball";
    return reinstall(
        places, "orvane-kestrum",
        "sudo apt-get install ./orvane-kestrum_*.deb ./orvane-kestrum-data_*.deb   # or ./run in "
        "the sources");
}

std::string reinstallData(const Places& places) {
    return reinstall(
        places, "orvane-kestrum-data",
        "sudo apt-get install ./orvane-kestrum-data_*.deb   # or scripts/install-data in the sources");
}

std::string reinstallManual(const Places& places) {
    return reinstall(
        places, "orvane-kestrum-doc",
        "sudo apt-get install ./orvane-kestrum-doc_*.deb   # or scripts/build-manual in the sources");
}

std::string mendData(const Places& places) {
    std::error_code failure;
    const bool packaged = fs::exists(places.packagedSet() / "about.json", failure);
    const bool packagedInUse = fs::equivalent(places.packagedSet(), places.data(), failure);
    // By its path: a set made here may have the same name, and be the damaged one.
    return packaged && !packagedInUse ? "sudo kestrum data use /usr/share/orvane-kestrum/sets/kemar"
                                      : reinstallData(places);
}

std::string openUp(const fs::path& closed) {
    std::error_code failure;
    return std::string("sudo chmod ") + (fs::is_directory(closed, failure) ? "a+rx " : "a+r ") +
           shellWord(closed);
}

std::string removal(const fs::path& bundle, const Places& places) {
    const bool ofPackage =
        bundle.parent_path() == places.below("/usr/lib/vst3") && isPackage(places, "orvane-kestrum");
    if (ofPackage)
        return "sudo apt-get remove orvane-kestrum";
    const bool own = !places.home.empty() && bundle.parent_path() == places.home / ".vst3";
    return (own ? "rm -r " : "sudo rm -r ") + shellWord(bundle);
}

} // namespace orvane::kestrum::doctor
