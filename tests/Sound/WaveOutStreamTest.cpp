#include "Sound/WaveOutStream.h"

#include "support/PulledWaveDevice.h"
#include "support/ReportRecorder.h"
#include "support/ScriptedSource.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <tuple>

using namespace pulsara;
using namespace pulsara::testing;
using pulsara::test::FatalReportsUnwind;
using pulsara::test::ReportRecorder;

namespace {

using Peaks = std::vector<std::pair<float, float>>;
using Samples = std::vector<int16_t>;

// Advances ten milliseconds every time it is read.
std::atomic<uint32_t> fakeNow { 1000 };
uint32_t steppingClock() { return fakeNow.fetch_add(10); }

// Keeps every meter notification, as the application's meters would receive them. With
// `holdStop` it skips the stop that start makes before it reopens, which reaches the state the
// design allows after a survived close failure: Resetting with no device.
class RecordingStream : public WaveOutStream {
public:
    using WaveOutStream::WaveOutStream;
    Peaks peaks;
    std::vector<float> loads;
    bool holdStop = false;
    void stop() override
    {
        if (!holdStop)
            WaveOutStream::stop();
    }

protected:
    void onPeaks(float left, float right) override { peaks.emplace_back(left, right); }
    void onCpuLoad(float load) override { loads.push_back(load); }
};

// A stream fed by a script on the real queue; its output is played by hand on the test's thread,
// which also receives the done notifications.
struct StreamRig {
    explicit StreamRig(AudioFormat audioFormat = { 44100, 32, 1 }, int latency = 200, TickClock clock = steadyTickCount)
        : format(audioFormat)
        , stream(device, &source, clock)
    {
        stream.setFormat(&format);
        stream.setLatency(latency);
    }
    Samples playOne() { return device.pull(uint32_t(stream.deviceBufferBytes(0) / 2 / format.channels), format.channels); }

    AudioFormat format;
    PulledWaveDevice device;
    ScriptedSource source;
    RecordingStream stream;
};

// A window that only records what the device posts to it, as a message queue would.
struct RecordingWindow : WaveDeviceListener {
    void onWaveMessage(WaveMessage message, WaveHeader*) override { messages.push_back(static_cast<uint32_t>(message)); }
    std::vector<uint32_t> messages;
};

// Renders period n (counting from 1) as the value n / 8.
struct PeriodSource : ScriptedSource {
    void render(float* out, uint32_t frames, uint32_t channels) override
    {
        tail = { static_cast<float>(renders.load() + 1) / 8.0f };
        ScriptedSource::render(out, frames, channels);
    }
};

// Notes how many periods the source had rendered when each buffer was written; with `eager` its
// output plays the first buffer whole the moment it is queued, before the stream can queue the
// second, as a fast device thread may.
struct CountingDevice : PulledWaveDevice {
    WaveResult write(WaveHeader& header) override
    {
        rendersAtWrite.push_back(source->renders.load());
        WaveResult result = PulledWaveDevice::write(header);
        if (rendersAtWrite.size() == 1 && eager)
            firstPlayed = pull(header.bufferLength / 2);
        return result;
    }
    const PeriodSource* source = nullptr;
    bool eager = false;
    std::vector<int> rendersAtWrite;
    Samples firstPlayed;
};

} // namespace

// The device always gets 16-bit PCM, whatever the mix's sample size, with the extra size of 18.
TEST(WaveOutStream, StartOpens16BitPcmWithBuffersOfWholeUnitsOfTheLatencyPeriod)
{
    // Rate, channels, latency, bytes per device buffer, frames per render, bytes per second.
    const std::tuple<uint32_t, uint16_t, int, size_t, uint32_t, uint32_t> cases[] = {
        { 44100, 1, 200, 17600, 8800, 88200 },
        { 44100, 2, 200, 35264, 8816, 176400 },
        { 22050, 1, 30, 1280, 640, 44100 }, // 661 frames round down to 640
        { 48000, 2, 100, 19200, 4800, 192000 },
    };
    for (const auto& [rate, channels, latency, deviceBytes, renderFrames, bytesPerSecond] : cases) {
        SCOPED_TRACE(::testing::Message() << rate << " Hz, " << channels << " ch, " << latency << " ms");
        StreamRig rig({ rate, 32, static_cast<uint8_t>(channels) }, latency);
        EXPECT_EQ(rig.source.format(), &rig.format);
        EXPECT_EQ(rig.source.lastLatency.load(), latency);
        ASSERT_EQ(rig.stream.start(), 1);
        const WaveFormat& opened = rig.stream.waveFormat();
        EXPECT_EQ((std::vector<uint32_t> { opened.formatTag, opened.channels, opened.samplesPerSecond, opened.bitsPerSample,
                      opened.blockAlign, opened.averageBytesPerSecond, opened.extraSize }),
            (std::vector<uint32_t> { 1, channels, rate, 16, channels * 2u, bytesPerSecond, 18 }));
        EXPECT_EQ(rig.source.lastFrames.load(), renderFrames);
        EXPECT_EQ((std::vector { rig.stream.deviceBufferBytes(0), rig.stream.deviceBufferBytes(1), rig.stream.floatBufferBytes() }),
            (std::vector { deviceBytes, deviceBytes, 2 * deviceBytes }));
    }
}

