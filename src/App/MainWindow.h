#pragma once

#include "GUI/Canvas.h"

#include <QMainWindow>

namespace pulsara {

class RootElement;

// The one top-level window: the menu bar and the canvas that holds the element tree.
class MainWindow : public QMainWindow {
public:
    explicit MainWindow(RootElement&);

    Canvas& canvas() { return canvas_; }

private:
    Canvas canvas_;
};

} // namespace pulsara
