#include "support/PlayerRig.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

using namespace pulsara;
using pulsara::test::PlayerRig;
using pulsara::test::soundingFrames;

namespace {

// Pattern p holds one click on row p at step 0, and is on at the given positions, so that the
// amplitude heard at each pass start tells which patterns played there.
void arrange(PlayerRig& rig, uint32_t pattern, std::initializer_list<uint32_t> positions, float amplitude)
{
    rig.useClick(pattern, amplitude);
    rig.player.pattern(pattern).setCell(pattern, 0, kDefaultNote);
    for (uint32_t position : positions)
        rig.player.playlist().set(pattern, position, 1.0f);
}

// The song position after the block that holds each pass start, for `passes` passes played in
// `block`-frame blocks (no longer than a pass).
std::vector<int32_t> positionsPlayed(PlayerRig& rig, uint32_t passes, uint32_t block)
{
    rig.player.seek(0);
    rig.player.start();
    std::vector<int32_t> seen;
    uint64_t pass = rig.player.framesPerPass();
    std::vector<float> out(block);
    for (uint64_t done = 0; seen.size() < passes; done += block) {
        rig.player.render(out.data(), block, 1);
        if (seen.size() * pass < done + block)
            seen.push_back(rig.player.songPosition());
    }
    return seen;
}

} // namespace

// Each pass plays the patterns that are on at its position, from the pass start, whatever the
// blocks: shorter than a pass, exactly one pass (ending on the pass end) or longer. The position
// advances at each pass start, loops back at the song end and repeats the loop range.
TEST(SongPlayer, EachPassPlaysItsPositionsPatternsAndThePositionLoopsAtTheSongEndAndInTheLoopRange)
{
    for (uint32_t block : { 8800u, 70559u, 100000u, 333u, 70559u / 7 }) {
        SCOPED_TRACE(block);
        PlayerRig rig;
        arrange(rig, 0, { 0, 2, 3 }, 0.25f);
        arrange(rig, 1, { 1, 2 }, 0.5f);
        uint64_t pass = rig.player.framesPerPass();
        rig.player.seek(0);
        rig.player.start();
        std::vector<float> out = rig.render(4 * pass, { block });
        EXPECT_EQ(soundingFrames(out), (std::vector<uint64_t> { 0, pass, 2 * pass, 3 * pass }));
        EXPECT_EQ((std::vector<float> { out[0], out[pass], out[2 * pass], out[3 * pass] }), (std::vector<float> { 0.25f, 0.5f, 0.75f, 0.25f }));
        if (block > pass)
            continue;
        EXPECT_EQ(positionsPlayed(rig, 6, block), (std::vector<int32_t> { 0, 1, 2, 3, 0, 1 }));
        rig.player.setLoopStart(1);
        rig.player.setLoopEnd(2);
        EXPECT_EQ(positionsPlayed(rig, 6, block), (std::vector<int32_t> { 0, 1, 2, 1, 2, 1 }));
    }
}

TEST(SongPlayer, HigherIndexedPatternWinsACellPlayedByTwo)
{
    PlayerRig rig;
    rig.player.pattern(2).setCell(4, 3, { 0.25f, 1.0f, 0 });
    rig.player.pattern(5).setCell(4, 3, { 0.5f, 2.0f, 0 });
    rig.player.pattern(2).setCell(4, 5, { 0.125f, 1.0f, 0 });
    rig.player.playlist().set(2, 0, 1.0f);
    rig.player.playlist().set(5, 0, 1.0f);
    rig.player.setSongPosition(0);
    EXPECT_EQ(rig.player.songPosition(), 0);
    EXPECT_EQ(rig.player.grid().cell(4, 3), (Step { 0.5f, 2.0f, 0 }));
    EXPECT_EQ(rig.player.grid().cell(4, 5).volume, 0.125f);
}

// The length covers the positions up to the loop end; pattern mode loops one pattern without the
// playlist, a length of one pass.
TEST(SongPlayer, LengthCoversThePositionsUpToTheLoopEndAndPatternModeLoopsOnePattern)
{
    PlayerRig rig;
    uint64_t pass = rig.player.framesPerPass();
    EXPECT_EQ(rig.player.lengthInFrames(), 0u);
    rig.player.playlist().set(6, 9, 1.0f);
    EXPECT_EQ(rig.player.lengthInFrames(), 10 * pass);
    rig.player.setLoopEnd(3);
    EXPECT_EQ(rig.player.lengthInFrames(), 4 * pass);
    arrange(rig, 0, { 0 }, 0.25f);
    arrange(rig, 3, { 1 }, 0.5f);
    rig.player.setMode(3);
    EXPECT_EQ(rig.player.lengthInFrames(), pass);
    rig.player.seek(0);
    rig.player.start();
    std::vector<float> out = rig.render(3 * pass, { 4096 });
    EXPECT_EQ(soundingFrames(out), (std::vector<uint64_t> { 0, pass, 2 * pass }));
    EXPECT_EQ(out[pass], 0.5f);
}

