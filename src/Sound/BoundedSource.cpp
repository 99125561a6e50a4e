#include "Sound/BoundedSource.h"

#include <algorithm>

namespace pulsara {

void BoundedSource::setEnd(uint64_t frames)
{
    end_.store(frames, std::memory_order_relaxed);
    rendered_.store(0, std::memory_order_release);
}

void BoundedSource::render(float* out, uint32_t frames, uint32_t channels)
{
    uint64_t rendered = rendered_.load(std::memory_order_relaxed);
    uint64_t left = end() > rendered ? end() - rendered : 0;
    auto sounding = static_cast<uint32_t>(std::min<uint64_t>(left, frames));
    if (sounding > 0)
        inner_.render(out, sounding, channels);
    std::fill(out + static_cast<size_t>(sounding) * channels, out + static_cast<size_t>(frames) * channels, 0.0f);
    rendered_.store(rendered + sounding, std::memory_order_release);
}

} // namespace pulsara
