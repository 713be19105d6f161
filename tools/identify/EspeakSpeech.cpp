// SPDX-License-Identifier: GPL-3.0-or-later
#include "identify/EspeakSpeech.h"

#include "render/RenderError.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace orvane::kestrum::identify {

namespace {

/// A file of this object's own, gone with it.
class TemporaryFile {
public:
    TemporaryFile() : path((folder() / "kestrum-voice-XXXXXX").string()) {
        const int file = mkstemp(path.data());
        if (file < 0)
            throw render::RenderError("A voice cannot be written to \"" + path +
                                      "\": make room there, or name another folder in TMPDIR.");
        close(file);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { unlink(path.c_str()); }

    std::string path;

private:
    static std::filesystem::path folder() {
        std::error_code missing;
        auto named = std::filesystem::temp_directory_path(missing);
        if (missing)
            throw render::RenderError("There is no folder for temporary files (" + missing.message() +
                                      "): name one of yours in TMPDIR.");
        return named;
    }
};

/// @return the exit status, or that of a shell for a program that a signal ended.
int run(const std::string& program, std::array<std::string, 9> arguments) {
    std::array<char*, arguments.size() + 1> pointers{};
    for (std::size_t index = 0; index < arguments.size(); ++index)
        pointers[index] = arguments[index].data();
    pid_t child = 0;
    const int error = posix_spawnp(&child, program.c_str(), nullptr, nullptr, pointers.data(), environ);
    if (error == ENOENT)
        throw render::RenderError("The program \"" + program +
                                  "\", which speaks the names of channels, is missing: install Debian's "
                                  "package espeak-ng.");
    if (error != 0)
        throw render::RenderError("The program \"" + program + "\" cannot be run (" + std::strerror(error) +
                                  "): install Debian's package espeak-ng anew.");
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

render::Recording EspeakSpeech::say(const std::string& words) {
    const TemporaryFile file;
    const int status = run(program, {program, "-v", "en-gb", "-s", "140", "-w", file.path, "--", words});
    if (status != 0 || std::filesystem::file_size(file.path) == 0)
        throw render::RenderError("The program \"" + program + "\" could not say \"" + words +
                                  "\" (exit status " + std::to_string(status) +
                                  "): install Debian's package espeak-ng anew.");
    return render::readRecording(file.path, "install Debian's package espeak-ng anew");
}

} // namespace orvane::kestrum::identify
