#include "Sound/WaveOutStream.h"

#include "support/FakeWaveDevice.h"
#include "support/RecordingStream.h"
#include "support/ReportRecorder.h"
#include "support/ScriptedSource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <limits>

using namespace pulsara;
using namespace pulsara::testing;
using pulsara::test::FatalReportsUnwind;
using pulsara::test::ReportRecorder;

namespace {

using Calls = std::vector<std::string>;
using Peaks = std::vector<std::pair<float, float>>;

// Advances ten milliseconds every time it is read.
std::atomic<uint32_t> fakeNow { 1000 };
uint32_t steppingClock() { return fakeNow.fetch_add(10); }

struct StreamRig {
    explicit StreamRig(AudioFormat audioFormat = { 44100, 32, 1 }, int latency = 200, TickClock clock = steadyTickCount)
        : format(audioFormat)
        , stream(device, &source, clock)
    {
        stream.setFormat(&format);
        stream.setLatency(latency);
    }

    AudioFormat format;
    FakeWaveDevice device;
    ScriptedSource source;
    RecordingStream stream;
};

// A window that only records what the device posts to it, as a message queue would.
struct RecordingWindow : WaveDeviceListener {
    void onWaveMessage(WaveMessage message, WaveHeader*) override { messages.push_back(static_cast<uint32_t>(message)); }
    std::vector<uint32_t> messages;
};

// Lets a test reach the state the design allows after a survived close failure: Resetting with
// no device, by skipping the stop that start makes before it reopens.
class StreamWithHeldStop : public RecordingStream {
public:
    using RecordingStream::RecordingStream;
    bool holdStop = false;
    void stop() override
    {
        if (!holdStop)
            RecordingStream::stop();
    }
};

} // namespace

TEST(WaveOutStream, SizesBuffersToWholeUnitsOfTheLatencyPeriod)
{
    struct Case {
        uint32_t rate;
        uint8_t channels;
        int latency;
        size_t deviceBytes; // 0: too short for one unit of 32 samples, so start fails
        uint32_t renderFrames;
    };
    const Case cases[] = {
        { 44100, 1, 200, 17600, 8800 },
        { 44100, 2, 200, 35264, 8816 },
        { 22050, 1, 30, 1280, 640 }, // 661 frames round down to 640
        { 48000, 2, 100, 19200, 4800 },
        { 44100, 1, 50, 4352, 2176 },
        { 8000, 1, 3, 0, 0 },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.rate << " Hz, " << int(c.channels) << " ch, " << c.latency << " ms");
        StreamRig rig({ c.rate, 32, c.channels }, c.latency);
        EXPECT_EQ(rig.source.lastLatency.load(), c.latency);
        ASSERT_EQ(rig.stream.start(), c.deviceBytes ? 1 : 0);
        EXPECT_EQ(rig.source.lastFrames.load(), c.renderFrames);
        if (!c.deviceBytes)
            continue;
        EXPECT_EQ(rig.stream.deviceBufferBytes(0), c.deviceBytes);
        EXPECT_EQ(rig.stream.deviceBufferBytes(1), c.deviceBytes);
        EXPECT_EQ(rig.stream.floatBufferBytes(), 2 * c.deviceBytes);
        EXPECT_EQ(rig.device.queuedHeader(0)->bufferLength, c.deviceBytes);
    }
}

TEST(WaveOutStream, StartOpens16BitPcmAndQueuesTwoFillsOnce)
{
    StreamRig rig({ 22050, 32, 2 });
    EXPECT_EQ(rig.source.format(), &rig.format);
    ASSERT_EQ(rig.stream.start(), 1);
    WaveFormat opened = rig.device.openedFormat();
    EXPECT_EQ((std::vector<uint32_t> { opened.formatTag, opened.channels, opened.samplesPerSecond, opened.bitsPerSample,
                  opened.blockAlign, opened.averageBytesPerSecond, opened.extraSize }),
        (std::vector<uint32_t> { 1, 2, 22050, 16, 4, 88200, 18 }));
    EXPECT_EQ(rig.stream.state(), StreamState::Playing);
    EXPECT_EQ(rig.device.calls(), (Calls { "open", "prepare", "prepare", "write", "write" }));
    EXPECT_EQ(rig.source.renders.load(), 2);
    ASSERT_EQ(rig.device.queued(), 2u);
    EXPECT_NE(rig.device.queuedHeader(0), rig.device.queuedHeader(1));
    // Without a window the device reports to the stream itself.
    EXPECT_NE(rig.device.listener(), nullptr);

    rig.device.clearCalls();
    EXPECT_EQ(rig.stream.start(), 1);
    EXPECT_TRUE(rig.device.calls().empty());
    EXPECT_EQ(rig.source.renders.load(), 2);
}

