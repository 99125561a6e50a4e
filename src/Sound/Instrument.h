#pragma once

#include "Sound/Sample.h"

#include <atomic>
#include <string>
#include <string_view>

namespace pulsara {

// One of the song's instrument slots: a sample, the volume every note of it is scaled by, and a
// name of at most kMaxNameLength units. The name is the GUI thread's; the volume is an atomic
// word the render reads; the sample states its own threads.
class Instrument {
public:
    static constexpr float kDefaultVolume = 0.7f;
    static constexpr std::size_t kMaxNameLength = 31;

    Sample& sample() { return sample_; }
    const Sample& sample() const { return sample_; }

    float volume() const { return volume_.load(std::memory_order_relaxed); }
    void setVolume(float volume) { volume_.store(volume, std::memory_order_relaxed); }

    const std::u16string& name() const { return name_; }
    // Names longer than kMaxNameLength are cut.
    void setName(std::u16string_view name) { name_ = name.substr(0, kMaxNameLength); }

    // Back to an empty slot: default volume, no sample, no name.
    void reset()
    {
        setVolume(kDefaultVolume);
        sample_.unload();
        name_.clear();
    }

private:
    Sample sample_;
    std::atomic<float> volume_ { kDefaultVolume };
    std::u16string name_;
};

} // namespace pulsara
