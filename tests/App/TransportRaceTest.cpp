// Runs the device's callback on its own thread while the GUI side edits the song, as the window
// does during playback. It checks that playback goes on throughout; ThreadSanitizer builds
// check that nothing is shared without synchronisation.
#include "App/Transport.h"

#include "Sound/Song.h"
#include "support/PulledWaveDevice.h"

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

} // namespace

TEST(TransportRace, GuiEditsWhileTheDeviceThreadRenders)
{
    Song song(AudioFormat { 22050, 32, 2 });
    for (uint32_t track = 0; track < 8; ++track)
        song.instrument(track).sample().setFrames(std::vector<float>(2 * 2000, 0.25f), 2);
    for (uint32_t step = 0; step < 16; step += 2)
        song.player().pattern(0).setCell(step % 8, step, { 1.0f, 1.0f, 0 });
    song.player().playlist().set(0, 0, 1.0f);
    song.player().setLoopEnd(-1);

    PulledWaveDevice device;
    Transport transport(device, song);
    PeakCounter meters;
    transport.setMeterListener(&meters);
    transport.setDocumentFlags(Transport::kReleaseDeviceFlag);
    transport.open(30);
    ASSERT_EQ(transport.play(), 1);

    std::atomic<bool> running { true };
    std::thread callback([&] {
        while (running) {
            device.pull(256, 2);
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
    });

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
        if (round % 400 == 200)
            transport.setLatency(30 + static_cast<int>(round % 3) * 20);
        if (round % 900 == 700) {
            transport.stopPlaying();
            transport.play();
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    transport.close();
    running = false;
    callback.join();

    EXPECT_GT(meters.fills.load(), 100u);
    EXPECT_GT(meters.soundingFills.load(), 50u);
    EXPECT_FALSE(device.isOpen());
}
