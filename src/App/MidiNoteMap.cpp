#include "App/MidiNoteMap.h"

#include "GUI/editors/NoteInfo.h"
#include "Sound/PatternPlayer.h"

namespace pulsara {

namespace {

constexpr float kMaxVelocity = 127.0f;
constexpr int32_t kSemitones = 12;

} // namespace

float MidiNoteMap::rateOf(uint8_t note)
{
    // Note 60 is the panel's C of octave 5, whose controls hold octave 4.
    NoteInfo::Controls controls;
    controls.noteIndex = note % kSemitones;
    controls.octave = note / kSemitones - 1;
    return NoteInfo::noteFor(controls).rate;
}

std::optional<LiveNote> MidiNoteMap::noteOn(Mode mode, uint8_t note, uint8_t velocity, int32_t chosenTrack)
{
    if (velocity == 0 || note > 127 || velocity > 127)
        return std::nullopt;
    const float volume = float(velocity) / kMaxVelocity;
    if (mode == Mode::Chromatic)
        return LiveNote { chosenTrack, volume, rateOf(note) };
    const int32_t track = int32_t(note) - kFirstDrumNote;
    if (track < 0 || track >= int32_t(PatternPlayer::kTracks))
        return std::nullopt;
    return LiveNote { track, volume, 1.0f };
}

} // namespace pulsara
