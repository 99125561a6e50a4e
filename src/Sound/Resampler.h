#pragma once

#include <cstdint>

namespace pulsara {

// The mix kernels: they add float frames read from a sample into an output buffer, scaled by a
// volume, either frame for frame or at a rate with the nearest or the linear method. The
// source and the output are interleaved with the same channel count.
//
// Device callback thread (and the WAV reader's conversion): no allocation, locks, I/O or
// logging, except the fatal report for more than 2 channels.

// The output buffer handed to a kernel: `frames` frames of `channels` channels.
struct MixTarget {
    float* out = nullptr;
    uint32_t frames = 0;
    uint32_t channels = 1;
};

// The frames a kernel may read, the silent spare frame after the data included. A kernel never
// reads past them; the frames whose source would lie beyond stay unmixed.
struct MixSource {
    const float* data = nullptr;
    uint32_t frames = 0;
};

// out[i] += source[i] * volume for `count` floats.
void mixCopy(float* out, const float* source, uint32_t count, float volume);

// The nearest method: output frame k takes source frame (int)position + (int)((float)k * rate),
// so the fraction of the entry position is dropped for the whole call. Returns the new position,
// position + (float)frames * rate. More than 2 channels is fatal.
double mixNearest(const MixTarget&, const MixSource&, double position, float rate, float volume);

// The linear method: interpolates between the two source frames around the running position
// p = position + k * rate. Returns the new position, one rate step beyond the last frame mixed.
// Fewer than 2 frames fall back to the nearest method. More than 2 channels is fatal.
double mixLinear(const MixTarget&, const MixSource&, double position, float rate, float volume);

// The instruction sets the linear method can run on. All of them give the same output to the
// bit; mixLinear() takes the best one the processor has.
enum class MixLanes { Plain, Sse2, Avx, Avx512 };
MixLanes bestMixLanes();
bool isAvailable(MixLanes);
// The linear method on the given instruction set (tests and benchmarks); one this processor
// lacks is replaced by the best one.
double mixLinearOn(MixLanes, const MixTarget&, const MixSource&, double position, float rate, float volume);

} // namespace pulsara
