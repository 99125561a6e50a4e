#pragma once

#include "GUI/Element.h"

namespace pulsara {

class SkinBitmap;

// A piece of a skin bitmap shown as it is, cropped to the element's rectangle: artwork such as
// a keyboard or a strip of labels.
class BitmapView : public Element {
public:
    // Not owned; shows the bitmap from (sourceX, sourceY).
    void setBitmap(SkinBitmap*, int32_t sourceX = 0, int32_t sourceY = 0);

    int paint(DeviceContext*, uint32_t mode) override;

private:
    SkinBitmap* bitmap_ = nullptr;
    int32_t sourceX_ = 0;
    int32_t sourceY_ = 0;
};

} // namespace pulsara
