#pragma once

#include "GUI/DeviceContext.h"
#include "GUI/ElemRect.h"

#include <cstdint>

class QRegion;

namespace pulsara {

class RootElement;

// A rectangle of the window that paints itself and takes stylus input. Elements are members of
// their owners and are linked into the tree by raw, non-owning parent and sibling pointers; the
// tree's shape is fixed once built, only visibility and overlays change.
//
// Operations an element does not handle pass to its parent; the root answers them.
class Element {
public:
    enum Flag : uint32_t {
        kDirty = 1,
        kVisible = 2,
        kExclusive = 4, // an overlay that takes all input and is painted alone
    };

    Element() = default;
    virtual ~Element() = default;
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;

    virtual void setFlags(uint32_t);
    virtual const ElemRect* rect() const { return &rect_; }
    virtual void layout(const ElemRect&);
    // Draws the element and clears its dirty bit; returns 1 when done.
    virtual int paint(DeviceContext*, uint32_t mode);
    virtual void setParent(Element*);
    // Asks for the rectangle to be repainted; the root hands it to the window.
    virtual void invalidateRect(const ElemRect&);
    virtual void excludeClip(DeviceContext*, const ElemRect&);
    // Arrives at the parent as excludeClip, not addClip: the widening happens only at the root.
    virtual void addClip(DeviceContext*, const ElemRect&);
    virtual RootElement* window();
    // A request that only the root understands (the application decides its meaning).
    virtual intptr_t parentRequest(uintptr_t, intptr_t);
    // Stylus input in client coordinates; button 0 is the left, 1 the right. Return 0 when
    // not handled.
    virtual int stylusDown(int button, int32_t x, int32_t y);
    virtual int stylusUp(int button, int32_t x, int32_t y);
    virtual int stylusMove(int32_t x, int32_t y);
    // A second press of the left button in quick succession; by default a plain stylus-down.
    virtual int stylusDoubleClick(int32_t x, int32_t y);
    // A turn of the mouse wheel over the element: `delta` in 120ths of a notch, positive away
    // from the user; `keys` the wheel message's modifier bits. Return 0 when not handled.
    virtual int mouseWheel(int32_t x, int32_t y, int32_t delta, uint32_t keys);

    // Paints the element at once, outside the window's paint cycle, when it is visible.
    void repaintNow(uint32_t mode);
    // Marks the element changed, so that the root's repaint timer draws it.
    void markDirty() { flags_ |= kDirty; }
    // Marks the element changed and asks for its rectangle to be repainted.
    void redraw();

    // Adds the rectangles of visible elements that need drawing in the changed-only mode.
    virtual void collectChanged(QRegion&) const;

    uint32_t flags() const { return flags_; }
    bool isDirty() const { return flags_ & kDirty; }
    bool isVisible() const { return flags_ & kVisible; }
    // Visible, and so are all its containers: what is drawn here reaches the window.
    bool isShown() const { return isVisible() && (!parent_ || parent_->isShown()); }
    void setVisible(bool);
    Element* parent() const { return parent_; }
    Element* nextSibling() const { return nextSibling_; }
    void setNextSibling(Element* sibling) { nextSibling_ = sibling; }

protected:
    // True when paint in this mode must draw: always in a full repaint, only when changed in the
    // timer's repaint.
    bool mustDraw(uint32_t mode) const { return mode != kPaintChanged || isDirty(); }
    void clearDirty() { flags_ &= ~uint32_t(kDirty); }

    uint32_t flags_ = kDirty | kVisible;
    Element* parent_ = nullptr;
    Element* nextSibling_ = nullptr;
    ElemRect rect_;
};

} // namespace pulsara
