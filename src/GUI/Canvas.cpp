#include "GUI/Canvas.h"

#include "GUI/CanvasTextEdit.h"
#include "GUI/RootElement.h"
#include "GUI/WindowMessage.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QUrl>
#include <QWheelEvent>
#include <QWindow>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace pulsara {

namespace {

QString toQString(std::u16string_view text)
{
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

// Virtual-key numbers of the keys whose number differs from Qt's.
uintptr_t virtualKey(const QKeyEvent& event)
{
    static const std::pair<int, VirtualKey> kKeys[] = {
        { Qt::Key_Escape, kKeyEscape }, { Qt::Key_Return, kKeyReturn }, { Qt::Key_Enter, kKeyReturn },
        { Qt::Key_Space, kKeySpace }, { Qt::Key_Left, kKeyLeft }, { Qt::Key_Up, kKeyUp },
        { Qt::Key_Right, kKeyRight }, { Qt::Key_Down, kKeyDown }, { Qt::Key_PageUp, kKeyPageUp },
        { Qt::Key_PageDown, kKeyPageDown }, { Qt::Key_Home, kKeyHome }, { Qt::Key_End, kKeyEnd },
        { Qt::Key_Insert, kKeyInsert }, { Qt::Key_Delete, kKeyDelete }, { Qt::Key_Backspace, kKeyBackspace },
        { Qt::Key_Tab, kKeyTab },
    };
    for (const auto& [qtKey, key] : kKeys) {
        if (event.key() == qtKey)
            return key;
    }
    // Letters and digits share their numbers with Qt's keys; other keys have none here.
    return event.key() < 0x80 ? static_cast<uintptr_t>(event.key()) : 0;
}

} // namespace

Canvas::Canvas(RootElement& root, QMainWindow* frame) : root_(root), frame_(frame)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(true);
    if (frame_)
        frame_->installEventFilter(this);
    else
        installEventFilter(this);
}

Canvas::~Canvas()
{
    if (created_ && !destroyed_) {
        destroyed_ = true;
        send(kMessageDestroy);
    }
}

intptr_t Canvas::send(uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    return root_.handleMessage(message, wParam, lParam);
}

void Canvas::sendCreateOnce()
{
    if (created_)
        return;
    created_ = true;
    // On another screen the whole scale may change: the tree takes its new size.
    if (QWindow* handle = window()->windowHandle()) {
        connect(handle, &QWindow::screenChanged, this, [this] {
            presented_ = QRegion();
            send(kMessageSize, 0, 0);
            update();
        });
    }
    send(kMessageCreate, 0, reinterpret_cast<intptr_t>(static_cast<NativeWindow*>(this)));
    send(kMessageSize, 0, packPosition(width(), height()));
}

bool Canvas::event(QEvent* event)
{
    if (event->type() == QEvent::Polish || event->type() == QEvent::Show)
        sendCreateOnce();

    return QWidget::event(event);
}

