#include "App/WindowMain.h"

#include "App/DataFolders.h"
#include "App/MainWindow.h"
#include "App/StandInScreen.h"
#include "GUI/Skin.h"
#include "base/Path.h"

#include <QApplication>

namespace pulsara {

namespace {

constexpr int kStartWidth = 800;
constexpr int kStartHeight = 600;

} // namespace

int runWindow(int argc, char** argv, const std::u16string& songPath)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Pulsara"));
    QApplication::setOrganizationName(QStringLiteral("Orvane"));

    Skin& skin = theSkin();
    std::u16string installDir = dataFolder();
    if (installDir.empty() || installDir.back() != kPathSeparator)
        installDir += kPathSeparator;
    skin.setInstallDir(installDir);
    skin.load();

    // The song itself opens once the document commands arrive; the path is kept for them.
    (void)songPath;
    StandInScreen screen(skin);
    MainWindow window(screen);
    window.resize(kStartWidth, kStartHeight);
    window.show();
    return application.exec();
}

} // namespace pulsara
