#include "WindowDriver.h"

#include <gtest/gtest.h>

namespace pulsara {
namespace {

using test::FakeWindow;
using Log = std::vector<std::string>;

struct SolidElement : Element {
    SolidElement(QRgb colour, ElemRect rect) : colour_(colour) { layout(rect); }
    QRgb colour_;
    int draws = 0;

    int paint(DeviceContext* dc, uint32_t mode) override
    {
        if (mustDraw(mode)) {
            dc->fillRect(rect_.toQRect(), QColor(colour_));
            ++draws;
        }
        return Element::paint(dc, mode);
    }
};

struct CreatedRoot {
    FakeWindow window;
    RootElement root;
    explicit CreatedRoot(bool menuBarWorks = true)
    {
        test::testApplication();
        window.menuBarWorks = menuBarWorks;
        root.handleMessage(kMessageCreate, 0, reinterpret_cast<intptr_t>(static_cast<NativeWindow*>(&window)));
        root.handleMessage(kMessageSize, 0, 0);
    }
    void paint(const QRegion& region) { window.paintRegion = region; root.handleMessage(kMessagePaint, 0, 0); }
    void paintAll() { paint(QRegion(root.rect()->toQRect())); }
    QRgb pixel(int x, int y) const { return root.backBuffer().image().pixel(x, y); }
};

TEST(RootElement, CreateBuildsTheMenuBarEscapeQuitsCloseDestroysTheWindowAndDestroyRemovesTheMenuBar)
{
    CreatedRoot created;
    EXPECT_EQ(created.root.windowHandle(), &created.window);
    EXPECT_EQ(RootElement::mainWindow(), &created.window);
    EXPECT_EQ(*created.root.rect(), (ElemRect { 0, 0, 200, 100 })); // below the menu bar
    EXPECT_EQ(created.root.handleMessage(kMessageKeyDown, 'A', 0), 0);
    EXPECT_EQ(created.root.handleMessage(kMessageKeyDown, kKeyEscape, 0), 0);
    created.root.handleMessage(kMessageClose, 0, 0);
    created.root.handleMessage(kMessageDestroy, 0, 0);
    EXPECT_EQ(created.window.calls, (Log { "foreground", "createMenuBar", "quit", "destroyWindow", "destroyMenuBar", "quit" }));
    EXPECT_EQ(created.root.handleMessage(kMessageEraseBackground, 0, 0), 0);
    EXPECT_EQ(created.root.handleMessage(kMessageLeftButtonUp, 0, 0), 1) << "an up without capture is ignored";
    EXPECT_EQ(CreatedRoot(false).window.calls.back(), "message SHCreateMenuBar Failed / error");
}

TEST(RootElement, PaintDrawsOnlyTheUpdateRegionIntoABackBufferOfTheRootsSize)
{
    CreatedRoot created;
    SolidElement red(qRgb(255, 0, 0), { 0, 0, 40, 40 });
    created.root.addChild(&red);
    created.paint(QRegion());
    EXPECT_EQ(red.draws, 0);
    created.paintAll();
    ASSERT_EQ(created.root.backBuffer().image().size(), QSize(200, 100));
    EXPECT_EQ(created.pixel(15, 15), qRgb(255, 0, 0));
    red.colour_ = qRgb(0, 0, 255);
    created.paint(QRegion(0, 0, 10, 10));
    EXPECT_EQ(created.pixel(5, 5), qRgb(0, 0, 255));
    EXPECT_EQ(created.pixel(20, 20), qRgb(255, 0, 0));

    // A resize recreates the buffer and paints all of it, whatever the update region.
    created.window.client = { 0, 0, 120, 90 };
    created.root.handleMessage(kMessageSize, 0, 0);
    created.paint(QRegion(0, 0, 1, 1));
    EXPECT_EQ(created.root.backBuffer().image().size(), QSize(120, 64));
    EXPECT_EQ(created.pixel(39, 39), qRgb(0, 0, 255));
}

TEST(RootElement, ExcludeNarrowsAndAddWidensTheClip)
{
    CreatedRoot created;
    created.paintAll();
    QImage image(100, 100, QImage::Format_RGB32), other(100, 100, QImage::Format_RGB32);
    QPainter dc(&image), unclipped(&other);
    created.root.excludeClip(&dc, { 0, 0, 50, 100 });
    EXPECT_EQ(dc.clipRegion(), QRegion(50, 0, 50, 100));
    created.root.addClip(&dc, { 0, 0, 10, 10 });
    EXPECT_EQ(dc.clipRegion(), QRegion(50, 0, 50, 100).united(QRegion(0, 0, 10, 10)));
    created.root.addClip(&unclipped, { 5, 5, 10, 10 });
    EXPECT_EQ(unclipped.clipRegion(), QRegion(5, 5, 10, 10));
}

TEST(RootElement, TimerRepaintAndRepaintNowDrawOnlyChangedVisibleElementsAndShowThem)
{
    CreatedRoot created;
    SolidElement still(qRgb(0, 255, 0), { 0, 0, 50, 50 }), changing(qRgb(255, 0, 0), { 60, 0, 20, 20 });
    created.root.addChild(&still);
    created.root.addChild(&changing);
    created.paintAll();
    EXPECT_TRUE(created.root.repaintTimer().isRunning());
    changing.colour_ = qRgb(0, 0, 255);
    changing.markDirty();
    created.window.presented = QRegion();
    EXPECT_TRUE(test::processEventsUntil([&] { return !changing.isDirty(); }));
    EXPECT_EQ(still.draws, 1);
    EXPECT_EQ(changing.draws, 2);
    EXPECT_EQ(created.window.presented, QRegion(60, 0, 20, 20));
    EXPECT_EQ(created.pixel(65, 5), qRgb(0, 0, 255));

    created.window.presented = QRegion();
    still.colour_ = qRgb(0, 0, 255);
    still.repaintNow(0);
    EXPECT_EQ(created.pixel(5, 5), qRgb(0, 0, 255));
    EXPECT_EQ(created.window.presented, QRegion(0, 0, 50, 50));
    still.setVisible(false);
    still.colour_ = qRgb(255, 0, 0);
    still.repaintNow(0);
    EXPECT_EQ(created.pixel(5, 5), qRgb(0, 0, 255));
}

} // namespace
} // namespace pulsara
