#include "Sound/PcmConverter.h"

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

TEST(PcmConverter, ReadsEightBitFramesByteByByte)
{
    const std::vector<uint8_t> bytes { 0, 128, 255, 129 };
    std::vector<float> out(2);
    PcmConverter(8, 2, 1).convert(bytes.data(), 2, out.data());
    EXPECT_EQ(out[0], (PcmConverter::fromPcm8(0) + 0.0f) * 0.5f);
    EXPECT_EQ(out[1], (PcmConverter::fromPcm8(255) + PcmConverter::fromPcm8(129)) * 0.5f);
}
