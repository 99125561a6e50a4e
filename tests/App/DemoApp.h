#pragma once

// The application on the demo song, with a device the test plays by hand: driven through the
// window messages on a recording window (DemoScreen), or shown in a real main window (DemoWindow).
#include "App/Application.h"
#include "App/MainWindow.h"
#include "GUI/editors/EditorHarness.h"
#include "support/PulledWaveDevice.h"

namespace pulsara::test {

struct DemoApp {
    pulsara::testing::PulledWaveDevice device;
    Application app { loadedSkin(), device };

    DemoApp() { app.initialise(30); app.loadSongFile(u"" PULSARA_SHARE_DIR "/Demo/zzzDemo.kqu"); }
};

struct DemoScreen : DemoApp, WindowDriver {
    explicit DemoScreen(int width = 1200, int height = 780) : WindowDriver(app) { open(width, height); }
};

struct DemoWindow : DemoApp {
    MainWindow window { app, app.edits().history() };

    DemoWindow(int width, int height)
    {
        window.resize(width, height);
        window.show();
        QCoreApplication::processEvents();
    }
};

} // namespace pulsara::test
