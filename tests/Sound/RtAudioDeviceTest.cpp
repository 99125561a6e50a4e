#include "Sound/RtAudioDevice.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace pulsara;

namespace {

struct MessageCounter : WaveDeviceListener {
    void onWaveMessage(WaveMessage, WaveHeader*) override { ++messages; }
    int messages = 0;
};

} // namespace

TEST(RtAudioDevice, FailsCleanlyOnABadFormatOrWithoutAReachableServer)
{
    WaveFormat format;
    format.channels = 1;
    format.samplesPerSecond = 44100;
    format.blockAlign = 2;
    format.averageBytesPerSecond = 88200;
    format.bitsPerSample = 24; // refused before the back end is touched
    EXPECT_EQ(RtAudioDevice().open(format, nullptr), WaveResult::NoDevice);

    // A PulseAudio server that does not exist: the back end finds no device.
    format.bitsPerSample = 16;
    setenv("PULSE_SERVER", "unix:/nonexistent/pulsara-test-socket", 1);
    setenv("PULSE_CLIENTCONFIG", "/dev/null", 1);
    RtAudioDevice device(RtAudio::LINUX_PULSE);
    MessageCounter listener;
    EXPECT_EQ(device.open(format, &listener), WaveResult::NoDevice);
    EXPECT_FALSE(device.isOpen());
    EXPECT_EQ(listener.messages, 0);
    EXPECT_EQ(device.close(), WaveResult::NotOpen);
    unsetenv("PULSE_SERVER");
    unsetenv("PULSE_CLIENTCONFIG");
}
