#pragma once

#include "GUI/NativeWindow.h"

#include <QRegion>
#include <QWidget>

#include <functional>

class QAction;
class QMainWindow;
class QMenuBar;

namespace pulsara {

class RootElement;

// The widget the element tree lives in. It turns Qt's events into the root's window messages
// (create, size, paint, close, keys, mouse) and shows the root's back buffer. Placed in a
// QMainWindow, the frame's menu bar is the menu bar the messages create and destroy.
class Canvas : public QWidget, public NativeWindow {
public:
    explicit Canvas(RootElement&, QMainWindow* frame = nullptr);
    ~Canvas() override;

    // Fills the menu bar when the create message asks for it; false reports a failure.
    std::function<bool(QMenuBar*)> buildMenus;

    void bringToForeground() override;
    bool createMenuBar() override;
    void destroyMenuBar() override;
    void destroyWindow() override;
    ElemRect clientRect() const override;
    int32_t menuBarHeight() const override;
    QRegion updateRegion() const override { return updateRegion_; }
    void invalidate(const ElemRect&) override;
    void present(const QRegion&) override;
    void scrollContent(const ElemRect&, int32_t dx, int32_t dy) override;
    void captureStylus() override { hasCapture_ = true; }
    void releaseStylus() override { hasCapture_ = false; }
    bool hasStylusCapture() const override { return hasCapture_; }
    void postQuit() override;
    void showMessage(std::u16string_view text, std::u16string_view caption) override;
    void setTitle(std::u16string_view) override;
    uint32_t trackPopupMenu(const std::vector<PopupMenuItem>&, int32_t x, int32_t y) override;
    void checkMenuItem(uint32_t commandId, bool checked) override;
    void setMenuItemsAfter(uint32_t anchorCommand, const std::vector<PopupMenuItem>&) override;
    std::unique_ptr<PlatformTextEdit> createTextEdit() override;
    void setZoom(int32_t zoom) override;
    // Screen pixels per pixel of the element tree, a whole number.
    int32_t zoom() const;
    // The widget's own coordinates of a rectangle of the tree, and the tree's of a point.
    QRect toWidget(const ElemRect&) const;
    QPoint toTree(QPointF widgetPoint) const;

protected:
    bool event(QEvent*) override;
    bool eventFilter(QObject*, QEvent*) override;
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override;
    void mousePressEvent(QMouseEvent*) override;
    void mouseReleaseEvent(QMouseEvent*) override;
    void mouseMoveEvent(QMouseEvent*) override;
    void mouseDoubleClickEvent(QMouseEvent*) override;
    void wheelEvent(QWheelEvent*) override;
    void dragEnterEvent(QDragEnterEvent*) override;
    void dropEvent(QDropEvent*) override;
    void keyPressEvent(QKeyEvent*) override;

private:
    QAction* menuAction(uint32_t commandId) const;
    void sendCreateOnce();
    // Widget units per unit of the tree: the zoom over the screen's own scale.
    double scale() const;
    QRegion toTree(const QRegion& widgetRegion) const;
    void updateTree(const QRegion& treeRegion);
    intptr_t send(uint32_t message, uintptr_t wParam = 0, intptr_t lParam = 0);

    RootElement& root_;
    QMainWindow* frame_;
    // Parts of the window whose back-buffer pixels are already fresh: shown without a paint
    // message.
    QRegion presented_;
    // Parts asked to be painted again that no paint event has covered yet.
    QRegion invalidated_;
    QRegion updateRegion_;
    bool created_ = false;
    bool destroyed_ = false;
    bool closing_ = false;
    bool hasCapture_ = false;
    int32_t zoomSetting_ = 0;
};

} // namespace pulsara
