// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// What a target defines: feeds one input to one reader and ends the process when a promise is broken. Called by libFuzzer
/// with what it makes up, and by Replay.cpp with what is kept in corpus/ and findings/.
/// Its name and arguments are libFuzzer's; the result is always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count);

namespace test {

/// Ends the process, with the promise on standard error, when it does not hold. Not an assertion: it is there in every build.
void promise(bool holds, std::string_view sentence);

/// Promises that a sentence for the user is one: not empty, and nothing in it steers a terminal, whatever the file said.
void promiseSentence(std::string_view refusal);

/// The input of a target, taken apart from its front. What is missing at its end reads as 0.
class Taken {
public:
    explicit Taken(std::span<const std::uint8_t> bytes) : bytes(bytes) {}

    std::uint8_t byte();
    std::uint32_t number(); ///< Four bytes, little-endian.
    std::string_view rest() const;

private:
    std::span<const std::uint8_t> bytes;
};

/// A file that has a path but lies on no disk.
class FileInMemory {
public:
    FileInMemory();
    ~FileInMemory();
    FileInMemory(const FileInMemory&) = delete;
    FileInMemory& operator=(const FileInMemory&) = delete;

    void replace(std::string_view content);
    const std::string& path() const { return name; }

private:
    int descriptor;
    std::string name;
};

} // namespace test