// Every way of moving the play position plays on from the start of the target position at the
// next block. A request (the GUI thread's while the stream renders) leaves the pass to the render,
// but the song position shows the target at once.
TEST(SongPlayer, MovesPlayFromTheStartOfTheTargetPositionAtTheNextBlock)
{
    enum class Move { Seek, Direct, Request };
    const std::tuple<const char*, Move, int32_t, float> cases[] = {
        { "a seek to the start", Move::Seek, 0, 0.25f },
        { "a move", Move::Direct, 2, 1.0f },
        { "a request replacing an earlier one", Move::Request, 2, 1.0f },
    };
    for (const auto& [what, move, target, heard] : cases) {
        SCOPED_TRACE(what);
        PlayerRig rig;
        arrange(rig, 0, { 0 }, 0.25f);
        arrange(rig, 1, { 1 }, 0.5f);
        arrange(rig, 2, { 2 }, 1.0f);
        positionsPlayed(rig, 2, 8800);
        uint64_t before = rig.player.position();
        ASSERT_NE(before, 0u);
        if (move == Move::Seek)
            rig.player.seek(0);
        else if (move == Move::Direct)
            rig.player.moveToSongPosition(target);
        else {
            rig.player.requestSongPosition(1);
            rig.player.requestSongPosition(target);
        }
        EXPECT_EQ(rig.player.songPosition(), target);
        EXPECT_EQ(rig.player.position(), move == Move::Request ? before : 0u);
        std::vector<float> out = rig.render(rig.player.framesPerPass(), { 512 });
        EXPECT_EQ(soundingFrames(out), (std::vector<uint64_t> { 0 }));
        EXPECT_EQ(out[0], heard);
        EXPECT_EQ(rig.player.songPosition(), target);
    }
}

// What clearSong empties is checked by the reader's tests, in the bytes of a song read from an
// empty file.

TEST(SongPlayer, PatternNamesKeepTheirFirstThirtyOneUnits)
{
    PlayerRig rig;
    rig.player.setPatternName(4, u"A name much longer than thirty-one units");
    EXPECT_EQ(rig.player.patternName(4), u"A name much longer than thirty-");
}

TEST(SongPlayer, EmptyBlockNeitherTriggersNorAdvances)
{
    PlayerRig rig;
    arrange(rig, 0, { 0, 1 }, 1.0f);
    rig.player.seek(0);
    rig.player.start();
    rig.render(rig.player.framesPerPass(), { 70559 });
    float none = 0.0f;
    rig.player.render(&none, 0, 1);
    EXPECT_EQ(rig.player.songPosition(), 0);
    EXPECT_EQ(rig.player.position(), 0u);
    std::vector<float> out = rig.render(16, { 16 });
    EXPECT_EQ(rig.player.songPosition(), 1);
    EXPECT_EQ(out[0], 1.0f);
}

// Helper threads that mix rows change nothing: the same output to the bit and the same song
// position after every block, with blocks longer than a pass, mid-step and a loop range that
// wraps, pitched notes of both interpolations, note lengths, and with two rows on one instrument.
TEST(SongPlayer, HelperThreadsRenderTheSameBitsAndWalkTheSongTheSame)
{
    auto arrangeSong = [](PlayerRig& rig, bool shareAnInstrument) {
        rig.player.setLength(4);
        rig.player.setTempo(600.0f); // 4410 frames per pass at 44100 Hz
        for (uint32_t track = 0; track < 12; ++track) {
            std::vector<float> frames(3000 + 700 * track);
            for (std::size_t i = 0; i < frames.size(); ++i)
                frames[i] = static_cast<float>((i * (track + 3) * 2654435761u) % 2001) / 1000.0f - 1.0f;
            rig.instruments[track].sample().setFrames(std::move(frames), 1);
            rig.instruments[track].sample().setInterpolation(track % 2 ? Interpolation::Linear : Interpolation::None);
        }
        if (shareAnInstrument)
            rig.player.setInstrument(12, &rig.instruments[11]);
        for (uint32_t pattern = 0; pattern < 4; ++pattern) {
            for (uint32_t track = 0; track < 13; ++track) {
                uint32_t step = (track + pattern) % 4;
                float rate = track % 3 == 0 ? 1.0f : 0.5f + 0.17f * static_cast<float>(track + pattern);
                rig.player.pattern(pattern).setCell(track, step, { 0.3f + 0.05f * track, rate, track % 4 == 1 ? 300 : 0 });
            }
            rig.player.playlist().set(pattern, pattern, 1.0f);
        }
        rig.player.setLoopStart(1);
        rig.player.setLoopEnd(2);
        rig.player.seek(0);
        rig.player.start();
    };
    for (bool shareAnInstrument : { false, true }) {
        for (uint32_t block : { 100000u, 4410u, 333u }) {
            SCOPED_TRACE(::testing::Message() << "block " << block << (shareAnInstrument ? ", a shared instrument" : ""));
            PlayerRig one;
            PlayerRig many;
            arrangeSong(one, shareAnInstrument);
            arrangeSong(many, shareAnInstrument);
            many.player.setRenderThreads(3);
            for (int i = 0; i < 12; ++i) {
                std::vector<float> expected = one.render(block, { block });
                std::vector<float> rendered = many.render(block, { block });
                ASSERT_EQ(std::memcmp(rendered.data(), expected.data(), expected.size() * sizeof(float)), 0) << i;
                ASSERT_EQ(many.player.songPosition(), one.player.songPosition()) << i;
                ASSERT_EQ(many.player.position(), one.player.position()) << i;
            }
        }
    }
}
