#include "App/MainWindow.h"

#include "App/MenuBar.h"
#include "GUI/RootElement.h"
#include "GUI/WindowMessage.h"

namespace pulsara {

namespace {

constexpr uint16_t kExitCommand = 40002;

} // namespace

MainWindow::MainWindow(RootElement& root) : canvas_(root, this)
{
    setWindowTitle(QStringLiteral("Pulsara"));
    setCentralWidget(&canvas_);
    canvas_.setMinimumSize(240, 160);
    // The keys (Escape, later the live-play keys) go to the canvas from the start.
    canvas_.setFocus();
    // Until the shell's commands arrive only Exit works; the rest show greyed.
    canvas_.buildMenus = [&root](QMenuBar* menuBar) {
        return buildMenuBar(
            menuBar,
            [&root](uint16_t id) {
                if (id == kExitCommand)
                    root.handleMessage(kMessageClose, 0, 0);
                else
                    root.handleMessage(kMessageCommand, id, 0);
            },
            [](uint16_t id) { return id == kExitCommand; });
    };
}

} // namespace pulsara
