// Runs the device's callback on its own thread while the GUI side edits the song, loads samples,
// moves the play position and restarts the stream, as the window does during playback. It checks
// that playback goes on throughout; ThreadSanitizer builds check that nothing is shared without
// synchronisation, and AddressSanitizer builds that no render reads sample data a load has freed.
#include "App/Transport.h"

#include "Sound/Song.h"
#include "support/PulledWaveDevice.h"
#include "support/ScratchFolder.h"
#include "support/WavBuilder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

using namespace pulsara;
using namespace pulsara::testing;

namespace {

struct PeakCounter final : MeterListener {
    void onPeaks(float left, float right) override
    {
        fills.fetch_add(1, std::memory_order_relaxed);
        soundingFills.fetch_add(left != 0.0f || right != 0.0f ? 1 : 0, std::memory_order_relaxed);
    }
    void onCpuLoad(float) override { }
    std::atomic<uint32_t> fills { 0 };
    std::atomic<uint32_t> soundingFills { 0 };
};

// The device's callback thread: pulls `frames` frames at a time until destroyed, resting `rest`
// between callbacks as a device plays out its period (none: as fast as it can).
class CallbackThread {
public:
    CallbackThread(PulledWaveDevice& device, uint32_t frames, std::chrono::microseconds rest)
        : thread_([&device, frames, rest, this] {
            while (running_) {
                device.pull(frames, 2);
                if (rest.count() > 0)
                    std::this_thread::sleep_for(rest);
            }
        })
    {
    }
    ~CallbackThread()
    {
        running_ = false;
        thread_.join();
    }

private:
    std::atomic<bool> running_ { true };
    std::thread thread_;
};

// Renders the song's player and counts the renders that began while another was under way.
struct OverlapWatch final : SoundSource {
    explicit OverlapWatch(SoundSource& inner)
        : inner(inner)
    {
    }
    void setFormat(const AudioFormat* format) override { inner.setFormat(format); }
    const AudioFormat* format() const override { return inner.format(); }
    void render(float* out, uint32_t frames, uint32_t channels) override
    {
        if (rendering.exchange(true))
            overlaps.fetch_add(1);
        inner.render(out, frames, channels);
        renders.fetch_add(1);
        rendering.store(false);
    }
    uint64_t lengthInFrames() const override { return inner.lengthInFrames(); }
    void seek(uint64_t frame) override { inner.seek(frame); }
    void start() override { inner.start(); }
    void stop() override { inner.stop(); }

    SoundSource& inner;
    std::atomic<bool> rendering { false };
    std::atomic<uint32_t> overlaps { 0 };
    std::atomic<uint32_t> renders { 0 };
};

// Eight tracks with tones and notes in patterns 0 and 1 at position 0; an empty pattern at
// position 5 keeps positions 0 to 4 inside the song, so that a move lands where it was asked to.
void arrange(Song& song)
{
    for (uint32_t track = 0; track < 8; ++track)
        song.instrument(track).sample().setFrames(std::vector<float>(song.format().channels * 2000u, 0.25f), song.format().channels);
    for (uint32_t step = 0; step < 16; step += 2)
        song.player().pattern(0).setCell(step % 8, step, { 1.0f, 1.0f, 0 });
    song.player().playlist().set(0, 0, 1.0f);
    song.player().playlist().set(2, 5, 1.0f);
    song.player().setLoopEnd(-1);
}

} // namespace

