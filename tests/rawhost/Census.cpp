// SPDX-License-Identifier: GPL-3.0-or-later
#include "Census.h"

#include "support/HeapInUse.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <thread>

namespace rawhost {

namespace {

std::size_t entriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

} // namespace

Census takeCensus() { return {entriesOf("/proc/self/task"), entriesOf("/proc/self/fd"), test::heapInUse()}; }

Census censusOnceSettled(std::size_t threads) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    Census now = takeCensus();
    while (now.threads > threads && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
        now = takeCensus();
    }
    return now;
}

void expectNoMore(Findings& findings, const Census& before, const Census& now, std::size_t heapAllowance) {
    findings.expect(now.threads <= before.threads,
                    std::to_string(now.threads - before.threads) + " threads are left");
    findings.expect(now.descriptors <= before.descriptors,
                    std::to_string(now.descriptors - before.descriptors) + " descriptors are left");
    findings.expect(now.heapBytes <= before.heapBytes + heapAllowance,
                    std::to_string(now.heapBytes - before.heapBytes) + " bytes of heap are left");
}

bool isMapped(const std::filesystem::path& file) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.ends_with(" " + file.string()))
            return true;
    return false;
}

} // namespace rawhost
