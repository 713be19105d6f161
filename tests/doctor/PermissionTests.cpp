// SPDX-License-Identifier: GPL-3.0-or-later
// Asked by an ordinary user, from whom a closed folder hides whatever lies in it: root sees through everything.
#include "MadeUpSystem.h"

#include "headlink/ChildProcess.h"

#include <functional>

using namespace orvane::kestrum::doctor;
using orvane::kestrum::headlink::ChildResult;
using orvane::kestrum::headlink::inChildProcess;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace fs = std::filesystem;

namespace {

constexpr uid_t nobody = 65534;

class OrdinaryUser : public test::MadeUpSystem {
public:
    ~OrdinaryUser() override {
        if (!closed.empty())
            fs::permissions(closed, fs::perms(0755));
    }

protected:
    void close(const fs::path& path) {
        closed = path;
        fs::permissions(path, fs::perms(0000));
    }

    /// The first finding, sentence and remedy, as this user's doctor tells it.
    std::string finds(const std::function<Findings(const Places&)>& check) {
        const ChildResult result = inChildProcess(
            [&] {
                if (getuid() == 0 && (setgid(nobody) != 0 || setuid(nobody) != 0))
                    throw std::runtime_error("root cannot become somebody else");
                places.user = getuid();
                const Findings findings = check(places);
                return findings.empty() ? "nothing" : findings[0].text + "\n" + findings[0].remedy;
            },
            std::chrono::seconds(20));
        EXPECT_EQ(result.end, ChildResult::End::answered) << result.text;
        return result.text;
    }

    void expectClosed(const std::function<Findings(const Places&)>& check, const std::string& command) {
        const std::string found = finds(check);
        EXPECT_THAT(found, StartsWith("Not everybody may read \"" + closed.string() + "\".\n"));
        EXPECT_THAT(found, HasSubstr(command + shellWord(closed)));
    }

    fs::path closed;
};

TEST_F(OrdinaryUser, IsToldOfAClosedFolderAboveTheData) {
    write(places.data() / "OVNdata121.dat");
    close(places.product());
    expectClosed(checkData, "sudo chmod a+rx ");
}

TEST_F(OrdinaryUser, IsToldOfAClosedDataFolderBehindItsLink) {
    const fs::path set = places.below("/opt/Tenmarsh/OrvaneVSTPlugin/sets/mine");
    write(set / "OVNdata121.dat");
    fs::create_directory_symlink("sets/mine", places.data());
    close(set);
    expectClosed(checkData, "sudo chmod a+rx ");
}

TEST_F(OrdinaryUser, IsToldOfAClosedFileOfTheData) {
    write(places.data() / "OVNdata121.dat");
    close(places.data() / "OVNdata121.dat");
    expectClosed(checkData, "sudo chmod a+r ");
}

TEST_F(OrdinaryUser, IsToldOfAClosedFolderAboveTheManual) {
    write(places.manual());
    close(places.manual().parent_path());
    expectClosed(checkManual, "sudo chmod a+rx ");
}

TEST_F(OrdinaryUser, IsToldOfAClosedFolderInTheBundleAndOfOneAboveIt) {
    makeBundle(systemBundle(), REFUSING_MODULE);
    close(systemBundle() / "Contents");
    expectClosed(checkBundle, "sudo chmod a+rx ");
    fs::permissions(closed, fs::perms(0755));
    close(systemBundle().parent_path());
    expectClosed(checkBundle, "sudo chmod a+rx ");
}

TEST_F(OrdinaryUser, IsToldThatSomethingIsMissingWhereNothingIsClosed) {
    EXPECT_THAT(finds(checkData), HasSubstr("There is no folder"));
    EXPECT_THAT(finds(checkManual), HasSubstr("finds no manual"));
    EXPECT_THAT(finds(checkBundle), HasSubstr("is nowhere"));
}

} // namespace
