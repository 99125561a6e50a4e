#include "support/PlayerRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

using namespace pulsara;
using pulsara::test::PlayerRig;
using pulsara::test::soundingFrames;

namespace {

// A rig looping pattern 0 from its start, with a click on every step of row 0.
struct LoopingRig : PlayerRig {
    using PlayerRig::PlayerRig;
    LoopingRig& clickEveryStep()
    {
        useClick(0);
        for (uint32_t step = 0; step < player.pattern(0).length(); ++step)
            player.pattern(0).setCell(0, step, kDefaultNote);
        return *this;
    }
    LoopingRig& start()
    {
        player.setMode(0);
        player.seek(0);
        player.start();
        return *this;
    }
};

} // namespace

TEST(PatternPlayer, FramesPerStepIsComputedInSinglePrecisionAtATempoOfAtLeastOne)
{
    PlayerRig rig;
    EXPECT_EQ(rig.player.framesPerStep(), static_cast<double>(4409.9995f));
    EXPECT_EQ(rig.player.framesPerPass(), 70559u);
    rig.player.setBeatsPerPattern(8);
    EXPECT_EQ(rig.player.framesPerStep(), static_cast<double>(8819.999f));
    for (float tempo : { 0.5f, std::nanf("") }) {
        rig.player.setTempo(tempo);
        EXPECT_EQ(rig.player.tempo(), 1.0f);
    }
}

TEST(PatternPlayerDeathTest, FramesPerStepWithoutAFormatIsFatal)
{
    PatternPlayer player;
    EXPECT_EXIT(player.framesPerStep(), ::testing::ExitedWithCode(255), "SS: no format defined");
}

// Every step triggers exactly once at trunc(step * framesPerStep), whatever the block sizes:
// blocks that end exactly on a step, on a pass end, mid-step, and blocks longer than a pass;
// and with fractional as with whole frames per step.
TEST(PatternPlayer, EveryStepTriggersOnceAtItsStartFrame)
{
    const std::tuple<uint32_t, float, uint32_t, std::vector<uint32_t>> cases[] = {
        { 44100, 150.0f, 4, { 8800 } },
        { 44100, 150.0f, 4, { 4410, 4409, 1, 333 } },
        { 44100, 150.0f, 4, { 70559 } }, // exactly one pass per block
        { 44100, 173.0f, 4, { 64, 1000, 7, 3000 } },
        { 22050, 300.0f, 1, { 8800, 13 } }, // a block spans several passes
        { 48000, 61.0f, 3, { 2047 } },
        { 22050, 120.0f, 16, { 1234 } }, // a whole 11025 frames per step
    };
    for (const auto& [rate, tempo, beats, blocks] : cases) {
        SCOPED_TRACE(::testing::Message() << rate << " Hz, tempo " << tempo << ", block " << blocks[0]);
        LoopingRig rig(rate, 1, tempo);
        rig.player.setBeatsPerPattern(beats);
        rig.clickEveryStep().start();
        double framesPerStep = rig.player.framesPerStep();
        auto pass = static_cast<uint64_t>(16 * framesPerStep);
        std::vector<uint64_t> starts;
        for (uint64_t k = 0; k < 3; ++k) {
            for (uint32_t step = 0; step < 16; ++step)
                starts.push_back(k * pass + static_cast<uint64_t>(step * framesPerStep));
        }
        EXPECT_EQ(soundingFrames(rig.render(3 * pass, blocks)), starts);
    }
}

// A step sounds at its volume times the master and instrument volumes; a live note at the master
// and instrument volumes, once, from the next block, whether or not the song plays.
TEST(PatternPlayer, NotesAreScaledByMasterAndInstrumentVolumeAndALiveNotePlaysOnceAtTheNextBlock)
{
    LoopingRig rig;
    rig.useClick(5, 1.0f);
    rig.instruments[5].setVolume(0.5f);
    rig.player.setVolume(0.7f);
    rig.player.pattern(0).setCell(5, 0, { 0.25f, 1.0f, 0 });
    EXPECT_EQ(rig.start().render(64, { 64 })[0], 0.25f * 0.7f * 0.5f);
    rig.player.stop();
    rig.player.triggerLive(5);
    EXPECT_EQ(rig.player.soloTrack(), 5);
    std::vector<float> out = rig.render(256, { 256 });
    EXPECT_EQ(soundingFrames(out), std::vector<uint64_t> { 0 });
    EXPECT_EQ(out[0], 0.7f * 0.5f);
    EXPECT_TRUE(soundingFrames(rig.render(256, { 256 })).empty());
    // A live note with a volume and a rate of its own (a MIDI key), beside the stopped song.
    rig.player.playLive(PatternPlayer::LiveSource::Midi, { 5, 0.5f, 1.0f });
    EXPECT_EQ(rig.render(256, { 256 })[0], 0.5f * 0.7f * 0.5f);
    // A sample heard on its own plays at the master volume until it is stopped.
    rig.player.audition().setFrames(std::vector<float>(512, 0.5f), 1);
    rig.player.playAudition();
    EXPECT_EQ(rig.render(256, { 256 })[255], 0.5f * 0.7f);
    rig.player.stopAudition();
    EXPECT_TRUE(soundingFrames(rig.render(256, { 256 })).empty());
}

TEST(PatternPlayer, StoppedPlayerRendersSilenceAndKeepsItsPosition)
{
    LoopingRig rig;
    rig.clickEveryStep().instruments[0].sample().setFrames(std::vector<float>(100000, 1.0f), 1);
    rig.player.setMode(0);
    rig.player.seek(0);
    EXPECT_TRUE(soundingFrames(rig.render(10000, { 1000 })).empty());
    EXPECT_EQ(rig.player.position(), 0u);
    rig.player.start();
    rig.render(1000, { 1000 });
    EXPECT_EQ(rig.player.position(), 1000u);
    rig.player.stop();
    // Stopping also silences the notes that were sounding.
    EXPECT_TRUE(soundingFrames(rig.render(1000, { 1000 })).empty());
    EXPECT_EQ(rig.player.position(), 1000u);
}

TEST(PatternPlayer, TempoChangeKeepsTheRelativePointOfThePass)
{
    LoopingRig rig;
    rig.start().render(10000, { 10000 });
    rig.player.setTempo(75.0f); // twice the frames per step
    rig.render(1, { 1 });
    EXPECT_EQ(rig.player.position(), 20001u);
}
