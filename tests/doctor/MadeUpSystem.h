// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "doctor/Checks.h"

#include "host/Module.h"

#include "support/WaveFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace test {

/// A system in a temporary folder: a root, a home, a runtime folder, and a segment of a name of its own. Nothing of it exists
/// until a test makes it.
class MadeUpSystem : public ::testing::Test {
protected:
    MadeUpSystem() {
        places.root = std::filesystem::path(folder.path()) / "root";
        places.home = std::filesystem::path(folder.path()) / "home";
        places.runtime = std::filesystem::path(folder.path()) / "run";
        places.segment = "KestrumDoctorTest" + std::to_string(getpid());
        places.user = getuid();
        for (const auto& path : {places.root, places.home, places.runtime})
            std::filesystem::create_directories(path);
        // Temporary folders are closed to others; here they stand for "/".
        std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    }

    static void write(const std::filesystem::path& path, const std::string& content = "content") {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
    }

    std::filesystem::path systemBundle() const {
        return places.below("/usr/lib/vst3") / orvane::kestrum::doctor::bundleName;
    }

    /// Puts a module into a bundle.
    static void makeBundle(const std::filesystem::path& bundle, const std::filesystem::path& module) {
        const auto binary = orvane::kestrum::host::Module::binaryOf(bundle);
        std::filesystem::create_directories(binary.parent_path());
        std::filesystem::copy_file(module, binary, std::filesystem::copy_options::overwrite_existing);
    }

    /// As if a Debian package had been installed.
    void installPackage(const std::string& name) const {
        write(places.below(("/var/lib/dpkg/info/" + name + ".list").c_str()));
    }

    orvane::kestrum::doctor::Places places;
    TemporaryFolder folder;
};

/// What the shell takes as it stands: prose is a comment.
MATCHER(IsPasteable, "") {
    TemporaryFolder folder;
    const auto script = std::filesystem::path(folder.path()) / "remedy.sh";
    std::ofstream(script) << arg << "\n";
    return std::system(("sh -n " + script.string() + " 2>/dev/null").c_str()) == 0 &&
           (arg.find(" (") == std::string::npos);
}

/// A finding of a verdict whose sentence and whose remedy hold a text each.
inline auto Found(orvane::kestrum::doctor::Verdict verdict, const std::string& text,
                  const std::string& remedy = "") {
    using orvane::kestrum::doctor::Finding;
    using namespace ::testing;
    return AllOf(Field("verdict", &Finding::verdict, verdict), Field("text", &Finding::text, HasSubstr(text)),
                 Field("remedy", &Finding::remedy, AllOf(HasSubstr(remedy), IsPasteable())));
}

} // namespace test
