#include "Sound/Resampler.h"

#include "support/ReportRecorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <tuple>
#include <vector>

using namespace pulsara;

namespace {

// The methods written out frame by frame exactly as designed, to hold the fast loops against.
double referenceNearest(std::vector<float>& out, uint32_t frames, uint32_t channels, const std::vector<float>& source,
    double position, float rate, float volume)
{
    int base = static_cast<int>(position);
    double next = position + static_cast<float>(frames) * rate;
    for (uint32_t k = 0; k < frames; ++k) {
        int frame = base + static_cast<int>(static_cast<float>(k) * rate);
        for (uint32_t c = 0; c < channels; ++c)
            out[k * channels + c] += source[frame * channels + c] * volume;
    }
    return next;
}

double referenceLinear(std::vector<float>& out, uint32_t frames, uint32_t channels, const std::vector<float>& source,
    double position, float rate, float volume)
{
    if (frames < 2)
        return referenceNearest(out, frames, channels, source, position, rate, volume);
    double p0 = position;
    double p = p0;
    for (uint32_t k = 0; k < frames; ++k) {
        int i = static_cast<int>(p);
        double frac = (k - (i - p0) / rate) * rate;
        for (uint32_t c = 0; c < channels; ++c) {
            float s0 = source[i * channels + c];
            float s1 = source[(i + 1) * channels + c];
            float value = static_cast<float>(s0 + frac * (s1 - s0));
            out[k * channels + c] += value * volume;
        }
        p += rate;
    }
    return p + rate;
}

enum class Method { Nearest, Linear };

struct Kernel {
    Method method;
    MixLanes lanes = MixLanes::Plain;

    double operator()(const MixTarget& target, const MixSource& source, double position, float rate, float volume) const
    {
        return method == Method::Linear ? mixLinearOn(lanes, target, source, position, rate, volume)
                                        : mixNearest(target, source, position, rate, volume);
    }
};

// A semitone step of the piano, any rate, a multiple of a quarter, or a rate just above a half.
float randomRate(std::mt19937& random)
{
    int kind = std::uniform_int_distribution<int>(0, 3)(random);
    if (kind == 0)
        return static_cast<float>(std::pow(2.0, std::uniform_int_distribution<int>(-24, 24)(random) / 12.0));
    if (kind == 1)
        return std::uniform_real_distribution<float>(0.01f, 4.0f)(random);
    return kind == 2 ? std::uniform_int_distribution<int>(1, 8)(random) * 0.25f
                     : 0.5f + std::uniform_int_distribution<int>(0, 100)(random) / 1024.0f;
}

// The start, a whole frame, or any double: usually not a multiple of the rate's last bit, so the
// serial loop runs.
double randomStart(std::mt19937& random, int32_t length)
{
    int kind = std::uniform_int_distribution<int>(0, 2)(random);
    if (kind == 0)
        return 0.0;
    return kind == 1 ? std::uniform_int_distribution<int32_t>(0, length - 1)(random)
                     : std::uniform_real_distribution<double>(0.0, length - 1)(random);
}

// Plays a voice block by block as a sample does, with the kernel and with the reference, and
// expects every output float and every stored position to be the same.
void expectSameAsReference(Kernel kernel, std::mt19937& random, uint32_t channels)
{
    // `length` random frames, the spare frame and a zero tail for the reference.
    int32_t length = std::uniform_int_distribution<int32_t>(2, 3000)(random);
    std::vector<float> voice(static_cast<std::size_t>(length + 4) * channels, 0.0f);
    std::uniform_real_distribution<float> value(-1.0f, 1.0f);
    std::generate_n(voice.begin(), static_cast<std::size_t>(length) * channels, [&] { return value(random); });
    float rate = randomRate(random);
    float volume = std::uniform_real_distribution<float>(0.0f, 1.5f)(random);
    double position = randomStart(random, length);
    double expectedPosition = position;
    auto reference = kernel.method == Method::Linear ? referenceLinear : referenceNearest;
    MixSource source { voice.data(), static_cast<uint32_t>(length + 1) };

    for (int block = 0; block < 50 && position < length; ++block) {
        uint32_t wanted = std::uniform_int_distribution<uint32_t>(0, 700)(random);
        double left = (length - position) / rate;
        uint32_t frames = left >= wanted ? wanted : static_cast<uint32_t>(left);
        std::vector<float> out(static_cast<std::size_t>(frames) * channels + 1);
        std::generate(out.begin(), out.end(), [&] { return value(random); });
        std::vector<float> expected = out;

        position = kernel(MixTarget { out.data(), frames, channels }, source, position, rate, volume);
        expectedPosition = reference(expected, frames, channels, voice, expectedPosition, rate, volume);

        ASSERT_EQ(position, expectedPosition) << "rate " << rate << " block " << block;
        ASSERT_EQ(out, expected) << "rate " << rate << " block " << block;
    }
}

} // namespace

