#pragma once

#include <atomic>
#include <cstdint>

namespace pulsara {

// One cell of a grid: a note's volume (below 0: no note), its playback-rate factor (1.0 = the
// sample's own pitch) and its length parameter (note length in steps as 8.8 fixed point,
// 0 = until the sample ends or the next note on the row starts).
struct Step {
    float volume = -1.0f;
    float rate = 1.0f;
    int32_t parameter = 0;

    bool isNote() const { return volume >= 0.0f; }
    bool operator==(const Step&) const = default;
};

constexpr Step kEmptyStep {};
constexpr Step kDefaultNote { 1.0f, 1.0f, 0 };

// A cell that the editors write on the GUI thread while the audio thread reads it. Each field is
// its own atomic word, so a reader may see a half-written cell; that only ever mixes two notes.
class AtomicStep {
public:
    Step load() const
    {
        return { volume_.load(std::memory_order_relaxed), rate_.load(std::memory_order_relaxed),
            parameter_.load(std::memory_order_relaxed) };
    }
    void store(Step step)
    {
        volume_.store(step.volume, std::memory_order_relaxed);
        rate_.store(step.rate, std::memory_order_relaxed);
        parameter_.store(step.parameter, std::memory_order_relaxed);
    }
    bool isNote() const { return volume_.load(std::memory_order_relaxed) >= 0.0f; }

private:
    std::atomic<float> volume_ { kEmptyStep.volume };
    std::atomic<float> rate_ { kEmptyStep.rate };
    std::atomic<int32_t> parameter_ { kEmptyStep.parameter };
};

} // namespace pulsara