bool Canvas::eventFilter(QObject* watched, QEvent* event)
{
    // The close button asks the root, which closes the window through destroyWindow (or not).
    if (event->type() == QEvent::Close && !destroyed_) {
        closing_ = true;
        send(kMessageClose);
        closing_ = false;
        // destroyWindow ran: this close goes through. Otherwise the window stays.
        if (destroyed_)
            return false;
        event->ignore();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void Canvas::bringToForeground()
{
    QWidget* top = window();
    top->raise();
    top->activateWindow();
}

bool Canvas::createMenuBar()
{
    if (!frame_ || !buildMenus)
        return true;
    return buildMenus(frame_->menuBar());
}

void Canvas::destroyMenuBar()
{
    if (frame_)
        frame_->menuBar()->clear();
}

void Canvas::destroyWindow()
{
    if (destroyed_)
        return;
    destroyed_ = true;
    send(kMessageDestroy);
    // Inside a close event Qt ignores a second close; that event itself closes the window.
    if (!closing_)
        window()->close();
}

int32_t Canvas::zoom() const
{
    if (zoomSetting_ > 0)
        return zoomSetting_;
    return std::max(1, int32_t(std::lround(devicePixelRatioF())));
}

void Canvas::setZoom(int32_t zoom)
{
    zoomSetting_ = std::clamp(zoom, 0, 3);
    presented_ = QRegion();
    if (created_)
        send(kMessageSize, 0, 0);
    update();
}

double Canvas::scale() const
{
    return double(zoom()) / devicePixelRatioF();
}

QRect Canvas::toWidget(const ElemRect& rect) const
{
    const double s = scale();
    const int left = int(std::floor(rect.x * s));
    const int top = int(std::floor(rect.y * s));
    return QRect(left, top, int(std::ceil(rect.right() * s)) - left, int(std::ceil(rect.bottom() * s)) - top);
}

QPoint Canvas::toTree(QPointF point) const
{
    const double s = scale();
    return QPoint(int(std::floor(point.x() / s)), int(std::floor(point.y() / s)));
}

QRegion Canvas::toTree(const QRegion& region) const
{
    const double s = scale();
    if (s == 1.0)
        return region;
    QRegion tree;
    for (const QRect& rect : region) {
        const int left = int(std::floor(rect.x() / s));
        const int top = int(std::floor(rect.y() / s));
        tree += QRect(left, top, int(std::ceil((rect.x() + rect.width()) / s)) - left, int(std::ceil((rect.y() + rect.height()) / s)) - top);
    }
    return tree;
}

void Canvas::updateTree(const QRegion& treeRegion)
{
    if (scale() == 1.0) {
        update(treeRegion);
        return;
    }
    for (const QRect& rect : treeRegion)
        update(toWidget({ rect.x(), rect.y(), rect.width(), rect.height() }));
}

ElemRect Canvas::clientRect() const
{
    const double s = scale();
    return { 0, 0, int32_t(width() / s), int32_t(height() / s) + menuBarHeight() };
}

int32_t Canvas::menuBarHeight() const
{
    if (!frame_ || !frame_->menuWidget() || frame_->menuWidget()->isHidden())
        return 0;
    return int32_t(frame_->menuWidget()->height() / scale());
}

void Canvas::invalidate(const ElemRect& rect)
{
    QRect area = rect.toQRect();
    presented_ -= QRegion(area);
    invalidated_ += QRegion(area);
    updateTree(QRegion(area));
}

void Canvas::scrollContent(const ElemRect& rect, int32_t dx, int32_t dy)
{
    QRect area = rect.toQRect();
    // Pixels the window has not taken yet would move with the rest: take the whole area then,
    // as when the tree's pixels are not the widget's.
    if ((presented_ | invalidated_).intersects(area) || scale() != 1.0) {
        present(QRegion(area));
        return;
    }
    QWidget::scroll(dx, dy, area);
    // Where the window system cannot move its pixels it paints the area again: the back buffer
    // holds all of it already.
    presented_ += QRegion(area);
}

void Canvas::present(const QRegion& region)
{
    presented_ += region;
    updateTree(region);
}

void Canvas::paintEvent(QPaintEvent* event)
{
    const QRegion tree = toTree(event->region());
    updateRegion_ = tree - presented_;
    presented_ -= tree;
    invalidated_ -= tree;
    if (!updateRegion_.isEmpty())
        send(kMessagePaint);
    updateRegion_ = QRegion();
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    const double s = scale();
    if (s == 1.0) {
        for (const QRect& rect : event->region())
            painter.drawImage(rect.topLeft(), root_.backBuffer().image(), rect);
        return;
    }
    // Each pixel of the tree becomes zoom x zoom pixels of the screen, never a fraction, so
    // that every cell keeps its size.
    QImage view = root_.backBuffer().image();
    view.setDevicePixelRatio(1.0 / s);
    for (const QRect& rect : tree)
        painter.drawImage(QPointF(rect.x() * s, rect.y() * s), view, rect);
}

void Canvas::resizeEvent(QResizeEvent*)
{
    presented_ = QRegion();
    if (created_)
        send(kMessageSize, 0, packPosition(width(), height()));
}

void Canvas::mousePressEvent(QMouseEvent* event)
{
    uint32_t message = event->button() == Qt::RightButton ? kMessageRightButtonDown : kMessageLeftButtonDown;
    QPoint at = toTree(event->position());
    send(message, 0, packPosition(at.x(), at.y()));
}

void Canvas::mouseReleaseEvent(QMouseEvent* event)
{
    uint32_t message = event->button() == Qt::RightButton ? kMessageRightButtonUp : kMessageLeftButtonUp;
    QPoint at = toTree(event->position());
    send(message, 0, packPosition(at.x(), at.y()));
}

void Canvas::mouseMoveEvent(QMouseEvent* event)
{
    QPoint at = toTree(event->position());
    send(kMessageMouseMove, 0, packPosition(at.x(), at.y()));
}

void Canvas::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        mousePressEvent(event);
        return;
    }
    QPoint at = toTree(event->position());
    send(kMessageLeftButtonDoubleClick, 0, packPosition(at.x(), at.y()));
}

