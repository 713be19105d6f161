// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/DoctorCommand.h"

#include "MadeUpSystem.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iterator>
#include <sstream>

using namespace orvane::kestrum::doctor;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

const Findings samples{{"bundle", Verdict::good, "It loads.", {}},
                       {"hosts", Verdict::warning, "There are two.", "rm -r one"},
                       {"data", Verdict::fault, "A file is \xff missing.", "sudo mend"},
                       {"sound", Verdict::note, "No card.", {}}};

class DoctorCommand : public test::MadeUpSystem {
protected:
    /// What the program would print, and the sentence that it fails with.
    std::string run(const std::string& arguments) {
        std::ostringstream out;
        CLI::App program("", "kestrum");
        addDoctorCommand(program, out);
        try {
            program.parse(arguments);
        } catch (const CLI::CallForHelp& help) {
            program.exit(help, out, out);
        } catch (const std::runtime_error& error) {
            out << "refused: " << error.what();
        }
        return out.str();
    }
};

TEST(DoctorOutput, ShowsEachRemedyBelowItsFinding) {
    std::ostringstream out;
    tell(samples, false, out);
    EXPECT_THAT(out.str(), AllOf(HasSubstr("good     bundle: It loads.\n"),
                                 HasSubstr("WARNING  hosts: There are two.\n           rm -r one\n"),
                                 HasSubstr("FAULT    data: "), HasSubstr("note     sound: No card.\n")));
}

TEST(DoctorOutput, LetsNoNameSteerTheTerminal) {
    std::ostringstream out;
    tell({{"tracker", Verdict::good, "From \033]0;title\a.", {}}}, false, out);
    EXPECT_THAT(out.str(), HasSubstr("From ?]0;title?.\n"));
}

TEST(DoctorOutput, CanBeReadByPrograms) {
    std::ostringstream out;
    tell(samples, true, out);
    const auto json = nlohmann::json::parse(out.str()); // bytes that are no text do no harm
    EXPECT_EQ(json["faults"], 1);
    EXPECT_EQ(json["warnings"], 1);
    ASSERT_EQ(json["findings"].size(), 4);
    EXPECT_EQ(json["findings"][1]["verdict"], "warning");
    EXPECT_EQ(json["findings"][1]["remedy"], "rm -r one");
}

TEST(DoctorOutput, FailsForFaultsAlone) {
    EXPECT_THROW(requireNoFault(samples), std::runtime_error);
    EXPECT_NO_THROW(requireNoFault({samples[0], samples[1], samples[3]}));
}

TEST_F(DoctorCommand, LooksAtAnotherSystemBelowAFolder) {
    EXPECT_THAT(run("doctor --root " + places.root.string()),
                AllOf(HasSubstr("FAULT    bundle: "), HasSubstr("FAULT    data: "),
                      HasSubstr("refused: 2 faults were found: mend them in that system")));
}

// A command for this machine would mend, or break, the wrong one.
TEST_F(DoctorCommand, GivesNoCommandsForAnotherSystem) {
    write(places.root / "usr/lib/vst3" / bundleName / "Contents/other-linux/Orvane KESTRUM.so");
    const std::string plain = run("doctor --root " + places.root.string());
    EXPECT_THAT(plain, ::testing::Not(HasSubstr("sudo")));
    EXPECT_THAT(plain, HasSubstr("holds no binary for this machine"));
}

TEST_F(DoctorCommand, RefusesARootThatIsNoFolder) {
    EXPECT_THAT(run("doctor --root /none"), HasSubstr("is no folder"));
}

TEST_F(DoctorCommand, IsDocumentedAsItsHelpTellsIt) {
    std::ifstream file(std::filesystem::path(KESTRUM_DOCS) / "tools" / "kestrum-doctor.md");
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    const std::string help = run("doctor --help");
    ASSERT_THAT(help, HasSubstr("Usage: kestrum doctor"));
    EXPECT_THAT(page, HasSubstr("```text\n" + help + "```"));
}

} // namespace
