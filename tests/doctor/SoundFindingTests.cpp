// SPDX-License-Identifier: GPL-3.0-or-later
// The kernel's files as a real machine shows them.
#include "MadeUpSystem.h"

using namespace orvane::kestrum::doctor;
using ::testing::ElementsAre;

namespace {

class SoundFindings : public test::MadeUpSystem {
protected:
    SoundFindings() { places.foreign = true; } // this machine's PipeWire has no say in them

    void play(const char* stream, const std::string& rate) const {
        write(places.below("/proc/asound/cards"), " 0 [PCH            ]: HDA-Intel - HDA Intel PCH\n");
        write(places.below("/proc/asound") / stream / "sub0/hw_params",
              "access: MMAP_INTERLEAVED\nformat: S32_LE\nsubformat: STD\nchannels: 2\nrate: " + rate + " (" +
                  rate + "/1)\nperiod_size: 1024\nbuffer_size: 32768\n");
    }
};

TEST_F(SoundFindings, NoCardIsANote) {
    EXPECT_THAT(checkSound(places), ElementsAre(test::Found(Verdict::note, "There is no sound card")));
    write(places.below("/proc/asound/cards"), "--- no soundcards ---\n");
    EXPECT_THAT(checkSound(places), ElementsAre(test::Found(Verdict::note, "There is no sound card")));
}

TEST_F(SoundFindings, AClosedOutputIsANote) {
    play("card0/pcm0p", "48000");
    write(places.below("/proc/asound/card0/pcm0p/sub0/hw_params"), "closed\n");
    EXPECT_THAT(checkSound(places),
                ElementsAre(test::Found(Verdict::note, "No output of a sound card is open")));
}

TEST_F(SoundFindings, AServedRateIsGoodAndAnotherIsAFault) {
    play("card0/pcm0p", "96000");
    EXPECT_THAT(checkSound(places), ElementsAre(test::Found(Verdict::good, "runs at 96000 Hz")));
    play("card1/pcm3p", "32000");
    EXPECT_THAT(checkSound(places),
                ElementsAre(test::Found(Verdict::fault, "runs at 32000 Hz, where the plug-in is muted",
                                        "choose 48000 Hz"),
                            test::Found(Verdict::good, "runs at 96000 Hz")));
}

TEST_F(SoundFindings, InputsDoNotCount) {
    play("card0/pcm0c", "32000");
    EXPECT_THAT(checkSound(places),
                ElementsAre(test::Found(Verdict::note, "No output of a sound card is open")));
}

} // namespace
