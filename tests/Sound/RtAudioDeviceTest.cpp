#include "Sound/RtAudioDevice.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace pulsara;

namespace {

WaveFormat monoPcm()
{
    WaveFormat format;
    format.channels = 1;
    format.samplesPerSecond = 44100;
    format.blockAlign = 2;
    format.averageBytesPerSecond = 88200;
    return format;
}

struct OpenCounter : WaveDeviceListener {
    void onWaveMessage(WaveMessage, WaveHeader*) override { ++messages; }
    int messages = 0;
};

} // namespace

TEST(RtAudioDevice, OpeningWithoutAReachableServerFailsCleanly)
{
    // A PulseAudio server that does not exist: the back end finds no device.
    setenv("PULSE_SERVER", "unix:/nonexistent/pulsara-test-socket", 1);
    setenv("PULSE_CLIENTCONFIG", "/dev/null", 1);
    RtAudioDevice device(RtAudio::LINUX_PULSE);
    OpenCounter listener;
    EXPECT_EQ(device.open(monoPcm(), &listener), WaveResult::NoDevice);
    EXPECT_FALSE(device.isOpen());
    EXPECT_EQ(listener.messages, 0);
    EXPECT_EQ(device.close(), WaveResult::NotOpen);
    unsetenv("PULSE_SERVER");
    unsetenv("PULSE_CLIENTCONFIG");
}

TEST(RtAudioDevice, RefusesAFormatBeforeTouchingTheBackEnd)
{
    RtAudioDevice device;
    WaveFormat format = monoPcm();
    format.bitsPerSample = 24;
    EXPECT_EQ(device.open(format, nullptr), WaveResult::NoDevice);
    EXPECT_FALSE(device.isOpen());
}
