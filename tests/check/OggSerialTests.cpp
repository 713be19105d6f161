// SPDX-License-Identifier: GPL-3.0-or-later
// The sound library is the judge: it drops every page whose checksum does not fit.
#include "check/OggSerial.h"

#include "CheckSupport.h"
#include "check/SoundWindows.h"

namespace {

using namespace orvane::kestrum::check;

class OggSerial : public ::test::FolderTest {
protected:
    static std::vector<float> noise() {
        std::vector<float> stereo(2 * 48000);
        for (std::size_t index = 0; index < stereo.size(); ++index)
            stereo[index] = static_cast<float>(index * 7919 % 2003) / 10000.0f - 0.1f;
        return stereo;
    }

    std::vector<std::vector<float>> decoded(const std::string& stream) const {
        ::test::writeText(folder / "sound.opus", stream);
        return ::test::readSound(folder / "sound.opus");
    }
};

TEST_F(OggSerial, StandsInTheStreamAndLeavesTheSoundAsItWas) {
    const std::string before = encodeOpus(noise());
    std::string after = before;
    setOggSerial(after, 0x64636261);
    EXPECT_EQ(after.substr(14, 4), "abcd");
    EXPECT_EQ(after.size(), before.size());
    EXPECT_EQ(decoded(after), decoded(before));
}

TEST_F(OggSerial, MakesEqualSoundEqualBytes) { EXPECT_TRUE(encodeOpus(noise()) == encodeOpus(noise())); }

TEST_F(OggSerial, LeavesAloneWhatIsNoOggPage) {
    for (const std::string text : {"", "OggS", "something else, and rather longer than the head of a page"}) {
        std::string same = text;
        setOggSerial(same, 1);
        EXPECT_EQ(same, text);
    }
    std::string cut = encodeOpus(noise()).substr(0, 40); // a head that promises more than there is
    const std::string before = cut;
    setOggSerial(cut, 7);
    EXPECT_EQ(cut, before);
}

} // namespace
