// The settings file: defaults, odd values, the length limit, the command line's song, the
// round trip, and the Settings dialog.
#include "App/AppSettings.h"
#include "App/SettingsDialog.h"

#include "GUI/QtTestApplication.h"
#include "base/text.h"
#include "support/ScratchFolder.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QSettings>
#include <QSlider>
#include <gtest/gtest.h>

using namespace pulsara;
using namespace pulsara::test;

namespace {

const SettingsDefaults kDefaults { u"/data/", u"/docs/Pulsara/zzzDemo.kqu", u"/docs/Pulsara/Kick1.wav", u"/docs/Pulsara", {} };

AppSettings loadFrom(const ScratchFolder& folder, const std::string& text, SettingsDefaults defaults = kDefaults)
{
    folder.write("Pulsara.ini", std::vector<uint8_t>(text.begin(), text.end()));
    QSettings file(QString::fromStdString((folder.path() / "Pulsara.ini").string()), QSettings::IniFormat);
    return loadSettings(file, defaults);
}

} // namespace

TEST(AppSettings, MissingOddAndOverlongValuesFallBack)
{
    ScratchFolder folder;
    AppSettings none = loadFrom(folder, "");
    EXPECT_EQ(none.sampleRate, 44100u);
    EXPECT_EQ(none.channels, 1);
    EXPECT_EQ(none.interpolation, 0u);
    EXPECT_EQ(none.liveact, 0u);
    EXPECT_EQ(none.bufferLength, 200);
    EXPECT_TRUE(none.releaseWaveOut);
    EXPECT_EQ(none.skinName, u"Default");
    EXPECT_EQ(none.installDir, u"/data/");
    EXPECT_EQ(none.lastSong, u"/docs/Pulsara/zzzDemo.kqu");
    EXPECT_EQ(none.lastSample, u"/docs/Pulsara/Kick1.wav");
    EXPECT_EQ(none.samplesDir, u"/docs/Pulsara");

    const std::string longest(AppSettings::kMaxPathLength, 'a');
    AppSettings odd = loadFrom(folder,
        "[General]\nSmpFreq=32000\nStereo=5\nInterpolation=7\nReleaseWaveOut=0\nBuffLength=5\nSkin=Dark\n"
        "LastSong=/x/"
            + std::string(AppSettings::kMaxPathLength, 'b') + "\nLastSmp=" + longest + "\nSamplesDir=notanumber\nLiveact=yes\n");
    EXPECT_EQ(odd.sampleRate, 32000u) << "any rate is used as it is";
    EXPECT_EQ(odd.channels, 2) << "any non-zero value is stereo";
    EXPECT_EQ(odd.interpolation, 1u);
    EXPECT_FALSE(odd.releaseWaveOut);
    EXPECT_EQ(odd.bufferLength, AppSettings::kMinLatencyMs);
    EXPECT_EQ(odd.skinName, u"Dark");
    EXPECT_EQ(odd.lastSong, kDefaults.lastSong) << "130 characters are one too many";
    EXPECT_EQ(odd.lastSample, fromUtf8(longest));
    EXPECT_EQ(odd.samplesDir, u"notanumber");
    EXPECT_EQ(odd.liveact, 0u) << "not a number: the default";

    SettingsDefaults fromCommandLine = kDefaults;
    fromCommandLine.commandLineSong = u"/songs/given.kqu";
    EXPECT_EQ(loadFrom(folder, "[General]\nLastSong=/songs/last.kqu\n", fromCommandLine).lastSong, u"/songs/given.kqu");
}

