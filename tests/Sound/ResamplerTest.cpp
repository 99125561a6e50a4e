#include "Sound/Resampler.h"

#include "support/ReportRecorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
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

struct Voice {
    std::vector<float> frames; // `length` frames, the spare frame and a zero tail for the reference
    int32_t length = 0;
    uint32_t channels = 1;
};

Voice randomVoice(std::mt19937& random, uint32_t channels, int32_t length)
{
    std::uniform_real_distribution<float> value(-1.0f, 1.0f);
    Voice voice { std::vector<float>(static_cast<std::size_t>(length + 4) * channels, 0.0f), length, channels };
    std::generate_n(voice.frames.begin(), static_cast<std::size_t>(length) * channels, [&] { return value(random); });
    return voice;
}

float randomRate(std::mt19937& random)
{
    switch (std::uniform_int_distribution<int>(0, 3)(random)) {
    case 0: // a semitone step of the piano
        return static_cast<float>(std::pow(2.0, std::uniform_int_distribution<int>(-24, 24)(random) / 12.0));
    case 1:
        return std::uniform_real_distribution<float>(0.01f, 4.0f)(random);
    case 2:
        return std::uniform_int_distribution<int>(1, 8)(random) * 0.25f;
    default:
        return 0.5f + std::uniform_int_distribution<int>(0, 100)(random) / 1024.0f;
    }
}

double randomStart(std::mt19937& random, int32_t length)
{
    switch (std::uniform_int_distribution<int>(0, 2)(random)) {
    case 0:
        return 0.0;
    case 1:
        return std::uniform_int_distribution<int32_t>(0, length - 1)(random);
    default: // any double: usually not a multiple of the rate's last bit, so the serial loop runs
        return std::uniform_real_distribution<double>(0.0, length - 1)(random);
    }
}

// Plays a voice block by block as a sample does, with the kernel and with the reference, and
// expects every output float and every stored position to be the same.
void expectSameAsReference(Kernel kernel, std::mt19937& random, uint32_t channels)
{
    Voice voice = randomVoice(random, channels, std::uniform_int_distribution<int32_t>(2, 3000)(random));
    float rate = randomRate(random);
    float volume = std::uniform_real_distribution<float>(0.0f, 1.5f)(random);
    double position = randomStart(random, voice.length);
    double expectedPosition = position;
    auto reference = kernel.method == Method::Linear ? referenceLinear : referenceNearest;
    MixSource source { voice.frames.data(), static_cast<uint32_t>(voice.length + 1) };

    for (int block = 0; block < 50 && position < voice.length; ++block) {
        uint32_t wanted = std::uniform_int_distribution<uint32_t>(0, 700)(random);
        double left = (voice.length - position) / rate;
        uint32_t frames = left >= wanted ? wanted : static_cast<uint32_t>(left);
        std::vector<float> out(static_cast<std::size_t>(frames) * channels + 1);
        std::generate(out.begin(), out.end(), [&] { return std::uniform_real_distribution<float>(-1, 1)(random); });
        std::vector<float> expected = out;

        position = kernel(MixTarget { out.data(), frames, channels }, source, position, rate, volume);
        expectedPosition = reference(expected, frames, channels, voice.frames, expectedPosition, rate, volume);

        ASSERT_EQ(position, expectedPosition) << "rate " << rate << " block " << block;
        for (std::size_t i = 0; i < out.size(); ++i)
            ASSERT_EQ(out[i], expected[i]) << "float " << i << " rate " << rate << " block " << block;
    }
}

std::vector<float> ramp(std::initializer_list<float> values)
{
    std::vector<float> frames(values);
    frames.push_back(0.0f); // the spare frame
    return frames;
}

} // namespace

