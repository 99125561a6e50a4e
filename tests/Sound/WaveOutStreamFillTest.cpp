#include "Sound/WaveOutStream.h"

#include "support/FakeWaveDevice.h"
#include "support/RecordingStream.h"
#include "support/ScriptedSource.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>

using namespace pulsara;
using namespace pulsara::testing;

namespace {

struct FillCase {
    const char* name;
    uint8_t channels;
    std::vector<float> head;
    std::vector<float> tail;
    // What the first filled buffer must hold and report.
    std::vector<int16_t> firstSamples;
    float peakLeft;
    float peakRight;
    bool clipped;
};

// The buffer played first is the one filled first.
std::vector<int16_t> firstFill(RecordingStream& stream, FakeWaveDevice& device)
{
    EXPECT_EQ(stream.start(), 1);
    device.playOne();
    return device.lastPlayed();
}

} // namespace

TEST(WaveOutStreamFill, ClipsConvertsAndReportsSignedPeaks)
{
    const FillCase cases[] = {
        { "over full scale clips and sets the flag", 1, {}, { 1.5f }, { 32767, 32767 }, 1.0f, 1.0f, true },
        { "negative full scale never sets the flag", 1, {}, { -1.5f }, { -32767, -32767 }, -1.0f, -1.0f, false },
        { "a zero after -0.5 replaces the peak", 1, { -0.5f }, { 0.0f }, { -16383, 0 }, 0.0f, 0.0f, false },
        { "conversion truncates toward zero", 1, {}, { 0.25f }, { 8191, 8191 }, 0.25f, 0.25f, false },
        { "negative conversion truncates toward zero", 1, {}, { -0.25f }, { -8191, -8191 }, -0.25f, -0.25f, false },
        { "a later positive sample beats a stored positive peak", 1, { 0.5f, 0.75f }, { 0.25f }, { 16383, 24575, 8191 }, 0.75f, 0.75f, false },
        { "stereo peaks are per channel and keep their sign", 2, {}, { 0.5f, -0.75f }, { 16383, -24575 }, 0.5f, -0.75f, false },
        { "either stereo channel at full scale sets the flag", 2, {}, { 0.1f, 1.2f }, { 3276, 32767 }, 0.1f, 1.0f, true },
        { "not a number is written as silence", 1, {}, { std::numeric_limits<float>::quiet_NaN() }, { 0, 0 }, 0.0f, 0.0f, false },
    };
    for (const FillCase& c : cases) {
        SCOPED_TRACE(c.name);
        AudioFormat format { 44100, 32, c.channels };
        FakeWaveDevice device;
        ScriptedSource source;
        source.head = c.head;
        source.tail = c.tail;
        RecordingStream stream(device, &source);
        stream.setFormat(&format);
        std::vector<int16_t> samples = firstFill(stream, device);
        ASSERT_GE(samples.size(), c.firstSamples.size());
        EXPECT_EQ(std::vector<int16_t>(samples.begin(), samples.begin() + c.firstSamples.size()), c.firstSamples);
        ASSERT_FALSE(stream.peaks.empty());
        EXPECT_EQ(stream.peaks[0].first, c.peakLeft);
        EXPECT_EQ(stream.peaks[0].second, c.peakRight);
        // The third fill (after playOne) rendered the same script, so the flag describes it too.
        EXPECT_EQ(stream.isClipped(), c.clipped);
    }
}

TEST(WaveOutStreamFill, EveryFillReportsPeaksOnce)
{
    AudioFormat format { 44100, 32, 1 };
    FakeWaveDevice device;
    ScriptedSource source;
    source.tail = { 0.5f };
    RecordingStream stream(device, &source);
    stream.setFormat(&format);
    ASSERT_EQ(stream.start(), 1);
    device.playOne();
    device.playOne();
    EXPECT_EQ(stream.peaks.size(), 4u);
    EXPECT_EQ(stream.loads.size(), 4u);
}

TEST(WaveOutStreamFill, RenderCountNeverExceedsTheFloatBuffer)
{
    // The built-in default format says 16 bits, which would ask for twice the frames that fit.
    FakeWaveDevice device;
    ScriptedSource source;
    RecordingStream stream(device, &source);
    ASSERT_EQ(stream.format()->bitsPerSample, 16);
    ASSERT_EQ(stream.start(), 1);
    EXPECT_EQ(source.lastFrames.load(), 8800u);
    EXPECT_EQ(source.lastChannels.load(), 1u);
}

namespace {

// Advances ten milliseconds every time it is read.
std::atomic<uint32_t> fakeNow { 1000 };
uint32_t steppingClock()
{
    return fakeNow.fetch_add(10);
}

} // namespace

TEST(WaveOutStreamFill, LoadIsTheTimeSinceTheDeviceAskedOverTheLatency)
{
    AudioFormat format { 44100, 32, 1 };
    FakeWaveDevice device;
    ScriptedSource source;
    RecordingStream stream(device, &source, steppingClock);
    stream.setFormat(&format);
    stream.setLatency(200);
    ASSERT_EQ(stream.start(), 1);
    // The open notification stored the tick; the two fills in start read it 10 and 20 ms later.
    ASSERT_EQ(stream.loads.size(), 2u);
    EXPECT_FLOAT_EQ(stream.loads[0], 0.05f);
    EXPECT_FLOAT_EQ(stream.loads[1], 0.1f);
    // Each done restarts the tick before its fill.
    device.playOne();
    ASSERT_EQ(stream.loads.size(), 3u);
    EXPECT_FLOAT_EQ(stream.loads[2], 0.05f);
}
