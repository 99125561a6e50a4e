#include "Sound/Playlist.h"

#include <gtest/gtest.h>

using namespace pulsara;

TEST(Playlist, LastUsedPositionFollowsTheHighestColumnWithACell)
{
    Playlist playlist(40, 256);
    playlist.set(3, 10, 1.0f);
    EXPECT_EQ(playlist.lastUsedPosition(), 10);
    playlist.set(5, 4, 1.0f);
    playlist.set(6, 4, 1.0f);
    EXPECT_EQ(playlist.lastUsedPosition(), 10);
    // Switching the last column off falls back to the next column down that has a cell.
    playlist.set(3, 10, 0.0f);
    EXPECT_EQ(playlist.lastUsedPosition(), 4);
    // Another row keeps a column in use.
    playlist.set(5, 4, 0.0f);
    EXPECT_EQ(playlist.lastUsedPosition(), 4);
    playlist.set(6, 4, 0.0f);
    EXPECT_EQ(playlist.lastUsedPosition(), 0);
    // Column 0 never moves it.
    playlist.set(0, 0, 1.0f);
    EXPECT_EQ(playlist.lastUsedPosition(), 0);
    EXPECT_EQ(playlist.get(0, 0), 1.0f);
}

TEST(Playlist, OutOfRangeCellsAreIgnored)
{
    Playlist playlist(40, 256);
    playlist.set(40, 3, 1.0f);
    playlist.set(3, 256, 1.0f);
    EXPECT_TRUE(playlist.isEmpty());
    EXPECT_EQ(playlist.get(40, 3), 0.0f);
    EXPECT_EQ(playlist.lastUsedPosition(), 0);
}
