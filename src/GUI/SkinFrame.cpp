#include "GUI/SkinFrame.h"

#include <algorithm>

namespace pulsara {

int SkinFrame::load(std::u16string_view path)
{
    int result = SkinBitmap::load(path);
    setCorner(corner_);
    return result;
}

void SkinFrame::setCorner(int32_t corner)
{
    int32_t smallerSide = std::min(width(), height());
    corner_ = 2 * corner > smallerSide ? smallerSide / 2 : corner;
}

// Lays tiles of the inner width from x up to end: full tiles while they end short of `end`, then
// one last piece as wide as what is left.
void SkinFrame::tileRow(int32_t sourceY, int32_t pieceHeight, int32_t x, int32_t y, int32_t end)
{
    const int32_t tile = width() - 2 * corner_;
    for (int32_t left = x; left < end; left += tile)
        drawPart(corner_, sourceY, std::min(tile, end - left), pieceHeight, left, y);
}

void SkinFrame::tileColumn(int32_t sourceX, int32_t pieceWidth, int32_t x, int32_t y, int32_t end)
{
    const int32_t tile = height() - 2 * corner_;
    for (int32_t top = y; top < end; top += tile)
        drawPart(sourceX, corner_, pieceWidth, std::min(tile, end - top), x, top);
}

int SkinFrame::drawRect(int32_t x, int32_t y, int32_t w, int32_t h)
{
    const int32_t c = corner_;
    const int32_t tileWidth = width() - 2 * c;
    const int32_t tileHeight = height() - 2 * c;
    if (tileWidth <= 0 && tileHeight <= 0)
        return 0;

    drawPart(0, 0, c, c, x, y);
    drawPart(0, height() - c, c, c, x, y + h - c);
    drawPart(width() - c, 0, c, c, x + w - c, y);
    drawPart(width() - c, height() - c, c, c, x + w - c, y + h - c);

    const int32_t innerRight = x + w - c;
    const int32_t innerBottom = y + h - c;
    if (tileWidth > 0) {
        tileRow(0, c, x + c, y, innerRight);
        tileRow(height() - c, c, x + c, y + h - c, innerRight);
    }
    if (tileHeight > 0) {
        tileColumn(0, c, x, y + c, innerBottom);
        tileColumn(width() - c, c, x + w - c, y + c, innerBottom);
    }
    if (tileWidth > 0 && tileHeight > 0) {
        for (int32_t left = x + c; left < innerRight; left += tileWidth)
            tileColumn(c, std::min(tileWidth, innerRight - left), left, y + c, innerBottom);
    }
    return 1;
}

} // namespace pulsara
