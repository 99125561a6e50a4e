#pragma once

#include "App/MidiNoteMap.h"
#include "App/MidiPorts.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace pulsara {

class PatternPlayer;

// Plays the notes of MIDI keyboards and pads live: from every input or from the one chosen by
// name, opened as they appear and let go as they disappear, without a restart and without a
// message. Notes go to the player's live path from the inputs' own threads, so they sound in
// the next rendered block.
//
// The inputs are the GUI thread's (refresh, the choice of input); the mode, the chosen track and
// the played flag are atomics the inputs' threads read and write.
class MidiInput {
public:
    // The choice of input that plays no input at all.
    static constexpr const char* kNoInput = "None";

    MidiInput(MidiPorts&, PatternPlayer&);
    ~MidiInput();
    MidiInput(const MidiInput&) = delete;
    MidiInput& operator=(const MidiInput&) = delete;

    // Empty: every input; kNoInput: none; else the input of that name (its client and port
    // numbers, which change when it is plugged in again, aside).
    void setInput(std::string name);
    void setMode(MidiNoteMap::Mode mode) { mode_.store(mode, std::memory_order_relaxed); }
    // The instrument chromatic notes play.
    void setChosenTrack(int32_t track) { chosenTrack_.store(track, std::memory_order_relaxed); }
    // Opens the wanted inputs that appeared and lets go of those that went. GUI thread, from
    // time to time.
    void refresh();
    // True once after a note was played: the stream may have to be started for it.
    bool takePlayed() { return played_.exchange(false, std::memory_order_acq_rel); }
    std::vector<std::string> openInputs() const;
    // A port's name without the client and port numbers the sequencer puts at its end.
    static std::string baseName(const std::string& portName);

private:
    // An input's own thread.
    void receive(const uint8_t* bytes, size_t count);
    bool wants(const std::string& portName) const;

    MidiPorts& ports_;
    PatternPlayer& player_;
    std::string input_;
    std::map<std::string, std::unique_ptr<MidiPort>> open_;
    std::atomic<MidiNoteMap::Mode> mode_ { MidiNoteMap::Mode::Drums };
    std::atomic<int32_t> chosenTrack_ { 0 };
    std::atomic<bool> played_ { false };
    // The player's MIDI ring has one producer: the inputs' threads take turns.
    std::mutex pushing_;
};

} // namespace pulsara
