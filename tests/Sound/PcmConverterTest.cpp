#include "Sound/PcmConverter.h"

#include <gtest/gtest.h>

#include <vector>

using namespace pulsara;

// Expected values are the products with 3.051851e-5f worked out in single precision.
TEST(PcmConverter, ScalesSamplesByTheFloatNearestOneOver32767)
{
    const std::pair<float, float> cases[] = {
        { PcmConverter::fromPcm16(0), 0.0f },
        { PcmConverter::fromPcm16(32767), 1.0f },
        { PcmConverter::fromPcm16(-32768), -1.000030517578125f },
        { PcmConverter::fromPcm16(-1), -3.0518509447574615e-05f },
        // 8-bit samples are centred on 128 and widened to 16 bits.
        { PcmConverter::fromPcm8(128), 0.0f },
        { PcmConverter::fromPcm8(0), -1.000030517578125f },
        { PcmConverter::fromPcm8(255), 0.9922177791595459f },
        { PcmConverter::fromPcm8(129), 0.007812738418579102f },
    };
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(cases[i].first, cases[i].second) << "case " << i;
}

TEST(PcmConverter, MixesEightBitStereoFramesToMonoByteByByte)
{
    const std::vector<uint8_t> bytes { 0, 128, 255, 129 };
    std::vector<float> out(2);
    PcmConverter(8, 2, 1).convert(bytes.data(), 2, out.data());
    EXPECT_EQ(out, (std::vector<float> { -0.5000152587890625f, 0.5000152587890625f }));
}