namespace {

// A device that plays the first buffer the moment it is queued, before the stream can queue the
// second, as a fast device thread may.
struct EagerDevice : FakeWaveDevice {
    WaveResult write(WaveHeader& header) override
    {
        WaveResult result = FakeWaveDevice::write(header);
        if (++writes == 1)
            playOne();
        return result;
    }
    int writes = 0;
};

// Renders period n (counting from 1) as the value n / 8, and notes how many buffers the device
// had been given when each render began.
struct PeriodSource : ScriptedSource {
    explicit PeriodSource(const EagerDevice& device)
        : device(device)
    {
    }
    void render(float* out, uint32_t frames, uint32_t channels) override
    {
        writesBefore.push_back(device.writes);
        std::fill(out, out + size_t { frames } * channels, static_cast<float>(renders.fetch_add(1) + 1) / 8.0f);
    }
    const EagerDevice& device;
    std::vector<int> writesBefore;
};

} // namespace

TEST(WaveOutStream, StartRendersBothBuffersBeforeQueuingAndAFastDeviceStillPlaysThemInOrder)
{
    AudioFormat format { 44100, 32, 1 };
    EagerDevice device;
    PeriodSource source(device);
    RecordingStream stream(device, &source);
    stream.setFormat(&format);
    ASSERT_EQ(stream.start(), 1);
    EXPECT_EQ(source.writesBefore, (std::vector<int> { 0, 0 }));
    std::vector<int16_t> firstSamples { device.lastPlayed().at(0) };
    for (int played = 0; played < 3 && device.playOne(); ++played)
        firstSamples.push_back(device.lastPlayed().at(0));
    // Periods 1 to 4 at full scale 32767, truncated.
    EXPECT_EQ(firstSamples, (std::vector<int16_t> { 4095, 8191, 12287, 16383 }));
}

TEST(WaveOutStream, DoneWhilePlayingRefillsTheBufferJustPlayed)
{
    StreamRig rig;
    ASSERT_EQ(rig.stream.start(), 1);
    WaveHeader* first = rig.device.queuedHeader(0);
    WaveHeader* second = rig.device.queuedHeader(1);
    ASSERT_TRUE(rig.device.playOne());
    EXPECT_EQ(rig.source.renders.load(), 3);
    EXPECT_EQ(rig.stream.peaks.size(), 3u);
    ASSERT_EQ(rig.device.queued(), 2u);
    EXPECT_EQ(rig.device.queuedHeader(0), second);
    EXPECT_EQ(rig.device.queuedHeader(1), first);
    ASSERT_TRUE(rig.device.playOne());
    EXPECT_EQ(rig.device.queuedHeader(1), second);
}

TEST(WaveOutStream, StopPausesResetsUnpreparesAndClosesThenZeroesTheMeters)
{
    StreamRig rig;
    rig.source.tail = { 0.5f };
    ASSERT_EQ(rig.stream.start(), 1);
    rig.device.clearCalls();
    rig.stream.peaks.clear();
    rig.stream.loads.clear();
    rig.stream.stop();
    EXPECT_EQ(rig.stream.state(), StreamState::Closed);
    EXPECT_EQ(rig.device.calls(), (Calls { "pause", "reset", "unprepare", "unprepare", "close" }));
    EXPECT_FALSE(rig.device.isOpen());
    EXPECT_EQ(rig.stream.peaks, (Peaks { { 0.0f, 0.0f } }));
    EXPECT_EQ(rig.stream.loads, (std::vector<float> { 0.0f }));
    EXPECT_FALSE(rig.stream.isClipped());
    // The buffers the reset returned were not refilled.
    EXPECT_EQ(rig.source.renders.load(), 2);
}

