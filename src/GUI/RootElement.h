#pragma once

#include "GUI/ElementContainer.h"
#include "GUI/SkinBitmap.h"
#include "GUI/Timer.h"

#include <QPainter>

#include <optional>

namespace pulsara {

class NativeWindow;

// The root of the element tree: it fills the window, answers the operations that its
// descendants pass up (invalidation, clipping, the window itself) and handles the window's
// messages. Everything is painted into a back buffer of the root's size, which the window then
// shows; a 10 ms timer repaints what changed between the window's own paints.
class RootElement : public ElementContainer {
public:
    RootElement();
    ~RootElement() override;

    // The window messages of the element framework (create, size, paint, erase, buttons, mouse,
    // key, destroy); the others get the default handling. The create message carries the
    // NativeWindow pointer in its second word.
    virtual intptr_t handleMessage(uint32_t message, uintptr_t wParam, intptr_t lParam);

    NativeWindow* windowHandle() const { return window_; }
    // The window of the running program, set by the create message.
    static NativeWindow* mainWindow();

    // A context on the back buffer for drawing outside a paint message; null before the first
    // paint. releaseContext shows what was drawn in `touched`.
    DeviceContext* acquireContext();
    void releaseContext(DeviceContext*, const QRegion& touched);
    // The timer's repaint: draws every element that changed and shows them.
    void repaintChanged();

    const SkinBitmap& backBuffer() const { return backBuffer_; }
    const Timer& repaintTimer() const { return repaintTimer_; }

    int paint(DeviceContext*, uint32_t mode) override;
    void invalidateRect(const ElemRect&) override;
    void excludeClip(DeviceContext*, const ElemRect&) override;
    // Widens the clip to the union of the current one and the rectangle.
    void addClip(DeviceContext*, const ElemRect&) override;
    RootElement* window() override { return this; }
    intptr_t parentRequest(uintptr_t, intptr_t) override { return 0; }

    static constexpr uint32_t kRepaintPeriodMs = 10;

protected:
    virtual intptr_t onCreate(NativeWindow*);
    virtual void onSize();
    virtual intptr_t onPaint();
    virtual intptr_t defaultHandling(uint32_t message, uintptr_t wParam, intptr_t lParam);

private:
    class RepaintTimer : public Timer {
    public:
        explicit RepaintTimer(RootElement& root) : root_(root) { }

    protected:
        int32_t onTimer() override
        {
            root_.repaintChanged();
            return 0;
        }

    private:
        RootElement& root_;
    };

    NativeWindow* window_ = nullptr;
    RepaintTimer repaintTimer_ { *this };
    SkinBitmap backBuffer_;
    std::optional<QPainter> painter_;
    int paintDepth_ = 0;
};

} // namespace pulsara
