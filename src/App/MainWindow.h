#pragma once

#include "GUI/Canvas.h"

#include <QMainWindow>

class QUndoStack;

namespace pulsara {

class RootElement;

// The one top-level window: the menu bar and the canvas that holds the element tree.
class MainWindow : public QMainWindow {
public:
    MainWindow(RootElement&, QUndoStack& history);

    Canvas& canvas() { return canvas_; }

private:
    Canvas canvas_;
};

} // namespace pulsara
