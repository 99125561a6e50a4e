// Tens of thousands of random presses, drags, releases, wheel turns, keys and commands on the
// whole main screen while the device thread renders the song: nothing may crash or trip a
// sanitizer, and the song stays within its limits. The seed is fixed, so a failure repeats.
#include "DemoApp.h"
#include "GUI/ScriptedPrompts.h"

#include <QUndoStack>
#include <gtest/gtest.h>

#include <random>
#include <thread>

using namespace pulsara;
using namespace pulsara::test;

namespace {

constexpr int kEvents = 20000;
constexpr int kWidth = 900;
constexpr int kHeight = 640;

bool within(double value, double low, double high) { return value >= low && value <= high; }

void expectWithinLimits(Song& song)
{
    SongPlayer& player = song.player();
    EXPECT_PRED3(within, song.stepsPerPattern(), 1, 64);
    EXPECT_PRED3(within, player.tempo(), 1, 300);
    EXPECT_PRED3(within, player.volume(), 0, 1);
    EXPECT_PRED3(within, player.loopStart(), 0, Song::kPositions - 1);
    EXPECT_PRED3(within, player.loopEnd(), -1, Song::kPositions - 1);
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
        EXPECT_PRED3(within, song.instrument(slot).volume(), 0, 1);
        EXPECT_LE(song.instrument(slot).name().size(), Instrument::kMaxNameLength);
    }
}

} // namespace

TEST(RandomGestures, LeaveTheSongWithinItsLimitsWhilePlaying)
{
    ScriptedPrompts prompts;
    ScriptedFileDialogs cancelled;
    DemoScreen screen(kWidth, kHeight);
    Application& app = screen.app;
    ASSERT_EQ(app.transport().play(), 1);

    std::jthread device([&](std::stop_token stop) {
        for (; !stop.stop_requested(); std::this_thread::yield())
            screen.device.pull(256, 1);
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
        const int kind = below(16);
        if (kind < 3 && !buttonDown) {
            pointer = { below(kWidth), below(kHeight) };
            screen.press(pointer, below(6) == 0 ? 1 : 0);
            buttonDown = true;
        } else if (kind >= 3 && kind < 7) {
            // Mostly short moves, as a hand drags; sometimes a jump, or past the window's edge.
            pointer += QPoint(below(61) - 30, below(41) - 20);
            if (below(20) == 0)
                pointer = { below(kWidth + 100) - 50, below(kHeight + 100) - 50 };
            screen.move(pointer);
        } else if (kind == 7 || kind == 8) {
            screen.release(pointer, below(6) == 0 ? 1 : 0);
            buttonDown = false;
        } else if (kind == 9) {
            screen.wheel({ below(kWidth), below(kHeight) }, below(7) - 3, below(2) ? kWheelShift : 0);
        } else if (kind == 10 || kind == 11) {
            screen.key(keys[below(int(std::size(keys)))], below(8) == 0 ? kKeyRepeatFlag : 0);
        } else if (kind == 12) {
            screen.command(below(4) == 0 ? Application::kLiveactCommand : Application::kSongPropertiesCommand);
        } else if (kind == 13) {
            below(2) ? app.edits().history().undo() : app.edits().history().redo();
        } else if (kind == 14 && screen.window.textEdit && screen.window.textEdit->shown) {
            screen.window.textEdit->content = std::u16string(size_t(below(40)), u'x');
            screen.window.textEdit->finish(below(2) == 0);
        } else if (kind == 15) {
            if (below(50) == 0)
                screen.resize(640 + below(kWidth - 640), 480 + below(kHeight - 480));
            app.followPlayback();
            app.repaintChanged();
        }
    }
    screen.release(pointer);
    app.transport().close();
    device.request_stop();
    device.join();
    expectWithinLimits(app.song());
    EXPECT_GT(app.edits().history().count(), 0) << "the gestures edited the song";
}
