#include "cli/PlayStatusLine.h"

#include <gtest/gtest.h>

#include <limits>

using namespace pulsara;

TEST(PlayStatusLine, ShowsPositionStepMetersClipAndLoad)
{
    PlayStatus status;
    status.songPosition = 3;
    status.step = 7;
    status.peakLeft = 0.65f;
    status.peakRight = 1.0f;
    status.clipped = true;
    status.load = 0.042f;
    EXPECT_EQ(PlayStatusLine::format(status), "pos 003  step 07  L [######----] R [##########] CLIP  load   4%");

    status.songPosition = -1; // before the first position is reached
    status.clipped = false;
    status.live = true;
    status.load = std::numeric_limits<float>::infinity();
    EXPECT_EQ(PlayStatusLine::format(status), "pos 000  step 07  L [######----] R [##########]       load 999%  live");
}

TEST(PlayStatusLine, MetersLightWholeSegmentsOfPositivePeaksOnly)
{
    for (auto [peak, lit] : std::initializer_list<std::pair<float, int>> { { 0.0f, 0 }, { 0.099f, 0 }, { 0.1f, 1 }, { 0.99f, 9 },
             { 1.0f, 10 }, { 1.7f, 10 }, { -0.8f, 0 }, { std::numeric_limits<float>::quiet_NaN(), 0 } })
        EXPECT_EQ(PlayStatusLine::litSegments(peak), lit) << peak;
}
