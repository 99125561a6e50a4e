#pragma once

#include "GUI/Element.h"

namespace pulsara {

// An element that holds others. Children form a list from the most recently added to the first
// added; that list is the order of hit-testing and of painting, so where children overlap the
// one added first is drawn last and ends on top. One child may be shown as an overlay above the
// rest.
class ElementContainer : public Element {
public:
    // The captured-child value after a stylus-down that hit no child: moves and the up that
    // follow are dropped.
    static Element* const kNoCapture;

    void addChild(Element*);
    virtual void setOverlay(Element*);
    virtual void clearOverlay();

    Element* firstChild() const { return firstChild_; }
    Element* capturedChild() const { return capturedChild_; }
    Element* overlay() const { return overlay_; }

    int paint(DeviceContext*, uint32_t mode) override;
    int stylusDown(int button, int32_t x, int32_t y) override;
    int stylusUp(int button, int32_t x, int32_t y) override;
    int stylusMove(int32_t x, int32_t y) override;
    int stylusDoubleClick(int32_t x, int32_t y) override;
    // Goes to the overlay, else to the first visible child under the point; capture is not
    // involved, since the wheel belongs to whatever lies under the pointer.
    int mouseWheel(int32_t x, int32_t y, int32_t delta, uint32_t keys) override;
    void collectChanged(QRegion&) const override;

protected:
    // A tap outside a non-exclusive overlay; the base does nothing, containers usually close it.
    virtual void onTapOutsideOverlay(int button, int32_t x, int32_t y);
    // Paints the children (and the overlay) as the container's paint does, without touching the
    // container's own dirty bit; for containers that draw a background first.
    int paintChildren(DeviceContext*, uint32_t mode);

    // The first visible child whose rectangle holds the point, or null.
    Element* childAt(int32_t x, int32_t y) const;

private:
    bool hasCapture() const { return capturedChild_ && capturedChild_ != kNoCapture; }

    Element* firstChild_ = nullptr;
    Element* capturedChild_ = nullptr;
    Element* overlay_ = nullptr;
};

} // namespace pulsara
