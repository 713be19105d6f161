// SPDX-License-Identifier: GPL-3.0-or-later
// A sound set is the machine's installed one, by links to its files; damage is done to copies.
#include "MadeUpSystem.h"

using namespace orvane::kestrum::doctor;
using ::testing::Contains;
using ::testing::ElementsAre;

namespace fs = std::filesystem;

namespace {

constexpr const char* installed = "/opt/Tenmarsh/OrvaneVSTPlugin/data";

class DataFindings : public test::MadeUpSystem {
protected:
    /// A set that is sound, below the made-up root.
    fs::path makeSet(const char* absolute) const {
        fs::path set = places.below(absolute);
        fs::create_directories(set);
        for (const auto& entry : fs::directory_iterator(installed))
            fs::create_symlink(fs::canonical(entry.path()), set / entry.path().filename());
        return set;
    }

    void use(const fs::path& set) const {
        fs::create_directories(places.product());
        fs::create_directory_symlink(set, places.data());
    }
};

TEST_F(DataFindings, AMissingFolderIsAFaultWhoseRemedyIsThePackage) {
    EXPECT_THAT(checkData(places),
                ElementsAre(test::Found(Verdict::fault, "There is no folder", "orvane-kestrum-data_*.deb")));
    installPackage("orvane-kestrum-data");
    EXPECT_THAT(checkData(places),
                ElementsAre(test::Found(Verdict::fault, "There is no folder",
                                        "sudo apt-get install --reinstall orvane-kestrum-data")));
}

TEST_F(DataFindings, ALinkToNowhereIsAFaultThatThePackagedSetMends) {
    use(folder.file("gone"));
    write(places.packagedSet() / "about.json");
    EXPECT_THAT(checkData(places),
                ElementsAre(test::Found(Verdict::fault, "which is not there",
                                        "sudo kestrum data use /usr/share/orvane-kestrum/sets/kemar")));
}

TEST_F(DataFindings, AnEmptyFolderIsAFaultForEachOfItsSevenFiles) {
    fs::create_directories(places.data());
    const Findings findings = checkData(places);
    EXPECT_EQ(findings.size(), 7);
    EXPECT_THAT(findings, Contains(test::Found(Verdict::fault, "OVNdata121.dat")));
    EXPECT_THAT(findings, Contains(test::Found(Verdict::fault, "OVNdata512.dat")));
    EXPECT_THAT(findings, Contains(test::Found(Verdict::fault, "about.json")));
}

TEST_F(DataFindings, AFileThatOthersMayNotReadIsAFaultWithItsCommand) {
    write(places.data() / "OVNdata121.dat");
    fs::permissions(places.data() / "OVNdata121.dat", fs::perms(0600));
    places.user = 12345;
    EXPECT_THAT(checkData(places),
                ElementsAre(test::Found(Verdict::fault, "Not everybody may read", "sudo chmod a+r ")));
}

TEST_F(DataFindings, AFolderThatOthersMayNotEnterIsToldOnce) {
    write(places.data() / "OVNdata120.dat");
    write(places.data() / "OVNdata121.dat");
    fs::permissions(places.data(), fs::perms(0700));
    places.user = 12345;
    EXPECT_THAT(checkData(places), ElementsAre(test::Found(Verdict::fault, "/data\"", "sudo chmod a+rx ")));
}

TEST_F(DataFindings, ASoundSetIsNamedWithItsOrigin) {
    if (!fs::exists(fs::path(installed) / "about.json"))
        GTEST_SKIP() << "No data is installed: run scripts/install-data.";
    use(makeSet("/opt/Tenmarsh/OrvaneVSTPlugin/sets/mine"));
    EXPECT_THAT(checkData(places), ElementsAre(test::Found(Verdict::good, "The set \"mine\", ")));
    EXPECT_THAT(checkData(places), ElementsAre(test::Found(Verdict::good, "made by kestrum 1.")));
}

TEST_F(DataFindings, ADamagedFileOfOnesOwnSetIsAFaultThatThePackagedSetMends) {
    if (!fs::exists(fs::path(installed) / "about.json"))
        GTEST_SKIP() << "No data is installed: run scripts/install-data.";
    write(places.packagedSet() / "about.json");
    const fs::path set = makeSet("/opt/Tenmarsh/OrvaneVSTPlugin/sets/mine");
    use(set);
    fs::remove(set / "OVNdata122.dat");
    write(set / "OVNdata122.dat", "RIFF and no more");
    EXPECT_THAT(checkData(places),
                ElementsAre(test::Found(Verdict::fault, "OVNdata122.dat: ",
                                        "sudo kestrum data use /usr/share/orvane-kestrum/sets/kemar")));
}

using ManualFindings = test::MadeUpSystem;

TEST_F(ManualFindings, AMissingManualIsANote) {
    EXPECT_THAT(checkManual(places),
                ElementsAre(test::Found(Verdict::note, "finds no manual", "orvane-kestrum-doc")));
}

TEST_F(ManualFindings, TheManualInItsPlaceIsGoodUnlessItIsClosed) {
    write(places.below("/usr/share/Lorimond/Orvane KESTRUM/Orvane KESTRUM Manual.pdf"));
    EXPECT_THAT(checkManual(places), ElementsAre(test::Found(Verdict::good, "finds the manual")));
    fs::permissions(places.manual(), fs::perms(0600));
    places.user = 12345;
    EXPECT_THAT(checkManual(places),
                ElementsAre(test::Found(Verdict::warning, "Not everybody may read", "sudo chmod a+r ")));
}

} // namespace
