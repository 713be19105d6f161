// SPDX-License-Identifier: GPL-3.0-or-later
#include "Fuzzed.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <sys/mman.h>
#include <unistd.h>

namespace test {

void promise(bool holds, std::string_view sentence) {
    if (holds)
        return;
    std::fprintf(stderr, "Broken promise: %.*s\n", static_cast<int>(sentence.size()), sentence.data());
    std::abort();
}

void promiseSentence(std::string_view refusal) {
    promise(!refusal.empty(), "a refusal says why");
    for (std::size_t index = 0; index < refusal.size(); ++index) {
        const auto byte = static_cast<unsigned char>(refusal[index]);
        const auto next = static_cast<unsigned char>(index + 1 < refusal.size() ? refusal[index + 1] : 0);
        const bool control = byte < 0x20 || byte == 0x7f || (byte == 0xc2 && next >= 0x80 && next < 0xa0);
        promise(!control, "nothing of the input steers the terminal that shows the refusal");
    }
}

std::uint8_t Taken::byte() {
    if (bytes.empty())
        return 0;
    const std::uint8_t first = bytes.front();
    bytes = bytes.subspan(1);
    return first;
}

std::uint32_t Taken::number() {
    std::uint32_t value = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
        value |= static_cast<std::uint32_t>(byte()) << shift;
    return value;
}

std::string_view Taken::rest() const {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; // the same bytes, as text
}

FileInMemory::FileInMemory() : descriptor(memfd_create("fuzzed", MFD_CLOEXEC)) {
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "memfd_create");
    name = "/proc/self/fd/" + std::to_string(descriptor);
}

FileInMemory::~FileInMemory() { close(descriptor); }

void FileInMemory::replace(std::string_view content) {
    const auto size = static_cast<ssize_t>(content.size());
    if (ftruncate(descriptor, 0) != 0 || pwrite(descriptor, content.data(), content.size(), 0) != size)
        throw std::system_error(errno, std::generic_category(), "a file in memory");
}

} // namespace test