TEST(WaveOutStream, StopGracefullyLetsBothQueuedBuffersPlayBeforeClosing)
{
    StreamRig rig;
    ASSERT_EQ(rig.stream.start(), 1);
    {
        DevicePlayer player(rig.device, [&] { return rig.stream.state() == StreamState::Draining; });
        EXPECT_EQ(rig.stream.stopGracefully(), 1);
    }
    EXPECT_EQ(rig.stream.state(), StreamState::Closed);
    // Both buffers played out (the close succeeded without a reset); done while draining does
    // not refill.
    EXPECT_EQ(rig.source.renders.load(), 2);
    Calls calls = rig.device.calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "write"), 2);
    EXPECT_EQ(calls.back(), "close");
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "reset"), 0);
}

TEST(WaveOutStream, WindowPathDrainsOnDoneAndStartResumesWithoutReopening)
{
    StreamRig rig;
    RecordingWindow window;
    rig.stream.setNotificationWindow(&window);
    ASSERT_EQ(rig.stream.start(), 1);
    EXPECT_EQ(rig.device.listener(), &window);
    EXPECT_EQ(window.messages, (std::vector<uint32_t> { 955 }));

    ASSERT_TRUE(rig.device.playOne());
    EXPECT_EQ(rig.source.renders.load(), 2);
    EXPECT_EQ(rig.stream.onDeviceMessage(957), 1);
    EXPECT_EQ(rig.source.renders.load(), 3);

    EXPECT_EQ(rig.stream.stopGracefully(), 1);
    EXPECT_EQ(rig.stream.state(), StreamState::Draining);
    EXPECT_TRUE(rig.device.isOpen());

    EXPECT_EQ(rig.stream.start(), 1);
    EXPECT_EQ(rig.stream.state(), StreamState::Playing);
    EXPECT_EQ(rig.device.opens(), 1);
    EXPECT_EQ(rig.stream.onDeviceMessage(957), 1);
    EXPECT_EQ(rig.source.renders.load(), 4);

    EXPECT_EQ(rig.stream.stopGracefully(), 1);
    EXPECT_EQ(rig.stream.onDeviceMessage(957), 1);
    EXPECT_EQ(rig.stream.state(), StreamState::Closed);
    EXPECT_FALSE(rig.device.isOpen());
}

TEST(WaveOutStream, AClosedStreamAcceptsDeviceMessagesAndStopsWithoutTouchingTheDevice)
{
    StreamRig rig;
    for (uint32_t message : { 955u, 956u, 957u })
        EXPECT_EQ(rig.stream.onDeviceMessage(message), 1) << message;
    for (uint32_t message : { 0u, 954u, 958u, 0x400u })
        EXPECT_EQ(rig.stream.onDeviceMessage(message), 0) << message;
    rig.stream.stop();
    EXPECT_EQ(rig.stream.stopGracefully(), 1);
    EXPECT_EQ(rig.stream.state(), StreamState::Closed);
    // Done while closed neither fills nor stops.
    EXPECT_EQ(rig.source.renders.load(), 0);
    EXPECT_TRUE(rig.device.calls().empty());
    EXPECT_TRUE(rig.stream.peaks.empty());
}

TEST(WaveOutStream, LatencyChangeRestartsOnlyAPlayingStream)
{
    StreamRig rig;
    rig.stream.setLatency(50);
    EXPECT_EQ(rig.stream.latency(), 50);
    EXPECT_TRUE(rig.device.calls().empty());
    ASSERT_EQ(rig.stream.start(), 1);
    rig.stream.peaks.clear();
    rig.stream.setLatency(100);
    EXPECT_EQ(rig.source.lastLatency.load(), 100);
    EXPECT_EQ(rig.stream.state(), StreamState::Playing);
    EXPECT_EQ(rig.device.opens(), 2);
    EXPECT_EQ(rig.stream.deviceBufferBytes(0), 8768u); // 4410 frames round down to 4384
    EXPECT_EQ(rig.device.queued(), 2u);
    EXPECT_EQ(rig.device.queuedHeader(0)->bufferLength, 8768u);
    // The stop in between dropped the meters to zero before the new fills.
    ASSERT_EQ(rig.stream.peaks.size(), 3u);
    EXPECT_EQ(rig.stream.peaks[0], std::make_pair(0.0f, 0.0f));
}

