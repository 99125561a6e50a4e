#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace demo {

// One synthesised drum-and-bass instrument, written as its own WAV file.
struct KitSound {
    std::string fileName;
    std::string name;
    uint32_t sampleRate;
    uint16_t bits;
    std::vector<float> samples; // mono, [-1, 1]
};

// Kick, snare, clap, closed and open hat, sub bass, chord stab and a rim shot: mostly
// 16-bit at 44100 Hz, with the snare at 22050 Hz and the closed hat in 8 bits so that songs
// built from the kit use every conversion of the WAV reader.
std::vector<KitSound> synthesiseKit();

} // namespace demo
