// The sound device a user picks, against a private PulseAudio server whose only sink is a null
// sink. Runs as the test DeviceChoice, inside with_null_sink.sh.
#include "Sound/RtAudioDevice.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace pulsara;

namespace {

struct NoListener : WaveDeviceListener {
    void onWaveMessage(WaveMessage, WaveHeader*) override { }
};

} // namespace

TEST(DeviceChoice, AChosenOutputPlaysAndAMissingOneFallsBackToTheDefaultSayingSoOnce)
{
    if (std::getenv("PULSE_SERVER") == nullptr)
        GTEST_SKIP() << "runs inside with_null_sink.sh, as the test DeviceChoice";
    RtAudioDevice device;
    NoListener listener;
    const std::vector<std::string> names = device.outputNames();
    ASSERT_FALSE(names.empty());

    device.chooseOutput(names.back());
    ASSERT_EQ(device.open(WaveFormat {}, &listener), WaveResult::Ok);
    EXPECT_FALSE(device.takeFallbackNotice());
    ASSERT_EQ(device.close(), WaveResult::Ok);

    // A device unplugged since the settings were saved: the default plays, and the user hears
    // of it once, not at every start of the stream.
    device.chooseOutput("Headphones that were unplugged");
    ASSERT_EQ(device.open(WaveFormat {}, &listener), WaveResult::Ok);
    EXPECT_TRUE(device.takeFallbackNotice());
    EXPECT_FALSE(device.takeFallbackNotice());
    ASSERT_EQ(device.close(), WaveResult::Ok);
    ASSERT_EQ(device.open(WaveFormat {}, &listener), WaveResult::Ok);
    EXPECT_FALSE(device.takeFallbackNotice());
    ASSERT_EQ(device.close(), WaveResult::Ok);
}
