#pragma once

#include "GUI/DeviceContext.h"
#include "GUI/ElemRect.h"

#include <cstdint>

namespace pulsara {

// A small drawing object: it draws into a rectangle or at a point of the destination context
// that its owning element sets before drawing. The destination is not owned.
class Painter {
public:
    virtual ~Painter() = default;

    // Copies a piece of the painter's own image; only bitmaps have one, so the base draws
    // nothing and returns 0.
    virtual int drawPart(int32_t sourceX, int32_t sourceY, int32_t width, int32_t height, int32_t x, int32_t y);
    // The painter's main drawing.
    virtual int drawRect(int32_t x, int32_t y, int32_t width, int32_t height) = 0;
    virtual int drawInRect(const ElemRect&);
    virtual int drawAt(int32_t x, int32_t y);

    void setDestination(DeviceContext* dc) { dc_ = dc; }
    DeviceContext* destination() const { return dc_; }

protected:
    DeviceContext* dc_ = nullptr;
};

} // namespace pulsara
