#pragma once

#include "GUI/SkinBitmap.h"

namespace pulsara {

// A bitmap drawn as a bordered panel of any size: the corners are copied as they are, the edges
// and the centre are tiled, never stretched.
class SkinFrame : public SkinBitmap {
public:
    // Loads, then applies the corner again so that it is clamped to the new size.
    int load(std::u16string_view path) override;
    // Stores the corner, or half the smaller side when twice the corner would not fit.
    void setCorner(int32_t corner);
    int32_t corner() const { return corner_; }

    // The tiled panel; 0 without drawing when the bitmap has no inner tile at all.
    int drawRect(int32_t x, int32_t y, int32_t width, int32_t height) override;

private:
    void tileRow(int32_t sourceY, int32_t pieceHeight, int32_t x, int32_t y, int32_t end);
    void tileColumn(int32_t sourceX, int32_t pieceWidth, int32_t x, int32_t y, int32_t end);

    int32_t corner_ = 2;
};

} // namespace pulsara