TEST(WaveOutStream, FailedStartLeavesTheStreamClosedAndTheNextStartReopens)
{
    for (bool failOpen : { true, false }) {
        SCOPED_TRACE(failOpen ? "open fails" : "prepare fails");
        StreamRig rig;
        (failOpen ? rig.device.openResult : rig.device.prepareResult) = WaveResult::InvalidBuffer;
        EXPECT_EQ(rig.stream.start(), 0);
        EXPECT_EQ(rig.device.isOpen(), !failOpen);
        EXPECT_EQ(rig.stream.state(), StreamState::Closed);
        EXPECT_EQ(rig.source.renders.load(), 0);
        EXPECT_EQ(rig.stream.position(), 0u);

        rig.device.openResult = rig.device.prepareResult = WaveResult::Ok;
        EXPECT_EQ(rig.stream.start(), 1);
        EXPECT_EQ(rig.device.opens(), failOpen ? 1 : 2);
        EXPECT_EQ(rig.stream.state(), StreamState::Playing);
    }
}

TEST(WaveOutStream, CloseFailureInStopIsFatalAndLeavesItResetting)
{
    FakeWaveDevice device;
    StreamWithHeldStop stream(device, nullptr);
    ReportRecorder reports;
    FatalReportsUnwind unwind;
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(stream.start(), 1);
        EXPECT_EQ(device.opens(), round + 1); // the second start closed and reopened from Resetting
        device.closeResult = WaveResult::StillPlaying;
        EXPECT_THROW(stream.stop(), FatalErrorUnwind);
        device.closeResult = WaveResult::Ok;
        ASSERT_EQ(reports.reports().size(), round + 1u);
        EXPECT_EQ(reports.last().code, -1);
        EXPECT_EQ(reports.last().source, "Sound/waveOut");
        EXPECT_EQ(reports.last().line, 126);
        EXPECT_EQ(reports.last().message, u"Close");
        EXPECT_EQ(stream.state(), StreamState::Resetting);
        EXPECT_TRUE(device.isOpen());
    }
    // A start whose reopen fails stays Resetting with no device; a stop then has nothing to do.
    device.openResult = WaveResult::NoDevice;
    stream.holdStop = true;
    EXPECT_EQ(stream.start(), 0);
    stream.holdStop = false;
    ASSERT_EQ(stream.state(), StreamState::Resetting);
    device.clearCalls();
    stream.peaks.clear();
    stream.stop();
    EXPECT_EQ(stream.state(), StreamState::Resetting);
    EXPECT_TRUE(device.calls().empty());
    EXPECT_TRUE(stream.peaks.empty());
    EXPECT_EQ(stream.position(), 0xFFFFFFFFu);
}

TEST(WaveOutStream, PositionIsTheDevicePositionWhileOpenAndItsFailureIsFatal)
{
    StreamRig rig;
    ASSERT_EQ(rig.stream.start(), 1);
    EXPECT_EQ(rig.stream.position(), 0u);
    rig.device.playOne();
    EXPECT_EQ(rig.stream.position(), 8800u);
    rig.stream.stop();
    EXPECT_EQ(rig.stream.position(), 0u);

    ASSERT_EQ(rig.stream.start(), 1);
    ReportRecorder reports;
    FatalReportsUnwind unwind;
    rig.device.positionResult = WaveResult::NotOpen;
    EXPECT_THROW(rig.stream.position(), FatalErrorUnwind);
    ASSERT_EQ(reports.reports().size(), 1u);
    EXPECT_EQ(reports.last().source, "Sound/waveOut");
    EXPECT_EQ(reports.last().line, 171);
    EXPECT_EQ(reports.last().message, u"waveOutGetPosition");
}

TEST(WaveOutStream, VolumeSetsBothChannelWordsAndReadsThemAsOneNumber)
{
    StreamRig rig;
    struct Case {
        float volume;
        uint32_t word;
    };
    for (Case c : { Case { 0.5f, 0x7FFF7FFFu }, Case { 0.0f, 0u }, Case { 1.0f, 0xFFFFFFFFu }, Case { 7.0f, 0xFFFFFFFFu } }) {
        rig.stream.setVolume(c.volume);
        uint32_t word = 1;
        rig.device.volume(word);
        EXPECT_EQ(word, c.word) << c.volume;
    }
    rig.stream.setVolume(0.0f);
    EXPECT_EQ(rig.stream.volume(), 0.0f);
    // Both words read together: far above 1.0, as the design has it.
    rig.stream.setVolume(0.5f);
    EXPECT_NEAR(rig.stream.volume(), 32768.0f, 0.01f);
}

