// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace test {

/// A folder of this test's own, gone with it. No other program, and no second run of the test, has the same.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "kestrum-test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), name);
        path = name;
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    std::filesystem::path path;
};

} // namespace test
