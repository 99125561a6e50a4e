// The main screen as a whole: its layout and the narrow-window rules, live mode, the title and
// the modified mark that follows undo, the keyboard, playing and the song properties pop-up.
#include "App/Application.h"
#include "GUI/WindowDriver.h"
#include "support/PulledWaveDevice.h"

#include <QUndoStack>
#include <gtest/gtest.h>

using namespace pulsara;
using namespace pulsara::test;

namespace {

constexpr const char16_t* kDemo = u"" PULSARA_SHARE_DIR "/Demo/zzzDemo.kqu";

struct Screen : WindowDriver {
    pulsara::testing::PulledWaveDevice device;
    Application app { loadedSkin(), device };

    explicit Screen(int width = 1200, int height = 780, std::u16string_view song = kDemo) : WindowDriver(app)
    {
        app.initialise(30);
        if (!song.empty())
            app.loadSongFile(song);
        open(width, height);
    }
};

} // namespace

TEST(Application, LaysOutTheTopRowsTheEditorsAndTheLiveRows)
{
    Screen screen;
    Application& app = screen.app;
    EXPECT_EQ(*app.topBar().rect(), (ElemRect { 0, 0, 1200, 36 }));
    EXPECT_EQ(*app.pageButton(0).rect(), (ElemRect { 0, 36, 84, 36 }));
    EXPECT_EQ(app.pageButton(1).rect()->x, 84);
    EXPECT_EQ(*app.tempoSlider().rect(), (ElemRect { 1170, 36, 30, 36 }));
    EXPECT_EQ(app.masterVolumeSlider().rect()->x, 1140);
    EXPECT_EQ(app.playButton().rect()->right(), 1140);
    EXPECT_EQ(*app.mainEditor().rect(), (ElemRect { 0, 72, 1200, 708 }));
    EXPECT_EQ(app.mainEditor().grid(0).visibleRows(), 40) << "all tracks of a pattern in view";
    EXPECT_FALSE(app.livePanel(0).isVisible());

    screen.command(Application::kLiveactCommand);
    EXPECT_TRUE(app.isLiveact());
    EXPECT_TRUE(screen.window.checkedItems[Application::kLiveactCommand]);
    EXPECT_EQ(app.mainEditor().rect()->height, 708 - 2 * 18);
    EXPECT_EQ(*app.livePanel(0).rect(), (ElemRect { 0, 780 - 36, 1200, 18 }));
    EXPECT_EQ(*app.livePanel(1).rect(), (ElemRect { 0, 780 - 18, 1200, 18 }));
    EXPECT_TRUE(app.livePanel(1).isVisible());
    EXPECT_EQ(app.livePanel(0).padText(10), u"Q");
    EXPECT_EQ(app.livePanel(0).padText(0), u"1 Kick");

    screen.command(Application::kLiveactCommand);
    EXPECT_FALSE(screen.window.checkedItems[Application::kLiveactCommand]);
    EXPECT_EQ(*app.mainEditor().rect(), (ElemRect { 0, 72, 1200, 708 }));
    EXPECT_FALSE(app.livePanel(0).isVisible());
}

TEST(Application, NarrowWindowsDropThePairDisplayThenTheCounter)
{
    Screen screen;
    Application& app = screen.app;
    const int counter = app.counterDisplay().preferredWidth();
    // The room between the page buttons (168) and the play button (116 from the right).
    struct Case {
        int room;
        bool counterShown, pairShown;
    };
    const Case cases[] = { { 2 * counter, true, true }, { 2 * counter - 1, true, false }, { counter, true, false }, { counter - 1, false, false } };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.room);
        screen.resize(168 + 116 + c.room, 400);
        EXPECT_EQ(app.counterDisplay().isVisible(), c.counterShown);
        EXPECT_EQ(app.pairDisplay().isVisible(), c.pairShown);
        if (c.pairShown) {
            EXPECT_EQ(app.pairDisplay().rect()->right(), app.playButton().rect()->x - 4);
            EXPECT_EQ(app.counterDisplay().rect()->right(), app.pairDisplay().rect()->x - 6);
        } else if (c.counterShown) {
            EXPECT_EQ(app.counterDisplay().rect()->right(), app.playButton().rect()->x - 4);
        }
    }
}

