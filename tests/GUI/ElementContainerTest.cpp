#include "GUI/ElementContainer.h"
#include "RecordingElement.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

namespace pulsara {
namespace {

using test::RecordingElement;
using Log = std::vector<std::string>;

// Records the clip operations that reach the top of the tree.
class ClipRecordingContainer : public ElementContainer {
public:
    Log clips;
    void excludeClip(DeviceContext*, const ElemRect& rect) override { clips.push_back("exclude" + std::to_string(rect.x)); }
    void addClip(DeviceContext*, const ElemRect& rect) override { clips.push_back("add" + std::to_string(rect.x)); }
};

TEST(ElemRect, IsHalfOpen)
{
    ElemRect rect { 10, 20, 5, 4 };
    EXPECT_TRUE(rect.contains(10, 20));
    EXPECT_TRUE(rect.contains(14, 23));
    EXPECT_FALSE(rect.contains(15, 20));
    EXPECT_FALSE(rect.contains(10, 24));
    EXPECT_FALSE(rect.contains(9, 20));
    EXPECT_EQ(rect.right(), 15);
    EXPECT_EQ(rect.bottom(), 24);
}

TEST(ElementContainer, ChildListRunsFromTheLastAddedAndPaintsInThatOrder)
{
    Log log;
    ElementContainer container;
    RecordingElement first("first", log, { 0, 0, 10, 10 });
    RecordingElement second("second", log, { 0, 0, 10, 10 });
    RecordingElement hidden("hidden", log, { 0, 0, 10, 10 });
    container.addChild(&first);
    container.addChild(&hidden);
    container.addChild(&second);
    hidden.setVisible(false);

    EXPECT_EQ(container.firstChild(), &second);
    EXPECT_EQ(second.nextSibling(), &hidden);
    EXPECT_EQ(first.parent(), &container);
    EXPECT_EQ(container.paint(nullptr, 0), 1);
    // The first added is painted last and so ends on top; the hidden one is skipped.
    EXPECT_EQ(log, (Log { "second.paint0", "first.paint0" }));
    EXPECT_FALSE(container.isDirty());
}

TEST(ElementContainer, TapGoesToTheLastAddedVisibleChildUnderIt)
{
    Log log;
    ElementContainer container;
    RecordingElement under("under", log, { 0, 0, 20, 20 });
    RecordingElement over("over", log, { 10, 10, 20, 20 });
    RecordingElement hidden("hidden", log, { 0, 0, 40, 40 });
    container.addChild(&under);
    container.addChild(&over);
    container.addChild(&hidden);
    hidden.setVisible(false);

    EXPECT_EQ(container.stylusDown(1, 15, 15), 1);
    EXPECT_EQ(container.capturedChild(), &over);
    EXPECT_EQ(container.stylusDown(0, 5, 5), 1);
    EXPECT_EQ(container.capturedChild(), &under);
    EXPECT_EQ(log, (Log { "over.down1@15,15", "under.down0@5,5" }));
}

TEST(ElementContainer, CapturedChildGetsMovesAndUpOutsideItsRectangle)
{
    Log log;
    ElementContainer container;
    RecordingElement child("child", log, { 0, 0, 10, 10 });
    container.addChild(&child);
    container.stylusDown(0, 1, 1);
    EXPECT_EQ(container.stylusMove(500, 500), 1);
    EXPECT_EQ(container.stylusUp(0, 500, 500), 1);
    EXPECT_EQ(log, (Log { "child.down0@1,1", "child.move", "child.up0" }));
}

TEST(ElementContainer, AfterATapThatHitNothingMovesAndUpAreDropped)
{
    Log log;
    ElementContainer container;
    RecordingElement child("child", log, { 0, 0, 10, 10 });
    container.addChild(&child);
    // x = rect.x + width is already outside.
    EXPECT_EQ(container.stylusDown(0, 10, 5), 0);
    EXPECT_EQ(container.capturedChild(), ElementContainer::kNoCapture);
    EXPECT_EQ(container.stylusMove(5, 5), 0);
    EXPECT_EQ(container.stylusUp(0, 5, 5), 0);
    EXPECT_TRUE(log.empty());
    // The next down captures anew.
    container.stylusDown(0, 5, 5);
    container.stylusUp(0, 5, 5);
    EXPECT_EQ(log, (Log { "child.down0@5,5", "child.up0" }));
}

TEST(ElementContainer, WithoutAnyDownMovesAreDropped)
{
    Log log;
    ElementContainer container;
    RecordingElement child("child", log, { 0, 0, 10, 10 });
    container.addChild(&child);
    EXPECT_EQ(container.capturedChild(), nullptr);
    EXPECT_EQ(container.stylusMove(5, 5), 0);
    EXPECT_TRUE(log.empty());
}

TEST(ElementContainer, ExclusiveOverlayTakesEveryTapAndIsPaintedAlone)
{
    Log log;
    ElementContainer container;
    RecordingElement child("child", log, { 0, 0, 100, 100 });
    RecordingElement page("page", log, { 10, 10, 20, 20 });
    container.addChild(&child);
    page.setFlags(page.flags() | Element::kExclusive);
    container.setOverlay(&page);
    EXPECT_EQ(page.parent(), &container);

    EXPECT_EQ(container.stylusDown(0, 90, 90), 1);
    EXPECT_EQ(container.stylusMove(91, 91), 1);
    EXPECT_EQ(container.stylusUp(0, 91, 91), 1);
    container.paint(nullptr, 0);
    EXPECT_EQ(log, (Log { "page.down0@90,90", "page.move", "page.up0", "page.paint0" }));
}

// Taps outside a non-exclusive overlay are the container's; the capture becomes "none".
class ClosingContainer : public ElementContainer {
public:
    int outsideTaps = 0;

protected:
    void onTapOutsideOverlay(int, int32_t, int32_t) override { ++outsideTaps; }
};

TEST(ElementContainer, NonExclusiveOverlayTakesTapsInsideAndLetsTheContainerHandleTapsOutside)
{
    Log log;
    ClosingContainer container;
    RecordingElement child("child", log, { 0, 0, 100, 100 });
    RecordingElement popup("popup", log, { 10, 10, 20, 20 });
    container.addChild(&child);
    container.setOverlay(&popup);

    EXPECT_EQ(container.stylusDown(0, 15, 15), 1);
    EXPECT_EQ(container.stylusDown(0, 50, 50), 1);
    EXPECT_EQ(container.outsideTaps, 1);
    EXPECT_EQ(container.capturedChild(), ElementContainer::kNoCapture);
    EXPECT_EQ(log, (Log { "popup.down0@15,15" }));

    container.clearOverlay();
    EXPECT_EQ(container.overlay(), nullptr);
    container.stylusDown(0, 50, 50);
    EXPECT_EQ(log.back(), "child.down0@50,50");
}

TEST(ElementContainer, NonExclusiveOverlayIsPaintedFirstAndThenExcludedFromTheClip)
{
    Log log;
    ElementContainer container;
    RecordingElement child("child", log, { 0, 0, 40, 40 });
    RecordingElement popup("popup", log, { 10, 10, 20, 20 });
    container.addChild(&child);
    container.setOverlay(&popup);

    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter dc(&image);
    // A root above the container receives the exclusion.
    ClipRecordingContainer root;
    root.addChild(&container);
    container.paint(&dc, 0);
    EXPECT_EQ(log, (Log { "popup.paint0", "child.paint0" }));
    EXPECT_EQ(root.clips, (Log { "exclude10" }));
}

TEST(Element, AddClipArrivesAtTheParentAsExcludeClip)
{
    Log log;
    ClipRecordingContainer parent;
    RecordingElement child("child", log, { 0, 0, 10, 10 });
    parent.addChild(&child);
    child.addClip(nullptr, { 7, 0, 1, 1 });
    child.excludeClip(nullptr, { 8, 0, 1, 1 });
    EXPECT_EQ(parent.clips, (Log { "exclude7", "exclude8" }));
}

TEST(Element, BaseOperationsPassUpOrDoNothing)
{
    Element orphan;
    EXPECT_EQ(orphan.flags(), 3u);
    EXPECT_EQ(orphan.window(), nullptr);
    EXPECT_EQ(orphan.stylusDown(0, 0, 0), 0);
    EXPECT_EQ(orphan.stylusUp(0, 0, 0), 0);
    EXPECT_EQ(orphan.stylusMove(0, 0), 0);
    orphan.invalidateRect({ 0, 0, 1, 1 });
    orphan.layout({ 1, 2, 3, 4 });
    EXPECT_EQ(*orphan.rect(), (ElemRect { 1, 2, 3, 4 }));
    EXPECT_EQ(orphan.paint(nullptr, 0), 1);
    EXPECT_FALSE(orphan.isDirty());
    EXPECT_TRUE(orphan.isVisible());
}

} // namespace
} // namespace pulsara