TEST(WaveOutStream, DestructionStopsAnOpenDevice)
{
    FakeWaveDevice device;
    {
        ScriptedSource source;
        RecordingStream stream(device, &source);
        ASSERT_EQ(stream.start(), 1);
        // The built-in default format says 16 bits, which would ask for twice the frames that fit.
        EXPECT_EQ(source.lastFrames.load(), 8800u);
        EXPECT_EQ(source.lastChannels.load(), 1u);
    }
    EXPECT_FALSE(device.isOpen());
    EXPECT_EQ(device.queued(), 0u);
}

TEST(WaveOutStreamFill, ClipsConvertsAndReportsSignedPeaks)
{
    struct Case {
        const char* name;
        uint8_t channels;
        std::vector<float> head;
        std::vector<float> tail;
        std::vector<int16_t> firstSamples;
        std::pair<float, float> peak;
        bool clipped;
    };
    const Case cases[] = {
        { "over full scale clips and sets the flag", 1, {}, { 1.5f }, { 32767, 32767 }, { 1.0f, 1.0f }, true },
        { "negative full scale never sets the flag", 1, {}, { -1.5f }, { -32767, -32767 }, { -1.0f, -1.0f }, false },
        { "a zero after -0.5 replaces the peak", 1, { -0.5f }, { 0.0f }, { -16383, 0 }, { 0.0f, 0.0f }, false },
        { "conversion truncates toward zero", 1, {}, { 0.25f }, { 8191, 8191 }, { 0.25f, 0.25f }, false },
        { "negative conversion truncates toward zero", 1, {}, { -0.25f }, { -8191, -8191 }, { -0.25f, -0.25f }, false },
        { "a later positive sample beats a stored positive peak", 1, { 0.5f, 0.75f }, { 0.25f }, { 16383, 24575, 8191 }, { 0.75f, 0.75f }, false },
        { "stereo peaks are per channel and keep their sign", 2, {}, { 0.5f, -0.75f }, { 16383, -24575 }, { 0.5f, -0.75f }, false },
        { "either stereo channel at full scale sets the flag", 2, {}, { 0.1f, 1.2f }, { 3276, 32767 }, { 0.1f, 1.0f }, true },
        { "not a number is written as silence", 1, {}, { std::numeric_limits<float>::quiet_NaN() }, { 0, 0 }, { 0.0f, 0.0f }, false },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StreamRig rig({ 44100, 32, c.channels });
        rig.source.head = c.head;
        rig.source.tail = c.tail;
        ASSERT_EQ(rig.stream.start(), 1);
        rig.device.playOne(); // the buffer played first is the one filled first
        std::vector<int16_t> samples = rig.device.lastPlayed();
        ASSERT_GE(samples.size(), c.firstSamples.size());
        EXPECT_EQ(std::vector<int16_t>(samples.begin(), samples.begin() + c.firstSamples.size()), c.firstSamples);
        ASSERT_FALSE(rig.stream.peaks.empty());
        EXPECT_EQ(rig.stream.peaks[0], c.peak);
        // The third fill (after playOne) rendered the same script, so the flag describes it too.
        EXPECT_EQ(rig.stream.isClipped(), c.clipped);
    }
}

TEST(WaveOutStreamFill, LoadIsTheTimeSinceTheDeviceAskedOverTheLatency)
{
    StreamRig rig({ 44100, 32, 1 }, 200, steppingClock);
    ASSERT_EQ(rig.stream.start(), 1);
    // The open notification stored the tick; the two fills in start read it 10 and 20 ms later.
    ASSERT_EQ(rig.stream.loads.size(), 2u);
    EXPECT_FLOAT_EQ(rig.stream.loads[0], 0.05f);
    EXPECT_FLOAT_EQ(rig.stream.loads[1], 0.1f);
    // Each done restarts the tick before its fill.
    rig.device.playOne();
    ASSERT_EQ(rig.stream.loads.size(), 3u);
    EXPECT_FLOAT_EQ(rig.stream.loads[2], 0.05f);
}
