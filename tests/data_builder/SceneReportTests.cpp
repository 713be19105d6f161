// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/head/Grid.h"
#include "data/head/ResponseSet.h"
#include "data/measures/Loudness.h"
#include "data/measures/SceneMeasures.h"
#include "data/reports/FolderReport.h"
#include "data/reports/ReportPage.h"
#include "parameters/core/Scene.h"

#include "SyntheticFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <numbers>
#include <sstream>
#include <string>

namespace {

using namespace orvane::kestrum::tools;
using orvane::kestrum::core::Scene;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

FolderReportOptions quickOptions() {
    FolderReportOptions options;
    options.probe.seconds = 0.7; // the synthetic rooms' noise ends after half a second
    options.noiseLength = 32768;
    return options;
}

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

/// The part of a text from one mark up to the next end.
std::string between(const std::string& text, const std::string& from, const std::string& to) {
    const std::size_t start = text.find(from);
    return start == std::string::npos ? "" : text.substr(start, text.find(to, start) - start);
}

/// One report on all Scenes, made once for the tests that read it.
class Report : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder = std::make_unique<test::TemporaryFolder>();
        std::ostringstream out;
        writeFolderReport(test::syntheticFolder(), folder->path(), quickOptions(), out);
        told = out.str();
        page = contentOf(std::filesystem::path(folder->path()) / "index.html");
    }
    static void TearDownTestSuite() { folder.reset(); }

    static std::string overviewRow(std::string_view scene) {
        return between(page, ">" + std::string(scene) + "</a></td>", "</tr>");
    }
    static std::string sectionOf(const std::string& anchor) {
        return between(page, "<section id=\"" + anchor + "\">", "</section>");
    }

    static std::unique_ptr<test::TemporaryFolder> folder;
    static std::string page;
    static std::string told;
};

std::unique_ptr<test::TemporaryFolder> Report::folder;
std::string Report::page;
std::string Report::told;

TEST_F(Report, HasALinkARowAndASectionForEveryScene) {
    for (const Scene::Preset& preset : Scene::presets()) {
        const std::string name(preset.name);
        EXPECT_THAT(told, HasSubstr(name + ": "));
        EXPECT_THAT(between(page, "<nav>", "</nav>"), HasSubstr(">" + name + "</a>")) << name;
        EXPECT_THAT(overviewRow(name), Not(::testing::IsEmpty())) << name;
        EXPECT_THAT(page, HasSubstr("<h3>" + name + "</h3>"));
    }
    EXPECT_EQ(countOf(page, "<section id="), 16U + 4U) << "overview, head, methods, origin beside the Scenes";
}

/// Every figure of the overview is what the measures give, in the order of its columns.
TEST_F(Report, ShowsTheMeasuresInItsTable) {
    const FolderReportOptions options = quickOptions();
    const SceneProbe probe(test::syntheticFolder(), options.probe);
    for (const std::string_view scene : {"Mix Room", "Stadium", "Kitchen"}) {
        const SceneMeasures measures = measureScene(probe, scene);
        const std::string row = overviewRow(scene);
        const auto cell = [](const std::string& text, bool missed) {
            return std::string("<td class=\"number") + (missed ? " missed\">" : "\">") + text +
                   (missed ? " ✗" : "") + "</td>";
        };
        const auto goal = [](double value, int decimals) {
            return "<td class=\"number target\">" + fixedText(value, decimals) + "</td>";
        };
        ASSERT_TRUE(measures.target);
        EXPECT_THAT(row, HasSubstr(goal(measures.target->decaySeconds, 2) +
                                   cell(fixedText(measures.decaySeconds, 2), !decayWithin(measures)) +
                                   cell(fixedText(measures.reverbDecaySeconds, 2), false) +
                                   goal(measures.target->clarity50Db, 1) +
                                   cell(fixedText(measures.clarity50Db, 1), !clarityWithin(measures)) +
                                   cell(fixedText(measures.clarity80Db, 1), false) +
                                   goal(measures.target->directToRestDb, 1) +
                                   cell(fixedText(measures.directToRestDb, 1), false)));
        const ResponseSet head = readResponseSet(responseFiles[1], test::syntheticFolder());
        const CoherenceError error =
            coherenceError(measures.coherence, diffuseFieldCoherence(head.responses, gridWeights(), 48000));
        EXPECT_THAT(row, HasSubstr(cell(fixedText(error.low, 2), error.low > coherenceToleranceLow) +
                                   cell(fixedText(error.high, 2), error.high > coherenceToleranceHigh)));
    }
}

