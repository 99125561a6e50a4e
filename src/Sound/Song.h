#pragma once

#include "Sound/AudioFormat.h"
#include "Sound/Instrument.h"
#include "Sound/SongPlayer.h"

#include <array>
#include <cstdint>

namespace pulsara {

// What an editor view keeps in a song file: one value and a pair (a scroll position and such).
struct EditorViewState {
    int32_t value = 0;
    std::array<int32_t, 2> pair { 0, 0 };
    bool operator==(const EditorViewState&) const = default;
};

// The document: 40 instruments, the player with its 40 patterns and playlist, the display
// orders through which the editors and the song file address instruments and patterns, and
// the editors' view state. It exists for the whole run; new and open reset it in place.
//
// The GUI thread owns the document: it edits it and loads into it. While the stream runs, the
// device's callback thread renders the player, which reads the grids, the playlist and the
// volumes as atomic words and each sample's data through the sample's hand-over; the format
// record is read by the stream and changes only while the stream is stopped.
class Song {
public:
    static constexpr uint32_t kInstruments = PatternPlayer::kTracks;
    static constexpr uint32_t kPatterns = SongPlayer::kPatterns;
    static constexpr uint32_t kPositions = SongPlayer::kPositions;
    static constexpr float kStartTempo = 150.0f;
    static constexpr float kStartVolume = 0.7f;
    static constexpr uint32_t kDefaultStepsPerPattern = 16;
    static constexpr uint32_t kDefaultBeatsPerPattern = 4;

    // Set up as the program starts: tempo 150, master volume 0.7, an empty song.
    explicit Song(AudioFormat = {});
    Song(const Song&) = delete;
    Song& operator=(const Song&) = delete;

    // Empties the song: default steps and beats, every instrument and pattern empty and nameless,
    // empty playlist, views at 0, first editor shown, loop 0 to -1. Tempo and volume stay.
    // GUI thread, also while the stream plays.
    void reset();

    // The output format every sample is converted to; samples with a file are loaded again.
    // GUI thread, with the stream stopped: the stream reads the record (Transport::changeFormat
    // stops and restarts it around this).
    void setFormat(AudioFormat);
    const AudioFormat& format() const { return format_; }
    void setInterpolation(Interpolation);

    // GUI thread: frees the sample data that loads, unloads and resets replaced while a render
    // was reading it, now that none is (Sample::reclaim). Returns the blocks still waiting. The
    // window calls it from a timer while the stream runs.
    std::size_t reclaimSamples();

    Instrument& instrument(uint32_t slot) { return instruments_[slot < kInstruments ? slot : 0]; }
    const Instrument& instrument(uint32_t slot) const { return instruments_[slot < kInstruments ? slot : 0]; }
    SongPlayer& player() { return player_; }
    const SongPlayer& player() const { return player_; }

    void setStepsPerPattern(uint32_t steps) { player_.setLength(steps); }
    uint32_t stepsPerPattern() const { return player_.length(); }
    void setBeatsPerPattern(uint32_t beats) { player_.setBeatsPerPattern(beats); }
    uint32_t beatsPerPattern() const { return player_.beatsPerPattern(); }

    // Display order: position -> slot, a permutation of 0..39.
    std::array<uint8_t, kInstruments>& instrumentOrder() { return instrumentOrder_; }
    const std::array<uint8_t, kInstruments>& instrumentOrder() const { return instrumentOrder_; }
    std::array<uint8_t, kPatterns>& patternOrder() { return patternOrder_; }
    const std::array<uint8_t, kPatterns>& patternOrder() const { return patternOrder_; }

    EditorViewState& view(uint32_t editor) { return views_[editor < 2 ? editor : 0]; }
    const EditorViewState& view(uint32_t editor) const { return views_[editor < 2 ? editor : 0]; }
    int32_t editorShown() const { return editorShown_; }
    void setEditorShown(int32_t editor) { editorShown_ = editor; }

private:
    AudioFormat format_;
    std::array<Instrument, kInstruments> instruments_;
    SongPlayer player_;
    std::array<uint8_t, kInstruments> instrumentOrder_ {};
    std::array<uint8_t, kPatterns> patternOrder_ {};
    std::array<EditorViewState, 2> views_ {};
    int32_t editorShown_ = 0;
};

} // namespace pulsara
