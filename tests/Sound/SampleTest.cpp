#include "Sound/Sample.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

using namespace pulsara;

namespace {

// A playing sample whose frame f holds f + 1 (and -(f + 1) on the right channel).
void fillRamp(Sample& sample, uint32_t frames, uint32_t channels)
{
    std::vector<float> data(static_cast<std::size_t>(frames) * channels);
    for (uint32_t f = 0; f < frames; ++f)
        for (uint32_t c = 0; c < channels; ++c)
            data[f * channels + c] = (c == 0 ? 1.0f : -1.0f) * static_cast<float>(f + 1);
    ASSERT_TRUE(sample.setFrames(std::move(data), channels));
    sample.setPlaying(true);
}

} // namespace

TEST(Sample, MixesOrRendersFromItsPositionAtItsRateAndStopsAtTheEnd)
{
    using enum Interpolation;
    // What; the sample's channels, rate, position, volume and method, and whether it plays; the
    // output channels; whether it renders (clearing the block) or mixes onto 0.5 in every float;
    // the result, the block, the position after and whether it still plays.
    const std::tuple<const char*, uint32_t, float, double, float, Interpolation, bool, uint32_t, bool, int, std::vector<float>, double, bool>
        cases[] = {
            { "a copy from the start", 1, 1.0f, 0.0, 1.0f, None, true, 1, false, -1, { 1.5f, 2.5f, 3.5f, 4.5f }, 4.0, true },
            { "a copy up to the end", 1, 1.0f, 6.0, 1.0f, None, true, 1, false, -1, { 7.5f, 8.5f, 9.5f, 10.5f, 0.5f, 0.5f }, 10.0, false },
            { "a copy from the whole frame of a fraction", 2, 1.0f, 2.75, 0.5f, None, true, 2, false, -1, { 2.0f, -1.0f, 2.5f, -1.5f }, 4.75,
                true },
            { "a copy beyond the end", 1, 1.0f, 12.0, 1.0f, None, true, 1, false, -1, { 0.5f, 0.5f, 0.5f, 0.5f }, 12.0, false },
            { "a resampling beyond the end", 1, 0.5f, 12.0, 1.0f, None, true, 1, false, -1, { 0.5f, 0.5f, 0.5f, 0.5f }, 12.0, false },
            { "a resampling of the frames left", 1, 2.0f, 0.0, 1.0f, None, true, 1, false, -1, { 1.5f, 3.5f, 5.5f, 7.5f, 9.5f, 0.5f, 0.5f, 0.5f },
                10.0, false },
            { "no interpolation", 1, 0.5f, 0.0, 1.0f, None, true, 1, false, -1, { 1.5f, 1.5f, 2.5f, 2.5f }, 2.0, true },
            { "linear interpolation", 1, 0.5f, 0.0, 1.0f, Linear, true, 1, false, -1, { 1.5f, 2.0f, 2.5f, 3.0f }, 2.5, true },
            { "a silent copy", 1, 1.0f, 0.0, 0.0f, None, true, 1, false, -1, { 0.5f, 0.5f, 0.5f, 0.5f }, 4.0, true },
            { "a silent resampling", 1, 1.5f, 0.0, 0.0f, None, true, 1, false, -1, { 0.5f, 0.5f, 0.5f, 0.5f }, 6.0, true },
            { "a copy into stereo", 1, 1.0f, 0.0, 1.0f, None, true, 2, false, -1, std::vector<float>(8, 0.5f), 0.0, false },
            { "a resampling into stereo", 1, 0.5f, 0.0, 1.0f, None, true, 2, false, -1, std::vector<float>(8, 0.5f), 0.0, false },
            { "a render", 1, 1.0f, 0.0, 1.0f, None, true, 1, true, -1, { 1, 2, 3, 4 }, 4.0, true },
            { "a render of a stopped sample", 1, 1.0f, 0.0, 1.0f, None, false, 1, true, 0, { 0, 0, 0, 0 }, 0.0, false },
        };
    for (const auto& [what, channels, rate, position, volume, method, playing, outChannels, render, result, block, after, stillPlaying] :
        cases) {
        SCOPED_TRACE(what);
        Sample sample;
        fillRamp(sample, 10, channels);
        sample.setRate(rate);
        sample.setPosition(position);
        sample.setVolume(volume);
        sample.setInterpolation(method);
        sample.setPlaying(playing);
        std::vector<float> out(block.size(), 0.5f);
        auto frames = static_cast<uint32_t>(out.size()) / outChannels;
        EXPECT_EQ(render ? sample.render(out.data(), frames, outChannels) : sample.mix(out.data(), frames, outChannels), result);
        EXPECT_EQ(out, block);
        EXPECT_EQ(sample.position(), after);
        EXPECT_EQ(sample.isPlaying(), stillPlaying);
    }
}

