#include "Sound/QueuedWaveDevice.h"

#include "support/PulledWaveDevice.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

using namespace pulsara;
using pulsara::testing::PulledWaveDevice;

namespace {

using Samples = std::vector<int16_t>;

// Keeps every message, or with `refill` set only hands each returned buffer to it (from
// whichever thread returned it).
struct Recorder : WaveDeviceListener {
    void onWaveMessage(WaveMessage message, WaveHeader* header) override
    {
        if (refill && message == WaveMessage::Done)
            return refill(header);
        messages.push_back(message);
        if (message == WaveMessage::Done)
            done.push_back(header);
    }
    std::vector<WaveMessage> messages;
    std::vector<WaveHeader*> done;
    std::function<void(WaveHeader*)> refill;
};

WaveFormat pcm(uint16_t channels, uint32_t rate = 44100)
{
    WaveFormat format;
    format.channels = channels;
    format.samplesPerSecond = rate;
    format.blockAlign = static_cast<uint16_t>(channels * 2);
    format.averageBytesPerSecond = rate * format.blockAlign;
    return format;
}

struct Buffer {
    explicit Buffer(Samples content)
        : samples(std::move(content))
    {
        header.data = reinterpret_cast<uint8_t*>(samples.data());
        header.bufferLength = static_cast<uint32_t>(samples.size() * sizeof(int16_t));
    }
    Samples samples;
    WaveHeader header;
};

void queue(WaveDevice& device, std::initializer_list<Buffer*> buffers)
{
    for (Buffer* b : buffers) {
        ASSERT_EQ(device.prepare(b->header), WaveResult::Ok);
        ASSERT_EQ(device.write(b->header), WaveResult::Ok);
        EXPECT_TRUE(b->header.has(WaveHeader::kInQueue));
    }
}

uint32_t positionOf(const WaveDevice& device)
{
    uint32_t frames = 99;
    EXPECT_EQ(device.position(frames), WaveResult::Ok);
    return frames;
}

} // namespace

TEST(QueuedWaveDevice, RefusesFormatsItCannotPlayAndStaysClosedWhenTheOutputFails)
{
    WaveFormat threeChannels = pcm(2), eightBit = pcm(1), badAlign = pcm(2);
    threeChannels.channels = 3;
    eightBit.bitsPerSample = 8;
    badAlign.blockAlign = 2;
    for (const WaveFormat& format : { threeChannels, eightBit, pcm(1, 0), badAlign }) {
        PulledWaveDevice device;
        EXPECT_EQ(device.open(format, nullptr), WaveResult::NoDevice) << format.channels << " " << format.blockAlign;
        EXPECT_FALSE(device.isOpen());
    }
    PulledWaveDevice device;
    Recorder recorder;
    device.openResult = WaveResult::NoDevice;
    EXPECT_EQ(device.open(pcm(1), &recorder), WaveResult::NoDevice);
    EXPECT_FALSE(device.isOpen());
    EXPECT_TRUE(recorder.messages.empty());
    Buffer buffer({ 1, 2 });
    EXPECT_EQ(device.prepare(buffer.header), WaveResult::NotOpen);
    EXPECT_EQ(device.reset(), WaveResult::NotOpen);
    EXPECT_EQ(device.close(), WaveResult::NotOpen);
    uint32_t frames = 0;
    EXPECT_EQ(device.position(frames), WaveResult::NotOpen);
}

TEST(QueuedWaveDevice, PlaysBuffersInOrderAcrossCallbacksAndReportsEachDone)
{
    PulledWaveDevice device;
    Recorder recorder;
    ASSERT_EQ(device.open(pcm(1), &recorder), WaveResult::Ok);
    Buffer first({ 1, 2, 3 });
    Buffer second({ 4, 5 });
    queue(device, { &first, &second });
    EXPECT_EQ(device.pull(2), (Samples { 1, 2 }));
    EXPECT_TRUE(recorder.done.empty());
    EXPECT_EQ(device.pull(4), (Samples { 3, 4, 5, 0 }));
    EXPECT_EQ(recorder.done, (std::vector<WaveHeader*> { &first.header, &second.header }));
    EXPECT_TRUE(first.header.has(WaveHeader::kDone));
    EXPECT_FALSE(first.header.has(WaveHeader::kInQueue));
    EXPECT_EQ(recorder.messages.front(), WaveMessage::Open);
    EXPECT_EQ(positionOf(device), 5u);
}

TEST(QueuedWaveDevice, ABufferWrittenFromDoneContinuesWithoutAGap)
{
    PulledWaveDevice device;
    Recorder recorder;
    ASSERT_EQ(device.open(pcm(2), &recorder), WaveResult::Ok);
    Buffer buffer({ 7, -7 });
    int refills = 0;
    recorder.refill = [&](WaveHeader* header) {
        if (refills++ < 3)
            device.write(*header);
    };
    queue(device, { &buffer });
    EXPECT_EQ(device.pull(5, 2), (Samples { 7, -7, 7, -7, 7, -7, 7, -7, 0, 0 }));
    // Running dry at the end is the drain, not an underrun.
    EXPECT_EQ(device.underruns(), 0u);
}

