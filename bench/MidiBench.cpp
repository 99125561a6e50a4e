// A MIDI note-on to its first sample in a rendered output buffer, at 30 ms latency: the note
// arrives on the input's thread at a random moment of the period while a device thread plays at
// the pace of a sound card, and the time runs until the stream hands the device the buffer that
// starts with it. Goal: within one buffer (30 ms).
#include "App/MidiInput.h"
#include "App/Transport.h"
#include "Sound/QueuedWaveDevice.h"
#include "Sound/Song.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <random>
#include <thread>
#include <vector>

using namespace pulsara;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kLatencyMs = 30;
constexpr uint32_t kFramesPerCallback = 512;

// One keyboard whose notes the benchmark plays.
struct Keyboard final : MidiPorts {
    struct Port final : MidiPort { };
    Receiver receiver;

    std::vector<std::string> names() override { return { "Keyboard" }; }
    std::unique_ptr<MidiPort> open(const std::string&, Receiver r) override
    {
        receiver = std::move(r);
        return std::make_unique<Port>();
    }
};

// Plays at the pace of a sound card from a thread of its own, and notes the moment a buffer
// with sound in it is handed over.
class PacedDevice final : public QueuedWaveDevice {
public:
    std::atomic<Clock::rep> soundWritten { 0 };

    WaveResult write(WaveHeader& header) override
    {
        const auto* samples = reinterpret_cast<const int16_t*>(header.data);
        if (std::any_of(samples, samples + header.bufferLength / 2, [](int16_t s) { return s != 0; }))
            soundWritten.store(Clock::now().time_since_epoch().count(), std::memory_order_release);
        return QueuedWaveDevice::write(header);
    }

protected:
    WaveResult openOutput(const WaveFormat& format) override
    {
        running_ = true;
        card_ = std::thread([this, rate = format.samplesPerSecond] {
            std::vector<int16_t> out(kFramesPerCallback * 2);
            const auto period = std::chrono::nanoseconds(1'000'000'000LL * kFramesPerCallback / rate);
            for (auto next = Clock::now(); running_; next += period) {
                std::this_thread::sleep_until(next);
                play(out.data(), kFramesPerCallback);
            }
        });
        return WaveResult::Ok;
    }
    void closeOutput() override
    {
        running_ = false;
        if (card_.joinable())
            card_.join();
    }

private:
    std::atomic<bool> running_ { false };
    std::thread card_;
};

void BM_MidiNoteOnToOutputBuffer30ms(benchmark::State& state)
{
    Song song;
    // A click of 64 frames, so that each note is over before the next.
    song.instrument(0).sample().setFrames(std::vector<float>(64, 0.5f), 1);
    PacedDevice device;
    Keyboard keyboard;
    MidiInput input(keyboard, song.player());
    input.refresh();
    Transport transport(device, song);
    transport.open(kLatencyMs);
    transport.setLiveMode(true);
    if (transport.start() == 0) {
        state.SkipWithError("the stream did not start");
        return;
    }
    std::mt19937 random(7);
    std::uniform_int_distribution<int> offset(0, 2 * kLatencyMs);
    double longest = 0;
    for (auto _ : state) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2 * kLatencyMs + offset(random)));
        device.soundWritten.store(0, std::memory_order_relaxed);
        const uint8_t noteOn[3] = { 0x90, 36, 127 };
        const auto played = Clock::now();
        keyboard.receiver(noteOn, 3);
        Clock::rep written = 0;
        while ((written = device.soundWritten.load(std::memory_order_acquire)) == 0)
            std::this_thread::yield();
        const std::chrono::duration<double> latency = Clock::duration(written) - played.time_since_epoch();
        longest = std::max(longest, latency.count());
        state.SetIterationTime(latency.count());
    }
    state.counters["longest_ms"] = longest * 1000.0;
    state.counters["buffers"] = longest * 1000.0 / kLatencyMs;
    transport.close();
}

} // namespace

BENCHMARK(BM_MidiNoteOnToOutputBuffer30ms)->UseManualTime()->Iterations(100)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