// Each buffer handed back is refilled with the next period, so the device plays every period once
// and in order, even when it hands the first buffer back before start has queued the second.
// The stream keeps its built-in format (44100 Hz mono, 16 bits), whose render count is capped at
// the 8800 frames that fit, and closes the device when it is destroyed.
TEST(WaveOutStream, StartRendersBothBuffersBeforeQueuingEitherAndThePeriodsPlayInOrder)
{
    for (bool eager : { false, true }) {
        SCOPED_TRACE(eager ? "a device that plays at once" : "a device that waits to be pulled");
        PeriodSource source;
        CountingDevice device;
        device.source = &source;
        device.eager = eager;
        {
            RecordingStream stream(device, &source);
            ASSERT_EQ(stream.start(), 1);
            ASSERT_FALSE(device.rendersAtWrite.empty());
            EXPECT_EQ(device.rendersAtWrite[0], 2);
            Samples firstSamples;
            if (eager)
                firstSamples.push_back(device.firstPlayed.at(0));
            while (firstSamples.size() < 5)
                firstSamples.push_back(device.pull(8800).at(0));
            // Periods 1 to 5 at full scale 32767, truncated.
            EXPECT_EQ(firstSamples, (Samples { 4095, 8191, 12287, 16383, 20479 }));
            EXPECT_EQ(source.renders.load(), 7) << "two buffers stay queued behind the ones played";
            EXPECT_EQ(source.lastFrames.load(), 8800u);
        }
        EXPECT_FALSE(device.isOpen());
    }
}

TEST(WaveOutStream, StopClosesAtOnceWithoutRefillingAndZeroesTheMetersAndAClosedStreamIgnoresIt)
{
    StreamRig rig;
    rig.source.tail = { 1.5f };
    ASSERT_EQ(rig.stream.start(), 1);
    rig.playOne();
    EXPECT_EQ(rig.stream.position(), 8800u);
    ASSERT_TRUE(rig.stream.isClipped());
    rig.stream.peaks.clear();
    rig.stream.loads.clear();
    rig.stream.stop();
    EXPECT_EQ(rig.stream.state(), StreamState::Closed);
    EXPECT_FALSE(rig.device.isOpen());
    EXPECT_EQ(rig.stream.peaks, (Peaks { { 0.0f, 0.0f } }));
    EXPECT_EQ(rig.stream.loads, (std::vector<float> { 0.0f }));
    EXPECT_FALSE(rig.stream.isClipped());
    EXPECT_EQ(rig.source.renders.load(), 3) << "the buffers the reset returned were not refilled";
    EXPECT_EQ(rig.stream.position(), 0u);

    // The device's open, close and done messages are taken; a done neither fills nor stops.
    for (uint32_t message : { 955u, 956u, 957u, 0u, 954u, 958u, 0x400u })
        EXPECT_EQ(rig.stream.onDeviceMessage(message), message >= 955 && message <= 957 ? 1 : 0) << message;
    rig.stream.stop();
    EXPECT_EQ(rig.stream.stopGracefully(), 1);
    EXPECT_EQ(rig.source.renders.load(), 3);
    EXPECT_EQ(rig.stream.peaks.size(), 1u) << "a closed stream's stop leaves the meters alone";
    EXPECT_EQ(rig.device.outputsClosed, 1);
}

// The background drain: the owner's timer asks finishDrain until the device has played the
// queued buffers, none refilled or cut short; a start meanwhile resumes on the open device.
TEST(WaveOutStream, DrainPlaysTheQueuedBuffersOutBeforeClosingAndStartResumesIt)
{
    StreamRig rig;
    rig.source.tail = { 0.5f };
    ASSERT_EQ(rig.stream.start(), 1);
    EXPECT_EQ(rig.stream.start(), 1) << "a playing stream goes on as it is";
    rig.stream.beginDrain();
    EXPECT_EQ(rig.stream.state(), StreamState::Draining);
    EXPECT_FALSE(rig.stream.finishDrain());
    EXPECT_EQ(rig.playOne(), Samples(8800, 16383));
    EXPECT_EQ(rig.source.renders.load(), 2);

    EXPECT_EQ(rig.stream.start(), 1);
    EXPECT_EQ(rig.playOne(), Samples(8800, 16383));
    EXPECT_EQ(rig.source.renders.load(), 3) << "refilled again";

    rig.stream.beginDrain();
    EXPECT_FALSE(rig.stream.finishDrain());
    EXPECT_EQ(rig.playOne(), Samples(8800, 16383));
    EXPECT_TRUE(rig.stream.finishDrain());
    EXPECT_EQ(rig.stream.state(), StreamState::Closed);
    EXPECT_FALSE(rig.device.isOpen());
    EXPECT_EQ(rig.device.outputsClosed, 1) << "never reopened";
    EXPECT_EQ(rig.source.renders.load(), 3);
}

