// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReflectionList.h"

#include <stdexcept>

namespace orvane {

ReflectionList::ReflectionList(std::size_t capacity) : entries(capacity) {}

void ReflectionList::push(const Reflection& reflection) {
    if (count == entries.size())
        throw std::out_of_range("capacity overflow");
    entries[count++] = reflection;
}

} // namespace orvane
