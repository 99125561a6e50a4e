// Export speed, as times real time: the demo song and the stress song over 64 positions, at
// 44100 Hz stereo with each interpolation setting.
#include "cli/ConsoleReporting.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "Sound/WavExporter.h"
#include "StressSong.h"
#include "base/text.h"

#include <benchmark/benchmark.h>

#include <memory>

using namespace pulsara;

namespace {

constexpr AudioFormat kFormat = bench::kStressFormat;

std::unique_ptr<Song> demoSong()
{
    auto song = std::make_unique<Song>(kFormat);
    std::u16string path = fromUtf8(PULSARA_SHARE_DIR "/Demo/zzzDemo.kqu");
    ConsoleSampleLocator locator(path, u"");
    loadSong(*song, path, locator);
    return song;
}

void exportSong(benchmark::State& state, Song& song)
{
    song.setInterpolation(state.range(0) ? Interpolation::Linear : Interpolation::None);
    double seconds = static_cast<double>(song.player().lengthInFrames()) / kFormat.sampleRate;
    for (auto _ : state)
        WavExporter().exportTo(song.player(), u"/dev/null");
    state.counters["x_realtime"] = benchmark::Counter(seconds, benchmark::Counter::kIsIterationInvariantRate);
    state.SetLabel(state.range(0) ? "linear" : "none");
}

void BM_ExportDemo(benchmark::State& state)
{
    static std::unique_ptr<Song> song = demoSong();
    exportSong(state, *song);
}

void BM_ExportDense40Tracks(benchmark::State& state)
{
    static std::unique_ptr<Song> song = bench::stressSong(64);
    exportSong(state, *song);
}

} // namespace

BENCHMARK(BM_ExportDemo)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportDense40Tracks)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
