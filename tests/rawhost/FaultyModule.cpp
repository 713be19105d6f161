// SPDX-License-Identifier: GPL-3.0-or-later
// A module with entry points and nothing behind them, and one fault that FAULT names: what the checks have to see.
#include <thread>

#include <unistd.h>

#define ENTRY_POINT extern "C" __attribute__((visibility("default")))

namespace {
constexpr int leavesAThread = 1;
constexpr int cannotBeUnloaded = 2;
} // namespace

/// One instance for all modules of a process, by a symbol that keeps its module loaded for good.
template <typename Type>
struct __attribute__((visibility("default"))) Shared {
    static Type value;
};
template <typename Type>
Type Shared<Type>::value{};

ENTRY_POINT bool ModuleEntry(void*);
ENTRY_POINT bool ModuleExit();
ENTRY_POINT void* GetPluginFactory();

bool ModuleEntry(void*) {
    if (FAULT == leavesAThread)
        std::thread([] { pause(); }).detach();
    if (FAULT == cannotBeUnloaded)
        ++Shared<int>::value;
    return true;
}

bool ModuleExit() { return true; }

void* GetPluginFactory() { return nullptr; }
