#pragma once

// The second pass of the mix kernels over a run of frames whose source indices (and fractions)
// are already known. The linear method's interpolation comes in four builds of the same
// arithmetic: plain C++, SSE2, AVX and AVX-512. Every value goes through the same float and
// double operations in the same order in all of them (s1 - s0 in float, s0 + frac x delta in
// double, narrowed, times the volume, added in float), so all give the same output to the bit;
// the build never fuses a multiply and an add (-ffp-contract=off), which would round once
// instead of twice. The nearest method's stereo gather has an SSE2 build too. Private to
// Resampler.cpp.

#include <cstddef>
#include <cstdint>

#if defined(__x86_64__)
// GCC 12 takes the deliberately undefined start values inside its AVX-512 intrinsics for
// uninitialised variables once they are inlined here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <immintrin.h>
#define PULSARA_X86_LANES 1
#endif

namespace pulsara::lanes {

// target[c] += (float)(s0 + frac x (s1 - s0)) x volume for each channel c of one frame.
template<uint32_t Channels>
[[gnu::always_inline]] inline void interpolate(float* __restrict target, const float* __restrict source, int32_t index,
    double frac, float volume)
{
    const float* frame = source + static_cast<std::ptrdiff_t>(index) * Channels;
    for (uint32_t c = 0; c < Channels; ++c) {
        float s0 = frame[c];
        float delta = frame[Channels + c] - s0;
        float value = static_cast<float>(static_cast<double>(s0) + frac * static_cast<double>(delta));
        target[c] += value * volume;
    }
}

template<uint32_t Channels>
[[gnu::always_inline]] inline void mixPlain(float* __restrict target, const float* __restrict source,
    const int32_t* indices, const double* fracs, int32_t from, int32_t count, float volume)
{
    for (int32_t j = from; j < count; ++j)
        interpolate<Channels>(target + j * Channels, source, indices[j], fracs[j], volume);
}

#if defined(PULSARA_X86_LANES)

// Two adjacent floats into lanes 0 and 1.
[[gnu::always_inline]] inline __m128 loadTwo(const float* at)
{
    return _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)));
}

// `samples` holds s0 of two values in lanes 0 and 1 and their s1 in lanes 2 and 3; the two
// interpolated floats come back in lanes 0 and 1.
[[gnu::always_inline]] inline __m128 interpolateTwo(__m128 samples, __m128d fracs)
{
    __m128 delta = _mm_sub_ps(_mm_movehl_ps(samples, samples), samples);
    __m128d value = _mm_add_pd(_mm_cvtps_pd(samples), _mm_mul_pd(fracs, _mm_cvtps_pd(delta)));
    return _mm_cvtpd_ps(value);
}

// The compiler does not vectorise the gather of source frames without AVX2, so the loops are
// written with SSE2 directly (every x86-64 processor has it).
template<uint32_t Channels>
[[gnu::always_inline]] inline void mixSse2(float* __restrict target, const float* __restrict source,
    const int32_t* indices, const double* fracs, int32_t count, float volume)
{
    const __m128 volumes = _mm_set1_ps(volume);
    int32_t j = 0;
    if constexpr (Channels == 1) {
        for (; j + 4 <= count; j += 4) {
            __m128 first = _mm_unpacklo_ps(loadTwo(source + indices[j]), loadTwo(source + indices[j + 1]));
            __m128 second = _mm_unpacklo_ps(loadTwo(source + indices[j + 2]), loadTwo(source + indices[j + 3]));
            __m128 values = _mm_movelh_ps(interpolateTwo(first, _mm_loadu_pd(fracs + j)),
                interpolateTwo(second, _mm_loadu_pd(fracs + j + 2)));
            _mm_storeu_ps(target + j, _mm_add_ps(_mm_loadu_ps(target + j), _mm_mul_ps(values, volumes)));
        }
    } else if constexpr (Channels == 2) {
        for (; j + 2 <= count; j += 2) {
            // Frames i and i + 1 of a stereo source are 4 adjacent floats: s0 left and right, then s1.
            __m128 first = _mm_loadu_ps(source + static_cast<std::ptrdiff_t>(indices[j]) * 2);
            __m128 second = _mm_loadu_ps(source + static_cast<std::ptrdiff_t>(indices[j + 1]) * 2);
            __m128 values = _mm_movelh_ps(interpolateTwo(first, _mm_set1_pd(fracs[j])),
                interpolateTwo(second, _mm_set1_pd(fracs[j + 1])));
            _mm_storeu_ps(target + 2 * j, _mm_add_ps(_mm_loadu_ps(target + 2 * j), _mm_mul_ps(values, volumes)));
        }
    }
    mixPlain<Channels>(target, source, indices, fracs, j, count, volume);
}

