#pragma once

#include <cstdint>

class QPainter;

namespace pulsara {

// What elements and painters draw on: a painter on the window's back buffer (or, in tests and
// benchmarks, on any image).
using DeviceContext = QPainter;

// The modes `paint` is called with: a full repaint of the update region, and the root timer's
// repaint, in which elements draw only what changed since they last painted.
enum PaintMode : uint32_t {
    kPaintAll = 0,
    kPaintChanged = 2,
};

} // namespace pulsara
