#include "Sound/QueuedWaveDevice.h"

#include "support/PulledWaveDevice.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

using namespace pulsara;

namespace {

using PulledDevice = pulsara::testing::PulledWaveDevice;

struct Recorder : WaveDeviceListener {
    void onWaveMessage(WaveMessage message, WaveHeader* header) override
    {
        messages.push_back(message);
        if (message == WaveMessage::Done)
            done.push_back(header);
        if (message == WaveMessage::Done && refill)
            refill(header);
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
    explicit Buffer(std::vector<int16_t> content)
        : samples(std::move(content))
    {
        header.data = reinterpret_cast<uint8_t*>(samples.data());
        header.bufferLength = static_cast<uint32_t>(samples.size() * sizeof(int16_t));
    }
    std::vector<int16_t> samples;
    WaveHeader header;
};

} // namespace

TEST(QueuedWaveDevice, RefusesFormatsItCannotPlay)
{
    struct Case {
        const char* name;
        WaveFormat format;
    };
    WaveFormat threeChannels = pcm(2);
    threeChannels.channels = 3;
    WaveFormat eightBit = pcm(1);
    eightBit.bitsPerSample = 8;
    WaveFormat noRate = pcm(1, 0);
    WaveFormat badAlign = pcm(2);
    badAlign.blockAlign = 2;
    for (const Case& c : { Case { "3 channels", threeChannels }, Case { "8 bits", eightBit }, Case { "rate 0", noRate },
             Case { "block align", badAlign } }) {
        PulledDevice device;
        EXPECT_EQ(device.open(c.format, nullptr), WaveResult::NoDevice) << c.name;
        EXPECT_FALSE(device.isOpen()) << c.name;
    }
}

TEST(QueuedWaveDevice, FailedOutputLeavesItClosed)
{
    PulledDevice device;
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
    PulledDevice device;
    Recorder recorder;
    ASSERT_EQ(device.open(pcm(1), &recorder), WaveResult::Ok);
    Buffer first({ 1, 2, 3 });
    Buffer second({ 4, 5 });
    for (Buffer* b : { &first, &second }) {
        ASSERT_EQ(device.prepare(b->header), WaveResult::Ok);
        ASSERT_EQ(device.write(b->header), WaveResult::Ok);
        EXPECT_TRUE(b->header.has(WaveHeader::kInQueue));
    }
    EXPECT_EQ(device.pull(2), (std::vector<int16_t> { 1, 2 }));
    EXPECT_TRUE(recorder.done.empty());
    EXPECT_EQ(device.pull(4), (std::vector<int16_t> { 3, 4, 5, 0 }));
    EXPECT_EQ(recorder.done, (std::vector<WaveHeader*> { &first.header, &second.header }));
    EXPECT_TRUE(first.header.has(WaveHeader::kDone));
    EXPECT_FALSE(first.header.has(WaveHeader::kInQueue));
    EXPECT_EQ(recorder.messages.front(), WaveMessage::Open);
    uint32_t frames = 0;
    ASSERT_EQ(device.position(frames), WaveResult::Ok);
    EXPECT_EQ(frames, 5u);
}

TEST(QueuedWaveDevice, ABufferWrittenFromDoneContinuesWithoutAGap)
{
    PulledDevice device;
    Recorder recorder;
    ASSERT_EQ(device.open(pcm(2), &recorder), WaveResult::Ok);
    Buffer buffer({ 7, -7 });
    int refills = 0;
    recorder.refill = [&](WaveHeader* header) {
        if (refills++ < 3)
            device.write(*header);
    };
    ASSERT_EQ(device.prepare(buffer.header), WaveResult::Ok);
    ASSERT_EQ(device.write(buffer.header), WaveResult::Ok);
    EXPECT_EQ(device.pull(5, 2), (std::vector<int16_t> { 7, -7, 7, -7, 7, -7, 7, -7, 0, 0 }));
    // Running dry at the end is the drain, not an underrun.
    EXPECT_EQ(device.underruns(), 0u);
}

TEST(QueuedWaveDevice, CountsAGapBetweenBuffersAsOneUnderrun)
{
    PulledDevice device;
    ASSERT_EQ(device.open(pcm(1), nullptr), WaveResult::Ok);
    Buffer first({ 1 });
    Buffer second({ 2 });
    device.pull(4); // nothing written yet: silence before any sound is no gap
    device.prepare(first.header);
    device.prepare(second.header);
    device.write(first.header);
    device.pull(3);
    device.pull(3);
    EXPECT_EQ(device.underruns(), 0u);
    device.write(second.header);
    EXPECT_EQ(device.pull(2), (std::vector<int16_t> { 2, 0 }));
    EXPECT_EQ(device.underruns(), 1u);
}

TEST(QueuedWaveDevice, PauseHoldsThePlaceWithoutCountingAnUnderrun)
{
    PulledDevice device;
    ASSERT_EQ(device.open(pcm(1), nullptr), WaveResult::Ok);
    Buffer buffer({ 1, 2, 3, 4 });
    device.prepare(buffer.header);
    device.write(buffer.header);
    EXPECT_EQ(device.pull(2), (std::vector<int16_t> { 1, 2 }));
    ASSERT_EQ(device.pause(), WaveResult::Ok);
    EXPECT_EQ(device.pull(2), (std::vector<int16_t> { 0, 0 }));
    EXPECT_EQ(device.underruns(), 0u);
    uint32_t frames = 0;
    device.position(frames);
    EXPECT_EQ(frames, 2u);
}

TEST(QueuedWaveDevice, CloseFailsWhileABufferIsQueued)
{
    PulledDevice device;
    Recorder recorder;
    ASSERT_EQ(device.open(pcm(1), &recorder), WaveResult::Ok);
    Buffer buffer({ 1, 2 });
    device.prepare(buffer.header);
    device.write(buffer.header);
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

TEST(QueuedWaveDevice, ResetReturnsEveryQueuedBufferAndRewindsThePosition)
{
    PulledDevice device;
    Recorder recorder;
    ASSERT_EQ(device.open(pcm(1), &recorder), WaveResult::Ok);
    Buffer first({ 1, 2, 3 });
    Buffer second({ 4, 5 });
    for (Buffer* b : { &first, &second }) {
        device.prepare(b->header);
        device.write(b->header);
    }
    device.pause();
    device.pull(1);
    device.reset();
    EXPECT_EQ(recorder.done, (std::vector<WaveHeader*> { &first.header, &second.header }));
    EXPECT_TRUE(second.header.has(WaveHeader::kDone));
    uint32_t frames = 99;
    device.position(frames);
    EXPECT_EQ(frames, 0u);
    EXPECT_EQ(device.close(), WaveResult::Ok);
}

TEST(QueuedWaveDevice, ResetReturnsAPartlyPlayedBuffer)
{
    PulledDevice device;
    Recorder recorder;
    ASSERT_EQ(device.open(pcm(1), &recorder), WaveResult::Ok);
    Buffer buffer({ 1, 2, 3 });
    device.prepare(buffer.header);
    device.write(buffer.header);
    device.pull(1);
    device.reset();
    EXPECT_EQ(recorder.done, (std::vector<WaveHeader*> { &buffer.header }));
    EXPECT_EQ(device.pull(2), (std::vector<int16_t> { 0, 0 }));
}

TEST(QueuedWaveDevice, RefusesBuffersThatAreNotReady)
{
    PulledDevice device;
    ASSERT_EQ(device.open(pcm(2), nullptr), WaveResult::Ok);
    Buffer oddLength({ 1, 2, 3 });
    EXPECT_EQ(device.prepare(oddLength.header), WaveResult::InvalidBuffer);
    WaveHeader empty;
    EXPECT_EQ(device.prepare(empty), WaveResult::InvalidBuffer);
    Buffer unprepared({ 1, 2 });
    EXPECT_EQ(device.write(unprepared.header), WaveResult::Unprepared);
    device.prepare(unprepared.header);
    EXPECT_EQ(device.write(unprepared.header), WaveResult::Ok);
    EXPECT_EQ(device.write(unprepared.header), WaveResult::StillPlaying);
}

TEST(QueuedWaveDevice, VolumeScalesEachChannelByItsWord)
{
    PulledDevice device;
    ASSERT_EQ(device.open(pcm(2), nullptr), WaveResult::Ok);
    device.setVolume(0x0000FFFF); // left full, right silent
    Buffer buffer({ 1000, 1000, -32767, -32767 });
    device.prepare(buffer.header);
    device.write(buffer.header);
    EXPECT_EQ(device.pull(2, 2), (std::vector<int16_t> { 1000, 0, -32767, 0 }));

    device.setVolume(0x80008000);
    Buffer half({ 1000, -1000 });
    device.prepare(half.header);
    device.write(half.header);
    EXPECT_EQ(device.pull(1, 2), (std::vector<int16_t> { 500, -500 }));
    uint32_t volume = 0;
    device.volume(volume);
    EXPECT_EQ(volume, 0x80008000u);
}

namespace {

// Writes every returned buffer straight back, as the output stream does, until told to stop.
struct Refiller : WaveDeviceListener {
    explicit Refiller(WaveDevice& target)
        : device(target)
    {
    }
    void onWaveMessage(WaveMessage message, WaveHeader* header) override
    {
        if (message != WaveMessage::Done)
            return;
        done.fetch_add(1);
        if (refilling)
            device.write(*header);
    }
    WaveDevice& device;
    std::atomic<uint32_t> done { 0 };
    std::atomic<bool> refilling { true };
};

} // namespace

TEST(QueuedWaveDevice, OwnerAndCallbackThreadsShareTheQueueSafely)
{
    PulledDevice device;
    Refiller refiller(device);
    ASSERT_EQ(device.open(pcm(1), &refiller), WaveResult::Ok);
    Buffer first(std::vector<int16_t>(64, 1));
    Buffer second(std::vector<int16_t>(64, 2));
    for (Buffer* b : { &first, &second }) {
        ASSERT_EQ(device.prepare(b->header), WaveResult::Ok);
        ASSERT_EQ(device.write(b->header), WaveResult::Ok);
    }
    std::atomic<bool> running { true };
    std::thread callback([&] {
        while (running)
            device.pull(48);
    });
    while (refiller.done.load() < 200)
        std::this_thread::yield();
    EXPECT_EQ(device.close(), WaveResult::StillPlaying);
    refiller.refilling = false;
    device.pause();
    EXPECT_EQ(device.reset(), WaveResult::Ok);
    EXPECT_EQ(device.close(), WaveResult::Ok);
    running = false;
    callback.join();
    EXPECT_FALSE(first.header.has(WaveHeader::kInQueue));
    EXPECT_FALSE(second.header.has(WaveHeader::kInQueue));
}