// The nearest method's second pass for stereo: output frame j += source frame offsets[j] x
// volume. Each source frame is two adjacent floats, so two frames fill one register.
[[gnu::always_inline]] inline void mixNearestStereoSse2(float* __restrict target, const float* __restrict source,
    const int32_t* offsets, int32_t count, float volume)
{
    const __m128 volumes = _mm_set1_ps(volume);
    int32_t j = 0;
    for (; j + 2 <= count; j += 2) {
        __m128 frames = _mm_loadh_pi(loadTwo(source + static_cast<std::ptrdiff_t>(offsets[j]) * 2),
            reinterpret_cast<const __m64*>(source + static_cast<std::ptrdiff_t>(offsets[j + 1]) * 2));
        _mm_storeu_ps(target + 2 * j, _mm_add_ps(_mm_loadu_ps(target + 2 * j), _mm_mul_ps(frames, volumes)));
    }
    for (; j < count; ++j) {
        const float* frame = source + static_cast<std::ptrdiff_t>(offsets[j]) * 2;
        target[2 * j] += frame[0] * volume;
        target[2 * j + 1] += frame[1] * volume;
    }
}

// Four values at once: s0 and s1 of each in the lanes of `s0` and `s1`.
[[gnu::always_inline, gnu::target("avx")]] inline __m128 interpolateFour(__m128 s0, __m128 s1, __m256d fracs)
{
    __m128 delta = _mm_sub_ps(s1, s0);
    __m256d value = _mm256_add_pd(_mm256_cvtps_pd(s0), _mm256_mul_pd(fracs, _mm256_cvtps_pd(delta)));
    return _mm256_cvtpd_ps(value);
}

// The source index and fraction of output frames [first, first + count), four at a time, as
// linearSpan() computes them one by one: i = (int)(p0 + k x rate), frac = (k - (i - p0) / rate) x rate.
[[gnu::target("avx")]] inline void positionsAvx(int32_t first, int32_t count, double p0, double rate,
    int32_t* indices, double* fracs)
{
    const __m256d starts = _mm256_set1_pd(p0);
    const __m256d rates = _mm256_set1_pd(rate);
    int32_t j = 0;
    for (; j + 4 <= count; j += 4) {
        __m256d k = _mm256_add_pd(_mm256_set1_pd(static_cast<double>(first) + j), _mm256_set_pd(3, 2, 1, 0));
        __m128i i = _mm256_cvttpd_epi32(_mm256_add_pd(starts, _mm256_mul_pd(k, rates)));
        __m256d offset = _mm256_div_pd(_mm256_sub_pd(_mm256_cvtepi32_pd(i), starts), rates);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(indices + j), i);
        _mm256_storeu_pd(fracs + j, _mm256_mul_pd(_mm256_sub_pd(k, offset), rates));
    }
    for (; j < count; ++j) {
        double k = static_cast<double>(first) + j;
        int32_t i = static_cast<int32_t>(p0 + k * rate);
        indices[j] = i;
        fracs[j] = (k - (i - p0) / rate) * rate;
    }
}

// With AVX the double arithmetic of four values fits one register. Called once per chunk.
template<uint32_t Channels>
[[gnu::target("avx")]] inline void mixAvx(float* __restrict target, const float* __restrict source,
    const int32_t* indices, const double* fracs, int32_t count, float volume)
{
    const __m128 volumes = _mm_set1_ps(volume);
    int32_t j = 0;
    if constexpr (Channels == 1) {
        for (; j + 4 <= count; j += 4) {
            __m128 first = _mm_unpacklo_ps(loadTwo(source + indices[j]), loadTwo(source + indices[j + 1]));
            __m128 second = _mm_unpacklo_ps(loadTwo(source + indices[j + 2]), loadTwo(source + indices[j + 3]));
            __m128 values = interpolateFour(_mm_movelh_ps(first, second), _mm_movehl_ps(second, first),
                _mm256_loadu_pd(fracs + j));
            _mm_storeu_ps(target + j, _mm_add_ps(_mm_loadu_ps(target + j), _mm_mul_ps(values, volumes)));
        }
    } else if constexpr (Channels == 2) {
        for (; j + 2 <= count; j += 2) {
            __m128 first = _mm_loadu_ps(source + static_cast<std::ptrdiff_t>(indices[j]) * 2);
            __m128 second = _mm_loadu_ps(source + static_cast<std::ptrdiff_t>(indices[j + 1]) * 2);
            __m128d pair = _mm_loadu_pd(fracs + j);
            __m256d perChannel = _mm256_insertf128_pd(
                _mm256_castpd128_pd256(_mm_unpacklo_pd(pair, pair)), _mm_unpackhi_pd(pair, pair), 1);
            __m128 values = interpolateFour(_mm_movelh_ps(first, second), _mm_movehl_ps(second, first), perChannel);
            _mm_storeu_ps(target + 2 * j, _mm_add_ps(_mm_loadu_ps(target + 2 * j), _mm_mul_ps(values, volumes)));
        }
    }
    mixPlain<Channels>(target, source, indices, fracs, j, count, volume);
}

