// How fast samples mix into a block: voice-frames per second for the direct copy (rate 1.0), the
// nearest and the linear method, mono and stereo, one voice and 40 voices at once, each voice a
// sample of `ms` milliseconds (40 one-second stereo samples are 14 MB: more than the caches hold).
// The counter "realtime" is how many times faster than real time 44100 Hz output is made with
// that many voices sounding all the time.
#include "Sound/Sample.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <vector>

using namespace pulsara;

namespace {

constexpr uint32_t kOutputRate = 44100;
constexpr uint32_t kBlockFrames = 512;
// A semitone up: the rate of a note one key above the sample's own pitch.
constexpr float kSemitoneUp = 1.05946309f;

enum class Method { Direct, Nearest, Linear };

std::vector<std::unique_ptr<Sample>> makeVoices(int count, uint32_t channels, Method method, uint32_t sampleFrames)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> value(-1.0f, 1.0f);
    std::vector<std::unique_ptr<Sample>> voices;
    for (int v = 0; v < count; ++v) {
        auto sample = std::make_unique<Sample>();
        std::vector<float> frames(sampleFrames * channels);
        for (float& f : frames)
            f = value(random);
        sample->setFrames(std::move(frames), channels);
        sample->setRate(method == Method::Direct ? 1.0f : kSemitoneUp);
        sample->setInterpolation(method == Method::Linear ? Interpolation::Linear : Interpolation::None);
        sample->setVolume(0.7f);
        // Voices start at different points so that they do not all restart in the same block.
        sample->setPosition(static_cast<double>(v * sampleFrames / count));
        sample->setPlaying(true);
        voices.push_back(std::move(sample));
    }
    return voices;
}

void BM_Mix(benchmark::State& state)
{
    auto method = static_cast<Method>(state.range(0));
    auto channels = static_cast<uint32_t>(state.range(1));
    auto voiceCount = static_cast<int>(state.range(2));
    auto sampleFrames = static_cast<uint32_t>(state.range(3) * kOutputRate / 1000);
    std::vector<std::unique_ptr<Sample>> voices = makeVoices(voiceCount, channels, method, sampleFrames);
    std::vector<float> block(kBlockFrames * channels);

    for (auto _ : state) {
        std::fill(block.begin(), block.end(), 0.0f);
        for (auto& voice : voices) {
            if (!voice->isPlaying()) {
                voice->setPosition(0.0);
                voice->setPlaying(true);
            }
            voice->mix(block.data(), kBlockFrames, channels);
        }
        benchmark::DoNotOptimize(block.data());
        benchmark::ClobberMemory();
    }
    int64_t voiceFrames = static_cast<int64_t>(state.iterations()) * kBlockFrames * voiceCount;
    state.SetItemsProcessed(voiceFrames);
    state.counters["realtime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * kBlockFrames / kOutputRate, benchmark::Counter::kIsRate);
}

void mixArguments(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({ "method", "channels", "voices", "ms" });
    for (int method : { 0, 1, 2 }) {
        for (int channels : { 1, 2 }) {
            benchmark->Args({ method, channels, 1, 1000 });
            benchmark->Args({ method, channels, 40, 250 });
            benchmark->Args({ method, channels, 40, 1000 });
        }
    }
}

} // namespace

BENCHMARK(BM_Mix)->Apply(mixArguments);

BENCHMARK_MAIN();
