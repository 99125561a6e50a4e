// From nothing to the first painted window with the demo song, in one process: the skin read,
// the application built with the default settings, the demo loaded, playing started, the window
// shown at its start size and painted once. The process's own start (Qt, the libraries, the X
// connection) is measured by bench/startup_to_paint.py.
// Run with the offscreen platform: QT_QPA_PLATFORM=offscreen build/bench/StartupBench
#include "App/AppSettings.h"
#include "App/Application.h"
#include "App/MainWindow.h"
#include "GUI/Skin.h"

#include "WindowBench.h"

#include <memory>

namespace pulsara {
namespace {

void BuildLoadAndPaintDemo(benchmark::State& state)
{
    AppSettings settings;
    settings.samplesDir = u"" PULSARA_SHARE_DIR "/Demo";
    for (auto _ : state) {
        Skin& skin = theSkin();
        skin.setInstallDir(u"" PULSARA_SHARE_DIR "/");
        skin.load();
        SilentDevice device;
        auto application = std::make_unique<Application>(skin, device);
        application->initialise(settings);
        application->loadSongFile(u"" PULSARA_SHARE_DIR "/Demo/zzzDemo.kqu");
        MainWindow window(*application, application->edits().history());
        window.resize(1200, 780);
        window.show();
        application->setPlaying(true);
        window.canvas().repaint();
        state.PauseTiming();
        window.close();
        application.reset();
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(BuildLoadAndPaintDemo)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace pulsara

int main(int argc, char** argv)
{
    return pulsara::runWindowBenchmarks(argc, argv);
}
