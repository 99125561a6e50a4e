#pragma once

#include "GUI/editors/SongChange.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QUndoStack;

namespace pulsara {

class Song;
class SongEditCommand;

// The one way the editors change the song. Every change is applied at once, so that it sounds
// in the next rendered buffer, and recorded as an undo step with a name the Edit menu shows
// ("Paint notes"). A gesture (a drag across cells, a slider drag) gathers all its changes into
// one step; a change made outside a gesture is a step of its own.
//
// GUI thread only. The song's cells, volumes and rates are atomics that the audio thread reads.
class SongEdits {
public:
    explicit SongEdits(Song&);
    ~SongEdits();
    SongEdits(const SongEdits&) = delete;
    SongEdits& operator=(const SongEdits&) = delete;

    Song& song() { return song_; }
    const Song& song() const { return song_; }
    // The undo history (owned); its clean state is the saved song.
    QUndoStack& history() { return *history_; }

    // Opens a gesture named for the Edit menu; the changes until endGesture are one step.
    // A gesture still open is closed first.
    void beginGesture(std::u16string_view name);
    // Records the gesture's changes as one undo step; a gesture that changed nothing leaves none.
    void endGesture();
    bool inGesture() const { return gesture_ != nullptr; }

    void setPatternCell(uint32_t pattern, uint32_t row, uint32_t step, Step);
    void setPlaylistCell(uint32_t pattern, uint32_t position, bool on);
    void setTempo(float beatsPerMinute);
    void setMasterVolume(float);
    void setInstrumentVolume(uint32_t slot, float);
    // Beats per pattern and the pattern length in steps, as one change.
    void setPatternLength(uint32_t beats, uint32_t steps);
    void setLoop(int32_t start, int32_t end);
    void renameInstrument(uint32_t slot, std::u16string_view);
    void renamePattern(uint32_t pattern, std::u16string_view);
    // Loads the WAV file into the instrument; a file that cannot be read leaves it empty.
    void loadSample(uint32_t slot, std::u16string_view path);
    // Empties the instrument and gives it the default volume.
    void clearInstrument(uint32_t slot);

    // A new song or a loaded one: no history, and the song as it stands is the saved one.
    void forgetHistory();
    // The song as it stands has been saved.
    void markSaved();
    // The song differs from its file although nothing was undoable (a load that had to change
    // it): no undo reaches the saved state.
    void markUnsaved();
    bool isClean() const;

    // After every change applied: made by an editor (which has drawn it already), or undone or
    // redone (`fromHistory`: every view of the scope has to show the song again).
    std::function<void(EditScope, bool fromHistory)> onApplied;
    // When undo or a save reaches the saved state, or a change leaves it.
    std::function<void(bool clean)> onCleanChanged;

private:
    friend class SongEditCommand;

    void record(SongChange, std::u16string_view defaultName);
    void applied(EditScope, bool fromHistory);

    Song& song_;
    std::unique_ptr<QUndoStack> history_;
    std::unique_ptr<SongEditCommand> gesture_;
};

} // namespace pulsara
