// The main screen as a whole: the narrow-window rules, live mode, the title and the modified mark
// that follows undo, the keyboard, playing and the song properties pop-up. The layout itself is
// pinned pixel by pixel by the screenshot tests.
#include "DemoApp.h"

#include <QUndoStack>
#include <gtest/gtest.h>

using namespace pulsara;
using namespace pulsara::test;

TEST(Application, LiveModeChecksItsMenuItemAndLeavingItGivesTheEditorsTheirRoomBack)
{
    DemoScreen screen;
    EXPECT_FALSE(screen.app.livePanel(0).isVisible());
    screen.command(Application::kLiveactCommand);
    EXPECT_TRUE(screen.app.isLiveact());
    EXPECT_TRUE(screen.window.checkedItems[Application::kLiveactCommand]);
    EXPECT_TRUE(screen.app.livePanel(1).isVisible());
    screen.command(Application::kLiveactCommand);
    EXPECT_FALSE(screen.window.checkedItems[Application::kLiveactCommand]);
    EXPECT_EQ(*screen.app.mainEditor().rect(), (ElemRect { 0, 72, 1200, 708 }));
    EXPECT_FALSE(screen.app.livePanel(0).isVisible());
}

TEST(Application, NarrowWindowsDropThePairDisplayThenTheCounter)
{
    DemoScreen screen;
    const int counter = screen.app.counterDisplay().preferredWidth();
    // The room between the page buttons (168) and the play button (116 from the right).
    struct Case {
        int room;
        bool counterShown, pairShown;
    };
    const Case cases[] = { { 2 * counter, true, true }, { 2 * counter - 1, true, false }, { counter, true, false }, { counter - 1, false, false } };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.room);
        screen.resize(168 + 116 + c.room, 400);
        EXPECT_EQ(screen.app.counterDisplay().isVisible(), c.counterShown);
        EXPECT_EQ(screen.app.pairDisplay().isVisible(), c.pairShown);
        if (c.pairShown) {
            EXPECT_EQ(screen.app.pairDisplay().rect()->right(), screen.app.playButton().rect()->x - 4);
            EXPECT_EQ(screen.app.counterDisplay().rect()->right(), screen.app.pairDisplay().rect()->x - 6);
        } else if (c.counterShown) {
            EXPECT_EQ(screen.app.counterDisplay().rect()->right(), screen.app.playButton().rect()->x - 4);
        }
    }
}

// The rules of the title are the document's (its tests); here it reaches the window.
TEST(Application, TheTitleMarksChangesUntilUndone)
{
    DemoScreen screen;
    EXPECT_EQ(screen.window.title, u"Pulsara - zzzDemo");
    screen.click(WindowDriver::centre(screen.app.mainEditor().grid(0)));
    EXPECT_EQ(screen.window.title, u"Pulsara - zzzDemo*");
    EXPECT_TRUE(screen.app.documentFlags() & Application::kDirtyFlag);
    screen.app.edits().history().undo();
    EXPECT_EQ(screen.window.title, u"Pulsara - zzzDemo");
}

TEST(Application, KeysGoToTheFocusedPage)
{
    DemoScreen screen;
    StepGridView& pattern = screen.app.mainEditor().grid(0);
    StepGridView& playlist = screen.app.mainEditor().grid(1);
    screen.key(kKeyRight);
    screen.key(kKeyDown);
    EXPECT_EQ(pattern.cursorColumn(), 1);
    EXPECT_EQ(pattern.cursorRow(), 1);
    const Step before = screen.app.song().player().pattern(0).cell(1, 1);
    screen.key(kKeyReturn);
    EXPECT_NE(screen.app.song().player().pattern(0).cell(1, 1).isNote(), before.isNote());

    screen.click(WindowDriver::centre(screen.app.pageButton(1)));
    EXPECT_EQ(screen.app.mainEditor().page(), 1);
    EXPECT_EQ(screen.app.focusedEditor(), 1);
    screen.key(kKeyRight);
    screen.key(kKeyPageDown);
    EXPECT_EQ(playlist.cursorColumn(), 1);
    EXPECT_EQ(pattern.cursorColumn(), 1) << "the hidden page's cursor stays";

    screen.app.setFocusedEditor(2);
    screen.key(kKeyLeft);
    EXPECT_EQ(playlist.cursorColumn(), 1) << "no page has the keys";
}

TEST(Application, SpaceAndThePlayButtonPlayAndStop)
{
    DemoScreen screen;
    screen.key(kKeySpace);
    EXPECT_TRUE(screen.app.transport().isPlaying());
    EXPECT_TRUE(screen.app.playButton().isPressed());
    screen.click(WindowDriver::centre(screen.app.playButton()));
    EXPECT_FALSE(screen.app.transport().isPlaying());
    EXPECT_FALSE(screen.app.playButton().isPressed());

    // The playlist's ruler moves the song position, which the counter shows from 1.
    screen.click(WindowDriver::centre(screen.app.pageButton(1)));
    StepGridView& playlist = screen.app.mainEditor().grid(1);
    screen.click(cellCentre(playlist, 3, -1));
    screen.app.followPlayback();
    EXPECT_EQ(screen.app.counterDisplay().value(), 4);
    EXPECT_EQ(playlist.playColumn(), 3);
}

TEST(Application, LiveKeysPlayOncePerPress)
{
    DemoScreen screen;
    screen.command(Application::kLiveactCommand);
    screen.app.song().player().triggerLive(-1);
    screen.key('Q', kKeyRepeatFlag);
    EXPECT_EQ(screen.app.song().player().soloTrack(), -1) << "a held key's repeats play nothing";
    screen.key('Q');
    EXPECT_EQ(screen.app.song().player().soloTrack(), 10);
    EXPECT_TRUE(screen.app.livePanel(0).isLit(10));
    const int32_t cursor = screen.app.mainEditor().grid(0).cursorColumn();
    screen.key(kKeyRight);
    EXPECT_EQ(screen.app.mainEditor().grid(0).cursorColumn(), cursor + 1) << "keys that play nothing still edit";
}

TEST(Application, SongPropertiesPopUpClosesOnItsButtonATapOutsideOrEscape)
{
    DemoScreen screen;
    screen.command(Application::kSongPropertiesCommand);
    ASSERT_EQ(screen.app.overlay(), &screen.app.songProperties());
    EXPECT_EQ(*screen.app.songProperties().rect(), (ElemRect { 10, (780 - 100) / 2, 1180, 100 }));
    screen.click({ 5, 5 });
    EXPECT_EQ(screen.app.overlay(), nullptr);
    screen.command(Application::kSongPropertiesCommand);
    screen.key(kKeyEscape);
    EXPECT_EQ(screen.app.overlay(), nullptr);
    EXPECT_TRUE(screen.window.calls.empty() || screen.window.calls.back() != "quit") << "Escape closed the pop-up only";
    screen.command(Application::kSongPropertiesCommand);
    screen.click(WindowDriver::centre(screen.app.songProperties().closeButton()));
    EXPECT_EQ(screen.app.overlay(), nullptr);
}
