#include "App/WindowMain.h"

#include "App/AppSettings.h"
#include "App/Application.h"
#include "App/DataFolders.h"
#include "App/MainWindow.h"
#include "App/RtMidiPorts.h"
#include "App/SingleInstance.h"
#include "App/UserFolders.h"
#include "App/WindowErrorPresenter.h"
#include "GUI/Skin.h"
#include "GUI/WindowMessage.h"
#include "Sound/RtAudioDevice.h"
#include "base/ErrorReporter.h"
#include "base/Path.h"

#include <QApplication>
#include <QIcon>
#include <QScreen>
#include <QSettings>

#include <cstdio>
#include <filesystem>

namespace pulsara {

namespace {

// A 16-step pattern with all 40 tracks fits without scrolling at this size.
constexpr int kStartWidth = 1200;
constexpr int kStartHeight = 780;
constexpr int kMinWidth = 640;
constexpr int kMinHeight = 480;
constexpr const char* kSettingsSource = "GUI/settings";
constexpr int kSettingsLine = 100;

std::u16string withSeparator(std::u16string folder)
{
    if (folder.empty() || folder.back() != kPathSeparator)
        folder += kPathSeparator;
    return folder;
}

// The folder the skins are taken from: the stored one while it holds the chosen skin, else the
// program's own data, so that a program moved elsewhere still finds its artwork.
std::u16string skinFolder(const AppSettings& settings)
{
    std::error_code error;
    if (!settings.installDir.empty()
        && std::filesystem::is_directory(nativePath(withSeparator(settings.installDir) + u"Skins/" + settings.skinName), error))
        return withSeparator(settings.installDir);
    return withSeparator(dataFolder());
}

} // namespace

int runWindow(int argc, char** argv, const std::u16string& songPath)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Pulsara"));
    QApplication::setOrganizationName(QStringLiteral("Orvane"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("pulsara"),
        QIcon(QString::fromStdU16String(dataFolder() + u"/icons/pulsara.svg"))));

    // One program per user: a start without a song brings the running one to the front and
    // ends; a start with one asks the running one to close, then opens the song here.
    if (SingleInstance::sendToRunning(songPath.empty() ? SingleInstance::Request::Foreground : SingleInstance::Request::OpenFromShell)
        && songPath.empty())
        return 0;

    WindowErrorPresenter errors;
    const std::u16string songs = samplesFolder();
    installUserFolders(dataFolder(), songs, templatesFolder());
    QSettings store(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Orvane"), QStringLiteral("Pulsara"));
    SettingsDefaults defaults { withSeparator(dataFolder()), songs + u"/zzzDemo.kqu", songs + u"/Kick1.wav", songs, songPath };
    AppSettings settings = loadSettings(store, defaults);

    Skin& skin = theSkin();
    skin.setInstallDir(skinFolder(settings));
    skin.setName(settings.skinName);
    skin.load();

    RtAudioDevice device;
    RtMidiPorts midiPorts;
    Application app(skin, device, &midiPorts);
    app.initialise(settings);
    app.openFirstSong();

    MainWindow window(app, app.edits().history());
    errors.setOwner(&window);
    window.setMinimumSize(kMinWidth, kMinHeight);
    QSize size(kStartWidth, kStartHeight);
    if (QScreen* screen = QApplication::primaryScreen())
        size = size.boundedTo(screen->availableSize());
    window.resize(size);
    window.show();

    SingleInstance instance;
    instance.listen([&](SingleInstance::Request request) {
        if (request == SingleInstance::Request::OpenFromShell) {
            app.handleMessage(kMessageUser, 0, 0);
            if (!window.isVisible())
                instance.stopListening();
            return;
        }
        window.showNormal();
        window.raise();
        window.activateWindow();
    });

    // The song plays from the start, as the play button starts it.
    app.setPlaying(true);
    const int status = application.exec();
    app.transport().close();
    // The long playback checks (bench/soak.py) count the gaps in the sound of a whole session.
    if (qEnvironmentVariableIsSet("PULSARA_PRINT_UNDERRUNS"))
        std::fprintf(stderr, "underruns: %u\n", device.underruns());

    if (!saveSettings(store, app.currentSettings()))
        reportError(&errorContext(), kFatal, kSettingsSource, kSettingsLine, u"can't access registry");
    errors.setOwner(nullptr);
    return status;
}

} // namespace pulsara
