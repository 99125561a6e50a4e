#include "App/WindowMain.h"

#include "App/Application.h"
#include "App/DataFolders.h"
#include "App/MainWindow.h"
#include "App/WindowErrorPresenter.h"
#include "GUI/Skin.h"
#include "Sound/RtAudioDevice.h"
#include "base/Path.h"

#include <QApplication>
#include <QScreen>

namespace pulsara {

namespace {

// A 16-step pattern with all 40 tracks fits without scrolling at this size.
constexpr int kStartWidth = 1200;
constexpr int kStartHeight = 780;
constexpr int kMinWidth = 640;
constexpr int kMinHeight = 480;
constexpr int kDefaultLatencyMs = 200;

std::u16string demoSong()
{
    return dataFolder() + u"/Demo/zzzDemo.kqu";
}

} // namespace

int runWindow(int argc, char** argv, const std::u16string& songPath)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Pulsara"));
    QApplication::setOrganizationName(QStringLiteral("Orvane"));
    WindowErrorPresenter errors;

    Skin& skin = theSkin();
    std::u16string installDir = dataFolder();
    if (installDir.empty() || installDir.back() != kPathSeparator)
        installDir += kPathSeparator;
    skin.setInstallDir(installDir);
    skin.load();

    RtAudioDevice device;
    Application app(skin, device);
    app.initialise(kDefaultLatencyMs);
    app.loadSongFile(songPath.empty() ? demoSong() : songPath);

    MainWindow window(app, app.edits().history());
    errors.setOwner(&window);
    window.setMinimumSize(kMinWidth, kMinHeight);
    QSize size(kStartWidth, kStartHeight);
    if (QScreen* screen = QApplication::primaryScreen())
        size = size.boundedTo(screen->availableSize());
    window.resize(size);
    window.show();
    int status = application.exec();
    errors.setOwner(nullptr);
    return status;
}

} // namespace pulsara
