// Export speed, as times real time: the demo song and a dense stress song (40 tracks, a note
// on every step of every row, 64 positions, every other step pitched), at 44100 Hz stereo with
// each interpolation setting.
#include "App/ConsoleReporting.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "Sound/WavExporter.h"
#include "base/text.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

using namespace pulsara;

namespace {

constexpr AudioFormat kFormat { 44100, 32, 2 };

std::unique_ptr<Song> demoSong()
{
    auto song = std::make_unique<Song>(kFormat);
    std::u16string path = fromUtf8(PULSARA_SHARE_DIR "/Demo/zzzDemo.kqu");
    ConsoleSampleLocator locator(path, u"");
    loadSong(*song, path, locator);
    return song;
}

// Each instrument a half-second stereo tone of its own pitch.
std::unique_ptr<Song> denseSong(uint32_t positions = 64)
{
    auto song = std::make_unique<Song>(kFormat);
    const uint32_t frames = 22050;
    for (uint32_t slot = 0; slot < Song::kInstruments; ++slot) {
        std::vector<float> tone(frames * 2);
        for (uint32_t i = 0; i < frames; ++i) {
            float value = 0.05f * std::sin(static_cast<float>(i) * (0.01f + 0.002f * slot)) * (1.0f - static_cast<float>(i) / frames);
            tone[2 * i] = value;
            tone[2 * i + 1] = -value;
        }
        song->instrument(slot).sample().setFrames(std::move(tone), 2);
    }
    SongPlayer& player = song->player();
    for (uint32_t row = 0; row < Song::kInstruments; ++row) {
        for (uint32_t step = 0; step < song->stepsPerPattern(); ++step)
            player.pattern(0).setCell(row, step, { 0.8f, step % 2 ? 1.2599f : 1.0f, 0 });
    }
    for (uint32_t position = 0; position < positions; ++position)
        player.playlist().set(0, position, 1.0f);
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
    static std::unique_ptr<Song> song = denseSong();
    exportSong(state, *song);
}

} // namespace

BENCHMARK(BM_ExportDemo)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportDense40Tracks)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
