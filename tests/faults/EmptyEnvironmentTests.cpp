// SPDX-License-Identifier: GPL-3.0-or-later
// The flag of an instance that finds nothing of what it needs, as the framework makes it for a host.
#include "TestProcessor.h"

#include "support/PrivateMounts.h"
#include "support/WatchedProcess.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace {

using How = test::WatchedEnd::How;

enum Result : int { flagThenSound, noFlag, soundUnderTheFlag, flagWithData, silenceWithData };

/// @param covered what is missing.
int prepareWithout(const char* covered) {
    clearenv();
    test::enterPrivateMounts();
    test::coverFolder("/dev");
    test::coverFolder(covered);
    test::makeDiskReadOnly();
    const std::unique_ptr<juce::AudioProcessor> made(createPluginFilter());
    auto& processor = dynamic_cast<orvane::kestrum::Processor&>(*made);
    const auto play = [&processor] {
        bool silent = true;
        processor.prepareToPlay(48000, 256);
        for (int block = 0; block < 50; ++block) {
            auto buffer = test::noiseBuffer(2, 256, 1);
            test::process(processor, buffer);
            silent = silent && test::isSilent(buffer);
        }
        return !silent;
    };
    const bool sounded = play();
    if (!processor.hasError())
        return noFlag;
    if (sounded)
        return soundUnderTheFlag;
    test::uncoverFolder(covered);
    const bool sounds = play();
    return processor.hasError() ? flagWithData : sounds ? flagThenSound : silenceWithData;
}

TEST(EmptyEnvironment, RaisesTheFlagUntilTheDataAppearsAndTheHostPreparesAgain) {
    const auto end = test::watch([] { return prepareWithout("/opt"); });
    EXPECT_EQ(end.how, How::returned);
    EXPECT_EQ(end.value, flagThenSound);
}

/// That it can fail: something else is missing.
TEST(EmptyEnvironment, RaisesNoFlagWhereTheDataIsThere) {
    EXPECT_EQ(test::watch([] { return prepareWithout("/home"); }).value, noFlag);
}

} // namespace
