#include "App/Transport.h"

#include "Sound/Song.h"
#include "support/PulledWaveDevice.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

using namespace pulsara;
using namespace pulsara::testing;

namespace {

struct MeterLog : MeterListener {
    void onPeaks(float left, float right) override { peaks.emplace_back(left, right); }
    void onCpuLoad(float load) override { loads.push_back(load); }
    std::vector<std::pair<float, float>> peaks;
    std::vector<float> loads;
};

// The window's transport: it drains in the background, and its device is played by hand.
struct TransportRig {
    TransportRig() { transport.open(100); transport.setDrainsInBackground(true); }
    std::vector<int16_t> playOne() { return device.pull(uint32_t(transport.deviceBufferBytes(0) / 4), 2); }

    Song song { AudioFormat { 22050, 32, 2 } };
    PulledWaveDevice device;
    Transport transport { device, song };
};

} // namespace

// A shared device is let go once the queued sound has played (in the background for the window,
// while the stop waits for the command line), or once live play ends.
TEST(Transport, StopLetsTheQueuedSoundPlayAndReleasesOnlyASharedDeviceOutsideLiveMode)
{
    enum class Release { Never, InBackground, Waiting, AfterLiveMode };
    for (Release release : { Release::Never, Release::InBackground, Release::Waiting, Release::AfterLiveMode }) {
        SCOPED_TRACE(static_cast<int>(release));
        TransportRig rig;
        rig.transport.setDocumentFlags(release == Release::Never ? 0 : Transport::kReleaseDeviceFlag);
        rig.transport.setDrainsInBackground(release != Release::Waiting);
        rig.transport.setLiveMode(release == Release::AfterLiveMode);
        ASSERT_EQ(rig.transport.play(), 1);
        std::thread deviceThread;
        if (release == Release::Waiting) {
            // The device's thread plays the queued buffers once the stream drains, as the stop waits.
            deviceThread = std::thread([&rig] {
                for (auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
                     rig.transport.state() != StreamState::Draining && std::chrono::steady_clock::now() < end;)
                    std::this_thread::yield();
                rig.playOne();
                rig.playOne();
            });
        }
        rig.transport.stopPlaying();
        if (deviceThread.joinable())
            deviceThread.join();
        EXPECT_FALSE(rig.transport.isPlaying());
        // A drain in the background ends when the window's timer finds the sound played.
        const StreamState after[] = { StreamState::Playing, StreamState::Draining, StreamState::Closed, StreamState::Playing };
        EXPECT_EQ(rig.transport.state(), after[static_cast<int>(release)]);
        EXPECT_EQ(rig.device.isOpen(), release != Release::Waiting);
        rig.transport.setLiveMode(false);
        EXPECT_EQ(rig.transport.state(), release == Release::AfterLiveMode ? StreamState::Draining : after[static_cast<int>(release)]);
    }
}

// A live note starts a stopped stream without playing the song, and plays nothing without a
// device. The live keys trigger their tracks only in live mode.
TEST(Transport, LiveNotesStartTheStreamAndLiveKeysMapToTracksInRowOrderOnlyInLiveMode)
{
    for (auto [key, track] : { std::pair { '1', 0 }, { '9', 8 }, { '0', 9 }, { 'Q', 10 }, { 'P', 19 }, { 'A', 20 }, { 'L', 28 },
             { 'Z', 29 }, { 'M', 35 }, { ' ', -1 }, { 'q', -1 } })
        EXPECT_EQ(Transport::liveTrackForKey(uint32_t(key)), track) << key;
    EXPECT_EQ(Transport::liveTrackForKey(0x10051), -1);

    constexpr uint32_t kKeyUp = 257;
    TransportRig rig;
    EXPECT_EQ(rig.transport.filterMessage(Transport::kKeyDownMessage, 'W', 0), 0);
    EXPECT_EQ(rig.song.player().soloTrack(), -1);
    ASSERT_EQ(rig.transport.triggerLive(3), 1);
    EXPECT_TRUE(rig.transport.isRunning());
    EXPECT_FALSE(rig.transport.isPlaying());
    EXPECT_EQ(rig.song.player().soloTrack(), 3);
    rig.device.openResult = WaveResult::NoDevice;
    rig.transport.close();
    EXPECT_EQ(rig.transport.triggerLive(4), 0);
    EXPECT_EQ(rig.song.player().soloTrack(), 3);
    rig.device.openResult = WaveResult::Ok;
    rig.transport.setLiveMode(true);
    EXPECT_TRUE(rig.transport.isRunning());
    EXPECT_EQ(rig.transport.filterMessage(Transport::kKeyDownMessage, 'W', 0), 1);
    EXPECT_EQ(rig.song.player().soloTrack(), 11);
    EXPECT_EQ(rig.transport.filterMessage(kKeyUp, 'E', 0), 0);
    EXPECT_EQ(rig.transport.filterMessage(Transport::kKeyDownMessage, 0x25, 0), 0); // an arrow key
    EXPECT_EQ(rig.song.player().soloTrack(), 11);
}