/// The synthetic rooms are independent noise at either ear, all with one decay: the marks have to say so.
TEST_F(Report, MarksWhatLiesOutsideItsTolerance) {
    EXPECT_THAT(page, HasSubstr("Outside a tolerance:"));
    EXPECT_THAT(overviewRow("Stadium"), HasSubstr("missed")) << "0.4 s instead of 2.2 s";
    EXPECT_THAT(sectionOf("stadium"), HasSubstr("Outside tolerance: T60, shape"));
    EXPECT_THAT(sectionOf("stadium"),
                AllOf(HasSubstr("T60 of the whole, s"), HasSubstr("T60 of the reverb alone, s")));
    EXPECT_THAT(between(page, "Outside a tolerance:", "</p>"),
                AllOf(HasSubstr("Stadium (T60, shape"), HasSubstr("The reverb alone misses the shape")));
    EXPECT_THAT(told, HasSubstr("Stadium: T60 of the whole "));
    EXPECT_THAT(overviewRow("Analytic Dry"), Not(HasSubstr("missed")));
}

TEST_F(Report, ShowsAllPicturesOfARoomAndNeedsNothingFromOutside) {
    EXPECT_EQ(countOf(sectionOf("mix-room"), "<img src=\"data:image/svg+xml;base64,"), 6U)
        << "waveform, spectrum, decay, T60, coherence, density";
    EXPECT_EQ(countOf(sectionOf("analytic-dry"), "<img "), 2U);
    EXPECT_EQ(countOf(sectionOf("overview"), "<img "), 2U) << "map and loudness";
    EXPECT_EQ(countOf(sectionOf("head"), "<img "), 5U);
    EXPECT_EQ(countOf(page, "<img "), countOf(page, "<img src=\"data:image/svg+xml;base64,"));
    EXPECT_THAT(page, AllOf(Not(HasSubstr("http")), Not(HasSubstr("<script")), Not(HasSubstr("<link"))));
    for (const std::string plot : {"mix-room.decay", "stadium.density", "van.waveform"})
        EXPECT_THAT(contentOf(std::filesystem::path(folder->path()) / "plots" / (plot + ".svg")),
                    HasSubstr("</svg>"));
}

TEST_F(Report, SaysAtItsTopAndInTheConsoleWhichFilesAreNotSound) {
    const std::string faults = between(page, "<div id=\"faults\">", "</div>");
    EXPECT_LT(page.find("id=\"faults\""), page.find("<nav>"));
    for (const std::string& text : {faults, told})
        EXPECT_THAT(text, AllOf(HasSubstr("OVNdata120.dat: it is missing"), HasSubstr("kestrum data hrir"),
                                HasSubstr("OVNdata512.dat: it is missing"), HasSubstr("kestrum data reverb"),
                                HasSubstr("about.json: it is missing"), Not(HasSubstr("OVNdata121.dat")),
                                Not(HasSubstr("OVNdata511.dat"))));
}

TEST(ReportOnAFolder, WithoutRoomsSaysSoAndShowsTheHead) {
    const test::TemporaryFolder data;
    const test::TemporaryFolder out;
    test::writeSyntheticHead(data.path());
    std::ostringstream told;
    writeFolderReport(data.path(), out.path(), quickOptions(), told);
    const std::string page = contentOf(out.file("index.html"));
    EXPECT_THAT(page, AllOf(HasSubstr("No rooms: "), HasSubstr("kestrum data reverb"),
                            HasSubstr("<section id=\"head\">"), Not(HasSubstr("<h3>Mix Room</h3>"))));
    EXPECT_EQ(countOf(page, "<img "), 5U);
    EXPECT_THAT(told.str(), HasSubstr("No rooms: "));
}

