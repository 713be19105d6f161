// SPDX-License-Identifier: GPL-3.0-or-later
#include "Playing.h"

#include "TestDataFolder.h"
#include "data/TenmarshHrir.h"
#include "data/TenmarshHrirReader.h"

#include <cstdlib>
#include <iterator>
#include <thread>
#include <utility>

namespace test {

namespace fs = std::filesystem;

void DataFiles::mend() const {
    const fs::path whole = TestDataFolder::filled().path();
    for (const fs::path& file : {responses(), reverb()}) {
        fs::remove_all(file);
        fs::copy_file(whole / file.filename(), file);
    }
}

PlayingInstance::PlayingInstance(std::string dataFolder)
    : store(std::make_unique<orvane::TenmarshHrir>(std::make_unique<orvane::TenmarshHrirReader>())),
      processor(makeProcessor([path = std::move(dataFolder)] { return path; }, store.get())),
      noise(noiseBuffer(2, playedBlock, 1)) {
    chooseScene("Mix Room");
    setInputs(*processor, 2);
}

PlayingInstance::~PlayingInstance() = default;

PlayingInstance::Heard PlayingInstance::play(int blocks) {
    Heard heard;
    for (int block = 0; block < blocks; ++block) {
        juce::AudioBuffer<float> buffer(noise);
        process(*processor, buffer);
        heard.silent = heard.silent && isSilent(buffer);
        heard.finite = heard.finite && isFinite(buffer);
    }
    return heard;
}

Verdict firstBuild(PlayingInstance& instance, const std::function<void()>& beforeSecond) {
    instance.prepare();
    const auto first = instance.play(20);
    const bool refused = instance.hasError();
    if (refused != first.silent)
        return flagWithoutMute;
    if (!first.finite)
        return notFinite;
    beforeSecond();
    instance.prepare();
    const auto second = instance.play(20);
    if (instance.hasError() || second.silent)
        return didNotRecover;
    return !second.finite ? notFinite : refused ? refusedAndRecovered : playedThroughout;
}

Verdict rebuildOver(PlayingInstance& instance, const std::function<void()>& fault) {
    instance.prepare();
    if (instance.hasError() || instance.play(20).silent)
        return wrongSetUp;
    fault();
    // The task that rebuilds ends where a rebuild fails; a new engine brings a thread that waits for its fade to end.
    const int before = threadCount();
    instance.chooseScene("Kitchen");
    while (threadCount() == before)
        std::this_thread::yield(); // the process around this is watched for hanging
    const bool refused = threadCount() < before;
    for (int piece = 0; piece < 10; ++piece) {
        const auto heard = instance.play(10);
        if (heard.silent)
            return silentWithOldEngine;
        if (!heard.finite)
            return notFinite;
    }
    if (instance.hasError())
        return flagFromRebuild;
    return refused ? refusedAndRecovered : playedThroughout;
}

int threadCount() {
    return static_cast<int>(
        std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator()));
}

int countFromEnvironment(const char* name, int otherwise) {
    const char* const text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : otherwise;
}

} // namespace test
