#include "GUI/ElementContainer.h"
#include "RecordingElement.h"

#include <gtest/gtest.h>

#include <deque>

namespace pulsara {
namespace {

using Log = std::vector<std::string>;

// Records the clip operations that reach the top of the tree, and counts the taps outside a
// non-exclusive overlay, which are the container's.
struct RecordingContainer : ElementContainer {
    Log clips;
    int outsideTaps = 0;
    void excludeClip(DeviceContext*, const ElemRect& rect) override { clips.push_back("exclude" + std::to_string(rect.x)); }
    void addClip(DeviceContext*, const ElemRect& rect) override { clips.push_back("add" + std::to_string(rect.x)); }
    void onTapOutsideOverlay(int, int32_t, int32_t) override { ++outsideTaps; }
};

struct ElementContainerTest : testing::Test {
    Log log;
    RecordingContainer container;
    std::deque<test::RecordingElement> elements;

    test::RecordingElement& add(const char* name, ElemRect rect, bool visible = true)
    {
        container.addChild(&elements.emplace_back(name, log, rect));
        elements.back().setVisible(visible);
        return elements.back();
    }
};

TEST_F(ElementContainerTest, ChildListRunsFromTheLastAddedAndPaintsInThatOrder)
{
    Element& first = add("first", { 0, 0, 10, 10 });
    Element& hidden = add("hidden", { 0, 0, 10, 10 }, false);
    Element& second = add("second", { 0, 0, 10, 10 });
    EXPECT_EQ(container.firstChild(), &second);
    EXPECT_EQ(second.nextSibling(), &hidden);
    EXPECT_EQ(first.parent(), &container);
    EXPECT_EQ(container.paint(nullptr, 0), 1);
    // The first added is painted last and so ends on top; the hidden one is skipped.
    EXPECT_EQ(log, (Log { "second.paint0", "first.paint0" }));
    EXPECT_FALSE(container.isDirty());
}

// A tap goes to the last added visible child under it, which then gets the moves and the up;
// without a child there they are dropped.
TEST_F(ElementContainerTest, TapsGoToTheLastAddedVisibleChildUnderThemAndCaptureIt)
{
    Element& under = add("under", { 0, 0, 20, 20 });
    Element& over = add("over", { 10, 10, 20, 20 });
    add("hidden", { 0, 0, 40, 40 }, false);
    EXPECT_EQ(container.capturedChild(), nullptr);
    EXPECT_EQ(container.stylusMove(5, 5), 0);
    EXPECT_EQ(container.stylusDown(1, 15, 15), 1);
    EXPECT_EQ(container.capturedChild(), &over);
    EXPECT_EQ(container.stylusMove(500, 500), 1);
    EXPECT_EQ(container.stylusUp(1, 500, 500), 1);
    EXPECT_EQ(container.stylusDown(0, 5, 5), 1);
    EXPECT_EQ(container.capturedChild(), &under);
    // x = rect.x + width is already outside: the capture becomes "none".
    EXPECT_EQ(container.stylusDown(0, 30, 5), 0);
    EXPECT_EQ(container.capturedChild(), ElementContainer::kNoCapture);
    EXPECT_EQ(container.stylusMove(5, 5) + container.stylusUp(0, 5, 5), 0);
    EXPECT_EQ(log, (Log { "over.down1@15,15", "over.move", "over.up1", "under.down0@5,5" }));
}

TEST_F(ElementContainerTest, ExclusiveOverlayTakesEveryTapAndIsPaintedAlone)
{
    add("child", { 0, 0, 100, 100 });
    test::RecordingElement page("page", log, { 10, 10, 20, 20 });
    page.setFlags(page.flags() | Element::kExclusive);
    container.setOverlay(&page);
    EXPECT_EQ(page.parent(), &container);
    EXPECT_EQ(container.stylusDown(0, 90, 90) + container.stylusMove(91, 91) + container.stylusUp(0, 91, 91), 3);
    container.paint(nullptr, 0);
    EXPECT_EQ(log, (Log { "page.down0@90,90", "page.move", "page.up0", "page.paint0" }));
}

// A non-exclusive overlay takes the taps inside it and leaves those outside to the container; it
// is painted first and then excluded from the clip, as is any clip its elements add.
TEST_F(ElementContainerTest, NonExclusiveOverlayTakesTapsInsideIsPaintedFirstAndIsExcludedFromTheClip)
{
    ElementContainer panel;
    panel.layout({ 0, 0, 100, 100 });
    container.addChild(&panel);
    test::RecordingElement child("child", log, { 0, 0, 100, 100 }), popup("popup", log, { 10, 10, 20, 20 });
    panel.addChild(&child);
    container.setOverlay(&popup);
    EXPECT_EQ(container.stylusDown(0, 15, 15), 1);
    EXPECT_EQ(container.stylusDown(0, 50, 50), 1);
    EXPECT_EQ(container.outsideTaps, 1);
    EXPECT_EQ(container.capturedChild(), ElementContainer::kNoCapture);
    container.clearOverlay();
    container.stylusDown(0, 50, 50);
    EXPECT_EQ(log, (Log { "popup.down0@15,15", "child.down0@50,50" }));

    log.clear();
    panel.setOverlay(&popup);
    panel.paint(nullptr, 0);
    EXPECT_EQ(log, (Log { "popup.paint0", "child.paint0" }));
    child.addClip(nullptr, { 7, 0, 1, 1 });
    EXPECT_EQ(container.clips, (Log { "exclude10", "exclude7" }));
}

} // namespace
} // namespace pulsara
