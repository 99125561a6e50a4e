// The settings file: defaults, odd values, the length limit, the command line's song, the
// round trip, and the Settings dialog.
#include "App/AppSettings.h"
#include "App/PlainIniFormat.h"
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
using namespace std::string_literals;

namespace {

const SettingsDefaults kDefaults { u"/data/", u"/docs/Pulsara/zzzDemo.kqu", u"/docs/Pulsara/Kick1.wav", u"/docs/Pulsara", {} };

AppSettings loadFrom(const ScratchFolder& folder, const std::string& text, SettingsDefaults defaults = kDefaults)
{
    folder.write("Pulsara.ini", std::vector<uint8_t>(text.begin(), text.end()));
    QSettings file(QString::fromStdString((folder.path() / "Pulsara.ini").string()), plainIniFormat());
    return loadSettings(file, defaults);
}

// What the General section gives, to compare whole.
auto general(const AppSettings& s)
{
    return std::tuple(s.sampleRate, int(s.channels), s.interpolation, s.liveact, s.bufferLength, s.releaseWaveOut, s.skinName, s.installDir,
        s.lastSong, s.lastSample, s.samplesDir);
}

} // namespace

TEST(AppSettings, MissingOddAndOverlongValuesFallBack)
{
    ScratchFolder folder;
    EXPECT_EQ(general(loadFrom(folder, "")), std::tuple(44100u, 1, 0u, 0u, 200, true, u"Default"s, u"/data/"s, u"/docs/Pulsara/zzzDemo.kqu"s,
        u"/docs/Pulsara/Kick1.wav"s, u"/docs/Pulsara"s));

    // Any rate is used as it is, any non-zero Stereo is stereo, a Liveact that is no number is
    // the default, and a path of 130 characters is one too many.
    const std::string longest(AppSettings::kMaxPathLength, 'a');
    AppSettings odd = loadFrom(folder,
        "[General]\nSmpFreq=32000\nStereo=5\nInterpolation=7\nReleaseWaveOut=0\nBuffLength=5\nSkin=Dark\n"
        "LastSong=/x/"
            + std::string(AppSettings::kMaxPathLength, 'b') + "\nLastSmp=" + longest + "\nSamplesDir=notanumber\nLiveact=yes\n");
    EXPECT_EQ(general(odd), std::tuple(32000u, 2, 1u, 0u, AppSettings::kMinLatencyMs, false, u"Dark"s, u"/data/"s, kDefaults.lastSong,
        fromUtf8(longest), u"notanumber"s));

    SettingsDefaults fromCommandLine = kDefaults;
    fromCommandLine.commandLineSong = u"/songs/given.kqu";
    EXPECT_EQ(loadFrom(folder, "[General]\nLastSong=/songs/last.kqu\n", fromCommandLine).lastSong, u"/songs/given.kqu");
}

TEST(AppSettings, WriteBackWhatTheyRead)
{
    ScratchFolder folder;
    AppSettings odd = loadFrom(folder, "[General]\nStereo=5\nSmpFreq=22050\nBuffLength=640\nMidiMode=Chromatic\nMidiIn=Pad\n");
    for (std::u16string_view name : { u"/a.kqu", u"/b.kqu", u"/a.kqu" })
        rememberRecentSong(odd, name);
    for (int song = 0; song < 4; ++song)
        rememberRecentSong(odd, fromUtf8("/n" + std::to_string(song) + ".kqu"));
    // Names the file's syntax gives a meaning to.
    for (std::u16string_view name : { u"@Variant(x).kqu", u" /a, b; c .kqu", u"/q\"u\\o\nte.kqu", u"/\u00e9t\u00e9.kqu" })
        rememberRecentSong(odd, name);
    EXPECT_EQ(odd.recentSongs.size(), AppSettings::kRecentSongs);
    EXPECT_EQ(odd.recentSongs.front(), u"/\u00e9t\u00e9.kqu");
    {
        QSettings file(QString::fromStdString((folder.path() / "Pulsara.ini").string()), plainIniFormat());
        ASSERT_TRUE(saveSettings(file, odd));
        EXPECT_EQ(file.value("Stereo").toInt(), 1) << "stereo is saved back as 1";
    }
    QSettings again(QString::fromStdString((folder.path() / "Pulsara.ini").string()), plainIniFormat());
    AppSettings reread = loadSettings(again, kDefaults);
    EXPECT_EQ(std::tie(reread.sampleRate, reread.bufferLength, reread.midiMode, reread.midiIn),
        std::tuple(22050u, AppSettings::kMaxLatencyMs, 1u, u"Pad"s));
    EXPECT_EQ(reread.recentSongs, odd.recentSongs);
}

TEST(AppSettings, ReadWhatQtWritesAndPassOverStoredObjects)
{
    ScratchFolder folder;
    const QString path = QString::fromStdString((folder.path() / "Qt.ini").string());
    {
        QSettings qt(path, QSettings::IniFormat);
        qt.setValue("RecentSongs", QStringList { "/a, b.kqu", "@c.kqu", "/\u00e9.kqu" });
        qt.setValue("SmpFreq", 48000);
        qt.setValue("Skin", QStringLiteral("Dark Blue"));
    }
    QSettings plain(path, plainIniFormat());
    AppSettings read = loadSettings(plain, kDefaults);
    EXPECT_EQ(std::tie(read.sampleRate, read.skinName, read.recentSongs),
        std::tuple(48000u, u"Dark Blue"s, std::vector<std::u16string> { u"/a, b.kqu", u"@c.kqu", u"/\u00e9.kqu" }));

    // A list that claims two thousand million entries, and a picture: neither is decoded.
    AppSettings stored = loadFrom(folder, std::string("[General]\nRecentSongs=@Variant(\\0\\0\\0\\v\\x7f\\xff\\xff\\xff)\n")
            + "Skin=@Variant(\\0\\0\\0\\x46)\nSmpFreq=@Invalid()\n");
    EXPECT_EQ(std::tie(stored.sampleRate, stored.skinName, stored.recentSongs), std::tuple(44100u, u"Default"s, std::vector<std::u16string> {}));
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
    EXPECT_EQ(std::pair(dialog.latency().minimum(), dialog.latency().maximum()), std::pair(30, 600));
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
    EXPECT_EQ(general(settings), std::tuple(32000u, 2, 1u, 0u, 600, false, u"Default"s, u""s, u""s, u""s, u""s)) << "no rate chosen leaves the rate";
    EXPECT_EQ(settings.device, u"USB headset");
    dialog.format().setCurrentIndex(3);
    dialog.device().setCurrentIndex(0);
    dialog.midiInput().setCurrentIndex(2);
    dialog.midiMode().setCurrentIndex(1);
    dialog.applyTo(settings);
    EXPECT_EQ(std::tie(settings.sampleRate, settings.device, settings.midiIn, settings.midiMode),
        std::tuple(48000u, u""s, u"Keystation 49 24:0"s, 1u))
        << "the default device is no name";
}
