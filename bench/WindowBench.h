// What the window's benchmarks share: a device that takes buffers and never plays them, so that
// the program's own cost alone is measured, and a start on Qt's offscreen platform.
#pragma once

#include "Sound/QueuedWaveDevice.h"

#include <QApplication>
#include <benchmark/benchmark.h>

namespace pulsara {

class SilentDevice final : public QueuedWaveDevice {
protected:
    WaveResult openOutput(const WaveFormat&) override { return WaveResult::Ok; }
    void closeOutput() override { }
};

// Another platform may be asked for through QT_QPA_PLATFORM; `prepare` runs once the
// application exists, before the benchmarks named on the command line.
inline int runWindowBenchmarks(int argc, char** argv, void (*prepare)() = nullptr)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (prepare)
        prepare();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace pulsara