TEST(QueuedWaveDevice, CountsAGapBetweenBuffersAsOneUnderrunButNotAPause)
{
    PulledWaveDevice device;
    ASSERT_EQ(device.open(pcm(1), nullptr), WaveResult::Ok);
    Buffer first({ 1 });
    Buffer second({ 2 });
    Buffer third({ 3, 4, 5, 6 });
    device.pull(4); // nothing written yet: silence before any sound is no gap
    queue(device, { &first });
    device.pull(3);
    device.pull(3);
    EXPECT_EQ(device.underruns(), 0u);
    queue(device, { &second, &third });
    EXPECT_EQ(device.pull(2), (Samples { 2, 3 }));
    EXPECT_EQ(device.underruns(), 1u);
    EXPECT_EQ(device.pull(1), (Samples { 4 }));
    ASSERT_EQ(device.pause(), WaveResult::Ok);
    EXPECT_EQ(device.pull(2), (Samples { 0, 0 }));
    EXPECT_EQ(device.underruns(), 1u);
    EXPECT_EQ(positionOf(device), 4u);
}

TEST(QueuedWaveDevice, CloseFailsWhileABufferIsQueued)
{
    PulledWaveDevice device;
    Recorder recorder;
    ASSERT_EQ(device.open(pcm(1), &recorder), WaveResult::Ok);
    Buffer buffer({ 1, 2 });
    queue(device, { &buffer });
    EXPECT_EQ(device.close(), WaveResult::StillPlaying);
    EXPECT_EQ(device.unprepare(buffer.header), WaveResult::StillPlaying);
    device.pull(1);
    EXPECT_EQ(device.close(), WaveResult::StillPlaying); // half played
    device.pull(1);
    EXPECT_EQ(device.unprepare(buffer.header), WaveResult::Ok);
    EXPECT_EQ(device.close(), WaveResult::Ok);
    EXPECT_FALSE(device.isOpen());
    EXPECT_EQ(device.outputsClosed, 1);
    EXPECT_EQ(recorder.messages.back(), WaveMessage::Close);
}

TEST(QueuedWaveDevice, ResetReturnsEveryQueuedBufferEvenPartlyPlayedAndRewindsThePosition)
{
    PulledWaveDevice device;
    Recorder recorder;
    ASSERT_EQ(device.open(pcm(1), &recorder), WaveResult::Ok);
    Buffer first({ 1, 2, 3 });
    Buffer second({ 4, 5 });
    queue(device, { &first, &second });
    device.pull(1);
    device.reset();
    EXPECT_EQ(recorder.done, (std::vector<WaveHeader*> { &first.header, &second.header }));
    EXPECT_TRUE(second.header.has(WaveHeader::kDone));
    EXPECT_EQ(device.pull(2), (Samples { 0, 0 }));
    EXPECT_EQ(positionOf(device), 0u);
    EXPECT_EQ(device.close(), WaveResult::Ok);
}

TEST(QueuedWaveDevice, RefusesBuffersThatAreNotReady)
{
    PulledWaveDevice device;
    ASSERT_EQ(device.open(pcm(2), nullptr), WaveResult::Ok);
    Buffer oddLength({ 1, 2, 3 });
    EXPECT_EQ(device.prepare(oddLength.header), WaveResult::InvalidBuffer);
    WaveHeader empty;
    EXPECT_EQ(device.prepare(empty), WaveResult::InvalidBuffer);
    Buffer unprepared({ 1, 2 });
    EXPECT_EQ(device.write(unprepared.header), WaveResult::Unprepared);
    queue(device, { &unprepared });
    EXPECT_EQ(device.write(unprepared.header), WaveResult::StillPlaying);
}

TEST(QueuedWaveDevice, VolumeScalesEachChannelByItsWord)
{
    PulledWaveDevice device;
    ASSERT_EQ(device.open(pcm(2), nullptr), WaveResult::Ok);
    device.setVolume(0x0000FFFF); // left full, right silent
    Buffer buffer({ 1000, 1000, -32767, -32767 });
    queue(device, { &buffer });
    EXPECT_EQ(device.pull(2, 2), (Samples { 1000, 0, -32767, 0 }));

    device.setVolume(0x80008000);
    Buffer half({ 1000, -1000 });
    queue(device, { &half });
    EXPECT_EQ(device.pull(1, 2), (Samples { 500, -500 }));
    uint32_t volume = 0;
    device.volume(volume);
    EXPECT_EQ(volume, 0x80008000u);
}

TEST(QueuedWaveDevice, OwnerAndCallbackThreadsShareTheQueueSafely)
{
    // Every returned buffer goes straight back, as the output stream does, until told to stop.
    PulledWaveDevice device;
    std::atomic<int> done { 0 };
    std::atomic<bool> refilling { true };
    Recorder refiller;
    refiller.refill = [&](WaveHeader* header) {
        done.fetch_add(1);
        if (refilling)
            device.write(*header);
    };
    ASSERT_EQ(device.open(pcm(1), &refiller), WaveResult::Ok);
    Buffer first(Samples(64, 1));
    Buffer second(Samples(64, 2));
    queue(device, { &first, &second });
    std::atomic<bool> running { true };
    std::thread callback([&] {
        while (running)
            device.pull(48);
    });
    while (done.load() < 200)
        std::this_thread::yield();
    EXPECT_EQ(device.close(), WaveResult::StillPlaying);
    refilling = false;
    device.pause();
    EXPECT_EQ(device.reset(), WaveResult::Ok);
    EXPECT_EQ(device.close(), WaveResult::Ok);
    running = false;
    callback.join();
    EXPECT_FALSE(first.header.has(WaveHeader::kInQueue));
    EXPECT_FALSE(second.header.has(WaveHeader::kInQueue));
}
