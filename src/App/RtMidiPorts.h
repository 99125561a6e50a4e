#pragma once

#include "App/MidiPorts.h"

namespace pulsara {

// The system's MIDI inputs through RtMidi (the ALSA sequencer, JACK where it runs). A system
// without a sequencer simply has no inputs.
class RtMidiPorts final : public MidiPorts {
public:
    std::vector<std::string> names() override;
    std::unique_ptr<MidiPort> open(const std::string& name, Receiver) override;
};

} // namespace pulsara
