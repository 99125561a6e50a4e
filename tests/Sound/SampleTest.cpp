#include "Sound/Sample.h"

#include <gtest/gtest.h>

#include <numeric>
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

TEST(Sample, CopiesBlockByBlockAtRateOneAndStopsAtTheEnd)
{
    Sample sample;
    fillRamp(sample, 100, 1);
    std::vector<float> out(64, 0.5f);
    EXPECT_EQ(sample.mix(out.data(), 64, 1), -1);
    for (int k = 0; k < 64; ++k)
        EXPECT_EQ(out[k], 0.5f + (k + 1)) << k;
    EXPECT_TRUE(sample.isPlaying());
    EXPECT_EQ(sample.position(), 64.0);

    std::fill(out.begin(), out.end(), 0.5f);
    EXPECT_EQ(sample.mix(out.data(), 64, 1), -1);
    for (int k = 0; k < 36; ++k)
        EXPECT_EQ(out[k], 0.5f + (65 + k)) << k;
    for (int k = 36; k < 64; ++k)
        EXPECT_EQ(out[k], 0.5f) << "frame " << k << " lies after the end";
    EXPECT_FALSE(sample.isPlaying());
    EXPECT_EQ(sample.position(), 100.0);
}

TEST(Sample, CopiesFromTheWholeFrameOfAFractionalPosition)
{
    Sample sample;
    fillRamp(sample, 10, 2);
    sample.setPosition(2.75);
    sample.setVolume(0.5f);
    std::vector<float> out(4, 0.0f);
    sample.mix(out.data(), 2, 2);
    EXPECT_EQ(out, (std::vector<float> { 1.5f, -1.5f, 2.0f, -2.0f }));
    EXPECT_EQ(sample.position(), 4.75);
}

TEST(Sample, MixesNothingUnlessPlaying)
{
    Sample sample;
    fillRamp(sample, 10, 1);
    sample.setPlaying(false);
    std::vector<float> out(4, 0.25f);
    EXPECT_EQ(sample.mix(out.data(), 4, 1), 0);
    EXPECT_EQ(out, std::vector<float>(4, 0.25f));
    EXPECT_EQ(sample.position(), 0.0);
}

TEST(Sample, StopsWhenThePositionLiesBeyondTheEnd)
{
    for (float rate : { 1.0f, 0.5f }) {
        Sample sample;
        fillRamp(sample, 10, 1);
        sample.setRate(rate);
        sample.setPosition(12.0);
        std::vector<float> out(4, 0.25f);
        EXPECT_EQ(sample.mix(out.data(), 4, 1), -1);
        EXPECT_EQ(out, std::vector<float>(4, 0.25f)) << "rate " << rate;
        EXPECT_FALSE(sample.isPlaying()) << "rate " << rate;
    }
}

TEST(Sample, ResamplesOnlyTheFramesLeftAndThenStops)
{
    Sample sample;
    fillRamp(sample, 10, 1);
    sample.setRate(2.0f);
    std::vector<float> out(8, 0.0f);
    sample.mix(out.data(), 8, 1);
    EXPECT_EQ(out, (std::vector<float> { 1, 3, 5, 7, 9, 0, 0, 0 }));
    EXPECT_FALSE(sample.isPlaying());
    EXPECT_EQ(sample.position(), 10.0);
}

TEST(Sample, InterpolationChoosesTheLinearMethod)
{
    for (Interpolation method : { Interpolation::None, Interpolation::Linear }) {
        Sample sample;
        fillRamp(sample, 10, 1);
        sample.setRate(0.5f);
        sample.setInterpolation(method);
        std::vector<float> out(4, 0.0f);
        sample.mix(out.data(), 4, 1);
        bool linear = method == Interpolation::Linear;
        EXPECT_EQ(out, linear ? (std::vector<float> { 1, 1.5f, 2, 2.5f }) : (std::vector<float> { 1, 1, 2, 2 }));
        EXPECT_EQ(sample.position(), linear ? 2.5 : 2.0);
        EXPECT_TRUE(sample.isPlaying());
    }
}

