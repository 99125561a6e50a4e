#include "support/PlayerRig.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace pulsara;
using pulsara::test::PlayerRig;
using pulsara::test::soundingFrames;

namespace {

// Where every step of `passes` passes must start.
std::vector<uint64_t> expectedStarts(double framesPerStep, uint32_t length, uint32_t passes)
{
    auto pass = static_cast<uint64_t>(length * framesPerStep);
    std::vector<uint64_t> starts;
    for (uint32_t k = 0; k < passes; ++k) {
        for (uint32_t step = 0; step < length; ++step)
            starts.push_back(k * pass + static_cast<uint64_t>(step * framesPerStep));
    }
    return starts;
}

void fillRow(StepGrid& grid, uint32_t row)
{
    for (uint32_t step = 0; step < grid.length(); ++step)
        grid.setCell(row, step, kDefaultNote);
}

} // namespace

TEST(PatternPlayer, FramesPerStepIsComputedInSinglePrecision)
{
    PlayerRig rig;
    EXPECT_EQ(rig.player.framesPerStep(), static_cast<double>(4409.9995f));
    EXPECT_EQ(static_cast<uint32_t>(std::lround(rig.player.framesPerStep())), 4410u);
    EXPECT_EQ(rig.player.framesPerPass(), 70559u);
    rig.player.setBeatsPerPattern(8);
    EXPECT_EQ(rig.player.framesPerStep(), static_cast<double>(8819.999f));
}

TEST(PatternPlayer, TempoNeverGoesBelowOne)
{
    PlayerRig rig;
    rig.player.setTempo(0.5f);
    EXPECT_EQ(rig.player.tempo(), 1.0f);
    rig.player.setTempo(std::nanf(""));
    EXPECT_EQ(rig.player.tempo(), 1.0f);
}

TEST(PatternPlayerDeathTest, FramesPerStepWithoutAFormatIsFatal)
{
    PatternPlayer player;
    EXPECT_EXIT(player.framesPerStep(), ::testing::ExitedWithCode(255), "SS: no format defined");
}

// Every step triggers exactly once at trunc(step * framesPerStep), whatever the block sizes:
// blocks that end exactly on a step, on a pass end, mid-step, and blocks longer than a pass.
TEST(PatternPlayer, EveryStepTriggersOnceAtItsStartFrame)
{
    struct Case {
        uint32_t rate;
        float tempo;
        uint32_t beats;
        std::vector<uint32_t> blocks;
    };
    for (const Case& c : std::vector<Case> {
             { 44100, 150.0f, 4, { 8800 } },
             { 44100, 150.0f, 4, { 4410, 4409, 1, 333 } },
             { 44100, 150.0f, 4, { 70559 } }, // exactly one pass per block
             { 44100, 173.0f, 4, { 64, 1000, 7, 3000 } },
             { 22050, 300.0f, 1, { 8800, 13 } }, // a block spans several passes
             { 48000, 61.0f, 3, { 2047 } },
         }) {
        PlayerRig rig(c.rate, 1, c.tempo);
        rig.player.setBeatsPerPattern(c.beats);
        rig.useClick(0);
        fillRow(rig.player.pattern(0), 0);
        rig.player.setMode(0); // loop pattern 0
        rig.player.seek(0);
        rig.player.start();
        uint32_t passes = 3;
        std::vector<float> out = rig.render(rig.player.framesPerPass() * passes, c.blocks);
        EXPECT_EQ(soundingFrames(out), expectedStarts(rig.player.framesPerStep(), 16, passes))
            << c.rate << " Hz, tempo " << c.tempo << ", block " << c.blocks[0];
    }
}

