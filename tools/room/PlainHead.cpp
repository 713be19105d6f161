// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/PlainHead.h"

#include "data/DataError.h"
#include "data/head/ResponseSet.h"
#include "data/headphones/HeadphoneFold.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"

#include <string>

namespace orvane::kestrum::tools {

namespace {

bool soundHead(const std::filesystem::path& folder) {
    return checkResponseFile(responseFiles[1], folder).sound; // of 48000 Hz, for which rooms are made
}

} // namespace

PlainHead plainHeadOf(const std::filesystem::path& data, const SetStore& store) {
    const std::optional<Headphones> headphones = headphonesIn(data);
    if (!headphones)
        return {data, std::nullopt};
    const std::string about = aboutOfHead(data);
    for (const InstalledSet& set : store.sets())
        if (!aboutHeadphones(set.folder) && aboutOfHead(set.folder) == about && soundHead(set.folder))
            return {set.folder, headphones};
    throw DataError(
        "The head in \"" + data.string() +
        "\" has headphones folded in, and rooms are made for the head without them, which no set of "
        "this machine holds: make one of the same measurement with \"kestrum data hrir --sofa FILE "
        "--name NAME\".");
}

} // namespace orvane::kestrum::tools
