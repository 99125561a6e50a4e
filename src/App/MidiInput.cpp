#include "App/MidiInput.h"

#include "Sound/PatternPlayer.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace pulsara {

namespace {

constexpr uint8_t kNoteOn = 0x90;
constexpr uint8_t kStatusMask = 0xF0;

} // namespace

MidiInput::MidiInput(MidiPorts& ports, PatternPlayer& player)
    : ports_(ports)
    , player_(player)
{
}

MidiInput::~MidiInput()
{
    // The inputs' threads end with their ports, before anything they reach goes.
    open_.clear();
}

std::string MidiInput::baseName(const std::string& portName)
{
    // "Keystation 49:Keystation 49 MIDI 1 24:0" loses " 24:0".
    size_t end = portName.size();
    size_t space = portName.rfind(' ');
    if (space == std::string::npos)
        return portName;
    std::string tail = portName.substr(space + 1);
    size_t colon = tail.find(':');
    const bool numbers = colon != std::string::npos && colon > 0 && colon + 1 < tail.size()
        && std::all_of(tail.begin(), tail.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)) || c == ':'; });
    return numbers ? portName.substr(0, space) : portName.substr(0, end);
}

bool MidiInput::wants(const std::string& portName) const
{
    if (input_ == kNoInput)
        return false;
    return input_.empty() || portName == input_ || baseName(portName) == baseName(input_);
}

void MidiInput::setInput(std::string name)
{
    input_ = std::move(name);
    refresh();
}

void MidiInput::refresh()
{
    std::vector<std::string> present = ports_.names();
    for (auto port = open_.begin(); port != open_.end();) {
        const bool stays = wants(port->first) && std::find(present.begin(), present.end(), port->first) != present.end();
        port = stays ? std::next(port) : open_.erase(port);
    }
    for (const std::string& name : present) {
        if (!wants(name) || open_.count(name))
            continue;
        if (auto port = ports_.open(name, [this](const uint8_t* bytes, size_t count) { receive(bytes, count); }))
            open_.emplace(name, std::move(port));
    }
}

std::vector<std::string> MidiInput::openInputs() const
{
    std::vector<std::string> names;
    for (const auto& port : open_)
        names.push_back(port.first);
    return names;
}

void MidiInput::receive(const uint8_t* bytes, size_t count)
{
    if (count < 3 || (bytes[0] & kStatusMask) != kNoteOn)
        return;
    std::optional<LiveNote> note = MidiNoteMap::noteOn(mode_.load(std::memory_order_relaxed), bytes[1], bytes[2],
        chosenTrack_.load(std::memory_order_relaxed));
    if (!note)
        return;
    {
        std::lock_guard<std::mutex> turn(pushing_);
        player_.playLive(PatternPlayer::LiveSource::Midi, *note);
    }
    played_.store(true, std::memory_order_release);
}

} // namespace pulsara
