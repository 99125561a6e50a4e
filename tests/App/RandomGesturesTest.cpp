// Tens of thousands of random presses, drags, releases, wheel turns, keys and commands on the
// whole main screen while the device thread renders the song: nothing may crash or trip a
// sanitizer, and the song stays within its limits. The seed is fixed, so a failure repeats.
#include "App/Application.h"
#include "GUI/FileDialogs.h"
#include "GUI/ScriptedPrompts.h"
#include "GUI/WindowDriver.h"
#include "support/PulledWaveDevice.h"

#include <QUndoStack>
#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

using namespace pulsara;
using namespace pulsara::test;

namespace {

constexpr int kEvents = 20000;
constexpr int kWidth = 900;
constexpr int kHeight = 640;

struct Screen : WindowDriver {
    pulsara::testing::PulledWaveDevice device;
    Application app { loadedSkin(), device };

    Screen() : WindowDriver(app)
    {
        app.initialise(30);
        app.loadSongFile(u"" PULSARA_SHARE_DIR "/Demo/zzzDemo.kqu");
        open(kWidth, kHeight);
    }
};

void expectWithinLimits(Song& song)
{
    SongPlayer& player = song.player();
    EXPECT_GE(song.stepsPerPattern(), 1u);
    EXPECT_LE(song.stepsPerPattern(), 64u);
    EXPECT_GE(player.tempo(), 1.0f);
    EXPECT_LE(player.tempo(), 300.0f);
    EXPECT_GE(player.volume(), 0.0f);
    EXPECT_LE(player.volume(), 1.0f);
    EXPECT_GE(player.loopStart(), 0);
    EXPECT_LT(player.loopStart(), int32_t(Song::kPositions));
    EXPECT_GE(player.loopEnd(), -1);
    EXPECT_LT(player.loopEnd(), int32_t(Song::kPositions));
    for (uint32_t pattern = 0; pattern < Song::kPatterns; ++pattern) {
        EXPECT_LE(player.patternName(pattern).size(), SongPlayer::kMaxNameLength);
        for (uint32_t row = 0; row < Song::kInstruments; ++row) {
            for (uint32_t step = 0; step < StepGrid::kCellsPerRow; ++step) {
                Step cell = player.pattern(pattern).cell(row, step);
                if (cell.isNote()) {
                    ASSERT_LE(cell.volume, 1.2f) << pattern << " " << row << " " << step;
                    ASSERT_GT(cell.rate, 0.0f);
                    ASSERT_GE(cell.parameter, 0);
                }
            }
        }
    }
    for (uint32_t slot = 0; slot < Song::kInstruments; ++slot) {
        EXPECT_GE(song.instrument(slot).volume(), 0.0f);
        EXPECT_LE(song.instrument(slot).volume(), 1.0f);
        EXPECT_LE(song.instrument(slot).name().size(), Instrument::kMaxNameLength);
    }
}

} // namespace

TEST(RandomGestures, LeaveTheSongWithinItsLimitsWhilePlaying)
{
    ScriptedPrompts prompts;
    setFileDialogHook([](FileDialogKind, FilePath&) { return 0; });
    Screen screen;
    Application& app = screen.app;
    ASSERT_EQ(app.transport().play(), 1);

    std::atomic<bool> rendering { true };
    std::thread device([&] {
        while (rendering.load()) {
            screen.device.pull(256, 1);
            std::this_thread::yield();
        }
    });

    std::mt19937 random(20261123);
    auto below = [&](int bound) { return int(random() % uint32_t(bound)); };
    const uint32_t keys[] = { kKeyLeft, kKeyRight, kKeyUp, kKeyDown, kKeyReturn, kKeyDelete, kKeyPageUp, kKeyPageDown,
        kKeySpace, kKeyEscape, 'Q', '1', 'A', 'M' };
    const uint32_t popupChoices[] = { 0, 40300, 40301, 40302, 40303, 41000, 41007, 41039 };
    QPoint pointer(kWidth / 2, kHeight / 2);
    bool buttonDown = false;
    for (int event = 0; event < kEvents; ++event) {
        screen.window.popupChoice = popupChoices[below(8)];
        switch (below(16)) {
        case 0:
        case 1:
        case 2:
            if (!buttonDown) {
                pointer = { below(kWidth), below(kHeight) };
                screen.press(pointer, below(6) == 0 ? 1 : 0);
                buttonDown = true;
            }
            break;
        case 3:
        case 4:
        case 5:
        case 6:
            // Mostly short moves, as a hand drags; sometimes a jump, or past the window's edge.
            pointer += QPoint(below(61) - 30, below(41) - 20);
            if (below(20) == 0)
                pointer = { below(kWidth + 100) - 50, below(kHeight + 100) - 50 };
            screen.move(pointer);
            break;
        case 7:
        case 8:
            screen.release(pointer, below(6) == 0 ? 1 : 0);
            buttonDown = false;
            break;
        case 9:
            screen.wheel({ below(kWidth), below(kHeight) }, below(7) - 3, below(2) ? kWheelShift : 0);
            break;
        case 10:
        case 11:
            screen.key(keys[below(int(std::size(keys)))], below(8) == 0 ? kKeyRepeatFlag : 0);
            break;
        case 12:
            screen.command(below(4) == 0 ? Application::kLiveactCommand : Application::kSongPropertiesCommand);
            break;
        case 13:
            if (below(2))
                app.edits().history().undo();
            else
                app.edits().history().redo();
            break;
        case 14:
            if (screen.window.textEdit && screen.window.textEdit->shown) {
                screen.window.textEdit->content = std::u16string(size_t(below(40)), u'x');
                screen.window.textEdit->finish(below(2) == 0);
            }
            break;
        default:
            if (below(50) == 0)
                screen.resize(640 + below(kWidth - 640), 480 + below(kHeight - 480));
            app.followPlayback();
            app.repaintChanged();
            break;
        }
    }
    screen.release(pointer);
    app.transport().close();
    rendering = false;
    device.join();
    setFileDialogHook({});
    expectWithinLimits(app.song());
    EXPECT_GT(app.edits().history().count(), 0) << "the gestures edited the song";
}
