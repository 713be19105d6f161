// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/DataError.h"
#include "data/sets/About.h"
#include "data/sets/SetCommands.h"
#include "data/sets/SetStore.h"

#include "CompleteFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <ostream>
#include <sstream>
#include <string>

namespace test {

/// A machine without any sets yet.
class SetStores : public ::testing::Test {
protected:
    using StagedSet = orvane::kestrum::tools::StagedSet;
    using SetStore = orvane::kestrum::tools::SetStore;
    using DataError = orvane::kestrum::tools::DataError;
    using Path = std::filesystem::path;

    /// A set that is only a folder with a text.
    Path publishText(const std::string& name, const std::string& text) const {
        StagedSet staged = store.stage();
        std::ofstream(staged.folder() / "about.json") << text;
        return store.publish(std::move(staged), name);
    }
    Path publishComplete(const std::string& name, const std::string& about = syntheticAbout()) const {
        StagedSet staged = store.stage();
        writeCompleteSet(staged.folder(), about);
        return store.publish(std::move(staged), name);
    }
    std::string linkText() const { return std::filesystem::read_symlink(store.link()).string(); }
    std::string told(const std::function<void(std::ostream&)>& work) const {
        std::ostringstream out;
        try {
            work(out);
        } catch (const DataError& error) {
            return std::string("refused: ") + error.what();
        }
        return out.str();
    }
    std::string use(const std::string& name) const {
        return told([&](std::ostream& out) { orvane::kestrum::tools::runUse(name, store, out); });
    }
    std::string list() const {
        return told([&](std::ostream& out) { orvane::kestrum::tools::runList(store, out); });
    }

    TemporaryFolder folder;
    const SetStore store{folder.file("root"), folder.file("packages")};
};

/// about.json of a set in which a user's own room stands in for room 19.
inline std::string aboutWithARoomOfOnesOwn() {
    const TemporaryFolder folder;
    orvane::kestrum::tools::writeAbout(syntheticAbout(), folder.path());
    return orvane::kestrum::tools::aboutWithOwnRoom(folder.path(), 19, {{"scene", "a church"}});
}

} // namespace test
