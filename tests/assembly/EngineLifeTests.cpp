// SPDX-License-Identifier: GPL-3.0-or-later
// Engines over a thousand structural changes: how many are alive, who ends them, what they leave behind.
#include "assembly/Product.h"
#include "engine/EngineManager.h"
#include "engine/assembly/EngineBuilder.h"
#include "engine/assembly/EngineFactory.h"
#include "parameters/core/Scene.h"
#include "room/ReverbFilterFactory.h"
#include "support/HeapInUse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using test::Product;
using ::testing::Contains;
using ::testing::Not;

constexpr double sampleRate = 48000.0;
constexpr std::uint64_t blockSize = 64;

/// Who built and who ended the engines of one manager. Has room for all beforehand, so as not to grow itself.
struct Register {
    static constexpr std::size_t capacity = 4096;
    Register() {
        builders.reserve(capacity);
        enders.reserve(capacity);
    }

    std::atomic<int> alive{0};
    std::atomic<int> mostAlive{0};
    std::mutex mutex;
    std::vector<std::thread::id> builders;
    std::vector<std::thread::id> enders;
};

/// Lives as long as the engine that it is built into: each has one reverb filter of its own.
class CountedFilter final : public orvane::IReverbFilter {
public:
    CountedFilter(std::unique_ptr<orvane::IReverbFilter> counted, Register& log)
        : filter(std::move(counted)), entries(log) {
        const int now = ++entries.alive;
        const std::lock_guard lock(entries.mutex);
        entries.mostAlive = std::max(entries.mostAlive.load(), now);
        entries.builders.push_back(std::this_thread::get_id());
    }
    ~CountedFilter() override {
        {
            const std::lock_guard lock(entries.mutex);
            entries.enders.push_back(std::this_thread::get_id());
        }
        --entries.alive;
    }
    CountedFilter(const CountedFilter&) = delete;
    CountedFilter& operator=(const CountedFilter&) = delete;

    void update(orvane::SampleBuffer& buffer, float decay) override { filter->update(buffer, decay); }
    std::uint64_t partitionCount() const noexcept override { return filter->partitionCount(); }
    std::int32_t bandLimitFactor() const noexcept override { return filter->bandLimitFactor(); }
    bool changed() const noexcept override { return filter->changed(); }

private:
    std::unique_ptr<orvane::IReverbFilter> filter;
    Register& entries;
};

class CountingFilterFactory final : public orvane::IReverbFilterFactory {
public:
    explicit CountingFilterFactory(Register& log) : entries(log) {}

    std::unique_ptr<orvane::IReverbFilter>
    create(double rate, std::uint64_t block, std::unique_ptr<orvane::IReverbImpulseResponse> impulseResponse,
           const std::string& dataDirectory, std::uint32_t roomId) const override {
        return std::make_unique<CountedFilter>(
            orvane::ReverbFilterFactory().create(rate, block, std::move(impulseResponse), dataDirectory,
                                                 roomId),
            entries);
    }

private:
    Register& entries;
};

/// The product with a manager whose engines are counted. Silence plays; what counts is that it is played.
class EngineLife : public ::testing::Test {
protected:
    EngineLife() {
        using namespace orvane::kestrum::core;
        product.layouts->forEach([this](const auto& layout) { layoutNames.push_back(layout.name); });
        manager = std::make_unique<orvane::EngineManager>(
            std::make_unique<EngineFactory>(product.speakerSetup.get(), product.layouts.get(),
                                            &product.factory, product.parameterSet.get(), product.hrir,
                                            test::reverbFolder(), std::make_unique<EngineBuilder>(),
                                            std::make_unique<CountingFilterFactory>(entries),
                                            [this] {
                                                product.updateMappers();
                                                ++reloadsFinished;
                                            }),
            product.parameterSet.get());
        manager->prepare(blockSize, sampleRate);
    }

    void block() { manager->process(view, view); }

    /// Lets the next engine come into service, its fade end and the old engine die.
    void throughTheNextFade() {
        for (const int before = reloadsFinished; reloadsFinished == before;)
            block();
        while (entries.alive > 1) {
            block();
            std::this_thread::yield();
        }
    }

    /// What the program holds of the heap with one engine, in bytes. The preparation waits for whatever an old
    /// one still has to do.
    std::size_t heldMemory() {
        manager->prepare(blockSize, sampleRate);
        return test::heapInUse();
    }

    /// Scenes and layouts in turn, so that every change is one.
    void switches(int count) {
        const auto scenes = orvane::kestrum::core::Scene::presets();
        for (int change = 0; change < count; ++change, ++switched) {
            if (switched % 2 == 0)
                product.chooseScene(scenes[(switched / 2 + 1) % scenes.size()].name);
            else
                product.chooseLayout(layoutNames[(switched / 2 + 1) % layoutNames.size()]);
            throughTheNextFade();
        }
    }

    Register entries;
    Product product;
    std::vector<std::string> layoutNames;
    std::size_t switched = 0;
    std::atomic<int> reloadsFinished{0};
    test::Channels bus = test::Channels(16, std::vector<float>(blockSize, 0.1f));
    std::vector<float*> pointers = test::channelPointers(bus);
    orvane::SampleBuffer view{pointers.data(), 16, blockSize};
    std::unique_ptr<orvane::EngineManager> manager;
};

TEST_F(EngineLife, EndsEveryOldEngineOnATaskOfItsOwn) {
    switches(64);
    EXPECT_EQ(entries.alive, 1);
    EXPECT_LE(entries.mostAlive, 2);
    ASSERT_EQ(entries.enders.size(), 64u);
    // The first engine was built by this thread, which then played; the others by the manager's task.
    EXPECT_THAT(entries.enders, Not(Contains(std::this_thread::get_id())));
    // That task may be held up for the length of a fade, since blocks are played faster here than in any session; then it is
    // the last to let go of an old engine.
    const auto byABuilder = std::ranges::count_if(entries.enders, [this](std::thread::id ender) {
        return std::ranges::find(entries.builders, ender) != entries.builders.end();
    });
    EXPECT_LT(byABuilder, 16);
}

/// Scenes and layouts come round after 64 switches: at the same place, the same memory is held, give or take
/// what the allocator keeps for its threads.
TEST_F(EngineLife, LeavesNoMemoryBehindOverAThousandSwitches) {
    switches(64);
    const std::size_t before = heldMemory();
    switches(1024);
    const auto grown = static_cast<std::int64_t>(heldMemory()) - static_cast<std::int64_t>(before);
    RecordProperty("bytes more after 1024 switches", std::to_string(grown));
    EXPECT_LT(grown, 65536) << "more than 64 bytes a switch";
}

} // namespace
