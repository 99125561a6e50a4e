#include "GUI/Canvas.h"
#include "GUI/RootElement.h"
#include "GUI/WindowMessage.h"
#include "QtTestApplication.h"
#include "RecordingElement.h"

#include <QCloseEvent>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMenuBar>
#include <QMouseEvent>
#include <gtest/gtest.h>

namespace pulsara {
namespace {

using test::RecordingElement;
using Log = std::vector<std::string>;

// A root that records the messages the canvas sends it, then handles them as usual.
class MessageLog : public RootElement {
public:
    std::vector<uint32_t> messages;
    intptr_t handleMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) override
    {
        messages.push_back(message);
        return RootElement::handleMessage(message, wParam, lParam);
    }
    int count(uint32_t message) const { return int(std::count(messages.begin(), messages.end(), message)); }
};

void settle()
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 50)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

void sendMouse(QWidget& widget, QEvent::Type type, Qt::MouseButton button, QPoint at)
{
    Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
    QMouseEvent event(type, QPointF(at), widget.mapToGlobal(QPointF(at)), button, held, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

TEST(Canvas, CreatesSizesAndPaintsTheRootThroughItsMessages)
{
    test::testApplication();
    MessageLog root;
    QMainWindow frame;
    Canvas canvas(root, &frame);
    bool menusBuilt = false;
    canvas.buildMenus = [&](QMenuBar* menuBar) {
        menuBar->addMenu("File");
        return menusBuilt = true;
    };
    frame.setCentralWidget(&canvas);
    frame.resize(320, 240);
    frame.show();
    settle();

    EXPECT_TRUE(menusBuilt);
    EXPECT_EQ(root.count(kMessageCreate), 1);
    EXPECT_GE(root.count(kMessageSize), 1);
    EXPECT_GE(root.count(kMessagePaint), 1);
    EXPECT_EQ(root.windowHandle(), &canvas);
    // The root fills the canvas: the client area less the menu bar's room.
    EXPECT_EQ(*root.rect(), (ElemRect { 0, 0, canvas.width(), canvas.height() }));
    EXPECT_GT(canvas.menuBarHeight(), 0);
    EXPECT_EQ(root.backBuffer().image().size(), canvas.size());
}

TEST(Canvas, TurnsMouseAndKeysIntoStylusMessagesWithCapture)
{
    test::testApplication();
    MessageLog root;
    Log log;
    RecordingElement child("child", log, { 0, 0, 100, 100 });
    root.addChild(&child);
    Canvas canvas(root);
    canvas.resize(200, 150);
    canvas.show();
    settle();
    log.clear();

    sendMouse(canvas, QEvent::MouseButtonPress, Qt::RightButton, QPoint(10, 20));
    EXPECT_TRUE(canvas.hasStylusCapture());
    sendMouse(canvas, QEvent::MouseMove, Qt::RightButton, QPoint(150, 120));
    sendMouse(canvas, QEvent::MouseButtonRelease, Qt::RightButton, QPoint(150, 120));
    EXPECT_FALSE(canvas.hasStylusCapture());
    EXPECT_EQ(log, (Log { "child.down1@10,20", "child.move", "child.up1" }));
    EXPECT_EQ(root.count(kMessageRightButtonDown), 1);
    EXPECT_EQ(root.count(kMessageRightButtonUp), 1);

    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(&canvas, &escape);
    EXPECT_EQ(root.count(kMessageKeyDown), 1);
    // The quit Escape posted is delivered here, where no event loop runs that it could end.
    settle();
}

TEST(Canvas, ClosingAsksTheRootWhichDestroysTheWindow)
{
    test::testApplication();
    MessageLog root;
    QMainWindow frame;
    Canvas canvas(root, &frame);
    frame.setCentralWidget(&canvas);
    frame.show();
    settle();
    EXPECT_TRUE(frame.close());
    EXPECT_EQ(root.count(kMessageClose), 1);
    EXPECT_EQ(root.count(kMessageDestroy), 1);
    EXPECT_FALSE(frame.isVisible());
}

// A root that refuses to close, as the application does when the user cancels saving.
class StubbornRoot : public RootElement {
protected:
    intptr_t defaultHandling(uint32_t message, uintptr_t wParam, intptr_t lParam) override
    {
        return message == kMessageClose ? 0 : RootElement::defaultHandling(message, wParam, lParam);
    }
};

TEST(Canvas, ARootThatDoesNotDestroyTheWindowKeepsItOpen)
{
    test::testApplication();
    StubbornRoot root;
    QMainWindow frame;
    Canvas canvas(root, &frame);
    frame.setCentralWidget(&canvas);
    frame.show();
    settle();
    EXPECT_FALSE(frame.close());
    EXPECT_TRUE(frame.isVisible());
}

TEST(Canvas, ShowsTheBackBufferAndRepaintsOnlyInvalidatedParts)
{
    test::testApplication();
    MessageLog root;
    Canvas canvas(root);
    canvas.resize(120, 80);
    canvas.show();
    settle();
    int paints = root.count(kMessagePaint);

    // Pixels the root presents are shown without another paint message.
    canvas.present(QRegion(0, 0, 10, 10));
    canvas.repaint(0, 0, 10, 10);
    EXPECT_EQ(root.count(kMessagePaint), paints);
    // An invalidated part needs one.
    canvas.invalidate({ 0, 0, 10, 10 });
    canvas.repaint(0, 0, 10, 10);
    EXPECT_EQ(root.count(kMessagePaint), paints + 1);
}

} // namespace
} // namespace pulsara
