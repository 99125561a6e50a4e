#pragma once

#include "GUI/SkinBitmap.h"

namespace pulsara {

class Skin;
class SkinFrame;

// A step grid's strip of cell images, side by side: (count + 2) x 2 images of equal width, where
// count is the number of row colours. Images 0 and 1 are the ruler (off-beat, on-beat), 2 and 3
// the empty cell, then two images (off-beat, on-beat) per row colour.
class SkinSteps : public SkinBitmap {
public:
    void attach(Skin* owner, SkinFrame* panelD, int32_t count);

    int32_t count() const { return count_; }
    int32_t imageCount() const { return (count_ + 2) * 2; }
    int32_t cellWidth() const { return count_ > 0 ? width() / imageCount() : 0; }
    int32_t cellHeight() const { return height(); }
    // Copies image `index` of the strip with its top-left corner at (x, y).
    int drawImage(int32_t index, int32_t x, int32_t y);
    SkinFrame* panelD() const { return panelD_; }
    Skin* owner() const { return owner_; }

private:
    int32_t count_ = 0;
    Skin* owner_ = nullptr;
    SkinFrame* panelD_ = nullptr;
};

} // namespace pulsara