TEST(Transport, PassesTheMetersToItsListenerAndCloseStopsAtOnce)
{
    TransportRig rig;
    MeterLog meters;
    rig.transport.setMeterListener(&meters);
    ASSERT_EQ(rig.transport.play(), 1);
    EXPECT_EQ(meters.loads.size(), 2u);
    rig.playOne();
    EXPECT_EQ(meters.peaks.size(), 3u);
    rig.transport.close();
    EXPECT_FALSE(rig.transport.isPlaying());
    EXPECT_EQ(rig.transport.state(), StreamState::Closed);
    EXPECT_EQ(meters.peaks.back(), std::make_pair(0.0f, 0.0f));
    rig.transport.setMeterListener(nullptr);
    ASSERT_EQ(rig.transport.play(), 1);
    EXPECT_EQ(meters.peaks.size(), 4u);
}

// The ruler's move is handed to the next render while the stream runs (the render owns the pass),
// and made at once while it does not; the song position shows the target at once either way.
TEST(Transport, MovingToASongPositionIsARequestOnlyWhileRunning)
{
    TransportRig rig;
    SongPlayer& player = rig.song.player();
    for (uint32_t position : { 0u, 1u, 2u })
        player.playlist().set(0, position, 1.0f);
    ASSERT_EQ(rig.transport.play(), 1);
    uint64_t twoBuffers = player.position();
    ASSERT_NE(twoBuffers, 0u);
    rig.transport.moveToSongPosition(2);
    EXPECT_EQ(player.songPosition(), 2);
    EXPECT_EQ(player.position(), twoBuffers);
    rig.playOne();
    EXPECT_EQ(player.position(), twoBuffers / 2) << "one buffer from the start of the position";

    rig.transport.close();
    rig.transport.moveToSongPosition(1);
    EXPECT_EQ(player.songPosition(), 1);
    EXPECT_EQ(player.position(), 0u);
}

// Play starts the stream in the song's format; the Settings dialog's format change reopens only a
// running stream, in the new format; without a device the song stays stopped.
TEST(Transport, PlaysInTheSongsFormatReopensForANewFormatOnlyWhileRunningAndStaysStoppedWithoutADevice)
{
    TransportRig rig;
    EXPECT_EQ(rig.transport.source(), &rig.song.player());
    rig.transport.changeFormat({ 44100, 32, 1 });
    EXPECT_FALSE(rig.device.isOpen());
    ASSERT_EQ(rig.transport.play(), 1);
    EXPECT_TRUE(rig.transport.isRunning());
    EXPECT_TRUE(rig.transport.isPlaying());
    auto format = [&] { return std::pair(rig.transport.waveFormat().samplesPerSecond, int(rig.transport.waveFormat().channels)); };
    EXPECT_EQ(format(), std::pair(44100u, 1));
    rig.transport.changeFormat({ 11025, 32, 2 });
    EXPECT_TRUE(rig.transport.isRunning());
    EXPECT_EQ(rig.device.outputsClosed, 1);
    EXPECT_EQ(format(), std::pair(11025u, 2));

    TransportRig failing;
    failing.device.openResult = WaveResult::NoDevice;
    EXPECT_EQ(failing.transport.play(), 0);
    EXPECT_FALSE(failing.transport.isPlaying());
    EXPECT_FALSE(failing.transport.isRunning());
}
