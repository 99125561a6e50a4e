#include "Sound/BoundedSource.h"

#include "support/ScriptedSource.h"

#include <gtest/gtest.h>

using namespace pulsara;

TEST(BoundedSource, PlaysUpToTheEndThenSilenceAndPassesTheRestThrough)
{
    pulsara::testing::ScriptedSource inner;
    inner.tail = { 0.5f, -0.5f };
    BoundedSource bounded(inner);
    bounded.setEnd(0);
    EXPECT_TRUE(bounded.hasEnded()); // an empty song has ended at once
    bounded.setEnd(5);
    std::vector<float> block(2 * 4, 9.0f);
    bounded.render(block.data(), 4, 2);
    EXPECT_EQ(block, (std::vector<float> { 0.5f, -0.5f, 0.5f, -0.5f, 0.5f, -0.5f, 0.5f, -0.5f }));
    EXPECT_FALSE(bounded.hasEnded());
    bounded.render(block.data(), 4, 2);
    EXPECT_EQ(block, (std::vector<float> { 0.5f, -0.5f, 0, 0, 0, 0, 0, 0 }));
    EXPECT_EQ(inner.lastFrames.load(), 1u);
    EXPECT_TRUE(bounded.hasEnded());
    bounded.render(block.data(), 4, 2);
    EXPECT_EQ(block, std::vector<float>(8, 0.0f));
    EXPECT_EQ(inner.renders.load(), 2);
    EXPECT_EQ(bounded.renderedFrames(), 5u);
    bounded.setEnd(2);
    EXPECT_FALSE(bounded.hasEnded());

    AudioFormat format { 22050, 32, 2 };
    bounded.setFormat(&format);
    bounded.setLatency(70);
    EXPECT_EQ(inner.format(), &format);
    EXPECT_EQ(inner.lastLatency.load(), 70);
}
