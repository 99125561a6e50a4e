// Playback through the output stream: the render load of one fill at 30 ms latency for a dense
// 40-track song, and the underruns of a minute of real playback into a PulseAudio null sink
// (run it under tests/cli/with_null_sink.sh, see README.md).
#include "App/Transport.h"
#include "Sound/QueuedWaveDevice.h"
#include "Sound/RtAudioDevice.h"
#include "Sound/Song.h"
#include "StressSong.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

using namespace pulsara;

namespace {

constexpr AudioFormat kFormat = bench::kStressFormat;
constexpr int kLatencyMs = 30;

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
    auto song = bench::stressSong(8);
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
    auto song = bench::stressSong(8);
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
