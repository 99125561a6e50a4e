#include "GUI/editors/LiveRow.h"

#include "GUI/Skin.h"
#include "GUI/TextPainter.h"
#include "GUI/UiFont.h"
#include "Sound/Song.h"

#include <QPainter>

#include <algorithm>

namespace pulsara {

namespace {

const QColor kText(0xdc, 0xe1, 0xea);
const QColor kLitText(0x17, 0x1a, 0x20);
const QColor kLitPad(0x2e, 0xc4, 0xb6);

} // namespace

LiveRow::LiveRow(Skin& skin, const Song& song, uint32_t firstTrack, std::u16string_view keys)
    : skin_(skin)
    , song_(song)
    , firstTrack_(firstTrack)
    , keys_(keys.substr(0, kMaxPads))
{
    font_ = uiFont(10, QFont::Bold);
}

ElemRect LiveRow::padRect(uint32_t pad) const
{
    const int32_t pads = int32_t(keys_.size());
    const int32_t left = rect_.x + int32_t(pad) * rect_.width / pads;
    const int32_t right = rect_.x + int32_t(pad + 1) * rect_.width / pads;
    return { left, rect_.y, right - left, rect_.height };
}

int32_t LiveRow::trackAt(int32_t x, int32_t y) const
{
    for (uint32_t pad = 0; pad < keys_.size(); ++pad) {
        if (padRect(pad).contains(x, y))
            return int32_t(firstTrack_ + pad);
    }
    return -1;
}

std::u16string LiveRow::padText(uint32_t pad) const
{
    std::u16string text(1, keys_[pad]);
    const Instrument& instrument = song_.instrument(firstTrack_ + pad);
    const std::u16string& name = instrument.name().empty() ? instrument.sample().displayName() : instrument.name();
    return name.empty() ? text : text + u' ' + name;
}

void LiveRow::light(int32_t track, uint32_t untilMs)
{
    if (track < int32_t(firstTrack_) || track >= int32_t(firstTrack_ + keys_.size()))
        return;
    uint32_t pad = uint32_t(track) - firstTrack_;
    litUntil_[pad] = untilMs;
    if (!lit_[pad]) {
        lit_[pad] = true;
        redraw();
    }
}

void LiveRow::tick(uint32_t nowMs)
{
    for (uint32_t pad = 0; pad < keys_.size(); ++pad) {
        if (lit_[pad] && int32_t(nowMs - litUntil_[pad]) >= 0) {
            lit_[pad] = false;
            redraw();
        }
    }
}

bool LiveRow::isLit(int32_t track) const
{
    return track >= int32_t(firstTrack_) && track < int32_t(firstTrack_ + keys_.size()) && lit_[uint32_t(track) - firstTrack_];
}

int LiveRow::paint(DeviceContext* dc, uint32_t mode)
{
    if (mustDraw(mode)) {
        dc->setFont(font_);
        TextPainter text(TextPainter::kLeft);
        text.setDestination(dc);
        for (uint32_t pad = 0; pad < keys_.size(); ++pad) {
            ElemRect box = padRect(pad);
            skin_.panelBckD.setDestination(dc);
            skin_.panelBckD.drawInRect(box);
            if (lit_[pad])
                dc->fillRect(box.x + 1, box.y + 1, box.width - 2, box.height - 2, kLitPad);
            dc->setPen(lit_[pad] ? kLitText : kText);
            std::u16string label = padText(pad);
            text.setText(label.c_str());
            text.drawRect(box.x + 3, box.y, box.width - 4, box.height);
        }
    }
    return Element::paint(dc, mode);
}

int LiveRow::stylusDown(int, int32_t x, int32_t y)
{
    int32_t track = trackAt(x, y);
    if (track >= 0 && onTrigger)
        onTrigger(track);
    return 1;
}

} // namespace pulsara
