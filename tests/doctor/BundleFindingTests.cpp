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
    EXPECT_THAT(checkBundle(places), ElementsAre(test::Found(Verdict::good, ", loads.")));
}
#endif

TEST_F(HostFindings, OneBundleWhereHostsLookIsGood) {
    makeBundle(places.home / ".vst3" / bundleName, REFUSING_MODULE);
    EXPECT_THAT(checkHostFolders(places), ElementsAre(test::Found(Verdict::good, ".vst3")));
}

TEST_F(HostFindings, TwoBundlesAreAWarningAndTheUsersOwnIsTheOneToRemove) {
    makeBundle(systemBundle(), REFUSING_MODULE);
    makeBundle(places.home / ".vst3" / bundleName, REFUSING_MODULE);
    EXPECT_THAT(checkHostFolders(places),
                ElementsAre(test::Found(Verdict::warning, "each host takes", "rm -r \"")));
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