TEST(WaveOutStream, WithAWindowTheWindowPassesDoneOnAndAGracefulStopEndsAtTheNextDone)
{
    StreamRig rig;
    RecordingWindow window;
    rig.stream.setNotificationWindow(&window);
    ASSERT_EQ(rig.stream.start(), 1);
    rig.playOne();
    EXPECT_EQ(window.messages, (std::vector<uint32_t> { 955, 957 }));
    EXPECT_EQ(rig.source.renders.load(), 2);
    EXPECT_EQ(rig.stream.onDeviceMessage(957), 1);
    EXPECT_EQ(rig.source.renders.load(), 3);

    EXPECT_EQ(rig.stream.stopGracefully(), 1);
    EXPECT_EQ(rig.stream.state(), StreamState::Draining);
    EXPECT_EQ(rig.stream.onDeviceMessage(957), 1);
    EXPECT_EQ(rig.stream.state(), StreamState::Closed);
    EXPECT_FALSE(rig.device.isOpen());
}

TEST(WaveOutStream, LatencyChangeIsStoredWhileStoppedAndRestartsAPlayingStream)
{
    StreamRig rig; // which set its latency while stopped, as the sizing test's rigs do
    rig.source.tail = { 0.5f };
    ASSERT_EQ(rig.stream.start(), 1);
    rig.stream.peaks.clear();
    rig.stream.setLatency(100);
    EXPECT_EQ(rig.source.lastLatency.load(), 100);
    EXPECT_EQ(rig.stream.state(), StreamState::Playing);
    EXPECT_EQ(rig.device.outputsClosed, 1);
    EXPECT_TRUE(rig.device.isOpen());
    EXPECT_EQ(rig.source.lastFrames.load(), 4384u); // 4410 frames round down
    EXPECT_EQ(rig.stream.deviceBufferBytes(0), 8768u);
    // The stop in between dropped the meters to zero before the new fills.
    EXPECT_EQ(rig.stream.peaks, (Peaks { { 0.0f, 0.0f }, { 0.5f, 0.5f }, { 0.5f, 0.5f } }));
}

TEST(WaveOutStream, FailedStartLeavesTheStreamClosedAndTheNextStartReopens)
{
    for (bool failOpen : { true, false }) {
        SCOPED_TRACE(failOpen ? "open fails" : "prepare fails: 3 ms at 8000 Hz is less than one unit");
        StreamRig rig({ 8000, 32, 1 }, failOpen ? 200 : 3);
        rig.device.openResult = failOpen ? WaveResult::NoDevice : WaveResult::Ok;
        EXPECT_EQ(rig.stream.start(), 0);
        EXPECT_EQ(rig.device.isOpen(), !failOpen);
        EXPECT_EQ(rig.stream.state(), StreamState::Closed);
        EXPECT_EQ(rig.source.renders.load(), 0);

        rig.device.openResult = WaveResult::Ok;
        rig.stream.setLatency(200);
        EXPECT_EQ(rig.stream.start(), 1);
        EXPECT_EQ(rig.device.outputsClosed, failOpen ? 0 : 1) << "a device left open is closed before it is opened again";
        EXPECT_EQ(rig.stream.state(), StreamState::Playing);
    }
}

