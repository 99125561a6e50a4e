#pragma once

// A song player wired to 40 instruments whose samples are made in the test, so that rendered
// output shows exactly when and how each row played.
#include "Sound/Instrument.h"
#include "Sound/SongPlayer.h"

#include <array>
#include <vector>

namespace pulsara::test {

struct PlayerRig {
    AudioFormat format;
    std::array<Instrument, PatternPlayer::kTracks> instruments;
    SongPlayer player;

    explicit PlayerRig(uint32_t sampleRate = 44100, uint8_t channels = 1, float tempo = 150.0f)
        : format { sampleRate, 32, channels }
    {
        for (uint32_t track = 0; track < instruments.size(); ++track) {
            instruments[track].sample().setFormat(&format);
            instruments[track].setVolume(1.0f);
            player.setInstrument(track, &instruments[track]);
        }
        player.setFormat(&format);
        player.setVolume(1.0f);
        player.setTempo(tempo);
        player.setLoopEnd(-1);
    }

    // A one-frame click, so every trigger leaves one non-zero frame of `amplitude`.
    void useClick(uint32_t track, float amplitude = 1.0f)
    {
        instruments[track].sample().setFrames(std::vector<float>(format.channels, amplitude), format.channels);
    }

    // Renders `total` frames in blocks whose sizes cycle through `blocks`; returns the mix, its channels interleaved.
    std::vector<float> render(uint64_t total, const std::vector<uint32_t>& blocks)
    {
        std::vector<float> out(total * format.channels);
        uint64_t done = 0;
        for (std::size_t i = 0; done < total; ++i) {
            uint32_t frames = static_cast<uint32_t>(std::min<uint64_t>(blocks[i % blocks.size()], total - done));
            player.render(out.data() + done * format.channels, frames, format.channels);
            done += frames;
        }
        return out;
    }
};

inline std::vector<uint64_t> soundingFrames(const std::vector<float>& mono)
{
    std::vector<uint64_t> frames;
    for (uint64_t i = 0; i < mono.size(); ++i) {
        if (mono[i] != 0.0f)
            frames.push_back(i);
    }
    return frames;
}

} // namespace pulsara::test
