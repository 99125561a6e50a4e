// How long the window takes to repaint: all of it at 800 x 600 (a resize or an uncovering), and
// the 10 ms timer's repaint when one element changed (a meter moving while a song plays).
// Run with the offscreen platform: QT_QPA_PLATFORM=offscreen build/bench/RepaintBench
#include "App/MainWindow.h"
#include "App/StandInScreen.h"
#include "GUI/Skin.h"

#include <QApplication>
#include <benchmark/benchmark.h>

namespace pulsara {
namespace {

struct ShownWindow {
    StandInScreen screen { theSkin() };
    MainWindow window { screen };

    ShownWindow()
    {
        window.resize(800, 600);
        window.show();
        QCoreApplication::processEvents();
        // The canvas itself is to be 800 x 600, below the menu bar.
        window.resize(800, 600 + 600 - window.canvas().height());
        QCoreApplication::processEvents();
        window.canvas().repaint();
    }
};

void FullRepaint800x600(benchmark::State& state)
{
    ShownWindow shown;
    Canvas& canvas = shown.window.canvas();
    for (auto _ : state)
        canvas.repaint();
    state.counters["width"] = canvas.width();
    state.counters["height"] = canvas.height();
}
BENCHMARK(FullRepaint800x600)->Unit(benchmark::kMillisecond);

void TimerRepaintOneChangedMeter(benchmark::State& state)
{
    ShownWindow shown;
    LevelMeter& meter = shown.screen.leftMeter();
    Canvas& canvas = shown.window.canvas();
    float level = 0.0f;
    for (auto _ : state) {
        level = level > 0.9f ? 0.0f : level + 0.1f;
        meter.setValue(level);
        shown.screen.repaintChanged();
        // What the timer's repaint hands to the window is shown by the next paint event.
        canvas.repaint(meter.rect()->toQRect());
    }
}
BENCHMARK(TimerRepaintOneChangedMeter)->Unit(benchmark::kMicrosecond);

void TimerRepaintNothingChanged(benchmark::State& state)
{
    ShownWindow shown;
    for (auto _ : state)
        shown.screen.repaintChanged();
}
BENCHMARK(TimerRepaintNothingChanged)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace pulsara

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    pulsara::Skin& skin = pulsara::theSkin();
    skin.setInstallDir(u"" PULSARA_SHARE_DIR "/");
    skin.load();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