TEST(SampleDeathTest, ResamplingIntoThreeChannelsIsFatal)
{
    for (Interpolation method : { Interpolation::None, Interpolation::Linear }) {
        Sample sample;
        fillRamp(sample, 100, 2);
        sample.setRate(0.5f);
        sample.setInterpolation(method);
        std::vector<float> out(3 * 16, 0.0f);
        EXPECT_EXIT(sample.mix(out.data(), 16, 3), testing::ExitedWithCode(255),
            std::string("pulsara: FATAL ERROR: ") + (method == Interpolation::Linear ? "Linear" : "No")
                + "Interpolation: more than 2 channels");
    }
}

TEST(Sample, LengthPositionAndSeekCountOutputFrames)
{
    Sample sample;
    fillRamp(sample, 100, 1);
    sample.setRate(0.75f);
    EXPECT_EQ(sample.lengthInOutputFrames(), 133u);
    sample.setPosition(30.0);
    EXPECT_EQ(sample.positionInOutputFrames(), 40u);
    sample.setRate(0.3f);
    EXPECT_EQ(sample.seek(7), 2) << "7 x 0.3 truncated";
    sample.setRate(2.0f);
    EXPECT_EQ(sample.seek(10), 20);
    EXPECT_EQ(sample.position(), 20.0);
    EXPECT_EQ(sample.seek(50), 100);
    EXPECT_EQ(sample.seek(51), -1);
    EXPECT_EQ(sample.position(), 0.0) << "a seek past the end goes back to the start";
    sample.setRate(0.0f);
    EXPECT_EQ(sample.lengthInOutputFrames(), UINT32_MAX) << "a stopped rate never ends";
}

TEST(Sample, SetFramesKeepsASilentSpareFrameAndUnloadEmptiesIt)
{
    Sample sample;
    ASSERT_TRUE(sample.setFrames({ 1, 2, 3, 4, 5 }, 2));
    EXPECT_EQ(std::pair(sample.length(), sample.channels()), std::pair(2, 2u));
    EXPECT_EQ(std::vector<float>(sample.frames(), sample.frames() + 6), (std::vector<float> { 1, 2, 3, 4, 0, 0 }));
    sample.unload();
    EXPECT_EQ(sample.length(), 0);
    EXPECT_FALSE(sample.isLoaded());
    EXPECT_TRUE(sample.displayName().empty());
}

// A load on the GUI thread may replace the data under a sounding note: the note stops at its next
// mix without a frame of the new data, and the next note plays the new data from its start.
TEST(Sample, ANoteStopsWhenItsDataIsReplacedAndTheNextNotePlaysTheNewData)
{
    // The replacement (empty: unloaded) and what the next note plays.
    const std::tuple<const char*, std::vector<float>, std::vector<float>> cases[] = {
        { "longer data", std::vector<float>(20, 9.0f), { 9, 9, 9, 9 } },
        { "shorter data", { 7, 7 }, { 7, 7, 0, 0 } },
        { "no data", {}, { 0, 0, 0, 0 } },
    };
    for (const auto& [what, replacement, nextNote] : cases) {
        SCOPED_TRACE(what);
        Sample sample;
        fillRamp(sample, 10, 1);
        std::vector<float> out(4, 0.0f);
        ASSERT_EQ(sample.mix(out.data(), 3, 1), -1);
        if (replacement.empty())
            sample.unload();
        else
            ASSERT_TRUE(sample.setFrames(replacement, 1));
        out.assign(4, 0.0f);
        EXPECT_EQ(sample.mix(out.data(), 4, 1), -1);
        EXPECT_EQ(out, std::vector<float>(4, 0.0f));
        EXPECT_FALSE(sample.isPlaying());
        EXPECT_EQ(sample.position(), 0.0);
        sample.setPlaying(true);
        sample.mix(out.data(), 4, 1);
        EXPECT_EQ(out, nextNote);
    }
}
