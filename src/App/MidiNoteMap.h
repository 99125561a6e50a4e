#pragma once

#include "Sound/LiveNoteRing.h"

#include <cstdint>
#include <optional>

namespace pulsara {

// How a MIDI keyboard's or pad's note-on becomes a live note. In drum mode each note plays its
// own track: C2 (note 36) the first, up to the fortieth. In chromatic mode every note plays the
// chosen instrument at the note's pitch: middle C (note 60) at the sample's own pitch, a
// semitone a note, as the note panel builds pitches. The velocity is the volume: 127 is 1.0.
struct MidiNoteMap {
    enum class Mode { Drums, Chromatic };
    static constexpr uint8_t kFirstDrumNote = 36;
    static constexpr uint8_t kOwnPitchNote = 60;

    // The live note for a note-on, or none: a note-off (velocity 0) or a drum note beyond the
    // tracks.
    static std::optional<LiveNote> noteOn(Mode, uint8_t note, uint8_t velocity, int32_t chosenTrack);
    // The rate of a chromatic note.
    static float rateOf(uint8_t note);
};

} // namespace pulsara
