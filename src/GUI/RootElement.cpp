#include "GUI/RootElement.h"

#include "GUI/NativeWindow.h"
#include "GUI/WindowMessage.h"

#include <QRegion>

namespace pulsara {

namespace {

NativeWindow* theMainWindow = nullptr;

QRegion currentClip(DeviceContext* dc)
{
    if (dc->hasClipping())
        return dc->clipRegion();
    return QRegion(0, 0, dc->device()->width(), dc->device()->height());
}

} // namespace

RootElement::RootElement() = default;

RootElement::~RootElement()
{
    if (theMainWindow == window_)
        theMainWindow = nullptr;
}

NativeWindow* RootElement::mainWindow()
{
    return theMainWindow;
}

intptr_t RootElement::handleMessage(uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    switch (message) {
    case kMessageCreate:
        return onCreate(reinterpret_cast<NativeWindow*>(lParam));
    case kMessageSize:
        onSize();
        return 0;
    case kMessagePaint:
        return onPaint();
    case kMessageEraseBackground:
        return 0;
    case kMessageLeftButtonDown:
    case kMessageRightButtonDown:
        if (window_)
            window_->captureStylus();
        stylusDown(message == kMessageLeftButtonDown ? 0 : 1, positionX(lParam), positionY(lParam));
        return 0;
    case kMessageLeftButtonDoubleClick:
        if (window_)
            window_->captureStylus();
        stylusDoubleClick(positionX(lParam), positionY(lParam));
        return 0;
    case kMessageMouseWheel:
        mouseWheel(positionX(lParam), positionY(lParam), wheelDelta(wParam), wheelKeys(wParam));
        return 0;
    case kMessageLeftButtonUp:
    case kMessageRightButtonUp:
        if (!window_ || !window_->hasStylusCapture())
            return 1;
        window_->releaseStylus();
        stylusUp(message == kMessageLeftButtonUp ? 0 : 1, positionX(lParam), positionY(lParam));
        return 0;
    case kMessageMouseMove:
        stylusMove(positionX(lParam), positionY(lParam));
        return 0;
    case kMessageKeyDown:
        if (wParam == kKeyEscape && window_)
            window_->postQuit();
        return 0;
    case kMessageDestroy:
        if (window_) {
            window_->destroyMenuBar();
            window_->postQuit();
        }
        return 0;
    default:
        return defaultHandling(message, wParam, lParam);
    }
}

intptr_t RootElement::onCreate(NativeWindow* window)
{
    window_ = window;
    theMainWindow = window;
    if (!window_)
        return 0;
    window_->bringToForeground();
    if (!window_->createMenuBar())
        window_->showMessage(u"SHCreateMenuBar Failed", u"error");
    return 0;
}

void RootElement::onSize()
{
    if (!window_)
        return;
    ElemRect client = window_->clientRect();
    client.height -= window_->menuBarHeight();
    layout(client);
}

intptr_t RootElement::onPaint()
{
    if (!window_)
        return 0;
    QRegion region = window_->updateRegion();
    if (region.isEmpty())
        return defaultHandling(kMessagePaint, 0, 0);
    if (backBuffer_.width() != rect_.width || backBuffer_.height() != rect_.height) {
        // A new buffer holds nothing yet, so all of it is painted, not just the update region.
        if (!backBuffer_.createBlank(nullptr, rect_.width, rect_.height))
            return 0;
        region = QRegion(rect_.toQRect());
    }
    DeviceContext* dc = acquireContext();
    dc->setClipRegion(region);
    paint(dc, kPaintAll);
    // The window shows the update region itself once the message is handled.
    releaseContext(dc, QRegion());
    return 0;
}

intptr_t RootElement::defaultHandling(uint32_t message, uintptr_t, intptr_t)
{
    if (message == kMessageClose && window_)
        window_->destroyWindow();
    return 0;
}

DeviceContext* RootElement::acquireContext()
{
    if (backBuffer_.isEmpty())
        return nullptr;
    if (paintDepth_++ == 0)
        painter_.emplace(&backBuffer_.image());
    else
        painter_->save();
    return &*painter_;
}

void RootElement::releaseContext(DeviceContext* dc, const QRegion& touched)
{
    if (!dc || paintDepth_ == 0)
        return;
    if (--paintDepth_ == 0)
        painter_.reset();
    else
        painter_->restore();
    if (window_ && !touched.isEmpty())
        window_->present(touched);
}

void RootElement::repaintChanged()
{
    QRegion changed;
    collectChanged(changed);
    changed &= QRegion(rect_.toQRect());
    if (changed.isEmpty())
        return;
    DeviceContext* dc = acquireContext();
    if (!dc)
        return;
    dc->setClipRegion(changed);
    paint(dc, kPaintChanged);
    releaseContext(dc, changed);
}

int RootElement::paint(DeviceContext* dc, uint32_t mode)
{
    if (isDirty())
        repaintTimer_.setTimer(kRepaintPeriodMs);
    return ElementContainer::paint(dc, mode);
}

void RootElement::invalidateRect(const ElemRect& rect)
{
    if (window_)
        window_->invalidate(rect);
}

void RootElement::excludeClip(DeviceContext* dc, const ElemRect& rect)
{
    dc->setClipRegion(currentClip(dc).subtracted(QRegion(rect.toQRect())));
}

void RootElement::addClip(DeviceContext* dc, const ElemRect& rect)
{
    QRegion region(rect.toQRect());
    if (dc->hasClipping())
        region = dc->clipRegion().united(region);
    dc->setClipRegion(region);
}

} // namespace pulsara
