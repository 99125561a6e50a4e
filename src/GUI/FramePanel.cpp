#include "GUI/FramePanel.h"

#include "GUI/SkinFrame.h"

namespace pulsara {

int FramePanel::paint(DeviceContext* dc, uint32_t mode)
{
    bool drawAll = mustDraw(mode);
    clearDirty();
    if (drawAll && frame_) {
        frame_->setDestination(dc);
        frame_->drawInRect(rect_);
    }
    // A redrawn background covers the children, so they are all drawn again.
    return paintChildren(dc, drawAll ? kPaintAll : mode);
}

} // namespace pulsara