TEST(AppSettings, WriteBackWhatTheyRead)
{
    ScratchFolder folder;
    AppSettings odd = loadFrom(folder, "[General]\nStereo=5\nSmpFreq=22050\nBuffLength=640\nMidiMode=Chromatic\nMidiIn=Pad\n");
    rememberRecentSong(odd, u"/a.kqu");
    rememberRecentSong(odd, u"/b.kqu");
    rememberRecentSong(odd, u"/a.kqu");
    for (int song = 0; song < 10; ++song)
        rememberRecentSong(odd, fromUtf8("/n" + std::to_string(song) + ".kqu"));
    EXPECT_EQ(odd.recentSongs.size(), AppSettings::kRecentSongs);
    EXPECT_EQ(odd.recentSongs.front(), u"/n9.kqu");
    {
        QSettings file(QString::fromStdString((folder.path() / "Pulsara.ini").string()), QSettings::IniFormat);
        ASSERT_TRUE(saveSettings(file, odd));
        EXPECT_EQ(file.value("Stereo").toInt(), 1) << "stereo is saved back as 1";
    }
    QSettings again(QString::fromStdString((folder.path() / "Pulsara.ini").string()), QSettings::IniFormat);
    AppSettings reread = loadSettings(again, kDefaults);
    EXPECT_EQ(reread.sampleRate, 22050u);
    EXPECT_EQ(reread.bufferLength, AppSettings::kMaxLatencyMs);
    EXPECT_EQ(reread.recentSongs, odd.recentSongs);
    EXPECT_EQ(reread.midiMode, 1u);
    EXPECT_EQ(reread.midiIn, u"Pad");
}

TEST(SettingsDialog, ShowsAndKeepsTheChangesWhicheverButtonClosesIt)
{
    testApplication();
    AppSettings settings;
    settings.sampleRate = 32000;
    settings.bufferLength = 120;
    settings.device = u"USB headset";
    settings.midiIn = u"None";
    SettingsDialog dialog(settings, { "Built-in", "HDMI" }, { "Keystation 49 24:0" }, nullptr);
    EXPECT_EQ(dialog.format().count(), 4);
    EXPECT_EQ(dialog.format().itemText(3), QStringLiteral("48,000 Hz"));
    EXPECT_EQ(dialog.format().currentIndex(), -1) << "32,000 Hz is not in the list";
    EXPECT_EQ(dialog.latencyLabel().text(), QStringLiteral("120 ms"));
    EXPECT_EQ(dialog.latency().minimum(), 30);
    EXPECT_EQ(dialog.latency().maximum(), 600);
    // The default first, then the outputs, and a chosen one that is not there now, chosen still.
    ASSERT_EQ(dialog.device().count(), 4);
    EXPECT_EQ(dialog.device().itemText(0), QStringLiteral("Default"));
    EXPECT_EQ(dialog.device().currentText(), QStringLiteral("USB headset"));
    EXPECT_EQ(dialog.midiInput().count(), 3);
    EXPECT_EQ(dialog.midiInput().currentText(), QStringLiteral("None"));

    std::vector<int> applied;
    dialog.onLatency = [&](int milliseconds) { applied.push_back(milliseconds); };
    dialog.latency().setSliderDown(true);
    dialog.latency().setValue(400);
    EXPECT_TRUE(applied.empty()) << "nothing while the knob is held";
    dialog.latency().setSliderDown(false); // the knob let go
    dialog.latency().setValue(dialog.latency().maximum());
    EXPECT_EQ(applied, (std::vector<int> { 400, 600 }));

    dialog.stereo().setChecked(true);
    dialog.smoothResampling().setChecked(true);
    dialog.shareDevice().setChecked(false);
    dialog.reject();
    dialog.applyTo(settings);
    EXPECT_EQ(settings.sampleRate, 32000u) << "no rate chosen leaves the rate";
    EXPECT_EQ(settings.channels, 2);
    EXPECT_EQ(settings.interpolation, 1u);
    EXPECT_FALSE(settings.releaseWaveOut);
    EXPECT_EQ(settings.device, u"USB headset");
    dialog.format().setCurrentIndex(3);
    dialog.device().setCurrentIndex(0);
    dialog.midiInput().setCurrentIndex(2);
    dialog.midiMode().setCurrentIndex(1);
    dialog.applyTo(settings);
    EXPECT_EQ(settings.sampleRate, 48000u);
    EXPECT_EQ(settings.device, u"") << "the default is no name";
    EXPECT_EQ(settings.midiIn, u"Keystation 49 24:0");
    EXPECT_EQ(settings.midiMode, 1u);
}
