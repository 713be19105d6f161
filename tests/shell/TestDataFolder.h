// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

namespace test {

/// A data folder of this process, removed at its end. Its responses are one impulse per ear, at tap 4, whose
/// level tells the side: for a source at azimuth a (positive to the right) 0.6 - 0.4 sin a left and 0.6 + 0.4
/// sin a right.
class TestDataFolder {
public:
    TestDataFolder();
    ~TestDataFolder();
    TestDataFolder(const TestDataFolder&) = delete;
    TestDataFolder& operator=(const TestDataFolder&) = delete;

    /// Writes the head-related and the reverb files for 24000, 44100 and 48000 Hz.
    void fill() const;

    std::string path() const { return folder.string(); }

    /// One filled folder, made at the first call of the process.
    static const TestDataFolder& filled();

private:
    std::filesystem::path folder;
};

} // namespace test