TEST(WaveOutStream, CloseFailureInStopAndPositionFailureAreFatalAndAFailedCloseLeavesItResetting)
{
    PulledWaveDevice device;
    RecordingStream stream(device, nullptr);
    ReportRecorder reports;
    FatalReportsUnwind unwind;
    ASSERT_EQ(stream.start(), 1);
    device.positionResult = WaveResult::NotOpen;
    EXPECT_THROW(stream.position(), FatalErrorUnwind);
    device.positionResult = WaveResult::Ok;
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(stream.start(), 1);
        EXPECT_EQ(device.outputsClosed, round); // the second start closed and reopened from Resetting
        device.closeResult = WaveResult::StillPlaying;
        EXPECT_THROW(stream.stop(), FatalErrorUnwind);
        device.closeResult = WaveResult::Ok;
        EXPECT_EQ(stream.state(), StreamState::Resetting);
        EXPECT_TRUE(device.isOpen());
    }
    const pulsara::test::ReportSummary close { -1, "Sound/waveOut", 126, u"Close" };
    EXPECT_EQ(reports.summaries(), (std::vector { pulsara::test::ReportSummary { -1, "Sound/waveOut", 171, u"waveOutGetPosition" }, close, close }));
    // A start whose reopen fails (the device is still open) stays Resetting with no device; a
    // stop then has nothing to do.
    stream.holdStop = true;
    EXPECT_EQ(stream.start(), 0);
    stream.holdStop = false;
    ASSERT_EQ(stream.state(), StreamState::Resetting);
    stream.peaks.clear();
    stream.stop();
    EXPECT_EQ(stream.state(), StreamState::Resetting);
    EXPECT_TRUE(stream.peaks.empty());
    EXPECT_EQ(stream.position(), 0xFFFFFFFFu);
}

TEST(WaveOutStream, VolumeSetsBothChannelWordsAndReadsThemAsOneNumber)
{
    StreamRig rig;
    for (auto [volume, expected] : { std::pair { 0.5f, 0x7FFF7FFFu }, { 0.0f, 0u }, { 1.0f, 0xFFFFFFFFu }, { 7.0f, 0xFFFFFFFFu } }) {
        rig.stream.setVolume(volume);
        uint32_t word = 1;
        rig.device.volume(word);
        EXPECT_EQ(word, expected) << volume;
    }
    // Both words read together: far above 1.0, as the design has it.
    rig.stream.setVolume(0.5f);
    EXPECT_NEAR(rig.stream.volume(), 32768.0f, 0.01f);
}

TEST(WaveOutStreamFill, ClipsConvertsAndReportsSignedPeaks)
{
    // What, channels, the script's head and tail, the first samples played, the peak, the clip flag.
    const std::tuple<const char*, uint8_t, std::vector<float>, std::vector<float>, Samples, std::pair<float, float>, bool> cases[] = {
        { "over full scale clips and sets the flag", 1, {}, { 1.5f }, { 32767, 32767 }, { 1.0f, 1.0f }, true },
        { "negative full scale never sets the flag", 1, {}, { -1.5f }, { -32767, -32767 }, { -1.0f, -1.0f }, false },
        { "a zero after -0.5 replaces the peak", 1, { -0.5f }, { 0.0f }, { -16383, 0 }, { 0.0f, 0.0f }, false },
        { "a later positive sample beats a stored positive peak", 1, { 0.5f, 0.75f }, { 0.25f }, { 16383, 24575, 8191 }, { 0.75f, 0.75f }, false },
        { "stereo peaks are per channel and keep their sign; conversion truncates toward zero", 2, {}, { 0.25f, -0.75f },
            { 8191, -24575 }, { 0.25f, -0.75f }, false },
        { "either stereo channel at full scale sets the flag", 2, {}, { 0.1f, 1.2f }, { 3276, 32767 }, { 0.1f, 1.0f }, true },
        { "not a number is written as silence", 1, {}, { std::numeric_limits<float>::quiet_NaN() }, { 0, 0 }, { 0.0f, 0.0f }, false },
    };
    for (const auto& [name, channels, head, tail, firstSamples, peak, clipped] : cases) {
        SCOPED_TRACE(name);
        StreamRig rig({ 44100, 32, channels });
        rig.source.head = head;
        rig.source.tail = tail;
        ASSERT_EQ(rig.stream.start(), 1);
        Samples samples = rig.playOne(); // the buffer played first is the one filled first
        EXPECT_EQ(Samples(samples.begin(), samples.begin() + firstSamples.size()), firstSamples);
        ASSERT_FALSE(rig.stream.peaks.empty());
        EXPECT_EQ(rig.stream.peaks[0], peak);
        // The third fill (after playOne) rendered the same script, so the flag describes it too.
        EXPECT_EQ(rig.stream.isClipped(), clipped);
    }
}

TEST(WaveOutStreamFill, LoadIsTheTimeSinceTheDeviceAskedOverTheLatency)
{
    StreamRig rig({ 44100, 32, 1 }, 200, steppingClock);
    ASSERT_EQ(rig.stream.start(), 1);
    // The open notification stored the tick; the two fills in start read it 10 and 20 ms later.
    EXPECT_EQ(rig.stream.loads, (std::vector { 0.05f, 0.1f }));
    // Each done restarts the tick before its fill.
    rig.playOne();
    EXPECT_EQ(rig.stream.loads, (std::vector { 0.05f, 0.1f, 0.05f }));
}
