#pragma once

#include <QRect>

class QImage;

namespace pulsara {

// Moves the pixels inside `area` of the image by (dx, dy), as a window scrolls its content:
// what moves past the area's edge is dropped, and the strip that comes free keeps its old
// pixels until the caller draws it. The area must lie inside the image; 32-bit images only.
void scrollPixels(QImage&, const QRect& area, int dx, int dy);

} // namespace pulsara
