#include "App/MainWindow.h"

#include "App/MenuBar.h"
#include "GUI/RootElement.h"
#include "GUI/WindowMessage.h"

#include <QUndoStack>

#include <algorithm>
#include <array>

namespace pulsara {

namespace {

constexpr uint16_t kExitCommand = 40002;
// The commands that work so far; the document commands follow.
constexpr std::array<uint16_t, 3> kAvailable { kExitCommand, 40029, 40033 };

} // namespace

MainWindow::MainWindow(RootElement& root, QUndoStack& history) : canvas_(root, this)
{
    setWindowTitle(QStringLiteral("Pulsara"));
    setCentralWidget(&canvas_);
    // The keys (Escape, the editors' keys, live play) go to the canvas from the start.
    canvas_.setFocus();
    canvas_.buildMenus = [&root, &history](QMenuBar* menuBar) {
        return buildMenuBar(
            menuBar, history,
            [&root](uint16_t id) {
                if (id == kExitCommand)
                    root.handleMessage(kMessageClose, 0, 0);
                else
                    root.handleMessage(kMessageCommand, id, 0);
            },
            [](uint16_t id) { return std::find(kAvailable.begin(), kAvailable.end(), id) != kAvailable.end(); });
    };
}

} // namespace pulsara