// With a whole number of frames per step the steps of a block are those from
// (position + fps - 1) / fps up to (position + n + fps - 1) / fps, at offset step * fps - position.
TEST(PatternPlayer, WholeFramesPerStepFollowTheIntegerStepRange)
{
    float tempo = 0.0f;
    PlayerRig rig;
    for (float candidate = 60.0f; candidate < 300.0f; candidate += 0.25f) {
        rig.player.setTempo(candidate);
        double perStep = rig.player.framesPerStep();
        if (perStep == std::floor(perStep)) {
            tempo = candidate;
            break;
        }
    }
    ASSERT_GT(tempo, 0.0f) << "no tempo gives a whole number of frames per step";
    auto fps = static_cast<uint64_t>(rig.player.framesPerStep());
    uint64_t pass = fps * 16;

    rig.useClick(0);
    fillRow(rig.player.pattern(0), 0);
    rig.player.setMode(0);
    rig.player.seek(0);
    rig.player.start();
    const uint32_t block = 1234;
    std::vector<float> out(block);
    for (uint64_t position = 0; position < 2 * pass; position += block) {
        rig.player.render(out.data(), block, 1);
        std::vector<uint64_t> expected;
        uint64_t inPass = position % pass;
        for (uint64_t step = (inPass + fps - 1) / fps; step < (inPass + block + fps - 1) / fps; ++step)
            expected.push_back(step * fps - inPass);
        EXPECT_EQ(soundingFrames(out), expected) << "block at " << position;
    }
}

TEST(PatternPlayer, StepVolumeIsScaledByMasterAndInstrumentVolume)
{
    PlayerRig rig;
    rig.useClick(5, 1.0f);
    rig.instruments[5].setVolume(0.5f);
    rig.player.setVolume(0.7f);
    rig.player.pattern(0).setCell(5, 0, { 0.25f, 1.0f, 0 });
    rig.player.setMode(0);
    rig.player.seek(0);
    rig.player.start();
    std::vector<float> out = rig.render(64, { 64 });
    EXPECT_EQ(out[0], 0.25f * 0.7f * 0.5f);
}

TEST(PatternPlayer, StoppedPlayerRendersSilenceAndKeepsItsPosition)
{
    PlayerRig rig;
    rig.useConstant(0, 100000);
    fillRow(rig.player.pattern(0), 0);
    rig.player.setMode(0);
    rig.player.seek(0);
    std::vector<float> out = rig.render(10000, { 1000 });
    EXPECT_TRUE(soundingFrames(out).empty());
    EXPECT_EQ(rig.player.position(), 0u);

    rig.player.start();
    rig.render(1000, { 1000 });
    EXPECT_EQ(rig.player.position(), 1000u);
    rig.player.stop();
    out = rig.render(1000, { 1000 });
    // Stopping also silences the notes that were sounding.
    EXPECT_TRUE(soundingFrames(out).empty());
    EXPECT_EQ(rig.player.position(), 1000u);
}

TEST(PatternPlayer, LiveTriggerPlaysATrackAtTheNextBlockWhetherOrNotPlaying)
{
    PlayerRig rig;
    rig.useClick(7, 1.0f);
    rig.player.setVolume(0.5f);
    rig.player.triggerLive(7);
    EXPECT_EQ(rig.player.soloTrack(), 7);
    std::vector<float> out = rig.render(256, { 256 });
    EXPECT_EQ(soundingFrames(out), std::vector<uint64_t> { 0 });
    EXPECT_EQ(out[0], 0.5f);
    // Once only.
    out = rig.render(256, { 256 });
    EXPECT_TRUE(soundingFrames(out).empty());
}

TEST(PatternPlayer, TempoChangeKeepsTheRelativePointOfThePass)
{
    PlayerRig rig;
    rig.player.setMode(0);
    rig.player.seek(0);
    rig.player.start();
    rig.render(10000, { 10000 });
    double before = rig.player.framesPerStep();
    rig.player.setTempo(75.0f);
    double after = rig.player.framesPerStep();
    rig.render(1, { 1 });
    EXPECT_EQ(rig.player.position(), static_cast<uint64_t>(10000.0 * after / before) + 1);
}
