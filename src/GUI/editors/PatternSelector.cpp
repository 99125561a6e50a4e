#include "GUI/editors/PatternSelector.h"

#include "GUI/ArrowPainter.h"
#include "GUI/NativeWindow.h"
#include "GUI/RootElement.h"
#include "GUI/Skin.h"
#include "GUI/TextPainter.h"
#include "GUI/UiFont.h"
#include "Sound/Song.h"
#include "base/text.h"

#include <QPainter>

#include <algorithm>

namespace pulsara {

namespace {

const QColor kText(0xdc, 0xe1, 0xea);
const QColor kArrow(0x8a, 0x93, 0xa3);

std::u16string twoDigits(uint32_t value)
{
    std::u16string text = fromUtf8(std::to_string(value));
    return text.size() < 2 ? u"0" + text : text;
}

} // namespace

PatternSelector::PatternSelector(Skin& skin, const Song& song)
    : skin_(skin)
    , song_(song)
{
    font_ = uiFont(12, QFont::Bold);
}

void PatternSelector::setPattern(uint32_t pattern)
{
    pattern = std::min(pattern, Song::kPatterns - 1);
    if (pattern == pattern_)
        return;
    pattern_ = pattern;
    redraw();
}

std::u16string PatternSelector::text() const
{
    std::u16string text = u"Pattern " + twoDigits(pattern_ + 1);
    const std::u16string& name = song_.player().patternName(pattern_);
    return name.empty() ? text : text + u"  " + name;
}

void PatternSelector::select(int32_t pattern)
{
    if (pattern < 0 || pattern >= int32_t(Song::kPatterns) || uint32_t(pattern) == pattern_)
        return;
    setPattern(uint32_t(pattern));
    if (onSelect)
        onSelect(pattern_);
}

int PatternSelector::paint(DeviceContext* dc, uint32_t mode)
{
    if (mustDraw(mode)) {
        skin_.panelD.setDestination(dc);
        skin_.panelD.drawInRect(rect_);
        const int32_t arrow = arrowWidth();
        QPen pen(kArrow);
        QBrush brush(kArrow);
        dc->save();
        dc->setRenderHint(QPainter::Antialiasing);
        ArrowPainter painter(ArrowPainter::kLeft);
        painter.setPen(&pen);
        painter.setBrush(&brush);
        painter.setDestination(dc);
        const int32_t inset = arrow / 3;
        painter.drawRect(rect_.x + inset, rect_.y + inset, arrow - 2 * inset, arrow - 2 * inset);
        painter.setDirection(ArrowPainter::kRight);
        painter.drawRect(rect_.right() - arrow + inset, rect_.y + inset, arrow - 2 * inset, arrow - 2 * inset);
        dc->restore();
        dc->setFont(font_);
        dc->setPen(kText);
        std::u16string label = text();
        TextPainter name(TextPainter::kCentre);
        name.setText(label.c_str());
        name.setDestination(dc);
        name.drawRect(rect_.x + arrow, rect_.y, rect_.width - 2 * arrow, rect_.height);
    }
    return Element::paint(dc, mode);
}

int PatternSelector::stylusDown(int, int32_t x, int32_t)
{
    if (x < rect_.x + arrowWidth()) {
        select(int32_t(pattern_) - 1);
        return 1;
    }
    if (x >= rect_.right() - arrowWidth()) {
        select(int32_t(pattern_) + 1);
        return 1;
    }
    RootElement* root = window();
    NativeWindow* native = root ? root->windowHandle() : nullptr;
    if (!native)
        return 1;
    std::vector<PopupMenuItem> items;
    for (uint32_t pattern = 0; pattern < Song::kPatterns; ++pattern) {
        std::u16string entry = twoDigits(pattern + 1);
        const std::u16string& name = song_.player().patternName(pattern);
        if (!name.empty())
            entry += u"  " + name;
        items.push_back({ entry, kFirstPatternCommand + pattern, pattern == pattern_ });
    }
    uint32_t chosen = native->trackPopupMenu(items, rect_.x, rect_.bottom());
    if (chosen >= kFirstPatternCommand)
        select(int32_t(chosen - kFirstPatternCommand));
    return 1;
}

int PatternSelector::mouseWheel(int32_t, int32_t, int32_t delta, uint32_t)
{
    select(int32_t(pattern_) + (delta > 0 ? -1 : 1));
    return 1;
}

} // namespace pulsara
