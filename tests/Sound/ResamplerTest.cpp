#include "Sound/Resampler.h"

#include "support/ReportRecorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

using namespace pulsara;

namespace {

using Kernel = std::function<double(const MixTarget&, const MixSource&, double position, float rate, float volume)>;

// The methods written out frame by frame as designed, to hold the fast loops against.
double referenceNearest(std::vector<float>& out, uint32_t frames, uint32_t channels, const std::vector<float>& source,
    double position, float rate, float volume)
{
    for (uint32_t k = 0; k < frames; ++k) {
        int frame = static_cast<int>(position) + static_cast<int>(static_cast<float>(k) * rate);
        for (uint32_t c = 0; c < channels; ++c)
            out[k * channels + c] += source[frame * channels + c] * volume;
    }
    return position + static_cast<float>(frames) * rate;
}

double referenceLinear(std::vector<float>& out, uint32_t frames, uint32_t channels, const std::vector<float>& source,
    double position, float rate, float volume)
{
    if (frames < 2)
        return referenceNearest(out, frames, channels, source, position, rate, volume);
    double p = position;
    for (uint32_t k = 0; k < frames; ++k, p += rate) {
        int i = static_cast<int>(p);
        double frac = (k - (i - position) / rate) * rate;
        for (uint32_t c = 0; c < channels; ++c) {
            float s0 = source[i * channels + c], s1 = source[(i + 1) * channels + c];
            out[k * channels + c] += static_cast<float>(s0 + frac * (s1 - s0)) * volume;
        }
    }
    return p + rate;
}

} // namespace

// Voices of random length, rate (piano semitones, quarters, just above a half, anything),
// volume and start (whole frames or not, so that the serial loop runs too) play block by block
// as a sample plays them; every output float and every position must match the reference.
TEST(Resampler, FastLoopsMatchTheMethodsFrameByFrame)
{
    ASSERT_TRUE(isAvailable(bestMixLanes()));
#if defined(__x86_64__)
    EXPECT_NE(bestMixLanes(), MixLanes::Plain) << "every x86-64 processor has SSE2";
#endif
    std::vector<std::pair<Kernel, decltype(&referenceLinear)>> kernels { { mixNearest, referenceNearest } };
    for (MixLanes lanes : { MixLanes::Plain, MixLanes::Sse2, MixLanes::Avx, MixLanes::Avx512 }) {
        if (isAvailable(lanes))
            kernels.emplace_back(std::bind_front(mixLinearOn, lanes), referenceLinear);
    }
    std::mt19937 random(20261121);
    auto uniform = [&](auto low, auto high) {
        using Distribution = std::conditional_t<std::is_integral_v<decltype(low)>, std::uniform_int_distribution<decltype(low)>,
            std::uniform_real_distribution<decltype(low)>>;
        return Distribution(low, high)(random);
    };
    for (std::size_t kernel = 0; kernel < kernels.size(); ++kernel) {
        for (int voice = 0; voice < 600; ++voice) {
            uint32_t channels = 1 + voice % 2;
            int32_t length = uniform(2, 3000);
            // The random frames, the spare frame and a zero tail for the reference.
            std::vector<float> frames(static_cast<std::size_t>(length + 4) * channels, 0.0f);
            std::generate_n(frames.begin(), static_cast<std::size_t>(length) * channels, [&] { return uniform(-1.0f, 1.0f); });
            const float rates[] = { static_cast<float>(std::pow(2.0, uniform(-24, 24) / 12.0)), uniform(0.01f, 4.0f),
                uniform(1, 8) * 0.25f, 0.5f + uniform(0, 100) / 1024.0f };
            float rate = rates[uniform(0, 3)];
            float volume = uniform(0.0f, 1.5f);
            const double starts[] = { 0.0, static_cast<double>(uniform(0, length - 1)), uniform(0.0, length - 1.0) };
            double position = starts[uniform(0, 2)], expectedPosition = position;
            SCOPED_TRACE(::testing::Message() << "kernel " << kernel << ", voice " << voice << ", rate " << rate);
            for (int block = 0; block < 50 && position < length; ++block) {
                auto wanted = uniform(0u, 700u);
                double left = (length - position) / rate;
                uint32_t count = left >= wanted ? wanted : static_cast<uint32_t>(left);
                std::vector<float> out(static_cast<std::size_t>(count) * channels + 1);
                std::generate(out.begin(), out.end(), [&] { return uniform(-1.0f, 1.0f); });
                std::vector<float> expected = out;
                position = kernels[kernel].first(MixTarget { out.data(), count, channels },
                    MixSource { frames.data(), static_cast<uint32_t>(length + 1) }, position, rate, volume);
                expectedPosition
                    = kernels[kernel].second(expected, count, channels, frames, expectedPosition, rate, volume);
                ASSERT_EQ(position, expectedPosition) << "block " << block;
                ASSERT_EQ(out, expected) << "block " << block;
            }
        }
    }
}

