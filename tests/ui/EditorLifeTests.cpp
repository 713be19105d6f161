// SPDX-License-Identifier: GPL-3.0-or-later
// An editor that is opened and closed again and again while the plug-in plays and its audio thread writes parameters.
#include "HostThreads.h"
#include "OpenEditor.h"
#include "TestDataFolder.h"

#include "support/HeapInUse.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <vector>

namespace {

using test::AudioThread;
using test::OpenEditor;

/// 200, fewer where a sanitizer slows the program down; the variable KESTRUM_EDITOR_OPENINGS says otherwise.
int openings() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr int usual = 20;
#else
    constexpr int usual = 200;
#endif
    const char* const count = std::getenv("KESTRUM_EDITOR_OPENINGS");
    return count != nullptr ? std::atoi(count) : usual;
}

class EditorLife : public ::testing::Test {
protected:
    /// Opens and closes `count` editors while the audio thread plays and writes.
    ///
    /// @param leak bytes that each opening loses, for the test of the meter.
    void openAndClose(int count, std::size_t leak = 0) {
        processor->prepareToPlay(48000.0, AudioThread::longestBlock);
        AudioThread audio(*processor, AudioThread::Writes::parameters);
        for (int opening = 0; opening < count; ++opening) {
            OpenEditor editor(*processor);
            juce::MessageManager::getInstance()->runDispatchLoopUntil(opening % 2 == 0 ? 40 : 1);
            if (leak > 0)
                lost.push_back(std::make_unique<std::vector<char>>(leak));
        }
        audio.stop();
        EXPECT_EQ(audio.notFiniteBlocks(), 0u);
        EXPECT_GT(audio.blocks(), 0u);
    }

    /// The heap without what depends on the Scene and layout that were written last: no engine, no cached diagram.
    std::size_t heapAtRest() {
        processor->releaseResources();
        loop.runATick();
        juce::ImageCache::releaseUnusedImages();
        return test::heapInUse();
    }

    /// Bytes per opening that are still held afterwards.
    double growthPerOpening(int count, std::size_t leak = 0) {
        openAndClose(20); // whatever is made at first use
        const std::size_t before = heapAtRest();
        openAndClose(count, leak);
        const std::size_t after = heapAtRest();
        return (static_cast<double>(after) - static_cast<double>(before)) / count;
    }

    test::MessageLoop loop;
    std::unique_ptr<test::Processor> processor =
        test::makeProcessor([] { return test::TestDataFolder::filled().path(); });
    std::vector<std::unique_ptr<std::vector<char>>> lost;
};

constexpr double flat = 256.0; ///< Less than any presenter, view or widget takes.

TEST_F(EditorLife, TwoHundredOpeningsWhileTheAudioThreadWritesLeaveTheHeapFlat) {
    const int count = openings();
    const double growth = growthPerOpening(count);
    std::cout << "figure: " << count << " openings, heap " << growth << " bytes per opening\n";
    EXPECT_LT(growth, flat);
}

// Seeded fault: a kilobyte that each opening loses is seen.
TEST_F(EditorLife, ALeakOfOneKilobytePerOpeningWouldBeSeen) { EXPECT_GT(growthPerOpening(20, 1024), flat); }

} // namespace
