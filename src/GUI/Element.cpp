#include "GUI/Element.h"

#include "GUI/RootElement.h"

#include <QRegion>
#include <cassert>

namespace pulsara {

void Element::setFlags(uint32_t flags)
{
    flags_ = flags;
}

void Element::layout(const ElemRect& rect)
{
    rect_ = rect;
}

int Element::paint(DeviceContext*, uint32_t)
{
    clearDirty();
    return 1;
}

void Element::setParent(Element* parent)
{
    parent_ = parent;
}

void Element::invalidateRect(const ElemRect& rect)
{
    if (parent_)
        parent_->invalidateRect(rect);
}

void Element::excludeClip(DeviceContext* dc, const ElemRect& rect)
{
    if (parent_)
        parent_->excludeClip(dc, rect);
}

void Element::addClip(DeviceContext* dc, const ElemRect& rect)
{
    if (parent_)
        parent_->excludeClip(dc, rect);
}

RootElement* Element::window()
{
    return parent_ ? parent_->window() : nullptr;
}

intptr_t Element::parentRequest(uintptr_t first, intptr_t second)
{
    assert(parent_ && "a parent request needs a parent");
    return parent_ ? parent_->parentRequest(first, second) : 0;
}

int Element::stylusDown(int, int32_t, int32_t)
{
    return 0;
}

int Element::stylusUp(int, int32_t, int32_t)
{
    return 0;
}

int Element::stylusMove(int32_t, int32_t)
{
    return 0;
}

int Element::stylusDoubleClick(int32_t x, int32_t y)
{
    return stylusDown(0, x, y);
}

int Element::mouseWheel(int32_t, int32_t, int32_t, uint32_t)
{
    return 0;
}

void Element::repaintNow(uint32_t mode)
{
    if (!isShown())
        return;
    RootElement* root = window();
    if (!root)
        return;
    DeviceContext* dc = root->acquireContext();
    if (!dc)
        return;
    paint(dc, mode);
    root->releaseContext(dc, QRegion(rect_.toQRect()));
}

void Element::redraw()
{
    markDirty();
    invalidateRect(rect_);
}

void Element::collectChanged(QRegion& region) const
{
    if (isVisible() && isDirty() && !rect_.isEmpty())
        region += rect_.toQRect();
}

void Element::setVisible(bool visible)
{
    flags_ = visible ? (flags_ | kVisible) : (flags_ & ~uint32_t(kVisible));
}

} // namespace pulsara
