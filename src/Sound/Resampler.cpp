#include "Sound/Resampler.h"

#include "base/ErrorReporter.h"

#include "Sound/MixLanes.h"

#include <cmath>

namespace pulsara {

namespace {

constexpr const char* kSource = "Sound/base";
constexpr int kLinearChannelsLine = 99;
constexpr int kNearestChannelsLine = 135;

// The fast loops work in chunks of this many output frames: the first pass computes source
// indices (and fractions) into stack arrays, the second gathers and accumulates. A constant trip
// count lets the compiler vectorise the first pass at -O2, and the nearest method's second;
// the linear method's second pass is written with SSE2 or AVX (MixLanes.h).
constexpr int32_t kChunkFrames = 64;

// Positions at or beyond this cannot be taken as an int32 frame index.
constexpr double kIndexLimit = 2147483647.0;

// Output frames [first, first + count) of the nearest method; `source` points at frame (int)position.
template<uint32_t Channels>
[[gnu::always_inline]] inline void nearestSpan(float* __restrict out, const float* __restrict source, int32_t first,
    int32_t count, float rate, float volume)
{
    int32_t offsets[kChunkFrames];
    for (int32_t j = 0; j < count; ++j)
        offsets[j] = static_cast<int32_t>(static_cast<float>(first + j) * rate);
    float* target = out + static_cast<std::ptrdiff_t>(first) * Channels;
#if defined(PULSARA_X86_LANES)
    if constexpr (Channels == 2) {
        lanes::mixNearestStereoSse2(target, source, offsets, count, volume);
        return;
    }
#endif
    for (int32_t j = 0; j < count; ++j) {
        const float* frame = source + static_cast<std::ptrdiff_t>(offsets[j]) * Channels;
        for (uint32_t c = 0; c < Channels; ++c)
            target[j * Channels + c] += frame[c] * volume;
    }
}

// The same frame for frame, skipping every frame whose source lies outside the readable frames.
template<uint32_t Channels>
void nearestGuarded(float* out, const MixSource& from, int32_t frames, float rate, float volume)
{
    for (int32_t k = 0; k < frames; ++k) {
        float offset = static_cast<float>(k) * rate;
        if (!(offset > -1.0f && static_cast<double>(offset) < from.frames))
            continue;
        const float* frame = from.data + static_cast<std::size_t>(static_cast<uint32_t>(offset)) * Channels;
        for (uint32_t c = 0; c < Channels; ++c)
            out[static_cast<std::size_t>(k) * Channels + c] += frame[c] * volume;
    }
}

template<uint32_t Channels>
void nearestFrames(float* out, const MixSource& from, int32_t frames, float rate, float volume)
{
    if (frames <= 0)
        return;
    // Offsets grow with k for a non-negative rate, so the last one bounds them all.
    double lastOffset = static_cast<float>(frames - 1) * rate;
    if (!(rate >= 0.0f && lastOffset < from.frames && lastOffset < kIndexLimit)) {
        nearestGuarded<Channels>(out, from, frames, rate, volume);
        return;
    }
    int32_t k = 0;
    for (; k + kChunkFrames <= frames; k += kChunkFrames)
        nearestSpan<Channels>(out, from.data, k, kChunkFrames, rate, volume);
    if (k < frames)
        nearestSpan<Channels>(out, from.data, k, frames - k, rate, volume);
}

// Output frames [first, first + count) of the linear method where the running position is
// exactly p0 + k * rate (see runningSumIsExact), so that every frame's position can be computed
// on its own: first all indices and fractions, then the interpolation.
template<uint32_t Channels, MixLanes With>
[[gnu::always_inline]] inline void linearSpan(float* __restrict out, const float* __restrict source, int32_t first,
    int32_t count, double p0, double rate, float volume)
{
    int32_t indices[kChunkFrames];
    double fracs[kChunkFrames];
#if defined(PULSARA_X86_LANES)
    if constexpr (With == MixLanes::Avx512) {
        lanes::positionsAvx512(first, count, p0, rate, indices, fracs);
    } else if constexpr (With == MixLanes::Avx) {
        lanes::positionsAvx(first, count, p0, rate, indices, fracs);
    } else
#endif
    {
        for (int32_t j = 0; j < count; ++j) {
            double k = static_cast<double>(first) + j;
            int32_t i = static_cast<int32_t>(p0 + k * rate);
            indices[j] = i;
            fracs[j] = (k - (i - p0) / rate) * rate;
        }
    }
    float* target = out + static_cast<std::ptrdiff_t>(first) * Channels;
#if defined(PULSARA_X86_LANES)
    if constexpr (With == MixLanes::Avx512)
        lanes::mixAvx512<Channels>(target, source, indices, fracs, count, volume);
    else if constexpr (With == MixLanes::Avx)
        lanes::mixAvx<Channels>(target, source, indices, fracs, count, volume);
    else if constexpr (With == MixLanes::Sse2)
        lanes::mixSse2<Channels>(target, source, indices, fracs, count, volume);
    else
#endif
        lanes::mixPlain<Channels>(target, source, indices, fracs, 0, count, volume);
}

// True when every partial sum p0 + rate + ... + rate of `frames + 1` steps is exact in double,
// so equals p0 + k * rate: p0 is a non-negative multiple of the float rate's last mantissa bit
// and the largest sum needs fewer than 53 significant bits of that unit.
bool runningSumIsExact(double p0, float rate, int32_t frames)
{
    if (!(rate > 0.0f) || !std::isfinite(rate) || !(p0 >= 0.0) || !std::isfinite(p0))
        return false;
    int exponent = 0;
    std::frexp(rate, &exponent);
    int unitExponent = exponent - 24; // rate = integer * 2^unitExponent
    double p0Units = std::ldexp(p0, -unitExponent);
    if (p0Units != std::floor(p0Units))
        return false;
    double lastUnits = std::ldexp(p0 + (static_cast<double>(frames) + 1.0) * rate, -unitExponent);
    return lastUnits < 0x1p52;
}

template<uint32_t Channels>
double linearGuarded(float* out, const MixSource& source, int32_t frames, double p0, double rate, float volume)
{
    double p = p0;
    for (int32_t k = 0; k < frames; ++k) {
        if (p > -1.0 && p < kIndexLimit) {
            int32_t i = static_cast<int32_t>(p);
            if (static_cast<uint32_t>(i) + 1 < source.frames) {
                double frac = (k - (i - p0) / rate) * rate;
                lanes::interpolate<Channels>(out + static_cast<std::size_t>(k) * Channels, source.data, i, frac, volume);
            }
        }
        p += rate;
    }
    return p + rate;
}

template<uint32_t Channels, MixLanes With>
[[gnu::always_inline]] inline double linearFrames(float* out, const MixSource& source, int32_t frames, double p0,
    float rate, float volume)
{
    if (runningSumIsExact(p0, rate, frames)) {
        double lastPosition = p0 + static_cast<double>(frames - 1) * rate;
        if (lastPosition < kIndexLimit && static_cast<uint32_t>(lastPosition) + 1 < source.frames) {
            int32_t k = 0;
            for (; k + kChunkFrames <= frames; k += kChunkFrames)
                linearSpan<Channels, With>(out, source.data, k, kChunkFrames, p0, rate, volume);
            if (k < frames)
                linearSpan<Channels, With>(out, source.data, k, frames - k, p0, rate, volume);
            return p0 + static_cast<double>(frames) * rate + rate;
        }
    }
    return linearGuarded<Channels>(out, source, frames, p0, rate, volume);
}

using LinearKernel = double (*)(float*, const MixSource&, int32_t, double, float, float);

template<uint32_t Channels, MixLanes With>
double linearOn(float* out, const MixSource& source, int32_t frames, double p0, float rate, float volume)
{
    return linearFrames<Channels, With>(out, source, frames, p0, rate, volume);
}

#if defined(PULSARA_X86_LANES)
template<uint32_t Channels>
[[gnu::target("avx")]] double linearAvx(float* out, const MixSource& source, int32_t frames, double p0, float rate,
    float volume)
{
    return linearFrames<Channels, MixLanes::Avx>(out, source, frames, p0, rate, volume);
}

template<uint32_t Channels>
[[gnu::target("avx512f")]] double linearAvx512(float* out, const MixSource& source, int32_t frames, double p0,
    float rate, float volume)
{
    return linearFrames<Channels, MixLanes::Avx512>(out, source, frames, p0, rate, volume);
}

// The build targets plain x86-64; AVX or AVX-512 is taken when the processor (and the system,
// which must save the wider registers) has it, decided once at start.
MixLanes detectBestLanes()
{
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f"))
        return MixLanes::Avx512;
    return __builtin_cpu_supports("avx") ? MixLanes::Avx : MixLanes::Sse2;
}
#else
MixLanes detectBestLanes()
{
    return MixLanes::Plain;
}
#endif

const MixLanes kBestLanes = detectBestLanes();

LinearKernel linearKernel(MixLanes lanes, uint32_t channels)
{
    switch (lanes) {
#if defined(PULSARA_X86_LANES)
    case MixLanes::Avx512:
        return channels == 1 ? linearAvx512<1> : linearAvx512<2>;
    case MixLanes::Avx:
        return channels == 1 ? linearAvx<1> : linearAvx<2>;
    case MixLanes::Sse2:
        return channels == 1 ? linearOn<1, MixLanes::Sse2> : linearOn<2, MixLanes::Sse2>;
#endif
    default:
        return channels == 1 ? linearOn<1, MixLanes::Plain> : linearOn<2, MixLanes::Plain>;
    }
}

int32_t frameCount(const MixTarget& target)
{
    return static_cast<int32_t>(target.frames > kIndexLimit ? kIndexLimit : target.frames);
}

} // namespace

void mixCopy(float* __restrict out, const float* __restrict source, uint32_t count, float volume)
{
    // Whole runs of a constant length vectorise at -O2; the rest goes one by one.
    constexpr std::size_t kRun = 16;
    std::size_t runs = count / kRun;
    for (std::size_t r = 0; r < runs; ++r) {
        float* target = out + r * kRun;
        const float* from = source + r * kRun;
        for (std::size_t j = 0; j < kRun; ++j)
            target[j] += from[j] * volume;
    }
    for (std::size_t i = runs * kRun; i < count; ++i)
        out[i] += source[i] * volume;
}

double mixNearest(const MixTarget& target, const MixSource& source, double position, float rate, float volume)
{
    double next = position + static_cast<float>(target.frames) * rate;
    if (target.channels > 2) {
        reportError(&errorContext(), kFatal, kSource, kNearestChannelsLine, u"NoInterpolation: more than 2 channels");
        return next;
    }
    if (!(position > -1.0 && position < source.frames))
        return next;
    auto base = static_cast<uint32_t>(position < 0.0 ? 0.0 : position);
    MixSource from { source.data + static_cast<std::size_t>(base) * target.channels, source.frames - base };
    if (target.channels == 1)
        nearestFrames<1>(target.out, from, frameCount(target), rate, volume);
    else if (target.channels == 2)
        nearestFrames<2>(target.out, from, frameCount(target), rate, volume);
    return next;
}

MixLanes bestMixLanes()
{
    return kBestLanes;
}

bool isAvailable(MixLanes lanes)
{
    // Each instruction set holds the ones before it.
    return static_cast<int>(lanes) <= static_cast<int>(kBestLanes);
}

double mixLinear(const MixTarget& target, const MixSource& source, double position, float rate, float volume)
{
    return mixLinearOn(kBestLanes, target, source, position, rate, volume);
}

double mixLinearOn(MixLanes lanes, const MixTarget& target, const MixSource& source, double position, float rate,
    float volume)
{
    if (!isAvailable(lanes))
        lanes = kBestLanes;
    if (target.frames < 2)
        return mixNearest(target, source, position, rate, volume);
    if (target.channels > 2) {
        reportError(&errorContext(), kFatal, kSource, kLinearChannelsLine, u"LinearInterpolation: more than 2 channels");
        return position + rate;
    }
    if (target.channels == 1 || target.channels == 2)
        return linearKernel(lanes, target.channels)(target.out, source, frameCount(target), position, rate, volume);
    return linearGuarded<0>(target.out, source, frameCount(target), position, rate, volume);
}

} // namespace pulsara