TEST(Sample, VolumeZeroStillAdvancesThePosition)
{
    for (float rate : { 1.0f, 1.5f }) {
        Sample sample;
        fillRamp(sample, 100, 1);
        sample.setVolume(0.0f);
        sample.setRate(rate);
        std::vector<float> out(16, 0.0f);
        sample.mix(out.data(), 16, 1);
        EXPECT_EQ(sample.position(), 16.0 * rate);
        EXPECT_EQ(out, std::vector<float>(16, 0.0f));
    }
}

TEST(Sample, RenderClearsTheBlockFirst)
{
    Sample sample;
    fillRamp(sample, 10, 1);
    std::vector<float> out(4, 7.0f);
    EXPECT_EQ(sample.render(out.data(), 4, 1), -1);
    EXPECT_EQ(out, (std::vector<float> { 1, 2, 3, 4 }));
    sample.setPlaying(false);
    EXPECT_EQ(sample.render(out.data(), 4, 1), 0);
    EXPECT_EQ(out, std::vector<float>(4, 0.0f));
}

TEST(Sample, AnOutputOfAnotherChannelCountStopsTheSample)
{
    for (float rate : { 1.0f, 0.5f }) {
        Sample sample;
        fillRamp(sample, 10, 1);
        sample.setRate(rate);
        std::vector<float> out(8, 0.0f);
        sample.mix(out.data(), 4, 2);
        EXPECT_EQ(out, std::vector<float>(8, 0.0f)) << "rate " << rate;
        EXPECT_FALSE(sample.isPlaying()) << "rate " << rate;
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
        const char* expected = method == Interpolation::Linear
            ? "pulsara: FATAL ERROR: LinearInterpolation: more than 2 channels"
            : "pulsara: FATAL ERROR: NoInterpolation: more than 2 channels";
        EXPECT_EXIT(sample.mix(out.data(), 16, 3), testing::ExitedWithCode(255), expected);
    }
}

TEST(Sample, LengthAndPositionCountOutputFrames)
{
    Sample sample;
    fillRamp(sample, 100, 1);
    sample.setRate(0.75f);
    EXPECT_EQ(sample.lengthInOutputFrames(), 133u);
    sample.setPosition(30.0);
    EXPECT_EQ(sample.positionInOutputFrames(), 40u);
    sample.setRate(0.0f);
    EXPECT_EQ(sample.lengthInOutputFrames(), UINT32_MAX) << "a stopped rate never ends";
}

TEST(Sample, SeekMovesToAnOutputFrameOrBackToTheStart)
{
    Sample sample;
    fillRamp(sample, 100, 1);
    sample.setRate(2.0f);
    EXPECT_EQ(sample.seek(10), 20);
    EXPECT_EQ(sample.position(), 20.0);
    EXPECT_EQ(sample.seek(50), 100);
    EXPECT_EQ(sample.seek(51), -1);
    EXPECT_EQ(sample.position(), 0.0);
    sample.setRate(0.3f);
    EXPECT_EQ(sample.seek(7), 2) << "7 x 0.3 truncated";
}

TEST(Sample, SetFramesKeepsASilentSpareFrame)
{
    Sample sample;
    ASSERT_TRUE(sample.setFrames({ 1, 2, 3, 4, 5 }, 2));
    EXPECT_EQ(sample.length(), 2);
    EXPECT_EQ(sample.channels(), 2u);
    EXPECT_EQ(std::vector<float>(sample.frames(), sample.frames() + 6), (std::vector<float> { 1, 2, 3, 4, 0, 0 }));
}

TEST(Sample, UnloadEmptiesIt)
{
    Sample sample;
    fillRamp(sample, 10, 1);
    sample.setPosition(4.0);
    sample.unload();
    EXPECT_EQ(sample.length(), 0);
    EXPECT_EQ(sample.position(), 0.0);
    EXPECT_FALSE(sample.isLoaded());
    EXPECT_TRUE(sample.displayName().empty());
    std::vector<float> out(4, 0.0f);
    sample.mix(out.data(), 4, 1);
    EXPECT_EQ(out, std::vector<float>(4, 0.0f));
    EXPECT_FALSE(sample.isPlaying());
}
