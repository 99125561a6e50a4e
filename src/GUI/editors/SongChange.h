#pragma once

#include "Sound/Step.h"

#include <cstdint>
#include <string>
#include <variant>

namespace pulsara {

class Song;

// The parts of a song an edit can touch; the views redraw what an applied change names.
enum EditScope : uint32_t {
    kScopeNotes = 1,
    kScopePlaylist = 2,
    kScopeInstruments = 4,
    kScopePatternNames = 8,
    kScopeTempo = 16,
    kScopeMasterVolume = 32,
    kScopePatternLength = 64,
    kScopeLoop = 128,
};

// One note of one pattern.
struct CellChange {
    uint32_t pattern;
    uint32_t row;
    uint32_t step;
    Step before;
    Step after;
};

// One pattern at one song position.
struct PlaylistChange {
    uint32_t pattern;
    uint32_t position;
    bool before;
    bool after;
};

// A number of the song: `index` names the instrument for the instrument volume.
struct ValueChange {
    enum class Kind { Tempo, MasterVolume, InstrumentVolume, BeatsPerPattern, StepsPerPattern, LoopStart, LoopEnd };
    Kind kind;
    uint32_t index;
    double before;
    double after;
};

struct NameChange {
    enum class Kind { Instrument, Pattern };
    Kind kind;
    uint32_t index;
    std::u16string before;
    std::u16string after;
};

// The sample file of an instrument (empty: no sample) and its volume, which clearing resets.
struct SampleChange {
    uint32_t slot;
    std::u16string beforePath;
    std::u16string afterPath;
    float beforeVolume;
    float afterVolume;
};

// A reversible change of the song: applying it forward writes its `after`, backward its
// `before`.
using SongChange = std::variant<CellChange, PlaylistChange, ValueChange, NameChange, SampleChange>;

// Writes the change's after (forward) or before value into the song; returns what it touched.
EditScope applyChange(Song&, const SongChange&, bool forward);
// When `later` changes the same thing as `earlier`, folds it in (the earlier before stays, the
// later after wins) and returns true.
bool absorbChange(SongChange& earlier, const SongChange& later);
// True when applying the change would leave the song as it was.
bool changesNothing(const SongChange&);

} // namespace pulsara
