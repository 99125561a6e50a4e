// Playback through the output stream: the render load of one fill at 30 ms latency for a dense
// 40-track song, and the underruns of a minute of real playback into a PulseAudio null sink
// (run it under tests/cli/with_null_sink.sh, see README.md).
#include "App/Transport.h"
#include "Sound/QueuedWaveDevice.h"
#include "Sound/RtAudioDevice.h"
#include "Sound/Song.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

using namespace pulsara;

namespace {

constexpr AudioFormat kFormat { 44100, 32, 2 };
constexpr int kLatencyMs = 30;

// Forty decaying stereo tones, each of its own pitch, with a note on every step of every row
// and every other step pitched up: the most the sequencer can be asked to mix.
std::unique_ptr<Song> stressSong()
{
    auto song = std::make_unique<Song>(kFormat);
    constexpr uint32_t kToneFrames = 22050;
    for (uint32_t slot = 0; slot < Song::kInstruments; ++slot) {
        std::vector<float> tone(kToneFrames * 2);
        for (uint32_t i = 0; i < kToneFrames; ++i) {
            float decay = 1.0f - static_cast<float>(i) / kToneFrames;
            float value = 0.04f * decay * std::sin(static_cast<float>(i) * (0.012f + 0.0017f * static_cast<float>(slot)));
            tone[2 * i] = value;
            tone[2 * i + 1] = 0.5f * value;
        }
        song->instrument(slot).sample().setFrames(std::move(tone), 2);
    }
    SongPlayer& player = song->player();
    for (uint32_t row = 0; row < Song::kInstruments; ++row) {
        for (uint32_t step = 0; step < song->stepsPerPattern(); ++step)
            player.pattern(0).setCell(row, step, { 0.8f, step % 2 ? 1.5f : 1.0f, 0 });
    }
    for (uint32_t position = 0; position < 8; ++position)
        player.playlist().set(0, position, 1.0f);
    return song;
}

// A device whose output the benchmark pulls itself, one buffer per iteration.
class PulledDevice final : public QueuedWaveDevice {
public:
    void pull(int16_t* out, uint32_t frames) { play(out, frames); }

protected:
    WaveResult openOutput(const WaveFormat&) override { return WaveResult::Ok; }
    void closeOutput() override { }
};

// Each iteration plays one device buffer, which makes the stream render, convert and queue
// the next one. The counter is the share of the 30 ms period that took.
void BM_FillDense40Tracks30ms(benchmark::State& state)
{
    auto song = stressSong();
    song->setInterpolation(state.range(0) ? Interpolation::Linear : Interpolation::None);
    PulledDevice device;
    Transport transport(device, *song);
    transport.open(kLatencyMs);
    song->player().seek(0);
    if (!transport.play()) {
        state.SkipWithError("the stream did not start");
        return;
    }
    auto frames = static_cast<uint32_t>(transport.deviceBufferBytes(0) / sizeof(int16_t) / kFormat.channels);
    std::vector<int16_t> out(static_cast<size_t>(frames) * kFormat.channels);
    auto begin = std::chrono::steady_clock::now();
    for (auto _ : state) {
        device.pull(out.data(), frames);
        benchmark::DoNotOptimize(out.data());
    }
    std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    double period = static_cast<double>(frames) / kFormat.sampleRate;
    state.counters["load"] = elapsed.count() / (static_cast<double>(state.iterations()) * period);
    state.SetLabel(state.range(0) ? "linear" : "none");
    transport.close();
}

// A minute of real playback of the looping stress song at 30 ms latency through RtAudio.
void BM_NullSinkUnderruns60s(benchmark::State& state)
{
    if (!std::getenv("PULSE_SERVER")) {
        state.SkipWithError("needs a sound server: run under tests/cli/with_null_sink.sh");
        return;
    }
    auto song = stressSong();
    for (auto _ : state) {
        RtAudioDevice device;
        Transport transport(device, *song);
        transport.open(kLatencyMs);
        song->player().seek(0);
        if (!transport.play()) {
            state.SkipWithError("no audio output device could be opened");
            return;
        }
        std::this_thread::sleep_for(std::chrono::seconds(60));
        transport.close();
        state.counters["underruns"] = device.underruns();
    }
}

} // namespace

BENCHMARK(BM_FillDense40Tracks30ms)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_NullSinkUnderruns60s)->Iterations(1)->Unit(benchmark::kSecond);

BENCHMARK_MAIN();