/// One number that is none, somewhere in the rooms: found before anything is rendered.
TEST(ReportOnAFolder, WithDamagedRoomsSaysWhatIsWrongAndShowsTheHead) {
    const test::TemporaryFolder data;
    const test::TemporaryFolder out;
    test::writeSyntheticHead(data.path());
    test::writeSyntheticRooms(data.path());
    {
        const float notANumber = std::numeric_limits<float>::quiet_NaN();
        std::fstream stream(data.file("OVNdata511.dat"), std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(2 + 60 * 4 + 100000 * 8); // mark, table, frames
        stream.write(reinterpret_cast<const char*>(&notANumber), sizeof notANumber);
    }
    std::ostringstream told;
    writeFolderReport(data.path(), out.path(), quickOptions(), told);
    const std::string page = contentOf(out.file("index.html"));
    for (const std::string& text : {page, told.str()})
        EXPECT_THAT(text,
                    AllOf(HasSubstr("No rooms: OVNdata511.dat: room "),
                          HasSubstr("holds samples that are no numbers"), HasSubstr("kestrum data reverb")));
    EXPECT_THAT(told.str(), Not(HasSubstr("Mix Room: ")));
    EXPECT_EQ(countOf(page, "<img "), 5U);
}

/// Puts another list of folders for programs in place as long as it lives.
class ProgramPath {
public:
    explicit ProgramPath(const std::string& path) : before(std::getenv("PATH")) {
        setenv("PATH", path.c_str(), 1);
    }
    ~ProgramPath() { setenv("PATH", before.c_str(), 1); }
    ProgramPath(const ProgramPath&) = delete;
    ProgramPath& operator=(const ProgramPath&) = delete;

private:
    std::string before;
};

/// @return the sentence that an action is refused with.
template <typename Action>
std::string refusal(Action action) {
    try {
        action();
    } catch (const DataError& error) {
        return error.what();
    }
    return "nothing refused";
}

TEST(ReportOnAFolder, IsRefusedWithARemedyWhereThereIsNothingToReadOrNoPlaceToWrite) {
    const test::TemporaryFolder empty;
    std::ostringstream told;
    EXPECT_THAT(refusal([&] { writeFolderReport(empty.path(), empty.file("out"), quickOptions(), told); }),
                AllOf(HasSubstr("holds no responses of a head"), HasSubstr("kestrum data hrir")));
    EXPECT_THAT(
        refusal([&] { writeFolderReport(test::syntheticFolder(), "/proc/none", quickOptions(), told); }),
        AllOf(HasSubstr("cannot be written"), HasSubstr("give a folder")));
}

TEST(Plots, TellAMissingGnuplotFromOneThatFails) {
    const test::TemporaryFolder out;
    const std::vector<Plot> plots{{"broken", "", "plot [inf:undefined] 1"}};
    EXPECT_THAT(
        refusal([&] { drawPlots(plots, out.path()); }),
        AllOf(HasSubstr("gnuplot failed"), HasSubstr(out.file("plots.gnuplot")), Not(HasSubstr("install"))));
    const ProgramPath nothing(out.path());
    EXPECT_THAT(refusal([&] { drawPlots(plots, out.path()); }), HasSubstr("install the package gnuplot-nox"));
}

TEST(ReportNumbers, AreRoundedWithATrueMinusAndNoNegativeNought) {
    EXPECT_EQ(fixedText(-4.96, 1), "−5.0");
    EXPECT_EQ(fixedText(-0.04, 1), "0.0");
    EXPECT_EQ(fixedText(0.275, 2), "0.28");
    EXPECT_EQ(shortest(20), "20");
    EXPECT_EQ(escaped("a<b & \"c\">"), "a&lt;b &amp; &quot;c&quot;&gt;");
}

/// Tolerances from the table: inside just at the bound, outside beyond it.
TEST(Tolerances, EndWhereTheyAreSaidToEnd) {
    SceneMeasures measures;
    EXPECT_FALSE(decayWithin(measures)) << "no target";
    measures.target = targetOf("Kitchen");
    for (const double share : {0.91, 1.09}) {
        measures.decaySeconds = 0.45 * share;
        EXPECT_TRUE(decayWithin(measures)) << share;
    }
    for (const double share : {0.89, 1.11}) {
        measures.decaySeconds = 0.45 * share;
        EXPECT_FALSE(decayWithin(measures)) << share;
    }
    for (const double off : {-1.5, 1.5, -1.6, 1.6}) {
        measures.clarity50Db = 8 + off;
        EXPECT_EQ(clarityWithin(measures), std::abs(off) <= 1.5) << off;
    }
    const std::vector<CoherenceBand> target{{315, 0.5, 0.5, 0}, {500, 0, 0, 0}, {12699, 0, 0, 0}};
    const std::vector<CoherenceBand> measured{
        {315, 0.58, 0.6, 9}, {500, -0.14, 0.2, 9}, {12699, 0.9, 0.9, 9}};
    const CoherenceError error = coherenceError(measured, target);
    EXPECT_NEAR(error.low, 0.08, 1e-12);
    EXPECT_NEAR(error.high, 0.14, 1e-12) << "the band above 8 kHz does not count";
    EXPECT_TRUE(error.within());
    EXPECT_FALSE((CoherenceError{0.11, 0}.within()));
    EXPECT_FALSE((CoherenceError{0, 0.16}.within()));
}

/// The shape's ranges are the tolerance, and a control room's bass may last longer.
TEST(Tolerances, OfTheShapeOfADecayAreItsRanges) {
    const auto decays = [](double bass, double treble, double top) {
        return OctaveDecays{{{bass, 30}, {1.1, 30}, {1, 30}, {1, 30}, {1, 30}, {treble, 30}, {top, 30}}};
    };
    const RoomTarget kitchen = *targetOf("Kitchen");
    EXPECT_TRUE(shapeWithin(decays(1.39, 0.86, 0.84), kitchen));
    EXPECT_FALSE(shapeWithin(decays(1.41, 0.9, 0.8), kitchen));
    EXPECT_FALSE(shapeWithin(decays(1.19, 0.9, 0.8), kitchen));
    EXPECT_FALSE(shapeWithin(decays(1.3, 0.84, 0.8), kitchen));
    EXPECT_FALSE(shapeWithin(decays(1.3, 0.9, 0.86), kitchen));
    EXPECT_FALSE(shapeWithin(decays(0, 0.9, 0.8), kitchen)) << "nothing measured";
    EXPECT_FALSE(shapeWithin(OctaveDecays{}, kitchen));
    for (const RoomTarget& target : roomTargets())
        EXPECT_EQ(shapeWithin(decays(1.49, 0.9, 0.8), target), target.scene.starts_with("Mix Room"))
            << target.scene;
}

/// A window that is centred on the goal still holds what came before it.
TEST(Tolerances, OfFullDensityAreHalfOfItsWindow) {
    SceneMeasures measures;
    measures.reverbDensity = {0.001, 0.02, {}, 0.031};
    EXPECT_FALSE(densityWithin(measures)) << "no target";
    measures.target = targetOf("Kitchen"); // 22 ms
    EXPECT_TRUE(densityWithin(measures));
    measures.reverbDensity.fullSeconds = 0.0325;
    EXPECT_FALSE(densityWithin(measures));
    measures.reverbDensity.fullSeconds = -1;
    EXPECT_FALSE(densityWithin(measures)) << "never full";
    EXPECT_EQ(densityWindowSeconds(measures.target), 0.02);
    EXPECT_EQ(densityWindowSeconds(targetOf("Van")), 0.005);
}

TEST(Targets, ExistForEverySceneWithReverbAndNoOther) {
    for (const Scene::Preset& preset : Scene::presets())
        EXPECT_EQ(targetOf(preset.name).has_value(), preset.reverbOn) << preset.name;
    EXPECT_EQ(roomTargets().size(), 14U);
    EXPECT_EQ(targetOf("Stadium")->decaySeconds, 2.2);
    EXPECT_EQ(targetOf("Kitchen")->directToRestDb, -3);
    EXPECT_EQ(targetOf("Home Theater")->clarity50Db, 12);
}

/// Known: ITU-R BS.1770 gives a full-scale sine of 997 Hz on one channel -3.01 LKFS, and pairs of channels add up.
TEST(Loudness, OfAFullScaleToneIsThatOfTheStandard) {
    Samples tone(3 * 48000);
    for (std::size_t index = 0; index < tone.size(); ++index)
        tone[index] = std::sin(2 * std::numbers::pi * 997 * static_cast<double>(index) / 48000);
    EXPECT_NEAR(integratedLoudness({tone, Samples(tone.size())}, 48000), -3.01, 0.05);
    EXPECT_NEAR(integratedLoudness({tone, tone}, 48000), 0, 0.05);
    EXPECT_LT(integratedLoudness({Samples(tone.size()), Samples(tone.size())}, 48000), -100);
}

/// By definition: equal power per octave, root mean square 1, nothing below 20 Hz.
TEST(PinkNoise, HasEqualPowerInEveryOctave) {
    constexpr std::size_t length = 65536;
    constexpr double sampleRate = 48000;
    const Samples noise = pinkNoise(length, sampleRate, 5);
    double square = 0;
    for (const double sample : noise)
        square += sample * sample / static_cast<double>(length);
    EXPECT_NEAR(square, 1, 1e-9);
    RealTransform transform(length);
    const Spectrum spectrum = transform.forward(noise);
    const auto octave = [&](double fromHz) {
        double power = 0;
        for (std::size_t bin = 0; bin < spectrum.size(); ++bin) {
            const double frequency = static_cast<double>(bin) * sampleRate / length;
            if (frequency >= fromHz && frequency < 2 * fromHz)
                power += std::norm(spectrum[bin]);
        }
        return 10 * std::log10(power);
    };
    for (const double fromHz : {100.0, 400.0, 1600.0, 6400.0})
        EXPECT_NEAR(octave(fromHz), octave(1000), 0.1) << fromHz;
    EXPECT_LT(octave(5), octave(1000) - 100);
    EXPECT_NE(pinkNoise(1024, sampleRate, 1), pinkNoise(1024, sampleRate, 2));
}

} // namespace
