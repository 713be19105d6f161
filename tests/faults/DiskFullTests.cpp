// SPDX-License-Identifier: GPL-3.0-or-later
// The disk becomes full while a set of data is made: its maker refuses in one sentence, and instances find what they found
// before. Each on a file system of its own size, in a process of its own.
#include "Playing.h"

#include "CompleteFolder.h"
#include "data/DataError.h"
#include "data/sets/SetStore.h"

#include "support/PrivateMounts.h"
#include "support/ScratchFolder.h"
#include "support/WatchedProcess.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace {

namespace fs = std::filesystem;
namespace tools = orvane::kestrum::tools;
using How = test::WatchedEnd::How;

enum Result : int { asBefore, diskWasLargeEnough, noSentence, linkChanged, halfASetLeft, instanceDiffers };

void make(const tools::SetStore& store, const std::string& name) {
    tools::StagedSet staged = store.stage();
    test::writeCompleteSet(staged.folder(), test::syntheticAbout());
    store.publish(std::move(staged), name);
    store.use(store.find(name));
}

std::uintmax_t sizeOfASet() {
    const test::ScratchFolder scratch;
    test::writeCompleteSet(scratch.path, test::syntheticAbout());
    std::uintmax_t size = 0;
    for (const auto& entry : fs::directory_iterator(scratch.path))
        size += entry.file_size();
    return size;
}

bool isSentenceAboutTheDisk(const std::string& text) {
    return text.find("cannot be written") != std::string::npos &&
           text.find("room for") != std::string::npos && text.ends_with('.') &&
           text.find('\n') == std::string::npos;
}

/// Makes one set after another until the disk is full.
/// @param wholeSets that fit on it.
int fillDisk(const fs::path& root, std::uintmax_t size, int wholeSets) {
    test::enterPrivateMounts();
    test::coverFolder(root, "size=" + std::to_string(size));
    const tools::SetStore store(root, root / "packaged");
    if (wholeSets > 0)
        make(store, "former");
    const auto linkBefore = store.linked();
    test::PlayingInstance instance(store.link());
    instance.prepare();
    const bool silentBefore = instance.play(20).silent;
    std::string sentence;
    try {
        make(store, "next");
        return diskWasLargeEnough;
    } catch (const tools::DataError& error) {
        sentence = error.what();
    }
    if (!isSentenceAboutTheDisk(sentence))
        return noSentence;
    if (store.linked() != linkBefore)
        return linkChanged;
    if (store.sets().size() != static_cast<std::size_t>(wholeSets))
        return halfASetLeft;
    test::PlayingInstance next(store.link());
    for (test::PlayingInstance* const any : {&instance, &next}) {
        any->prepare();
        const auto heard = any->play(20);
        const bool missing = wholeSets == 0;
        if (heard.silent != missing || any->hasError() != missing || heard.silent != silentBefore ||
            !heard.finite)
            return instanceDiffers;
    }
    return asBefore;
}

class DiskFull : public ::testing::Test {
protected:
    int fill(double sets, int wholeSets) {
        const auto end = test::watch([&] {
            return fillDisk(scratch.path, static_cast<std::uintmax_t>(sets * static_cast<double>(size)),
                            wholeSets);
        });
        EXPECT_EQ(end.how, How::returned) << sets;
        return end.value;
    }

    test::ScratchFolder scratch;
    std::uintmax_t size = sizeOfASet();
};

TEST_F(DiskFull, BeforeTheFirstSetLeavesInstancesMutedAndFlagged) {
    for (const double sets : {0.02, 0.1, 0.3, 0.6, 0.95})
        EXPECT_EQ(fill(sets, 0), asBefore) << sets;
}

TEST_F(DiskFull, BesideAFormerSetLeavesThatOnePlaying) {
    for (const double sets : {1.05, 1.3, 1.6, 1.95})
        EXPECT_EQ(fill(sets, 1), asBefore) << sets;
}

/// That it can fail.
TEST_F(DiskFull, IsNotTakenForFullWhereThereIsRoom) { EXPECT_EQ(fill(1.2, 0), diskWasLargeEnough); }

} // namespace
