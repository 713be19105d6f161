// SPDX-License-Identifier: GPL-3.0-or-later
// Gives a target every file of the folders that are named, in the order of their names. Usage: PROGRAM FOLDER ...
#include "Fuzzed.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

std::vector<std::filesystem::path> filesOf(int count, char** folders) {
    std::vector<std::filesystem::path> files;
    for (int index = 1; index < count; ++index)
        if (std::filesystem::exists(folders[index])) // a target without a finding has no folder for them
            for (const auto& entry : std::filesystem::directory_iterator(folders[index]))
                files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

} // namespace

int main(int argumentCount, char** arguments) {
    try {
        const auto files = filesOf(argumentCount, arguments);
        for (const auto& file : files) {
            std::printf("%s\n", file.filename().c_str());
            std::fflush(stdout); // the last line names the one that ended the process
            std::ifstream stream(file, std::ios::binary);
            // On the heap at its exact size, so that a reader that goes beyond it is seen.
            const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        }
        std::printf("%zu inputs, no promise broken\n", files.size());
        return files.empty() ? 1 : 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "Broken promise: an exception escapes: %s\n", error.what());
        return 1;
    }
}
