#include "Sound/Playlist.h"

#include <gtest/gtest.h>

using namespace pulsara;

TEST(Playlist, LastUsedPositionFollowsTheHighestColumnWithACell)
{
    Playlist playlist(40, 256);
    const std::tuple<uint32_t, uint32_t, float, int32_t> edits[] = {
        { 3, 10, 1.0f, 10 }, { 5, 4, 1.0f, 10 }, { 6, 4, 1.0f, 10 },
        { 3, 10, 0.0f, 4 }, // the last column off: the next column down that has a cell
        { 5, 4, 0.0f, 4 }, // another row keeps a column in use
        { 6, 4, 0.0f, 0 }, { 0, 0, 1.0f, 0 }, // column 0 never moves it
        { 40, 3, 1.0f, 0 }, { 3, 256, 1.0f, 0 }, // outside: ignored
    };
    for (auto [row, column, value, last] : edits) {
        playlist.set(row, column, value);
        EXPECT_EQ(playlist.lastUsedPosition(), last) << row << "," << column;
    }
    EXPECT_EQ(playlist.get(0, 0), 1.0f);
    EXPECT_EQ(playlist.get(40, 3), 0.0f);
}
