#include "GUI/editors/PianoKeys.h"

#include "GUI/SkinBitmap.h"

namespace pulsara {

namespace {

constexpr int32_t kWhiteKeys = 7;
// The white key each note lies on or follows.
constexpr int32_t kWhiteKeyOf[PianoKeys::kKeys] = { 0, 0, 1, 1, 2, 3, 3, 4, 4, 5, 5, 6 };

} // namespace

void PianoKeys::setBitmap(SkinBitmap* bitmap)
{
    bitmap_ = bitmap;
    place(rect_.x, rect_.y);
}

void PianoKeys::place(int32_t x, int32_t y)
{
    layout({ x, y, bitmap_ ? bitmap_->width() : 0, bitmap_ ? bitmap_->height() / 2 : 0 });
}

bool PianoKeys::isBlack(int32_t key)
{
    return key == 1 || key == 3 || key == 6 || key == 8 || key == 10;
}

ElemRect PianoKeys::keyRect(int32_t key) const
{
    const int32_t white = rect_.width / kWhiteKeys;
    const int32_t x = kWhiteKeyOf[key] * white;
    if (isBlack(key))
        return { x + white * 2 / 3, 0, white * 2 / 3, rect_.height * 3 / 5 };
    return { x, 0, white, rect_.height };
}

void PianoKeys::setSelected(int32_t key)
{
    key = key >= 0 && key < kKeys ? key : -1;
    if (key == selected_)
        return;
    selected_ = key;
    redraw();
}

int32_t PianoKeys::keyAt(int32_t x, int32_t y) const
{
    if (!rect_.contains(x, y))
        return -1;
    x -= rect_.x;
    y -= rect_.y;
    // Black keys lie on top of the white ones.
    for (int32_t key = 0; key < kKeys; ++key) {
        if (isBlack(key) && keyRect(key).contains(x, y))
            return key;
    }
    for (int32_t key = 0; key < kKeys; ++key) {
        if (!isBlack(key) && keyRect(key).contains(x, y))
            return key;
    }
    return -1;
}

int PianoKeys::paint(DeviceContext* dc, uint32_t mode)
{
    if (mustDraw(mode) && bitmap_) {
        SkinBitmap& keys = *bitmap_;
        keys.setDestination(dc);
        keys.drawPart(0, 0, rect_.width, rect_.height, rect_.x, rect_.y);
        if (selected_ >= 0) {
            ElemRect lit = keyRect(selected_);
            keys.drawPart(lit.x, rect_.height + lit.y, lit.width, lit.height, rect_.x + lit.x, rect_.y + lit.y);
            // A lit white key goes under its black neighbours again.
            for (int32_t neighbour : { selected_ - 1, selected_ + 1 }) {
                if (!isBlack(selected_) && neighbour >= 0 && neighbour < kKeys && isBlack(neighbour)) {
                    ElemRect black = keyRect(neighbour);
                    keys.drawPart(black.x, black.y, black.width, black.height, rect_.x + black.x, rect_.y + black.y);
                }
            }
        }
    }
    return Element::paint(dc, mode);
}

int PianoKeys::stylusDown(int, int32_t x, int32_t y)
{
    int32_t key = keyAt(x, y);
    if (key < 0)
        return 1;
    setSelected(key);
    if (onSelect)
        onSelect(key);
    return 1;
}

} // namespace pulsara