TEST(TransportRace, GuiEditsLoadsAndMovesWhileTheDeviceThreadRenders)
{
    test::ScratchFolder folder;
    const std::u16string mono = folder.write("mono.wav", test::makeWav(1, 11025, 8, std::vector<uint8_t>(3000, 200)));
    const std::u16string stereo = folder.write("stereo.wav", test::makeWav(2, 22050, 16, test::pcm16(std::vector<int16_t>(2 * 3000, 9000))));
    Song song(AudioFormat { 22050, 32, 2 });
    arrange(song);

    PulledWaveDevice device;
    Transport transport(device, song);
    PeakCounter meters;
    transport.setMeterListener(&meters);
    transport.setDocumentFlags(Transport::kReleaseDeviceFlag);
    transport.open(30);
    ASSERT_EQ(transport.play(), 1);

    uint32_t misplaced = 0;
    {
        CallbackThread callback(device, 256, std::chrono::microseconds(500));
        auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
        for (uint32_t round = 0; std::chrono::steady_clock::now() < end; ++round) {
            StepGrid& pattern = song.player().pattern(round % 2);
            pattern.setCell(round % 8, round % 16, { 0.5f + 0.01f * static_cast<float>(round % 50), 1.0f + 0.1f * static_cast<float>(round % 5), 0 });
            pattern.setCell((round + 3) % 8, (round + 5) % 16, Step {});
            song.player().playlist().set(round % 2, round % 4, (round / 7) % 2 ? 1.0f : 0.0f);
            song.player().setTempo(100.0f + static_cast<float>(round % 100));
            song.player().setVolume(0.3f + 0.001f * static_cast<float>(round % 500));
            song.instrument(round % 8).setVolume(0.5f + 0.05f * static_cast<float>(round % 10));
            transport.triggerLive(static_cast<int32_t>(round % 8));
            if (round % 5 == 0) {
                auto target = static_cast<int32_t>(round / 5 % 4);
                transport.moveToSongPosition(target);
                misplaced += song.player().songPosition() != target ? 1 : 0;
            }
            Sample& sample = song.instrument(round % 8).sample();
            if (round % 10 == 3)
                sample.load((round / 10) % 2 ? mono : stereo);
            if (round % 10 == 8)
                sample.setFrames(std::vector<float>(500 + round % 1000, 0.5f), song.format().channels);
            if (round % 300 == 150) {
                song.reset();
                arrange(song);
            }
            if (round % 600 == 450)
                transport.changeFormat(round % 1200 == 450 ? AudioFormat { 44100, 32, 1 } : AudioFormat { 22050, 32, 2 });
            if (round % 400 == 200)
                transport.setLatency(30 + static_cast<int>(round % 3) * 20);
            if (round % 900 == 700) {
                transport.stopPlaying();
                transport.play();
            }
            // The window's timer.
            song.reclaimSamples();
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
        transport.close();
    }

    EXPECT_GT(meters.fills.load(), 100u);
    EXPECT_GT(meters.soundingFills.load(), 50u);
    EXPECT_EQ(misplaced, 0u);
    EXPECT_FALSE(device.isOpen());
    EXPECT_EQ(song.reclaimSamples(), 0u) << "no render runs any more, so nothing replaced needs keeping";
}

// Replaces the data under notes that keep sounding, as fast as the GUI thread can, while the
// device's thread renders as fast as it can: a mix is almost always under way, so frames freed
// too early would be read after the free.
TEST(TransportRace, ReplacingSoundingSamplesNeverFreesFramesAMixReads)
{
    Song song(AudioFormat { 22050, 32, 2 });
    song.setInterpolation(Interpolation::Linear);
    for (uint32_t step = 0; step < 16; ++step)
        song.player().pattern(0).setCell(step % 2, step, { 1.0f, 0.77f, 0 });
    song.player().playlist().set(0, 0, 1.0f);
    PulledWaveDevice device;
    Transport transport(device, song);
    transport.open(30);
    ASSERT_EQ(transport.play(), 1);
    {
        CallbackThread callback(device, 4096, std::chrono::microseconds(0));
        for (uint32_t round = 0; round < 20000; ++round) {
            Sample& sample = song.instrument(round % 2).sample();
            if (round % 50 == 49)
                sample.unload();
            else
                sample.setFrames(std::vector<float>(2 * (4000 + round % 7), 0.5f), 2);
            song.reclaimSamples();
        }
        transport.close();
    }
    EXPECT_EQ(song.reclaimSamples(), 0u);
}

// The device's thread pulls as fast as it can, so a buffer may come back while start is still at
// work. No render may overlap another.
TEST(TransportRace, StartRacesAFastDevice)
{
    Song song(AudioFormat { 22050, 32, 1 });
    arrange(song);
    PulledWaveDevice device;
    Transport transport(device, song);
    transport.open(30);
    OverlapWatch watch(song.player());
    transport.setSource(&watch);
    {
        CallbackThread callback(device, 4096, std::chrono::microseconds(0));
        for (int round = 0; round < 300; ++round) {
            ASSERT_EQ(transport.play(), 1);
            // Let the device thread refill a few times before the next restart.
            uint32_t wanted = watch.renders.load() + 4;
            auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
            while (watch.renders.load() < wanted && std::chrono::steady_clock::now() < deadline)
                std::this_thread::yield();
            transport.close();
        }
    }
    EXPECT_EQ(watch.overlaps.load(), 0u);
    EXPECT_GE(watch.renders.load(), 300u * 6);
}
