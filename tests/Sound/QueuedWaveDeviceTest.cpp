#include "Sound/QueuedWaveDevice.h"

#include "support/PulledWaveDevice.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

using namespace pulsara;
using pulsara::testing::PulledWaveDevice;

namespace {

using Samples = std::vector<int16_t>;

WaveFormat pcm(uint16_t channels, uint32_t rate = 44100)
{
    return { WaveFormat::kPcm, channels, rate, rate * channels * 2u, static_cast<uint16_t>(channels * 2) };
}

struct Buffer {
    explicit Buffer(Samples content) : samples(std::move(content))
    {
        header.data = reinterpret_cast<uint8_t*>(samples.data());
        header.bufferLength = static_cast<uint32_t>(samples.size() * sizeof(int16_t));
    }
    Samples samples;
    WaveHeader header;
};

// A device opened with itself as the listener, which keeps every message, or with `refill` set
// hands each returned buffer to it instead. (The owner and the callback thread sharing the queue
// is the transport race test's subject.)
struct OpenDevice : WaveDeviceListener {
    explicit OpenDevice(uint16_t channels = 1, WaveResult output = WaveResult::Ok)
    {
        device.openResult = output;
        EXPECT_EQ(device.open(pcm(channels), this), output);
    }

    void onWaveMessage(WaveMessage message, WaveHeader* header) override
    {
        if (refill && message == WaveMessage::Done)
            return refill(header);
        messages.push_back(message);
        if (message == WaveMessage::Done)
            done.push_back(header);
    }
    void queue(std::initializer_list<Buffer*> buffers)
    {
        for (Buffer* b : buffers) {
            ASSERT_EQ(device.prepare(b->header), WaveResult::Ok);
            ASSERT_EQ(device.write(b->header), WaveResult::Ok);
            EXPECT_TRUE(b->header.has(WaveHeader::kInQueue));
        }
    }
    uint32_t position() const
    {
        uint32_t frames = 99;
        EXPECT_EQ(device.position(frames), WaveResult::Ok);
        return frames;
    }

    PulledWaveDevice device;
    std::vector<WaveMessage> messages;
    std::vector<WaveHeader*> done;
    std::function<void(WaveHeader*)> refill;
};

} // namespace

TEST(QueuedWaveDevice, RefusesFormatsAndBuffersItCannotPlayAndStaysClosedWhenTheOutputFails)
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
    OpenDevice failed(1, WaveResult::NoDevice);
    EXPECT_FALSE(failed.device.isOpen());
    EXPECT_TRUE(failed.messages.empty());
    Buffer unprepared({ 1, 2 });
    EXPECT_EQ(failed.device.prepare(unprepared.header), WaveResult::NotOpen);
    EXPECT_EQ(failed.device.close(), WaveResult::NotOpen);

    OpenDevice open(2);
    Buffer oddLength({ 1, 2, 3 });
    EXPECT_EQ(open.device.prepare(oddLength.header), WaveResult::InvalidBuffer);
    WaveHeader empty;
    EXPECT_EQ(open.device.prepare(empty), WaveResult::InvalidBuffer);
    EXPECT_EQ(open.device.write(unprepared.header), WaveResult::Unprepared);
    open.queue({ &unprepared });
    EXPECT_EQ(open.device.write(unprepared.header), WaveResult::StillPlaying);
}

// Running dry after the last buffer is the drain, not an underrun; a later buffer that has to
// start after silence is one. A buffer written again from its done notification plays on in the
// same callback, without a gap. A pause is no underrun either.
TEST(QueuedWaveDevice, PlaysBuffersInOrderAcrossCallbacksAndCountsOnlyAGapBetweenThemAsAnUnderrun)
{
    OpenDevice open;
    Buffer first({ 1, 2, 3 }), second({ 4, 5 }), third({ 6 }), fourth({ 7, 8, 9, 10 });
    open.device.pull(4); // nothing written yet: silence before any sound is no gap
    open.queue({ &first, &second });
    EXPECT_EQ(open.device.pull(2), (Samples { 1, 2 }));
    EXPECT_TRUE(open.done.empty());
    EXPECT_EQ(open.device.pull(4), (Samples { 3, 4, 5, 0 }));
    EXPECT_EQ(open.done, (std::vector<WaveHeader*> { &first.header, &second.header }));
    open.device.pull(3);
    EXPECT_EQ(open.device.underruns(), 0u);
    open.queue({ &third, &fourth });
    open.refill = [&, again = true](WaveHeader* header) mutable {
        if (header == &fourth.header && std::exchange(again, false))
            open.device.write(*header);
    };
    EXPECT_EQ(open.device.pull(10), (Samples { 6, 7, 8, 9, 10, 7, 8, 9, 10, 0 }));
    EXPECT_EQ(open.device.underruns(), 1u);
    ASSERT_EQ(open.device.pause(), WaveResult::Ok);
    EXPECT_EQ(open.device.pull(2), (Samples { 0, 0 }));
    EXPECT_EQ(open.device.underruns(), 1u);
    EXPECT_EQ(open.position(), 14u);
}

TEST(QueuedWaveDevice, CloseFailsWhileABufferIsQueuedAndResetReturnsThemAll)
{
    OpenDevice open;
    Buffer first({ 1, 2, 3 });
    Buffer second({ 4, 5 });
    open.queue({ &first, &second });
    EXPECT_EQ(open.device.close(), WaveResult::StillPlaying);
    EXPECT_EQ(open.device.unprepare(first.header), WaveResult::StillPlaying);
    open.device.pull(3);
    EXPECT_EQ(open.device.unprepare(first.header), WaveResult::Ok);
    open.device.pull(1);
    EXPECT_EQ(open.device.close(), WaveResult::StillPlaying); // half played
    // Reset returns even the buffer that is partly played, and rewinds the position.
    open.device.reset();
    EXPECT_EQ(open.done, (std::vector<WaveHeader*> { &first.header, &second.header }));
    EXPECT_TRUE(second.header.has(WaveHeader::kDone));
    EXPECT_EQ(open.device.pull(2), (Samples { 0, 0 }));
    EXPECT_EQ(open.position(), 0u);
    EXPECT_EQ(open.device.close(), WaveResult::Ok);
    EXPECT_FALSE(open.device.isOpen());
    EXPECT_EQ(open.device.outputsClosed, 1);
    EXPECT_EQ(open.messages.back(), WaveMessage::Close);
}

TEST(QueuedWaveDevice, VolumeScalesEachChannelByItsWord)
{
    OpenDevice open(2);
    open.device.setVolume(0x8000FFFF); // left full, right half
    Buffer buffer({ 1000, 1000, -32767, -32767 });
    open.queue({ &buffer });
    EXPECT_EQ(open.device.pull(2, 2), (Samples { 1000, 500, -32767, -16383 }));
}
