// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace test {

/// Writes `written` bytes into a block of `size`, as a reader with a bug would. Compiled as everything is.
void writeInto(std::size_t size, std::size_t written);

/// The same compiled at the level below, which knows a size only if the compiler does.
void writeIntoAtLevelTwo(std::size_t size, std::size_t written);

/// Writes `written` bytes into an array of 16 on the stack.
void writeOnStack(std::size_t written);

} // namespace test
