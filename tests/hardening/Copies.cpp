// SPDX-License-Identifier: GPL-3.0-or-later
#include "Copies.h"

#include <cstdlib>
#include <cstring>

namespace test {

namespace {

/// Makes the compiler believe that somebody reads the bytes.
void touch(void* bytes) { asm volatile("" : : "r"(bytes) : "memory"); }

} // namespace

#ifdef KESTRUM_LEVEL_TWO
void writeIntoAtLevelTwo(std::size_t size, std::size_t written) {
#else
void writeOnStack(std::size_t written) {
    char bytes[16];
    touch(bytes);
    char* volatile hidden =
        bytes; // a loop over a pointer that nobody can size: only the stack's own guard is left
    char* const start = hidden;
    for (std::size_t index = 0; index < written; ++index)
        start[index] = 'x';
    touch(bytes);
}

void writeInto(std::size_t size, std::size_t written) {
#endif
    void* const block = std::malloc(size);
    std::memset(block, 1, written);
    touch(block);
    std::free(block);
}

} // namespace test
