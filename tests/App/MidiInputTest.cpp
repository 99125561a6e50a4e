// MIDI keyboards and pads: how notes map to tracks and pitches, which inputs are opened as they
// come and go, and that a note-on sounds in the next rendered block.
#include "App/MidiInput.h"
#include "App/RtMidiPorts.h"

#include "Sound/Song.h"

#include <gtest/gtest.h>
#include <rtmidi/RtMidi.h>

#include <chrono>
#include <filesystem>
#include <thread>

using namespace pulsara;

namespace {

// Inputs a test plugs in and out, and plays on.
struct ScriptedPorts final : MidiPorts {
    struct Port final : MidiPort {
        Port(ScriptedPorts& owner, std::string name) : owner_(owner), name_(std::move(name)) { }
        ~Port() override { owner_.receivers.erase(name_); }
        ScriptedPorts& owner_;
        std::string name_;
    };
    std::vector<std::string> present;
    std::map<std::string, Receiver> receivers;

    std::vector<std::string> names() override { return present; }
    std::unique_ptr<MidiPort> open(const std::string& name, Receiver receiver) override
    {
        receivers[name] = std::move(receiver);
        return std::make_unique<Port>(*this, name);
    }
    void play(const char* port, uint8_t note, uint8_t velocity) { const uint8_t bytes[] { 0x93, note, velocity }; receivers.at(port)(bytes, 3); }
};

} // namespace

TEST(MidiInput, MapsNotesToTracksOrPitches)
{
    using Mode = MidiNoteMap::Mode;
    struct Case {
        Mode mode;
        uint8_t note, velocity;
        int32_t track; // -1: nothing plays, with volume and rate 0
        float volume, rate;
    };
    const Case cases[] = {
        { Mode::Drums, 36, 127, 0, 1.0f, 1.0f }, // C2 plays the first track
        { Mode::Drums, 75, 64, 39, 64.0f / 127.0f, 1.0f },
        { Mode::Drums, 35, 100, -1, 0, 0 },
        { Mode::Drums, 76, 100, -1, 0, 0 },
        { Mode::Drums, 40, 0, -1, 0, 0 }, // velocity 0 is a note-off
        { Mode::Chromatic, 60, 127, 5, 1.0f, 1.0f }, // middle C: the sample's own pitch
        { Mode::Chromatic, 72, 127, 5, 1.0f, 2.0f },
        { Mode::Chromatic, 61, 127, 5, 1.0f, 1.0594631f },
        { Mode::Chromatic, 48, 1, 5, 1.0f / 127.0f, 0.5f },
    };
    for (const Case& c : cases) {
        std::optional<LiveNote> note = MidiNoteMap::noteOn(c.mode, c.note, c.velocity, 5);
        EXPECT_EQ(note ? std::tuple(note->track, note->volume, note->rate) : std::tuple(-1, 0.0f, 0.0f),
            std::tuple(c.track, c.volume, c.rate)) << int(c.note);
    }
}

TEST(MidiInput, OpensTheChosenInputsAsTheyComeAndGo)
{
    Song song;
    ScriptedPorts ports;
    MidiInput input(ports, song.player());
    ports.present = { "Keystation 49 24:0", "Pads 28:0" };
    input.setInput({});
    EXPECT_EQ(input.openInputs(), ports.present) << "every input";
    input.setInput("Pads 20:0");
    EXPECT_EQ(input.openInputs(), std::vector<std::string> { "Pads 28:0" }) << "by name, whatever its numbers";
    ports.present = { "Keystation 49 24:0" };
    input.refresh();
    EXPECT_TRUE(input.openInputs().empty()) << "unplugged";
    ports.present = { "Keystation 49 24:0", "Pads 30:0" };
    input.refresh();
    EXPECT_EQ(input.openInputs(), std::vector<std::string> { "Pads 30:0" }) << "plugged in again";
    input.setInput(MidiInput::kNoInput);
    EXPECT_TRUE(input.openInputs().empty());
    EXPECT_TRUE(ports.receivers.empty()) << "closed ports hear nothing";
}

TEST(MidiInput, ANoteOnSoundsInTheNextBlockAtItsVelocity)
{
    Song song(AudioFormat { 44100, 32, 1 });
    song.instrument(2).sample().setFrames(std::vector<float>(64, 0.5f), 1);
    song.instrument(2).setVolume(1.0f);
    song.player().setVolume(1.0f);
    ScriptedPorts ports;
    ports.present = { "Pads" };
    MidiInput input(ports, song.player());
    input.setInput({});
    std::vector<float> block(16);
    song.player().render(block.data(), 16, 1);
    EXPECT_FALSE(input.takePlayed());
    // D2 is the third track; of two notes on it before a block, the later plays.
    ports.play("Pads", 38, 127);
    ports.play("Pads", 38, 64);
    EXPECT_TRUE(input.takePlayed());
    song.player().render(block.data(), 16, 1);
    EXPECT_EQ(block[0], 0.5f * (64.0f / 127.0f));
}

// Where this machine has an ALSA sequencer, a virtual keyboard's note reaches the player through
// the real inputs.
TEST(MidiInput, AVirtualKeyboardPlaysThroughTheSequencer)
{
    if (!std::filesystem::exists("/dev/snd/seq"))
        GTEST_SKIP() << "no ALSA sequencer (/dev/snd/seq) on this machine";
    Song song;
    RtMidiPorts ports;
    MidiInput input(ports, song.player());
    RtMidiOut keyboard(RtMidi::LINUX_ALSA, "Pulsara test keyboard");
    keyboard.openVirtualPort("keys");
    input.setInput({});
    ASSERT_FALSE(input.openInputs().empty());
    const std::vector<unsigned char> noteOn { 0x90, 40, 100 };
    keyboard.sendMessage(&noteOn);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!input.takePlayed() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    EXPECT_EQ(song.player().soloTrack(), 4);
}
