// SPDX-License-Identifier: GPL-3.0-or-later
// A host scans plug-ins, and there is nothing: no data folder, no screen, no home, no shared memory, no devices, and no disk to
// write to. Each scan in a process and with mounts of its own.
#include "host/BundleSupport.h"

#include "support/PrivateMounts.h"
#include "support/WatchedProcess.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace {

namespace fs = std::filesystem;
using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;
using How = ::test::WatchedEnd::How;

constexpr std::chrono::milliseconds mostCpuTime{500};
constexpr std::uint32_t block = 256;

enum Result : int { muteThenSound, soundWithoutData, muteWithData, wrongLatency, environmentIsNotEmpty };

void emptyEnvironment() {
    clearenv();
    ::test::enterPrivateMounts();
    for (const char* const folder : {"/opt", "/dev", "/home", "/root"})
        ::test::coverFolder(folder);
    ::test::makeDiskReadOnly();
}

std::unique_ptr<PluginInstance> scanned() { return std::make_unique<PluginInstance>(loadBundle()); }

bool sounds(PluginInstance& plugin) {
    plugin.prepare(48000, block, ProcessMode::realtime);
    const bool heard = peakOf(play(plugin, noise(2, 50 * block), block)) != 0.0f;
    plugin.release();
    return heard;
}

/// @param forget leaves the data folder where it is: the seeded fault.
int scanAndRecover(bool forget) {
    emptyEnvironment();
    if (forget)
        ::test::uncoverFolder("/opt");
    else if (fs::exists("/opt/Tenmarsh") || fs::exists("/dev/shm") || std::getenv("HOME") != nullptr)
        return environmentIsNotEmpty;
    const auto plugin = scanned();
    plugin->setChannelCounts(2, 2);
    if (sounds(*plugin))
        return soundWithoutData;
    if (plugin->latency() != block)
        return wrongLatency;
    ::test::uncoverFolder("/opt");
    return sounds(*plugin) ? muteThenSound : muteWithData;
}

TEST(ScanInAnEmptyEnvironment, MakesAnInstanceInHalfASecondOfWork) {
    for (const bool empty : {false, true}) {
        const auto end = ::test::watch([empty] {
            if (empty)
                emptyEnvironment();
            return scanned()->parameters().empty() ? 1 : 0;
        });
        EXPECT_EQ(end.how, How::returned);
        EXPECT_EQ(end.value, 0);
        EXPECT_LT(end.cpuTime, mostCpuTime);
        std::cout << "figure: instance " << (empty ? "in an empty environment" : "as usual") << " after "
                  << end.cpuTime.count() / 1000 << " ms of CPU\n";
    }
}

TEST(ScanInAnEmptyEnvironment, IsSilentUntilTheDataAppearsAndTheHostPreparesAgain) {
    const auto end = ::test::watch([] { return scanAndRecover(false); });
    EXPECT_EQ(end.how, How::returned);
    EXPECT_EQ(end.value, muteThenSound);
}

/// That it can fail.
TEST(ScanInAnEmptyEnvironment, SeesSoundWhereTheDataWasForgotten) {
    EXPECT_EQ(::test::watch([] { return scanAndRecover(true); }).value, soundWithoutData);
}

} // namespace
