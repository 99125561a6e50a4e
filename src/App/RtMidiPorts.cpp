#include "App/RtMidiPorts.h"

#include <rtmidi/RtMidi.h>

namespace pulsara {

namespace {

// RtMidi reports its troubles here instead of on stderr or by throwing on its own thread; a
// port that fails is simply not there.
void ignoreMidiError(RtMidiError::Type, const std::string&, void*) { }

std::unique_ptr<RtMidiIn> makeInput()
{
    try {
        auto input = std::make_unique<RtMidiIn>(RtMidi::UNSPECIFIED, "Pulsara");
        input->setErrorCallback(&ignoreMidiError);
        return input;
    } catch (const RtMidiError&) {
        return nullptr;
    }
}

class RtMidiPort final : public MidiPort {
public:
    RtMidiPort(std::unique_ptr<RtMidiIn> input, MidiPorts::Receiver receiver)
        : input_(std::move(input))
        , receiver_(std::move(receiver))
    {
        input_->setCallback(&RtMidiPort::receive, this);
        // Note-ons are all that is played; the rest is not even delivered.
        input_->ignoreTypes(true, true, true);
    }
    ~RtMidiPort() override
    {
        try {
            input_->cancelCallback();
            input_->closePort();
        } catch (const RtMidiError&) {
        }
    }

private:
    // RtMidi's input thread.
    static void receive(double, std::vector<unsigned char>* message, void* port)
    {
        auto* self = static_cast<RtMidiPort*>(port);
        if (message && !message->empty())
            self->receiver_(message->data(), message->size());
    }

    std::unique_ptr<RtMidiIn> input_;
    MidiPorts::Receiver receiver_;
};

} // namespace

std::vector<std::string> RtMidiPorts::names()
{
    std::vector<std::string> names;
    std::unique_ptr<RtMidiIn> input = makeInput();
    if (!input)
        return names;
    try {
        for (unsigned port = 0; port < input->getPortCount(); ++port)
            names.push_back(input->getPortName(port));
    } catch (const RtMidiError&) {
    }
    return names;
}

std::unique_ptr<MidiPort> RtMidiPorts::open(const std::string& name, Receiver receiver)
{
    std::unique_ptr<RtMidiIn> input = makeInput();
    if (!input)
        return nullptr;
    try {
        for (unsigned port = 0; port < input->getPortCount(); ++port) {
            if (input->getPortName(port) != name)
                continue;
            input->openPort(port, "Pulsara input");
            if (!input->isPortOpen())
                return nullptr;
            return std::make_unique<RtMidiPort>(std::move(input), std::move(receiver));
        }
    } catch (const RtMidiError&) {
    }
    return nullptr;
}

} // namespace pulsara