TEST(Resampler, FastLoopsMatchTheMethodsFrameByFrame)
{
    std::vector<Kernel> kernels { { Method::Nearest } };
    for (MixLanes lanes : { MixLanes::Plain, MixLanes::Sse2, MixLanes::Avx }) {
        if (isAvailable(lanes))
            kernels.push_back({ Method::Linear, lanes });
    }
    ASSERT_TRUE(isAvailable(bestMixLanes()));
#if defined(__x86_64__)
    EXPECT_NE(bestMixLanes(), MixLanes::Plain) << "every x86-64 processor has SSE2";
#endif
    std::mt19937 random(20261121);
    for (const Kernel& kernel : kernels) {
        for (uint32_t channels : { 1u, 2u }) {
            for (int voice = 0; voice < 300; ++voice) {
                SCOPED_TRACE(testing::Message() << (kernel.method == Method::Linear ? "linear" : "nearest") << " on lanes "
                                                << static_cast<int>(kernel.lanes) << ", " << channels
                                                << " channels, voice " << voice);
                expectSameAsReference(kernel, random, channels);
                if (HasFatalFailure())
                    return;
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
    const struct {
        const char* what;
        Method method;
        std::vector<float> source; // with its spare frame
        uint32_t channels;
        double position;
        float rate, volume;
        std::vector<float> out;
        double next;
    } cases[] = {
        { "nearest drops the fraction of the entry position", Method::Nearest, tens, 1, 10.5, 2.0f, 1.0f,
            { 10, 12, 14, 16 }, 18.5 },
        { "nearest mixes both channels of frames 0, 1 and 3", Method::Nearest, { 1, -1, 2, -2, 3, -3, 4, -4, 0, 0 }, 2,
            0.0, 1.5f, 2.0f, { 2, -2, 4, -4, 8, -8 }, 4.5 },
        { "linear steps once more than it mixed", Method::Linear, { 1, 3, 7, 15, 0 }, 1, 0.0, 0.5f, 1.0f,
            { 1, 2, 3, 5 }, 2.5 },
        { "linear interpolates each channel on its own", Method::Linear, { 0, 8, 2, 4, 0, 0 }, 2, 0.0, 0.75f, 1.0f,
            { 0, 8, 1.5f, 5 }, 2.25 },
        { "linear falls back to nearest below two frames", Method::Linear, { 0, 10, 20, 0 }, 1, 0.5, 1.5f, 1.0f, { 0 },
            2.0 },
    };
    for (const auto& test : cases) {
        std::vector<float> out(test.out.size(), 0.0f);
        MixTarget target { out.data(), static_cast<uint32_t>(out.size()) / test.channels, test.channels };
        MixSource source { test.source.data(), static_cast<uint32_t>(test.source.size()) / test.channels };
        auto kernel = test.method == Method::Linear ? mixLinear : mixNearest;
        EXPECT_EQ(kernel(target, source, test.position, test.rate, test.volume), test.next) << test.what;
        EXPECT_EQ(out, test.out) << test.what;
    }
}

TEST(Resampler, KernelsNeverReadPastTheReadableFrames)
{
    std::vector<float> source { 1, 2, 3, 0 };
    for (Method method : { Method::Nearest, Method::Linear }) {
        std::vector<float> out(10, -5.0f);
        MixTarget target { out.data(), 10, 1 };
        MixSource readable { source.data(), 4 };
        double next = (method == Method::Linear ? mixLinear : mixNearest)(target, readable, 0.0, 1.5f, 1.0f);
        EXPECT_EQ(next, method == Method::Linear ? 16.5 : 15.0);
        EXPECT_NE(out[0], -5.0f) << "frames inside the data are mixed";
        for (std::size_t k = 3; k < out.size(); ++k)
            EXPECT_EQ(out[k], -5.0f) << "frame " << k << " lies beyond the data";
    }
}

TEST(Resampler, MoreThanTwoChannelsIsFatal)
{
    std::vector<float> source(40, 0.5f), out(30, 0.0f);
    for (auto [method, line, message] : { std::tuple { Method::Nearest, 135, u"NoInterpolation: more than 2 channels" },
             std::tuple { Method::Linear, 99, u"LinearInterpolation: more than 2 channels" } }) {
        test::ReportRecorder reports;
        test::FatalReportsUnwind unwind;
        EXPECT_THROW((method == Method::Linear ? mixLinear : mixNearest)(MixTarget { out.data(), 4, 3 },
                         MixSource { source.data(), 13 }, 0.0, 0.5f, 1.0f),
            FatalErrorUnwind);
        ASSERT_EQ(reports.reports().size(), 1u);
        EXPECT_EQ(reports.last().code, -1);
        EXPECT_EQ(reports.last().source, "Sound/base");
        EXPECT_EQ(reports.last().line, line);
        EXPECT_EQ(reports.last().message, message);
        EXPECT_EQ(out, std::vector<float>(30, 0.0f));
    }
}
