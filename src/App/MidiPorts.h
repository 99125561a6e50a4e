#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace pulsara {

// An open MIDI input; it closes when it goes away.
class MidiPort {
public:
    virtual ~MidiPort() = default;
};

// The system's MIDI inputs: RtMidi's in the program, a scripted set in tests.
class MidiPorts {
public:
    // The bytes of one MIDI message, on the port's own thread.
    using Receiver = std::function<void(const uint8_t* bytes, size_t count)>;

    virtual ~MidiPorts() = default;
    // The inputs there now, by name.
    virtual std::vector<std::string> names() = 0;
    // Opens the named input; null when it cannot be opened (it may just have gone).
    virtual std::unique_ptr<MidiPort> open(const std::string& name, Receiver) = 0;
};

} // namespace pulsara
