// SPDX-License-Identifier: GPL-3.0-or-later
#include "MadeUpSystem.h"

using namespace orvane::kestrum::doctor;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using BundleFindings = test::MadeUpSystem;
using HostFindings = test::MadeUpSystem;

TEST_F(BundleFindings, NoBundleAnywhereIsAFault) {
    EXPECT_THAT(checkBundle(places),
                ElementsAre(test::Found(Verdict::fault, "is nowhere", "orvane-kestrum_*.deb")));
    installPackage("orvane-kestrum");
    EXPECT_THAT(checkBundle(places),
                ElementsAre(test::Found(Verdict::fault, "is nowhere",
                                        "sudo apt-get install --reinstall orvane-kestrum")));
}

TEST_F(BundleFindings, AnInstallationFromTheTarBallIsMendedByIt) {
    write(places.below("/usr/local/share/orvane-kestrum/installed-files"));
    EXPECT_THAT(checkBundle(places),
                ElementsAre(test::Found(Verdict::fault, "is nowhere", "sudo ./install.sh")));
}

TEST_F(BundleFindings, ABundleForAnotherMachineIsAFault) {
    write(systemBundle() / "Contents" / "other-linux" / "Orvane KESTRUM.so");
    EXPECT_THAT(checkBundle(places),
                ElementsAre(test::Found(Verdict::fault, "holds no binary for this machine")));
}

TEST_F(BundleFindings, AFileThatIsNoModuleIsAFaultWithTheLoadersReason) {
    write(orvane::kestrum::host::Module::binaryOf(systemBundle()), "no module");
    EXPECT_THAT(checkBundle(places), ElementsAre(test::Found(Verdict::fault, "cannot be loaded: ")));
}

TEST_F(BundleFindings, ALibraryWithoutTheEntryPointsIsAFault) {
    makeBundle(systemBundle(), REFUSING_MODULE);
    EXPECT_THAT(checkBundle(places), ElementsAre(test::Found(Verdict::fault, "cannot be loaded: ")));
}

TEST_F(BundleFindings, AModuleThatCrashesIsAFaultAndTheDoctorLives) {
    makeBundle(systemBundle(), CRASHING_MODULE);
    EXPECT_THAT(checkBundle(places), ElementsAre(test::Found(Verdict::fault, "crashes when it is loaded")));
}

TEST_F(BundleFindings, AFolderThatOthersMayNotEnterIsAFaultWithItsCommand) {
    makeBundle(systemBundle(), REFUSING_MODULE);
    std::filesystem::permissions(systemBundle() / "Contents", std::filesystem::perms(0700));
    places.user = 12345;
    EXPECT_THAT(checkBundle(places),
                ElementsAre(test::Found(Verdict::fault, "Not everybody may read", "sudo chmod a+rx ")));
}

#ifdef KESTRUM_BUNDLE
TEST_F(BundleFindings, TheBuiltBundleLoads) {
    std::filesystem::create_directories(systemBundle().parent_path());
    std::filesystem::create_directory_symlink(KESTRUM_BUNDLE, systemBundle());
    if (!std::filesystem::exists("/opt/Tenmarsh/OrvaneVSTPlugin/data/about.json"))
        GTEST_SKIP() << "No data is installed: run scripts/install-data.";
    EXPECT_THAT(checkBundle(places), ElementsAre(test::Found(Verdict::good, ", loads and renders.")));
}
#endif

TEST_F(BundleFindings, ABundleOfAnotherSystemIsLookedAtAndNotLoaded) {
    makeBundle(systemBundle(), CRASHING_MODULE);
    places.foreign = true;
    EXPECT_THAT(checkBundle(places),
                ElementsAre(test::Found(Verdict::good, "another system's is not loaded")));
}

TEST_F(HostFindings, OneBundleWhereHostsLookIsGood) {
    makeBundle(places.home / ".vst3" / bundleName, REFUSING_MODULE);
    EXPECT_THAT(checkHostFolders(places), ElementsAre(test::Found(Verdict::good, ".vst3")));
}

class TwoBundles : public test::MadeUpSystem {
protected:
    void makeBoth(const std::string& ownVersion, const std::string& systemVersion) const {
        makeVersion(own, ownVersion);
        makeVersion(systemBundle(), systemVersion);
    }
    static void makeVersion(const std::filesystem::path& bundle, const std::string& version) {
        makeBundle(bundle, REFUSING_MODULE);
        write(bundle / "Contents" / "Resources" / "moduleinfo.json",
              "{\n  \"Name\": \"Orvane KESTRUM\",\n  \"Version\": \"" + version + "\"\n}\n");
    }

    const std::filesystem::path own = places.home / ".vst3" / bundleName;
};

TEST_F(TwoBundles, AreNamedWithTheirVersionsAndTheOlderIsTheOneToRemove) {
    makeBoth("1.7.0", "1.10.0");
    EXPECT_THAT(checkHostFolders(places), ElementsAre(test::Found(Verdict::warning, "(version 1.7.0) and ",
                                                                  "rm -r \"" + own.string())));
    makeBoth("1.10.0", "1.7.0");
    EXPECT_THAT(checkHostFolders(places),
                ElementsAre(test::Found(Verdict::warning, "(version 1.10.0) and ",
                                        "sudo rm -r \"" + systemBundle().string())));
    installPackage("orvane-kestrum");
    EXPECT_THAT(checkHostFolders(places),
                ElementsAre(test::Found(Verdict::warning, "(version 1.7.0), and each host takes",
                                        "sudo apt-get remove orvane-kestrum")));
}

TEST_F(TwoBundles, OfUnknownVersionsAreLeftToTheUser) {
    makeBundle(systemBundle(), REFUSING_MODULE);
    makeVersion(own, "1.7.0");
    EXPECT_THAT(checkHostFolders(places),
                ElementsAre(test::Found(Verdict::warning, "(version unknown)", "# remove the bundle")));
}

TEST_F(TwoBundles, WithDamagedDescriptionsAreOfUnknownVersions) {
    for (const std::string damaged : {"1.7.0\n", "1.7.0\"", "1; reboot", "\", 1"}) {
        makeBoth("1.7.0", damaged);
        EXPECT_THAT(checkHostFolders(places),
                    ElementsAre(test::Found(Verdict::warning, "(version unknown)", "# remove the bundle")))
            << damaged;
    }
}

TEST_F(HostFindings, ABundleBesideTheProgramAloneIsAWarningWithTheCopyingCommand) {
    places.program = folder.path();
    makeBundle(places.program / bundleName, REFUSING_MODULE);
    EXPECT_THAT(checkHostFolders(places),
                ElementsAre(test::Found(Verdict::warning, "No host finds", "mkdir -p ~/.vst3 && cp -r ")));
}

TEST_F(HostFindings, NoBundleAtAllIsLeftToTheBundlesOwnFinding) {
    EXPECT_THAT(checkHostFolders(places), IsEmpty());
}

} // namespace