// As positionsAvx, eight at a time: AVX-512 divides eight doubles in about the time AVX takes
// for four, and the division is what the first pass waits for.
[[gnu::target("avx512f")]] inline void positionsAvx512(int32_t first, int32_t count, double p0, double rate,
    int32_t* indices, double* fracs)
{
    const __m512d starts = _mm512_set1_pd(p0);
    const __m512d rates = _mm512_set1_pd(rate);
    const __m512d lanes = _mm512_set_pd(7, 6, 5, 4, 3, 2, 1, 0);
    int32_t j = 0;
    for (; j + 8 <= count; j += 8) {
        __m512d k = _mm512_add_pd(_mm512_set1_pd(static_cast<double>(first) + j), lanes);
        __m256i i = _mm512_cvttpd_epi32(_mm512_add_pd(starts, _mm512_mul_pd(k, rates)));
        __m512d offset = _mm512_div_pd(_mm512_sub_pd(_mm512_cvtepi32_pd(i), starts), rates);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(indices + j), i);
        _mm512_storeu_pd(fracs + j, _mm512_mul_pd(_mm512_sub_pd(k, offset), rates));
    }
    positionsAvx(first + j, count - j, p0, rate, indices + j, fracs + j);
}

// Eight values at once: s0 and s1 of each in the lanes of `s0` and `s1`, their fractions in `fracs`.
[[gnu::always_inline, gnu::target("avx512f")]] inline __m256 interpolateEight(__m256 s0, __m256 s1, __m512d fracs)
{
    __m256 delta = _mm256_sub_ps(s1, s0);
    __m512d value = _mm512_add_pd(_mm512_cvtps_pd(s0), _mm512_mul_pd(fracs, _mm512_cvtps_pd(delta)));
    return _mm512_cvtpd_ps(value);
}

template<uint32_t Channels>
[[gnu::target("avx512f")]] inline void mixAvx512(float* __restrict target, const float* __restrict source,
    const int32_t* indices, const double* fracs, int32_t count, float volume)
{
    const __m256 volumes = _mm256_set1_ps(volume);
    int32_t j = 0;
    if constexpr (Channels == 1) {
        // The processor's gather is slower than eight loads of the s0 and s1 pairs.
        auto pairs = [&](int32_t n) {
            return _mm_unpacklo_ps(loadTwo(source + indices[j + n]), loadTwo(source + indices[j + n + 1]));
        };
        for (; j + 8 <= count; j += 8) {
            __m128 a = pairs(0), b = pairs(2), c = pairs(4), d = pairs(6);
            __m256 s0 = _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_movelh_ps(a, b)), _mm_movelh_ps(c, d), 1);
            __m256 s1 = _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_movehl_ps(b, a)), _mm_movehl_ps(d, c), 1);
            __m256 values = interpolateEight(s0, s1, _mm512_loadu_pd(fracs + j));
            _mm256_storeu_ps(target + j, _mm256_add_ps(_mm256_loadu_ps(target + j), _mm256_mul_ps(values, volumes)));
        }
    } else if constexpr (Channels == 2) {
        const __m512i twice = _mm512_set_epi64(3, 3, 2, 2, 1, 1, 0, 0);
        for (; j + 4 <= count; j += 4) {
            // Each frame's four floats (s0 left and right, then s1): frames 0 and 2 side by side,
            // and 1 and 3, so that the 64-bit halves interleave into the four s0 and the four s1.
            auto frame = [&](int32_t n) { return _mm_loadu_ps(source + static_cast<std::ptrdiff_t>(indices[j + n]) * 2); };
            __m256d even = _mm256_castps_pd(_mm256_insertf128_ps(_mm256_castps128_ps256(frame(0)), frame(2), 1));
            __m256d odd = _mm256_castps_pd(_mm256_insertf128_ps(_mm256_castps128_ps256(frame(1)), frame(3), 1));
            __m256 s0 = _mm256_castpd_ps(_mm256_unpacklo_pd(even, odd));
            __m256 s1 = _mm256_castpd_ps(_mm256_unpackhi_pd(even, odd));
            __m512d perChannel = _mm512_permutexvar_pd(twice, _mm512_zextpd256_pd512(_mm256_loadu_pd(fracs + j)));
            __m256 values = interpolateEight(s0, s1, perChannel);
            _mm256_storeu_ps(target + 2 * j, _mm256_add_ps(_mm256_loadu_ps(target + 2 * j), _mm256_mul_ps(values, volumes)));
        }
    }
    mixPlain<Channels>(target, source, indices, fracs, j, count, volume);
}

#endif

} // namespace pulsara::lanes

#if defined(__x86_64__)
#pragma GCC diagnostic pop
#endif
