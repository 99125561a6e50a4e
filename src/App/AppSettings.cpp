#include "App/AppSettings.h"

#include <QSettings>
#include <QStringList>

#include <algorithm>
#include <optional>

namespace pulsara {

namespace {

std::optional<uint32_t> readNumber(QSettings& settings, const char* name)
{
    QVariant value = settings.value(QString::fromLatin1(name));
    if (!value.isValid())
        return std::nullopt;
    bool ok = false;
    // Numbers are 32-bit words: a negative one reads as the same bits.
    qlonglong number = value.toLongLong(&ok);
    if (!ok || number < INT32_MIN || number > UINT32_MAX)
        return std::nullopt;
    return static_cast<uint32_t>(number);
}

// A text that fits the program's limit, or nothing.
std::optional<std::u16string> readText(QSettings& settings, const char* name, size_t maxLength)
{
    QVariant value = settings.value(QString::fromLatin1(name));
    if (!value.isValid() || value.typeId() == QMetaType::QStringList)
        return std::nullopt;
    QString text = value.toString();
    if (size_t(text.size()) > maxLength)
        return std::nullopt;
    return text.toStdU16String();
}

QString toQString(const std::u16string& text)
{
    return QString::fromStdU16String(text);
}

} // namespace

AppSettings loadSettings(QSettings& settings, const SettingsDefaults& defaults)
{
    AppSettings loaded;
    loaded.installDir = readText(settings, "InstallDir", AppSettings::kMaxPathLength).value_or(defaults.installDir);
    loaded.sampleRate = readNumber(settings, "SmpFreq").value_or(AppSettings::kDefaultRate);
    loaded.channels = readNumber(settings, "Stereo").value_or(0) != 0 ? 2 : 1;
    loaded.interpolation = readNumber(settings, "Interpolation").value_or(0) != 0 ? 1 : 0;
    loaded.liveact = readNumber(settings, "Liveact").value_or(0) != 0 ? 1 : 0;
    // A latency outside the dialog's range would leave the device no usable buffer.
    std::optional<uint32_t> latency = readNumber(settings, "BuffLength");
    loaded.bufferLength = latency ? int(std::clamp<int64_t>(int32_t(*latency), AppSettings::kMinLatencyMs, AppSettings::kMaxLatencyMs))
                                  : AppSettings::kDefaultLatencyMs;
    loaded.releaseWaveOut = readNumber(settings, "ReleaseWaveOut").value_or(1) != 0;
    loaded.lastSong = !defaults.commandLineSong.empty()
        ? defaults.commandLineSong
        : readText(settings, "LastSong", AppSettings::kMaxPathLength).value_or(defaults.lastSong);
    loaded.lastSample = readText(settings, "LastSmp", AppSettings::kMaxPathLength).value_or(defaults.lastSample);
    loaded.samplesDir = readText(settings, "SamplesDir", AppSettings::kMaxPathLength).value_or(defaults.samplesDir);
    loaded.skinName = readText(settings, "Skin", AppSettings::kMaxSkinNameLength).value_or(u"Default");
    if (loaded.skinName.empty())
        loaded.skinName = u"Default";
    loaded.device = readText(settings, "Device", AppSettings::kMaxPathLength).value_or(u"");
    loaded.midiIn = readText(settings, "MidiIn", AppSettings::kMaxPathLength).value_or(u"");
    loaded.midiMode = readText(settings, "MidiMode", AppSettings::kMaxPathLength).value_or(u"") == u"Chromatic" ? 1 : 0;
    loaded.zoom = std::min<uint32_t>(readNumber(settings, "Zoom").value_or(0), 3);
    for (const QString& path : settings.value(QStringLiteral("RecentSongs")).toStringList()) {
        if (loaded.recentSongs.size() < AppSettings::kRecentSongs && !path.isEmpty())
            loaded.recentSongs.push_back(path.toStdU16String());
    }
    return loaded;
}

bool saveSettings(QSettings& settings, const AppSettings& values)
{
    settings.setValue(QStringLiteral("InstallDir"), toQString(values.installDir));
    settings.setValue(QStringLiteral("SmpFreq"), values.sampleRate);
    settings.setValue(QStringLiteral("Stereo"), values.channels == 2 ? 1 : 0);
    settings.setValue(QStringLiteral("Interpolation"), values.interpolation);
    settings.setValue(QStringLiteral("Liveact"), values.liveact);
    settings.setValue(QStringLiteral("BuffLength"), values.bufferLength);
    settings.setValue(QStringLiteral("ReleaseWaveOut"), values.releaseWaveOut ? 1 : 0);
    settings.setValue(QStringLiteral("LastSong"), toQString(values.lastSong));
    settings.setValue(QStringLiteral("LastSmp"), toQString(values.lastSample));
    settings.setValue(QStringLiteral("SamplesDir"), toQString(values.samplesDir));
    settings.setValue(QStringLiteral("Skin"), toQString(values.skinName));
    settings.setValue(QStringLiteral("Device"), toQString(values.device));
    settings.setValue(QStringLiteral("MidiIn"), toQString(values.midiIn));
    settings.setValue(QStringLiteral("Zoom"), values.zoom);
    settings.setValue(QStringLiteral("MidiMode"), values.midiMode == 1 ? QStringLiteral("Chromatic") : QStringLiteral("Drums"));
    QStringList recent;
    for (const std::u16string& path : values.recentSongs)
        recent << toQString(path);
    settings.setValue(QStringLiteral("RecentSongs"), recent);
    settings.sync();
    return settings.status() == QSettings::NoError;
}

void rememberRecentSong(AppSettings& settings, std::u16string_view path)
{
    std::vector<std::u16string>& recent = settings.recentSongs;
    recent.erase(std::remove(recent.begin(), recent.end(), path), recent.end());
    recent.insert(recent.begin(), std::u16string(path));
    if (recent.size() > AppSettings::kRecentSongs)
        recent.resize(AppSettings::kRecentSongs);
}

} // namespace pulsara