void Canvas::wheelEvent(QWheelEvent* event)
{
    QPoint at = toTree(event->position());
    // A wheel that turns sideways (or Shift on some systems) reports on the x axis.
    int delta = event->angleDelta().y() != 0 ? event->angleDelta().y() : event->angleDelta().x();
    uint32_t keys = 0;
    if (event->modifiers() & Qt::ShiftModifier || event->angleDelta().y() == 0)
        keys |= kWheelShift;
    if (event->modifiers() & Qt::ControlModifier)
        keys |= kWheelControl;
    send(kMessageMouseWheel, packWheel(delta, keys), packPosition(at.x(), at.y()));
}

void Canvas::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void Canvas::dropEvent(QDropEvent* event)
{
    std::vector<std::u16string> files;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile())
            files.push_back(url.toLocalFile().toStdU16String());
    }
    if (files.empty())
        return;
    event->acceptProposedAction();
    QPoint at = toTree(event->position());
    send(kMessageDropFiles, reinterpret_cast<uintptr_t>(&files), packPosition(at.x(), at.y()));
}

void Canvas::keyPressEvent(QKeyEvent* event)
{
    uintptr_t key = virtualKey(*event);
    // Keys with Control or Alt belong to the menus' shortcuts, never to the editors or live play.
    if (key == 0 || event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) {
        QWidget::keyPressEvent(event);
        return;
    }
    send(kMessageKeyDown, key, event->isAutoRepeat() ? kKeyRepeatFlag : 0);
}

void Canvas::postQuit()
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit, Qt::QueuedConnection);
}

void Canvas::showMessage(std::u16string_view text, std::u16string_view caption)
{
    QMessageBox::information(this, toQString(caption), toQString(text));
}

void Canvas::setTitle(std::u16string_view title)
{
    window()->setWindowTitle(toQString(title));
}

uint32_t Canvas::trackPopupMenu(const std::vector<PopupMenuItem>& items, int32_t x, int32_t y)
{
    QMenu menu(this);
    for (const PopupMenuItem& item : items) {
        if (item.text.empty()) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(toQString(item.text));
        action->setData(item.commandId);
        action->setCheckable(item.checked);
        action->setChecked(item.checked);
    }
    QAction* chosen = menu.exec(mapToGlobal(toWidget({ x, y, 0, 0 }).topLeft()));
    return chosen ? chosen->data().toUInt() : 0;
}

QAction* Canvas::menuAction(uint32_t commandId) const
{
    if (!frame_)
        return nullptr;
    for (QAction* action : frame_->menuBar()->findChildren<QAction*>()) {
        if (action->data().isValid() && action->data().toUInt() == commandId)
            return action;
    }
    return nullptr;
}

void Canvas::checkMenuItem(uint32_t commandId, bool checked)
{
    if (QAction* action = menuAction(commandId)) {
        action->setCheckable(true);
        action->setChecked(checked);
    }
}

void Canvas::setMenuItemsAfter(uint32_t anchorCommand, const std::vector<PopupMenuItem>& items)
{
    QAction* anchor = menuAction(anchorCommand);
    // A sub-menu's own item stands for all of its items.
    QMenu* menu = anchor ? anchor->menu() : nullptr;
    if (!menu && anchor)
        menu = qobject_cast<QMenu*>(anchor->parent());
    if (!menu)
        return;
    const QList<QAction*> actions = menu->actions();
    for (qsizetype index = anchor->menu() ? 0 : actions.indexOf(anchor) + 1; index < actions.size(); ++index) {
        menu->removeAction(actions[index]);
        actions[index]->deleteLater();
    }
    for (const PopupMenuItem& item : items) {
        QAction* action = menu->addAction(toQString(item.text));
        const uint32_t id = item.commandId;
        action->setData(id);
        connect(action, &QAction::triggered, this, [this, id] { send(kMessageCommand, id); });
    }
}

std::unique_ptr<PlatformTextEdit> Canvas::createTextEdit()
{
    return std::make_unique<CanvasTextEdit>(this, [this](const ElemRect& rect) { return toWidget(rect); });
}

} // namespace pulsara