TEST(Application, TheTitleMarksChangesUntilUndoneOrSaved)
{
    Screen screen;
    Application& app = screen.app;
    EXPECT_EQ(app.titleText(), u"Pulsara - zzzDemo");
    EXPECT_EQ(screen.window.title, u"Pulsara - zzzDemo");
    screen.click(WindowDriver::centre(app.mainEditor().grid(0)));
    EXPECT_EQ(screen.window.title, u"Pulsara - zzzDemo*");
    EXPECT_TRUE(app.documentFlags() & Application::kDirtyFlag);
    app.edits().history().undo();
    EXPECT_EQ(screen.window.title, u"Pulsara - zzzDemo");
    app.edits().history().redo();
    EXPECT_EQ(screen.window.title, u"Pulsara - zzzDemo*");

    Screen untitled(800, 600, {});
    EXPECT_EQ(untitled.window.title, u"Pulsara - Untitled");
    EXPECT_TRUE(untitled.app.documentFlags() & Application::kUntitledFlag);
}

TEST(Application, KeysGoToTheFocusedPage)
{
    Screen screen;
    Application& app = screen.app;
    StepGridView& pattern = app.mainEditor().grid(0);
    StepGridView& playlist = app.mainEditor().grid(1);
    screen.key(kKeyRight);
    screen.key(kKeyDown);
    EXPECT_EQ(pattern.cursorColumn(), 1);
    EXPECT_EQ(pattern.cursorRow(), 1);
    const Step before = app.song().player().pattern(0).cell(1, 1);
    screen.key(kKeyReturn);
    EXPECT_NE(app.song().player().pattern(0).cell(1, 1).isNote(), before.isNote());

    screen.click(WindowDriver::centre(app.pageButton(1)));
    EXPECT_EQ(app.mainEditor().page(), 1);
    EXPECT_EQ(app.focusedEditor(), 1);
    screen.key(kKeyRight);
    screen.key(kKeyPageDown);
    EXPECT_EQ(playlist.cursorColumn(), 1);
    EXPECT_EQ(pattern.cursorColumn(), 1) << "the hidden page's cursor stays";

    app.setFocusedEditor(2);
    screen.key(kKeyLeft);
    EXPECT_EQ(playlist.cursorColumn(), 1) << "no page has the keys";
}

TEST(Application, SpaceAndThePlayButtonPlayAndStop)
{
    Screen screen;
    Application& app = screen.app;
    screen.key(kKeySpace);
    EXPECT_TRUE(app.transport().isPlaying());
    EXPECT_TRUE(app.playButton().isPressed());
    screen.click(WindowDriver::centre(app.playButton()));
    EXPECT_FALSE(app.transport().isPlaying());
    EXPECT_FALSE(app.playButton().isPressed());

    // The playlist's ruler moves the song position, which the counter shows from 1.
    screen.click(WindowDriver::centre(app.pageButton(1)));
    StepGridView& playlist = app.mainEditor().grid(1);
    ElemRect ruler = playlist.cellRect(3, 0);
    screen.click({ ruler.x + 4, playlist.rect()->y + 4 });
    app.followPlayback();
    EXPECT_EQ(app.counterDisplay().value(), 4);
    EXPECT_EQ(playlist.playColumn(), 3);
}

TEST(Application, LiveKeysPlayOncePerPress)
{
    Screen screen;
    Application& app = screen.app;
    screen.command(Application::kLiveactCommand);
    app.song().player().triggerLive(-1);
    screen.key('Q', kKeyRepeatFlag);
    EXPECT_EQ(app.song().player().soloTrack(), -1) << "a held key's repeats play nothing";
    screen.key('Q');
    EXPECT_EQ(app.song().player().soloTrack(), 10);
    EXPECT_TRUE(app.livePanel(0).isLit(10));
    const int32_t cursor = app.mainEditor().grid(0).cursorColumn();
    screen.key(kKeyRight);
    EXPECT_EQ(app.mainEditor().grid(0).cursorColumn(), cursor + 1) << "keys that play nothing still edit";
}

TEST(Application, SongPropertiesPopUpClosesOnItsButtonATapOutsideOrEscape)
{
    Screen screen;
    Application& app = screen.app;
    screen.command(Application::kSongPropertiesCommand);
    ASSERT_EQ(app.overlay(), &app.songProperties());
    EXPECT_EQ(*app.songProperties().rect(), (ElemRect { 10, (780 - 100) / 2, 1180, 100 }));
    screen.click({ 5, 5 });
    EXPECT_EQ(app.overlay(), nullptr);
    screen.command(Application::kSongPropertiesCommand);
    screen.key(kKeyEscape);
    EXPECT_EQ(app.overlay(), nullptr);
    EXPECT_TRUE(screen.window.calls.empty() || screen.window.calls.back() != "quit") << "Escape closed the pop-up only";
    screen.command(Application::kSongPropertiesCommand);
    screen.click(WindowDriver::centre(app.songProperties().closeButton()));
    EXPECT_EQ(app.overlay(), nullptr);
}
