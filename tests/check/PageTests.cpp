// SPDX-License-Identifier: GPL-3.0-or-later
// What a browser makes of the page is tested in one; here is what the file holds.
#include "check/Page.h"

#include "CheckSupport.h"
#include "check/PageFiles.h"
#include "check/Spectrum.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {

using namespace orvane::kestrum::check;
using ::testing::HasSubstr;
using ::testing::Not;

class Page : public ::test::FolderTest {
protected:
    Page() {
        content.mix = {folder / "mix.wav", 6, 48000, 96000};
        content.layout = "5.1 ITU";
        content.timelineSeconds = 2.5;
        content.loudness = -23;
        for (const char* const name : {"Mix Room", "Plain downmix"}) {
            PageTrack track{name,   name, "Mix",       std::string("matched/") + name + ".flac",
                            6.0206, {},   {"T2dnUw=="}};
            track.measures.loudness = -29.0206;
            track.measures.spectrumDb.assign(bandCentresHz().size(), -60);
            track.measures.highest.assign(waveformColumns, 0.25f);
            track.measures.lowest.assign(waveformColumns, -0.125f);
            content.tracks.push_back(track);
        }
        content.tracks[1].windows.emplace_back("c2Vjb25k");
    }

    std::string written() const {
        writePage(content, folder / "index.html");
        return ::test::readText(folder / "index.html");
    }

    static nlohmann::json factsIn(const std::string& page) {
        const std::string open = "id=\"facts\">";
        const auto begin = page.find(open) + open.size();
        return nlohmann::json::parse(page.substr(begin, page.find("</script>", begin) - begin));
    }

    PageContent content;
};

TEST_F(Page, HasEverythingInsideAndNoPlaceLeftOpen) {
    const std::string page = written();
    EXPECT_THAT(page, Not(HasSubstr("{{")));
    EXPECT_THAT(page, Not(HasSubstr("http")));
    for (const char* const file : {"page.css", "player.js", "plots.js", "page.js"})
        EXPECT_THAT(page, HasSubstr(std::string(pageFile(file)))) << file;
    EXPECT_THAT(page, HasSubstr("font-weight:500;src:url(data:font/ttf;base64,"));
}

TEST_F(Page, HoldsTheSoundWindowByWindow) {
    const std::string page = written();
    const auto first = page.find("id=\"sound-0-0\">T2dnUw==</script>");
    const auto second = page.find("id=\"sound-1-0\">T2dnUw==</script>");
    const auto third = page.find("id=\"sound-1-1\">c2Vjb25k</script>");
    ASSERT_NE(third, std::string::npos);
    EXPECT_LT(first, second);
    EXPECT_LT(second, third);
    EXPECT_THAT(page, Not(HasSubstr("sound-0-1")));
}

/// A gain of 6.0206 dB is a factor of 2.
TEST_F(Page, TellsLevelsAsMatchedAndLoudnessAsRendered) {
    const auto facts = factsIn(written());
    EXPECT_EQ(facts["layout"], "5.1 ITU");
    EXPECT_EQ(facts["mixSeconds"], 2.0);
    const auto& track = facts["tracks"][0];
    EXPECT_EQ(track["loudness"], -29.02);
    EXPECT_EQ(track["gainDb"], 6.02);
    EXPECT_EQ(track["highest"][0], 0.5);
    EXPECT_EQ(track["lowest"][0], -0.25);
    EXPECT_EQ(track["spectrumDb"][0], -53.98);
    EXPECT_EQ(facts["tracks"][1]["windowCount"], 2);
    EXPECT_EQ(facts["downmix"].size(), 6u);
    EXPECT_EQ(facts["downmix"][3].dump(), "[\"LFE\",0.0,0.0]");
    EXPECT_EQ(facts["downmix"][4].dump(), "[\"Ls\",0.7071,0.0]");
}

TEST_F(Page, BearsAnyNameThatAFileCanHave) {
    content.mix.path = folder / "</script><b>\"\\ \xff.wav";
    const std::string page = written();
    EXPECT_THAT(page, Not(HasSubstr("</script><b>")));
    EXPECT_THAT(factsIn(page)["mix"].get<std::string>(), HasSubstr("<b>\"\\ "));
}

TEST_F(Page, KnowsItsOwnKind) {
    written();
    EXPECT_TRUE(isPage(folder / "index.html"));
    ::test::writeText(folder / "other.html", "<html>My holiday</html>");
    EXPECT_FALSE(isPage(folder / "other.html"));
    EXPECT_FALSE(isPage(folder / "none.html"));
}

TEST_F(Page, ThatCannotBeWrittenIsRefused) {
    std::filesystem::create_directories(folder / "index.html" / "in the way");
    EXPECT_THAT(::test::refusalOf([&] { writePage(content, folder / "index.html"); }),
                HasSubstr("index.html\" cannot be written"));
}

} // namespace
