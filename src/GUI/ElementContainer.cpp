#include "GUI/ElementContainer.h"

#include <QPainter>
#include <QRegion>

namespace pulsara {

// The all-ones pointer value of "no child took the stylus"; it is never dereferenced.
Element* const ElementContainer::kNoCapture = reinterpret_cast<Element*>(~uintptr_t(0));

void ElementContainer::addChild(Element* child)
{
    child->setNextSibling(firstChild_);
    firstChild_ = child;
    child->setParent(this);
}

void ElementContainer::setOverlay(Element* child)
{
    overlay_ = child;
    child->setParent(this);
    invalidateRect(*child->rect());
}

void ElementContainer::clearOverlay()
{
    if (overlay_)
        invalidateRect(*overlay_->rect());
    overlay_ = nullptr;
}

int ElementContainer::paint(DeviceContext* dc, uint32_t mode)
{
    clearDirty();
    return paintChildren(dc, mode);
}

int ElementContainer::paintChildren(DeviceContext* dc, uint32_t mode)
{
    if (overlay_ && (overlay_->flags() & kExclusive))
        return overlay_->paint(dc, mode);
    if (overlay_) {
        overlay_->paint(dc, mode);
        // Nothing painted after this may cover the overlay.
        excludeClip(dc, *overlay_->rect());
    }
    // A child wholly outside the part being painted has nothing to draw there.
    const QRect reach = dc && dc->hasClipping() ? dc->clipBoundingRect().toAlignedRect() : QRect();
    for (Element* child = firstChild_; child; child = child->nextSibling()) {
        if (child == overlay_ || !child->isVisible())
            continue;
        if (!reach.isNull() && !reach.intersects(child->rect()->toQRect()))
            continue;
        child->paint(dc, mode);
    }
    return 1;
}

int ElementContainer::stylusDown(int button, int32_t x, int32_t y)
{
    if (overlay_ && (overlay_->flags() & kExclusive)) {
        overlay_->stylusDown(button, x, y);
        return 1;
    }
    if (overlay_) {
        if (overlay_->rect()->contains(x, y)) {
            overlay_->stylusDown(button, x, y);
            return 1;
        }
        onTapOutsideOverlay(button, x, y);
        capturedChild_ = kNoCapture;
        return 1;
    }
    if (Element* child = childAt(x, y)) {
        capturedChild_ = child;
        return child->stylusDown(button, x, y);
    }
    capturedChild_ = kNoCapture;
    return 0;
}

int ElementContainer::stylusUp(int button, int32_t x, int32_t y)
{
    if (overlay_)
        return overlay_->stylusUp(button, x, y);
    if (hasCapture())
        return capturedChild_->stylusUp(button, x, y);
    return 0;
}

int ElementContainer::stylusMove(int32_t x, int32_t y)
{
    if (overlay_)
        return overlay_->stylusMove(x, y);
    if (hasCapture())
        return capturedChild_->stylusMove(x, y);
    return 0;
}

int ElementContainer::stylusDoubleClick(int32_t x, int32_t y)
{
    if (overlay_ && ((overlay_->flags() & kExclusive) || overlay_->rect()->contains(x, y))) {
        overlay_->stylusDoubleClick(x, y);
        return 1;
    }
    if (overlay_)
        return stylusDown(0, x, y);
    Element* child = childAt(x, y);
    capturedChild_ = child ? child : kNoCapture;
    return child ? child->stylusDoubleClick(x, y) : 0;
}

int ElementContainer::mouseWheel(int32_t x, int32_t y, int32_t delta, uint32_t keys)
{
    if (overlay_)
        return overlay_->mouseWheel(x, y, delta, keys);
    Element* child = childAt(x, y);
    return child ? child->mouseWheel(x, y, delta, keys) : 0;
}

Element* ElementContainer::childAt(int32_t x, int32_t y) const
{
    for (Element* child = firstChild_; child; child = child->nextSibling()) {
        if (child->isVisible() && child->rect()->contains(x, y))
            return child;
    }
    return nullptr;
}

void ElementContainer::onTapOutsideOverlay(int, int32_t, int32_t)
{
}

void ElementContainer::collectChanged(QRegion& region) const
{
    if (!isVisible())
        return;
    if (isDirty()) {
        region += rect_.toQRect();
        return;
    }
    if (overlay_ && (overlay_->flags() & kExclusive)) {
        overlay_->collectChanged(region);
        return;
    }
    if (overlay_)
        overlay_->collectChanged(region);
    for (Element* child = firstChild_; child; child = child->nextSibling()) {
        if (child != overlay_)
            child->collectChanged(region);
    }
}

} // namespace pulsara
