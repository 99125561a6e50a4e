#pragma once

#include "GUI/ElementContainer.h"

namespace pulsara {

class SkinFrame;

// A container drawn as one of the skin's frames, with its children on top.
class FramePanel : public ElementContainer {
public:
    explicit FramePanel(SkinFrame* frame = nullptr) : frame_(frame) { }
    void setFrame(SkinFrame* frame) { frame_ = frame; }

    int paint(DeviceContext*, uint32_t mode) override;

private:
    SkinFrame* frame_;
};

} // namespace pulsara
