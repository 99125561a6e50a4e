#pragma once

#include "Sound/SoundSource.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace pulsara {

// Renders a sound source from its first frame to its end into a 16-bit PCM WAV file, as fast as
// the machine allows: clipped to full scale, with the last 30 ms faded out. The source renders on
// as many threads as the machine has cores (SoundSource::setRenderThreads), which changes no
// sample of the file.
class WavExporter {
public:
    static constexpr uint32_t kHeaderBytes = 46;
    static constexpr uint32_t kBlockMs = 200;
    static constexpr uint32_t kFadeMs = 30;

    // Told after every block: frames written so far and the total. Returning false cancels the
    // export.
    using Progress = std::function<bool(uint64_t done, uint64_t total)>;

    WavExporter();

    // Returns 1 when the whole file was written. A file that cannot be created is reported as
    // "can't create file"; a write that fails (a full disk) as "can't write file" with the path.
    // A failed or cancelled export removes what it had written and returns 0.
    int exportTo(SoundSource&, std::u16string_view path, const Progress& = {});

    // The threads the source may render on: the machine's cores unless set.
    void setThreads(uint32_t threads) { threads_ = threads; }
    uint32_t threads() const { return threads_; }

    // Frames in a block at `sampleRate`: 200 ms rounded down to a multiple of 32.
    static uint32_t blockFrames(uint32_t sampleRate);

private:
    uint32_t threads_;
};

} // namespace pulsara