TEST(Resampler, CopyAddsEveryFloatScaledByTheVolume)
{
    for (uint32_t count : { 0u, 1u, 15u, 16u, 17u, 100u }) {
        std::vector<float> source(count), out(count + 1, 0.25f);
        for (uint32_t i = 0; i < count; ++i)
            source[i] = static_cast<float>(i) - 7.5f;
        mixCopy(out.data(), source.data(), count, 0.5f);
        for (uint32_t i = 0; i < count; ++i)
            EXPECT_EQ(out[i], 0.25f + source[i] * 0.5f) << count << " floats, float " << i;
        EXPECT_EQ(out[count], 0.25f) << "written past " << count << " floats";
    }
}

TEST(Resampler, KernelsStepThroughTheSourceAsDesigned)
{
    std::vector<float> tens(40);
    for (std::size_t i = 0; i < tens.size(); ++i)
        tens[i] = static_cast<float>(i);
    // What, the kernel, the source with its spare frame, its channels, the position, rate and
    // volume, what was mixed and the next position.
    const std::tuple<const char*, Kernel, std::vector<float>, uint32_t, double, float, float, std::vector<float>, double> cases[] = {
        { "nearest drops the fraction of the entry position", mixNearest, tens, 1, 10.5, 2.0f, 1.0f, { 10, 12, 14, 16 },
            18.5 },
        { "nearest mixes both channels of frames 0, 1 and 3", mixNearest, { 1, -1, 2, -2, 3, -3, 4, -4, 0, 0 }, 2, 0.0,
            1.5f, 2.0f, { 2, -2, 4, -4, 8, -8 }, 4.5 },
        { "linear steps once more than it mixed", mixLinear, { 1, 3, 7, 15, 0 }, 1, 0.0, 0.5f, 1.0f, { 1, 2, 3, 5 }, 2.5 },
        { "linear interpolates each channel on its own", mixLinear, { 0, 8, 2, 4, 0, 0 }, 2, 0.0, 0.75f, 1.0f,
            { 0, 8, 1.5f, 5 }, 2.25 },
        { "linear falls back to nearest below two frames", mixLinear, { 0, 10, 20, 0 }, 1, 0.5, 1.5f, 1.0f, { 0 }, 2.0 },
        // The frames whose source would lie beyond the readable frames stay unmixed.
        { "nearest never reads past the data", mixNearest, { 1, 2, 3, 0 }, 1, 0.0, 1.5f, 1.0f,
            { 1, 2, 0, 0, 0, 0, 0, 0, 0, 0 }, 15.0 },
        { "linear never reads past the data", mixLinear, { 1, 2, 3, 0 }, 1, 0.0, 1.5f, 1.0f,
            { 1, 2.5f, 0, 0, 0, 0, 0, 0, 0, 0 }, 16.5 },
    };
    for (const auto& [what, kernel, frames, channels, position, rate, volume, mixed, next] : cases) {
        std::vector<float> out(mixed.size(), 0.0f);
        MixTarget target { out.data(), static_cast<uint32_t>(out.size()) / channels, channels };
        EXPECT_EQ(kernel(target, MixSource { frames.data(), static_cast<uint32_t>(frames.size()) / channels }, position, rate, volume), next)
            << what;
        EXPECT_EQ(out, mixed) << what;
    }
}

TEST(Resampler, MoreThanTwoChannelsIsFatal)
{
    std::vector<float> source(40, 0.5f), out(30, 0.0f);
    const std::tuple<Kernel, int, std::u16string> cases[] = { { mixNearest, 135, u"NoInterpolation: more than 2 channels" },
        { mixLinear, 99, u"LinearInterpolation: more than 2 channels" } };
    for (const auto& [kernel, line, message] : cases) {
        test::ReportRecorder reports;
        test::FatalReportsUnwind unwind;
        EXPECT_THROW(kernel(MixTarget { out.data(), 4, 3 }, MixSource { source.data(), 13 }, 0.0, 0.5f, 1.0f), FatalErrorUnwind);
        EXPECT_EQ(reports.summaries(), (std::vector<test::ReportSummary> { { -1, "Sound/base", line, message } }));
        EXPECT_EQ(out, std::vector<float>(30, 0.0f));
    }
}
