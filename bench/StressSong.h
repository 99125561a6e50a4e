#pragma once

// The stress song of the export and playback benchmarks: forty instruments, each a half-second
// decaying stereo tone of its own pitch, a note on every step of every row, every other step
// pitched (so half the voices resample), at 44100 Hz stereo unless told another format. The most
// the sequencer can be asked to mix.
#include "Sound/Song.h"

#include <cmath>
#include <memory>
#include <vector>

namespace pulsara::bench {

constexpr AudioFormat kStressFormat { 44100, 32, 2 };

inline std::unique_ptr<Song> stressSong(uint32_t positions, AudioFormat format = kStressFormat)
{
    auto song = std::make_unique<Song>(format);
    constexpr uint32_t kToneFrames = 22050;
    const uint32_t channels = format.channels;
    for (uint32_t slot = 0; slot < Song::kInstruments; ++slot) {
        std::vector<float> tone(kToneFrames * channels);
        for (uint32_t i = 0; i < kToneFrames; ++i) {
            float decay = 1.0f - static_cast<float>(i) / kToneFrames;
            float value = 0.04f * decay * std::sin(static_cast<float>(i) * (0.012f + 0.0017f * static_cast<float>(slot)));
            tone[channels * i] = value;
            if (channels == 2)
                tone[2 * i + 1] = 0.5f * value;
        }
        song->instrument(slot).sample().setFrames(std::move(tone), channels);
    }
    SongPlayer& player = song->player();
    for (uint32_t row = 0; row < Song::kInstruments; ++row) {
        for (uint32_t step = 0; step < song->stepsPerPattern(); ++step)
            player.pattern(0).setCell(row, step, { 0.8f, step % 2 ? 1.5f : 1.0f, 0 });
    }
    for (uint32_t position = 0; position < positions; ++position)
        player.playlist().set(0, position, 1.0f);
    return song;
}

} // namespace pulsara::bench
