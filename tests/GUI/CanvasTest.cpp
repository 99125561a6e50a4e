#include "GUI/Canvas.h"
#include "GUI/RootElement.h"
#include "GUI/WindowMessage.h"
#include "QtTestApplication.h"
#include "RecordingElement.h"

#include <QKeyEvent>
#include <QMainWindow>
#include <QMenuBar>
#include <QMouseEvent>
#include <gtest/gtest.h>

namespace pulsara {
namespace {

using Log = std::vector<std::string>;

// A root that records the messages the canvas sends it; closing can be refused, as the
// application does when the user cancels saving.
struct MessageLog : RootElement {
    std::vector<uint32_t> messages;
    bool refuseClose = false;
    intptr_t handleMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) override
    {
        messages.push_back(message);
        return RootElement::handleMessage(message, wParam, lParam);
    }
    int count(uint32_t message) const { return int(std::count(messages.begin(), messages.end(), message)); }
    intptr_t defaultHandling(uint32_t message, uintptr_t wParam, intptr_t lParam) override
    {
        return message == kMessageClose && refuseClose ? 0 : RootElement::defaultHandling(message, wParam, lParam);
    }
};

struct ShownCanvas {
    QApplication& application = test::testApplication();
    MessageLog root;
    QMainWindow frame;
    Canvas canvas { root, &frame };
    bool menusBuilt = false;
    ShownCanvas()
    {
        canvas.buildMenus = [this](QMenuBar* menuBar) { menuBar->addMenu("File"); return menusBuilt = true; };
        frame.setCentralWidget(&canvas);
        frame.resize(320, 240);
        frame.show();
        EXPECT_TRUE(test::processEventsUntil([this] { return root.count(kMessagePaint) > 0; }));
    }
    void sendMouse(QEvent::Type type, QPoint at, Qt::MouseButton button = Qt::RightButton)
    {
        QMouseEvent event(type, QPointF(at), canvas.mapToGlobal(QPointF(at)), button,
            type == QEvent::MouseButtonRelease ? Qt::NoButton : button, Qt::NoModifier);
        QCoreApplication::sendEvent(&canvas, &event);
    }
};

TEST(Canvas, CreatesSizesPaintsAndClosesTheRootThroughItsMessagesAndRepaintsOnlyInvalidatedParts)
{
    ShownCanvas shown;
    EXPECT_TRUE(shown.menusBuilt);
    EXPECT_EQ(shown.root.count(kMessageCreate), 1);
    EXPECT_GE(shown.root.count(kMessageSize), 1);
    EXPECT_EQ(shown.root.windowHandle(), &shown.canvas);
    // The root filling the client area less the menu bar's room is in the screenshots.
    EXPECT_EQ(shown.root.backBuffer().image().size(), shown.canvas.size());
    // Pixels the root presents are shown without another paint message; an invalidated part
    // needs one.
    int paints = shown.root.count(kMessagePaint);
    shown.canvas.present(QRegion(0, 0, 10, 10));
    shown.canvas.repaint(0, 0, 10, 10);
    EXPECT_EQ(shown.root.count(kMessagePaint), paints);
    shown.canvas.invalidate({ 0, 0, 10, 10 });
    shown.canvas.repaint(0, 0, 10, 10);
    EXPECT_EQ(shown.root.count(kMessagePaint), paints + 1);
    // A root that does not destroy the window keeps it open; once it does, the window closes.
    for (bool refuseClose : { true, false }) {
        shown.root.refuseClose = refuseClose;
        EXPECT_EQ(shown.frame.close(), !refuseClose);
        EXPECT_EQ(shown.root.count(kMessageDestroy), refuseClose ? 0 : 1);
        EXPECT_EQ(shown.frame.isVisible(), refuseClose);
    }
    EXPECT_EQ(shown.root.count(kMessageClose), 2);
}

TEST(Canvas, TurnsMouseAndKeysIntoStylusMessagesWithCapture)
{
    ShownCanvas shown;
    Log log;
    test::RecordingElement child("child", log, { 0, 0, 100, 100 });
    shown.root.addChild(&child);
    shown.sendMouse(QEvent::MouseButtonRelease, QPoint(5, 5)); // an up without capture is ignored
    shown.sendMouse(QEvent::MouseButtonPress, QPoint(10, 20));
    EXPECT_TRUE(shown.canvas.hasStylusCapture());
    shown.sendMouse(QEvent::MouseMove, QPoint(150, 120));
    shown.sendMouse(QEvent::MouseButtonRelease, QPoint(150, 120));
    EXPECT_FALSE(shown.canvas.hasStylusCapture());
    shown.sendMouse(QEvent::MouseButtonPress, QPoint(1, 2), Qt::LeftButton);
    EXPECT_EQ(log, (Log { "child.down1@10,20", "child.move", "child.up1", "child.down0@1,2" }));
    EXPECT_EQ(shown.root.count(kMessageRightButtonDown), 1);
    EXPECT_EQ(shown.root.count(kMessageRightButtonUp), 2);
    // Position words are taken unsigned.
    EXPECT_EQ(positionX(packPosition(-1, 3)), 0xFFFF);
    EXPECT_EQ(positionY(packPosition(3, 40000)), 40000);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(&shown.canvas, &escape);
    EXPECT_EQ(shown.root.count(kMessageKeyDown), 1);
    // The quit Escape posted is delivered here, where no event loop runs that it could end.
    QCoreApplication::processEvents();
}

} // namespace
} // namespace pulsara
