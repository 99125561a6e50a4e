#pragma once

class QWidget;

namespace pulsara {

// Help > About: the program's name and version line, and the version of this build.
void showAboutBox(QWidget* owner);

} // namespace pulsara
