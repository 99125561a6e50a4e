#include "Sound/PcmConverter.h"

#include "support/WavBuilder.h"

#include <gtest/gtest.h>

#include <vector>

using namespace pulsara;

TEST(PcmConverter, ScalesSamplesByTheFloatNearestOneOver32767)
{
    EXPECT_EQ(PcmConverter::fromPcm16(0), 0.0f);
    EXPECT_EQ(PcmConverter::fromPcm16(32767), 32767 * 3.051851e-5f);
    EXPECT_EQ(PcmConverter::fromPcm16(-32768), -32768 * 3.051851e-5f);
    EXPECT_EQ(PcmConverter::fromPcm16(-1), -3.051851e-5f);
    // 8-bit samples are centred on 128 and widened to 16 bits.
    EXPECT_EQ(PcmConverter::fromPcm8(128), 0.0f);
    EXPECT_EQ(PcmConverter::fromPcm8(0), -32768 * 3.051851e-5f);
    EXPECT_EQ(PcmConverter::fromPcm8(255), 32512 * 3.051851e-5f);
    EXPECT_EQ(PcmConverter::fromPcm8(129), 256 * 3.051851e-5f);
}

TEST(PcmConverter, ConvertsBetweenMonoAndStereo)
{
    const float a = PcmConverter::fromPcm16(1000), b = PcmConverter::fromPcm16(-3000);
    const float c = PcmConverter::fromPcm16(7), d = PcmConverter::fromPcm16(9);
    struct Case {
        uint32_t sourceChannels, targetChannels;
        std::vector<float> expected;
    };
    const std::vector<uint8_t> bytes = test::pcm16({ 1000, -3000, 7, 9 });
    for (const Case& x : { Case { 1, 1, { a, b, c, d } }, Case { 1, 2, { a, a, b, b, c, c, d, d } },
             Case { 2, 1, { (a + b) * 0.5f, (c + d) * 0.5f } }, Case { 2, 2, { a, b, c, d } } }) {
        uint32_t frames = 4 / x.sourceChannels;
        std::vector<float> out(frames * x.targetChannels, 99.0f);
        PcmConverter(16, x.sourceChannels, x.targetChannels).convert(bytes.data(), frames, out.data());
        EXPECT_EQ(out, x.expected) << x.sourceChannels << " to " << x.targetChannels << " channels";
    }
}

TEST(PcmConverter, ReadsEightBitFramesByteByByte)
{
    const std::vector<uint8_t> bytes { 0, 128, 255, 129 };
    std::vector<float> out(2);
    PcmConverter(8, 2, 1).convert(bytes.data(), 2, out.data());
    EXPECT_EQ(out[0], (PcmConverter::fromPcm8(0) + 0.0f) * 0.5f);
    EXPECT_EQ(out[1], (PcmConverter::fromPcm8(255) + PcmConverter::fromPcm8(129)) * 0.5f);
}
