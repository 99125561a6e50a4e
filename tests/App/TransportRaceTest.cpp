// Runs the device's callback on its own thread, as fast as it can, while the GUI side edits the
// song, loads and replaces the samples under sounding notes, moves the play position, resets the
// song and restarts the stream, as the window does during playback. ThreadSanitizer builds check
// that nothing is shared without synchronisation (a restart's own renders meeting a refill on the
// device's thread would be), and AddressSanitizer builds that no render reads sample data a load
// has freed: a render is almost always under way, so frames freed too early would be read.
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

struct FillCounter final : MeterListener {
    void onPeaks(float left, float right) override
    {
        fills.fetch_add(1, std::memory_order_relaxed);
        soundingFills.fetch_add(left != 0.0f || right != 0.0f ? 1 : 0, std::memory_order_relaxed);
    }
    void onCpuLoad(float) override { }
    std::atomic<uint32_t> fills { 0 }, soundingFills { 0 };
};

// Eight tracks with tones and notes in pattern 0 at position 0; an empty pattern at position 5
// keeps positions 0 to 4 inside the song, so that a move lands where it was asked to.
void arrange(Song& song)
{
    for (uint32_t track = 0; track < 8; ++track)
        song.instrument(track).sample().setFrames(std::vector<float>(song.format().channels * 2000u, 0.25f), song.format().channels);
    for (uint32_t step = 0; step < 16; ++step)
        song.player().pattern(0).setCell(step % 8, step, { 1.0f, 0.77f, 0 });
    song.player().playlist().set(0, 0, 1.0f);
    song.player().playlist().set(2, 5, 1.0f);
    song.player().setLoopEnd(-1);
}

} // namespace

TEST(TransportRace, GuiEditsLoadsMovesAndRestartsWhileTheDeviceThreadRenders)
{
    test::ScratchFolder folder;
    const std::u16string mono = folder.write("mono.wav", test::makeWav(1, 11025, 8, std::vector<uint8_t>(3000, 200)));
    const std::u16string stereo = folder.write("stereo.wav", test::makeWav(2, 22050, 16, test::pcm16(std::vector<int16_t>(2 * 3000, 9000))));
    Song song(AudioFormat { 22050, 32, 2 });
    song.setInterpolation(Interpolation::Linear);
    arrange(song);
    PulledWaveDevice device;
    Transport transport(device, song);
    transport.setDocumentFlags(Transport::kReleaseDeviceFlag);
    transport.open(30);
    FillCounter meters;
    transport.setMeterListener(&meters);
    ASSERT_EQ(transport.play(), 1);

    uint32_t misplaced = 0;
    {
        std::jthread callback([&device](std::stop_token stop) {
            while (!stop.stop_requested())
                device.pull(4096, 2);
        });
        // Two seconds of edits at least, and on until the meters have seen enough fills, which a
        // loaded machine may take longer to render.
        auto start = std::chrono::steady_clock::now();
        auto going = [&] {
            auto elapsed = std::chrono::steady_clock::now() - start;
            bool enough = meters.fills.load() > 100 && meters.soundingFills.load() > 50;
            return elapsed < std::chrono::seconds(2) || (!enough && elapsed < std::chrono::seconds(60));
        };
        for (uint32_t round = 0; going(); ++round) {
            StepGrid& pattern = song.player().pattern(round % 2);
            pattern.setCell(round % 8, round % 16, { 0.5f + 0.01f * static_cast<float>(round % 50), 1.0f + 0.1f * static_cast<float>(round % 5), 0 });
            pattern.setCell((round + 3) % 8, (round + 5) % 16, Step {});
            song.player().playlist().set(1, round % 4, (round / 7) % 2 ? 1.0f : 0.0f);
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
            else if (round % 50 == 49)
                sample.unload();
            else
                sample.setFrames(std::vector<float>(2 * (4000 + round % 7), 0.5f), song.format().channels);
            if (round % 150 == 75) {
                song.reset();
                arrange(song);
            }
            if (round % 200 == 100)
                transport.changeFormat(round % 400 == 100 ? AudioFormat { 44100, 32, 1 } : AudioFormat { 22050, 32, 2 });
            if (round % 120 == 60)
                transport.setLatency(30 + static_cast<int>(round % 3) * 20);
            if (round % 40 == 20) {
                transport.close();
                ASSERT_EQ(transport.play(), 1);
            }
            if (round % 300 == 290) {
                transport.stopPlaying();
                ASSERT_EQ(transport.play(), 1);
            }
            // The window's timer.
            song.reclaimSamples();
        }
        transport.close();
    }

    EXPECT_GT(meters.fills.load(), 100u);
    EXPECT_GT(meters.soundingFills.load(), 50u);
    EXPECT_EQ(misplaced, 0u);
    EXPECT_FALSE(device.isOpen());
    EXPECT_EQ(song.reclaimSamples(), 0u) << "no render runs any more, so nothing replaced needs keeping";
}
