#include "App/PairDisplay.h"

#include <algorithm>

namespace pulsara {

namespace {

constexpr int32_t kFieldGap = 2;

} // namespace

PairDisplay::PairDisplay()
{
    addChild(&first_);
    addChild(&second_);
}

void PairDisplay::setFrame(SkinFrame* frame)
{
    first_.setFrame(frame);
    second_.setFrame(frame);
}

void PairDisplay::setFont(const QFont& font)
{
    first_.setFont(font);
    second_.setFont(font);
}

void PairDisplay::setColor(QColor color)
{
    first_.setColor(color);
    second_.setColor(color);
}

void PairDisplay::setValues(int32_t first, int32_t second)
{
    first_.setValue(first);
    second_.setValue(second);
}

void PairDisplay::layout(const ElemRect& rect)
{
    const int32_t field = std::max(first_.preferredWidth(), second_.preferredWidth());
    const int32_t width = std::max(rect.width, 2 * field + kFieldGap);
    const int32_t x = rect.right() - width;
    ElementContainer::layout({ x, rect.y, width, rect.height });
    first_.layout({ x, rect.y, field, rect.height });
    second_.layout({ x + width - field, rect.y, field, rect.height });
}

} // namespace pulsara