TEST(Resampler, FastLoopsMatchTheMethodsFrameByFrame)
{
    std::vector<Kernel> kernels { { Method::Nearest } };
    for (MixLanes lanes : { MixLanes::Plain, MixLanes::Sse2, MixLanes::Avx }) {
        if (isAvailable(lanes))
            kernels.push_back({ Method::Linear, lanes });
    }
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

TEST(Resampler, LinearRunsOnTheBestLanesOfTheProcessor)
{
    EXPECT_TRUE(isAvailable(bestMixLanes()));
    EXPECT_TRUE(isAvailable(MixLanes::Plain));
#if defined(__x86_64__)
    EXPECT_NE(bestMixLanes(), MixLanes::Plain) << "every x86-64 processor has SSE2";
#endif
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

TEST(Resampler, NearestDropsTheFractionOfTheEntryPosition)
{
    std::vector<float> source(40);
    for (std::size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<float>(i);
    std::vector<float> out(4, 0.0f);
    double next = mixNearest(MixTarget { out.data(), 4, 1 }, MixSource { source.data(), 40 }, 10.5, 2.0f, 1.0f);
    EXPECT_EQ(out, (std::vector<float> { 10, 12, 14, 16 }));
    EXPECT_EQ(next, 10.5 + 2.0 * 4);
}

TEST(Resampler, NearestMixesBothChannelsOfTheSameFrame)
{
    std::vector<float> source { 1, -1, 2, -2, 3, -3, 4, -4, 0, 0 };
    std::vector<float> out(6, 0.0f);
    mixNearest(MixTarget { out.data(), 3, 2 }, MixSource { source.data(), 5 }, 0.0, 1.5f, 2.0f);
    EXPECT_EQ(out, (std::vector<float> { 2, -2, 4, -4, 8, -8 })) << "frames 0, 1 and 3";
}

TEST(Resampler, LinearInterpolatesAndStepsOnceMoreThanItMixed)
{
    std::vector<float> source = ramp({ 1, 3, 7, 15 });
    std::vector<float> out(4, 0.0f);
    double next = mixLinear(MixTarget { out.data(), 4, 1 }, MixSource { source.data(), 5 }, 0.0, 0.5f, 1.0f);
    EXPECT_EQ(out, (std::vector<float> { 1, 2, 3, 5 }));
    EXPECT_EQ(next, 2.5);
}

TEST(Resampler, LinearInterpolatesEachChannelOnItsOwn)
{
    std::vector<float> source { 0, 8, 2, 4, 0, 0 };
    std::vector<float> out(4, 0.0f);
    mixLinear(MixTarget { out.data(), 2, 2 }, MixSource { source.data(), 3 }, 0.0, 0.75f, 1.0f);
    EXPECT_EQ(out, (std::vector<float> { 0, 8, 1.5f, 5 }));
}

TEST(Resampler, LinearFallsBackToNearestForFewerThanTwoFrames)
{
    std::vector<float> source = ramp({ 0, 10, 20 });
    std::vector<float> out(1, 0.0f);
    double next = mixLinear(MixTarget { out.data(), 1, 1 }, MixSource { source.data(), 4 }, 0.5, 1.5f, 1.0f);
    EXPECT_EQ(out[0], 0.0f) << "nearest takes frame 0 without interpolating";
    EXPECT_EQ(next, 2.0) << "nearest adds frames x rate, without the extra step";
}

TEST(Resampler, KernelsNeverReadPastTheReadableFrames)
{
    std::vector<float> source = ramp({ 1, 2, 3 });
    for (Method method : { Method::Nearest, Method::Linear }) {
        std::vector<float> out(10, -5.0f);
        MixTarget target { out.data(), 10, 1 };
        MixSource readable { source.data(), 4 };
        double next = method == Method::Linear ? mixLinear(target, readable, 0.0, 1.5f, 1.0f)
                                               : mixNearest(target, readable, 0.0, 1.5f, 1.0f);
        EXPECT_EQ(next, method == Method::Linear ? 16.5 : 15.0);
        EXPECT_NE(out[0], -5.0f) << "frames inside the data are mixed";
        for (std::size_t k = 3; k < out.size(); ++k)
            EXPECT_EQ(out[k], -5.0f) << "frame " << k << " lies beyond the data";
    }
}

TEST(Resampler, MoreThanTwoChannelsIsFatal)
{
    struct Case {
        Method method;
        int line;
        const char* message;
    };
    std::vector<float> source(40, 0.5f);
    std::vector<float> out(30, 0.0f);
    for (const Case& c : { Case { Method::Nearest, 135, "NoInterpolation: more than 2 channels" },
             Case { Method::Linear, 99, "LinearInterpolation: more than 2 channels" } }) {
        test::ReportRecorder reports;
        test::FatalReportsUnwind unwind;
        MixTarget target { out.data(), 4, 3 };
        MixSource readable { source.data(), 13 };
        EXPECT_THROW((c.method == Method::Linear ? mixLinear : mixNearest)(target, readable, 0.0, 0.5f, 1.0f),
            FatalErrorUnwind);
        ASSERT_EQ(reports.reports().size(), 1u);
        EXPECT_EQ(reports.last().code, -1);
        EXPECT_EQ(reports.last().source, "Sound/base");
        EXPECT_EQ(reports.last().line, c.line);
        EXPECT_EQ(reports.last().message, std::u16string(c.message, c.message + std::strlen(c.message)));
        EXPECT_EQ(out, std::vector<float>(30, 0.0f));
    }
}
