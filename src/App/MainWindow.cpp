#include "App/MainWindow.h"

#include "App/MenuBar.h"
#include "GUI/RootElement.h"
#include "GUI/WindowMessage.h"

#include <QUndoStack>

namespace pulsara {

MainWindow::MainWindow(RootElement& root, QUndoStack& history) : canvas_(root, this)
{
    setWindowTitle(QStringLiteral("Pulsara"));
    setCentralWidget(&canvas_);
    // The keys (Escape, the editors' keys, live play) go to the canvas from the start.
    canvas_.setFocus();
    canvas_.buildMenus = [&root, &history](QMenuBar* menuBar) {
        return buildMenuBar(menuBar, history, [&root](uint16_t id) { root.handleMessage(kMessageCommand, id, 0); }, {});
    };
}

} // namespace pulsara
