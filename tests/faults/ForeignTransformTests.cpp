// SPDX-License-Identifier: GPL-3.0-or-later
// Another plug-in of the same process uses the FFT library, too, whose planner serves one thread at a time. Four of its threads
// plan, under a lock of their own, of which this plug-in knows nothing, while its engines are built.
#include "host/BundleSupport.h"

#include "support/WatchedProcess.h"

#include <dlfcn.h>
#include <fftw3.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <iostream>
#include <mutex>
#include <random>
#include <span>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;
using How = ::test::WatchedEnd::How;

/// The library as others load it.
struct SharedLibrary {
    SharedLibrary() : handle(dlopen("libfftw3f.so.3", RTLD_NOW | RTLD_LOCAL)) {
        if (handle == nullptr)
            throw std::runtime_error(dlerror());
        take(plan, "fftwf_plan_dft_1d");
        take(execute, "fftwf_execute");
        take(destroy, "fftwf_destroy_plan");
    }

    template <typename Function>
    void take(Function*& function, const char* name) const {
        void* const address = dlsym(handle, name);
        if (address == nullptr)
            throw std::runtime_error(name);
        std::memcpy(&function, &address, sizeof address);
    }

    void* handle;
    decltype(fftwf_plan_dft_1d)* plan = nullptr;
    decltype(fftwf_execute)* execute = nullptr;
    decltype(fftwf_destroy_plan)* destroy = nullptr;
};

/// Plans a transform of a length and uses it once. @return whether its result is right: that of an impulse is flat.
bool planAndRun(const SharedLibrary& library, std::mutex& lock, int length) {
    std::vector<std::array<float, 2>> values(static_cast<std::size_t>(length));
    std::vector<std::array<float, 2>> transformed(values.size());
    const auto native = [](std::vector<std::array<float, 2>>& array) {
        return reinterpret_cast<fftwf_complex*>(array.data());
    };
    std::unique_lock guard(lock);
    fftwf_plan_s* const plan = library.plan(length, native(values), native(transformed), FFTW_FORWARD,
                                            FFTW_ESTIMATE | FFTW_UNALIGNED);
    guard.unlock();
    values.assign(values.size(), {0.0f, 0.0f});
    values[0] = {1.0f, 0.0f};
    library.execute(plan);
    guard.lock();
    library.destroy(plan);
    bool flat = true;
    for (const auto& value : transformed)
        flat = flat && std::abs(value[0] - 1.0f) < 1e-4f && std::abs(value[1]) < 1e-4f;
    return flat;
}

/// Four threads that plan as long as this lives.
class OtherUsers {
public:
    OtherUsers() {
        for (unsigned user = 0; user < 4; ++user)
            threads.emplace_back([this, user] {
                std::mt19937 random(user);
                while (!ended) {
                    const int length = 16 + static_cast<int>(random() % 2000);
                    if (!planAndRun(library, lock, length))
                        wrong = true;
                    ++planned;
                }
            });
    }
    ~OtherUsers() { end(); }
    OtherUsers(const OtherUsers&) = delete;
    OtherUsers& operator=(const OtherUsers&) = delete;

    void end() {
        ended = true;
        for (std::thread& thread : threads)
            thread.join();
        threads.clear();
    }

    const SharedLibrary library;
    std::mutex lock;
    std::atomic<bool> wrong{false};
    std::atomic<int> planned{0};

private:
    std::atomic<bool> ended{false};
    std::vector<std::thread> threads;
};

/// Block lengths whose engines need transforms of many lengths, even, odd and prime.
constexpr std::array<std::uint32_t, 10> blocks{64, 101, 128, 150, 256, 333, 480, 512, 1000, 1024};
constexpr std::size_t framesPerEngine = 8192;
constexpr std::size_t floatsPerRun = blocks.size() * framesPerEngine * 2;

/// Builds an engine for each of the block lengths and plays it.
void renderAll(std::span<float> heard) {
    const auto plugin = makeInstance(6, "5.1 ITU", "Mix Room");
    float* to = heard.data();
    for (const std::uint32_t block : blocks) {
        plugin->prepare(48000, block, ProcessMode::offline);
        const auto output = play(*plugin, noise(6, framesPerEngine), block);
        plugin->release();
        for (std::size_t ear = 0; ear < 2; ++ear)
            to = std::copy(output[ear].begin(), output[ear].end(), to);
    }
}

