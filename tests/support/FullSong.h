#pragma once

// The largest song the program makes: 40 patterns of 40 rows of 64 notes, every pattern named
// and every playlist cell on (about 4 MB as a file). `rate` tells two such songs apart.
#include "Sound/Song.h"
#include "base/text.h"

#include <string>

namespace pulsara::test {

inline void fillSong(Song& song, float rate)
{
    song.setStepsPerPattern(64);
    SongPlayer& player = song.player();
    for (uint32_t pattern = 0; pattern < Song::kPatterns; ++pattern) {
        player.setPatternName(pattern, u"pattern " + fromUtf8(std::to_string(pattern + 1)));
        for (uint32_t row = 0; row < Song::kInstruments; ++row) {
            for (uint32_t step = 0; step < 64; ++step)
                player.pattern(pattern).setCell(row, step, { 0.5f, rate, int32_t(step) });
        }
        for (uint32_t position = 0; position < Song::kPositions; ++position)
            player.playlist().set(pattern, position, 1.0f);
    }
}

} // namespace pulsara::test
