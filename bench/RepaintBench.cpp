// How long the main screen takes to draw with the demo song: a full repaint (a resize or an
// uncovering) at 800 x 600 and 1920 x 1080, scrolling the pattern grid by one column and by four
// rows, a cell toggled from the keyboard up to the window showing it, and the 10 ms timer's
// repaint of one moving meter.
// Run with the offscreen platform: QT_QPA_PLATFORM=offscreen build/bench/RepaintBench
#include "App/Application.h"
#include "App/MainWindow.h"
#include "GUI/Skin.h"
#include "GUI/WindowMessage.h"

#include "WindowBench.h"

namespace pulsara {
namespace {

struct ShownWindow {
    SilentDevice device;
    Application application { theSkin(), device };
    std::unique_ptr<MainWindow> window;

    ShownWindow(int width, int height)
    {
        application.initialise(200);
        application.loadSongFile(u"" PULSARA_SHARE_DIR "/Demo/zzzDemo.kqu");
        window = std::make_unique<MainWindow>(application, application.edits().history());
        window->resize(width, height);
        window->show();
        QCoreApplication::processEvents();
        // The canvas itself is to have the size, below the menu bar.
        window->resize(width, height + height - window->canvas().height());
        QCoreApplication::processEvents();
        window->canvas().repaint();
    }
    Canvas& canvas() { return window->canvas(); }
    StepGridView& grid() { return application.mainEditor().grid(0); }
};

void FullRepaint(benchmark::State& state)
{
    ShownWindow shown(int(state.range(0)), int(state.range(1)));
    for (auto _ : state)
        shown.canvas().repaint();
    state.counters["width"] = shown.canvas().width();
    state.counters["height"] = shown.canvas().height();
}
BENCHMARK(FullRepaint)->Args({ 800, 600 })->Args({ 1920, 1080 })->Unit(benchmark::kMillisecond);

// Scrolling copies the pixels and draws what comes into view, then the window shows it.
void ScrollGrid(benchmark::State& state)
{
    ShownWindow shown(800, 600);
    // A 64-step pattern, so that there are columns to scroll to.
    shown.application.edits().setPatternLength(8, 64);
    shown.grid().refresh();
    shown.canvas().repaint();
    const int32_t dx = int32_t(state.range(0));
    const int32_t dy = int32_t(state.range(1));
    int32_t direction = 1;
    for (auto _ : state) {
        StepGridView& grid = shown.grid();
        if (grid.firstColumn() + dx * direction > grid.columns() - grid.visibleColumns() || grid.firstColumn() + dx * direction < 0
            || grid.firstRow() + dy * direction > grid.rows() - grid.visibleRows() || grid.firstRow() + dy * direction < 0)
            direction = -direction;
        grid.scroll(dx * direction, dy * direction);
        shown.canvas().repaint(grid.rect()->toQRect());
    }
}
BENCHMARK(ScrollGrid)->Args({ 1, 0 })->Args({ 0, 4 })->Unit(benchmark::kMicrosecond);

void ToggleCellToRepaint(benchmark::State& state)
{
    ShownWindow shown(800, 600);
    StepGridView& grid = shown.grid();
    for (auto _ : state) {
        shown.application.handleMessage(kMessageKeyDown, kKeyReturn, 0);
        shown.canvas().repaint(grid.cellRect(grid.cursorColumn(), grid.cursorRow()).toQRect());
    }
}
BENCHMARK(ToggleCellToRepaint)->Unit(benchmark::kMicrosecond);

// The program's own part of a scroll: the pixels moved and the new column drawn into the back
// buffer, and the scroll bar redrawn by the repaint timer; what the window system then does with
// the changed pixels is ScrollGrid's difference.
void ScrollGridToBackBuffer(benchmark::State& state)
{
    ShownWindow shown(800, 600);
    shown.application.edits().setPatternLength(8, 64);
    shown.grid().refresh();
    shown.canvas().repaint();
    int32_t direction = 1;
    for (auto _ : state) {
        StepGridView& grid = shown.grid();
        if (grid.firstColumn() + direction > grid.columns() - grid.visibleColumns() || grid.firstColumn() + direction < 0)
            direction = -direction;
        grid.scroll(direction, 0);
        shown.application.repaintChanged();
    }
}
BENCHMARK(ScrollGridToBackBuffer)->Unit(benchmark::kMicrosecond);

void TimerRepaintOneChangedMeter(benchmark::State& state)
{
    ShownWindow shown(800, 600);
    LevelMeter& meter = shown.application.topBar().leftMeter();
    float level = 0.0f;
    for (auto _ : state) {
        level = level > 0.9f ? 0.0f : level + 0.1f;
        meter.setValue(level);
        shown.application.repaintChanged();
        // What the timer's repaint hands to the window is shown by the next paint event.
        shown.canvas().repaint(meter.rect()->toQRect());
    }
}
BENCHMARK(TimerRepaintOneChangedMeter)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace pulsara

int main(int argc, char** argv)
{
    return pulsara::runWindowBenchmarks(argc, argv, [] {
        pulsara::Skin& skin = pulsara::theSkin();
        skin.setInstallDir(u"" PULSARA_SHARE_DIR "/");
        skin.load();
    });
}