/// Asks for rebuild after rebuild while it plays. @return whether all of it was sound.
bool changeAndPlay() {
    const auto plugin = makeInstance(6, "5.1 ITU", "Mix Room");
    bool finite = true;
    for (const std::uint32_t block : {90u, 210u}) {
        plugin->prepare(48000, block, ProcessMode::realtime);
        for (const char* const scene : {"Kitchen", "Stadium", "Mix Room", "Car", "Club Large"}) {
            set(*plugin, "scene", scene);
            finite = finite && std::isfinite(peakOf(play(*plugin, noise(6, 24000), block)));
        }
        plugin->release();
    }
    return finite;
}

/// Floats that a process and those that it watches share.
class SharedFloats {
public:
    explicit SharedFloats(std::size_t count)
        : count(count),
          memory(mmap(nullptr, count * sizeof(float), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1,
                      0)) {
        if (memory == MAP_FAILED)
            throw std::runtime_error("no memory");
    }
    ~SharedFloats() { munmap(memory, count * sizeof(float)); }
    SharedFloats(const SharedFloats&) = delete;
    SharedFloats& operator=(const SharedFloats&) = delete;

    std::span<float> floats() const { return {static_cast<float*>(memory), count}; }

private:
    std::size_t count;
    void* memory;
};

int runsFromEnvironment(int otherwise) {
    const char* const text = std::getenv("KESTRUM_FOREIGN_TRANSFORM_RUNS");
    return text != nullptr ? std::atoi(text) : otherwise;
}

/// Expected: what the same engines render where nobody else plans.
TEST(ForeignTransforms, PlannedOnFourThreadsChangeNothingOfWhatEnginesRender) {
    const SharedFloats alone(floatsPerRun);
    const SharedFloats among(floatsPerRun);
    const auto quiet = ::test::watch([&] {
        renderAll(alone.floats());
        return 0;
    });
    ASSERT_EQ(quiet.how, How::returned);
    ASSERT_NE(peakOf({{alone.floats().begin(), alone.floats().end()}}), 0.0f);
    const int runs = runsFromEnvironment(3);
    int planned = 0;
    int equalRuns = 0;
    for (int run = 0; run < runs; ++run) {
        std::ranges::fill(among.floats(), 0.0f);
        const auto end = ::test::watch(
            [&] {
                OtherUsers others;
                renderAll(among.floats());
                const bool finite = changeAndPlay();
                others.end();
                if (others.wrong || !finite)
                    return 255;
                return std::min(others.planned / 100, 254);
            },
            std::chrono::minutes(5));
        EXPECT_EQ(end.how, How::returned) << "run " << run;
        EXPECT_GT(end.value, 0) << "nobody else planned";
        EXPECT_NE(end.value, 255) << "a wrong transform";
        const bool same =
            std::memcmp(alone.floats().data(), among.floats().data(), floatsPerRun * sizeof(float)) == 0;
        EXPECT_TRUE(same) << "run " << run;
        equalRuns += same ? 1 : 0;
        planned += end.value * 100;
    }
    std::cout << "figure: " << equalRuns << " of " << runs << " runs equal bit for bit, beside at least "
              << planned << " plans of others\n";
}

/// Plans among the four, under another lock than theirs, until something is noticed.
int planAmong() {
    OtherUsers others;
    std::mutex ownLock;
    std::mt19937 random(99); // NOLINT(*-msc51-cpp): the same lengths every time
    while (!others.wrong)
        if (!planAndRun(others.library, ownLock, 16 + static_cast<int>(random() % 2000)))
            break;
    return 0;
}

/// That it can fail: a plug-in that shared the library of the four and planned under a lock of its own. Most often the planner
/// crashes, else a transform is wrong; a planner that runs in circles cannot be told from one that nothing happens to.
TEST(ForeignTransforms, AFifthUserOfTheSameLibraryWithAnotherLockIsFoundOut) {
    bool noticed = false;
    for (int attempt = 0; attempt < 3 && !noticed; ++attempt)
        noticed = ::test::watch(planAmong, std::chrono::seconds(30)).how != How::hung;
    EXPECT_TRUE(noticed);
}

} // namespace
