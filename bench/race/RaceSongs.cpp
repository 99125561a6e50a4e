// pulsara_race_songs FOLDER: writes the songs that bench/race.sh renders with `pulsara --export`
// and with `openmpt123 --render`: eight short mono sounds (16-bit, 44100 Hz, 0.3 to 0.5 s) and,
// for 8, 16 and 32 channels, a song with every note at the sample's own pitch ("plain") and one
// with every note pitched ("pitched"), each as a Pulsara song (.kqu) and as an XM module (.xm)
// holding the same notes.
//
// Both play 9 patterns of 64 steps, 4500 frames per step at 44100 Hz (XM: 147 BPM at speed 6;
// Pulsara: tempo 110.25 with 64 steps and 12 beats per pattern). Channel c plays sound c mod 8 on
// every 4th step (staggered by channel), with volumes from 24/64 to 64/64; a pitched note plays
// 2^(n/12) times as fast, n from -17 to 10 semitones (rates 0.375 to 1.78).
#include "../../tools/demo/WavFileWriter.h"

#include "Sound/SampleLocator.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "base/Path.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <string>
#include <vector>

using namespace pulsara;

namespace {

constexpr uint32_t kRate = 44100;
constexpr uint32_t kSounds = 8;
constexpr uint32_t kPatterns = 9;
constexpr uint32_t kSteps = 64;
constexpr uint32_t kNoteEvery = 4;

// Deterministic noise, so that every run writes the same bytes.
struct Noise {
    uint32_t state = 0x2545F491u;
    double next()
    {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return static_cast<double>(state) / 2147483648.0 - 1.0;
    }
};

// Sound s: a decaying mix of a tone and noise, its length from 0.30 to 0.50 s.
std::vector<float> sound(uint32_t s)
{
    constexpr double kSeconds[kSounds] = { 0.30, 0.31, 0.33, 0.35, 0.30, 0.34, 0.40, 0.50 };
    constexpr double kHertz[kSounds] = { 55, 180, 330, 90, 440, 110, 262, 660 };
    const double noiseShare = (s % 3) * 0.3;
    Noise noise;
    std::vector<float> samples(static_cast<std::size_t>(kSeconds[s] * kRate));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        double t = static_cast<double>(i) / kRate;
        double tone = std::sin(2.0 * std::numbers::pi * kHertz[s] * t * (1.0 + 0.5 * std::exp(-t * 30.0)));
        double envelope = std::exp(-t * (4.0 + s)) * (1.0 - t / kSeconds[s]);
        samples[i] = static_cast<float>(0.8 * envelope * ((1.0 - noiseShare) * tone + noiseShare * noise.next()));
    }
    return samples;
}

struct Note {
    bool on = false;
    int volume = 0; // 0 to 64
    int semitones = 0;
};

// The note of channel `channel` at step `step` of pattern `pattern`.
Note noteAt(uint32_t pattern, uint32_t channel, uint32_t step, bool pitched)
{
    if ((step + channel) % kNoteEvery != 0)
        return {};
    Note note { true, 24 + static_cast<int>((step * 5 + channel * 11 + pattern * 7) % 41), 0 };
    if (pitched) {
        // -17 to 10 without 0: every note is resampled.
        int n = static_cast<int>((step / kNoteEvery * 7 + channel * 5 + pattern * 3) % 27) - 17;
        note.semitones = n >= 0 ? n + 1 : n;
    }
    return note;
}

class BesideTheSong final : public SampleLocator {
public:
    void locateSample(Song&, std::u16string_view, uint32_t) override { }
    PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view) override
    {
        return PathString(pathFileName(samplePath));
    }
};

bool writePulsaraSong(const std::string& path, const std::string& folder, uint32_t channels, bool pitched)
{
    Song song;
    song.player().setTempo(110.25f);
    song.setStepsPerPattern(kSteps);
    song.setBeatsPerPattern(12);
    for (uint32_t c = 0; c < channels; ++c) {
        song.instrument(c).sample().load(fromUtf8(folder + "/race" + std::to_string(c % kSounds) + ".wav"));
        if (!song.instrument(c).sample().isLoaded())
            return false;
        // Thirty-two voices at once stay mostly below full scale.
        song.instrument(c).setVolume(0.3f);
    }
    for (uint32_t p = 0; p < kPatterns; ++p) {
        for (uint32_t c = 0; c < channels; ++c) {
            for (uint32_t step = 0; step < kSteps; ++step) {
                Note note = noteAt(p, c, step, pitched);
                if (note.on) {
                    float rate = static_cast<float>(std::pow(2.0, note.semitones / 12.0));
                    song.player().pattern(p).setCell(c, step, { note.volume / 64.0f, rate, 0 });
                }
            }
        }
        song.player().playlist().set(p, p, 1.0f);
    }
    BesideTheSong locator;
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    return saveSong(song, fromUtf8(path), locator, Backup::None) == 1;
}

void put(std::vector<uint8_t>& bytes, uint32_t value, int size)
{
    for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void putText(std::vector<uint8_t>& bytes, const std::string& text, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        bytes.push_back(i < text.size() ? static_cast<uint8_t>(text[i]) : 0);
}

// An XM module of FastTracker 2's format 1.04, linear frequencies. Every sample is tuned (relative
// note 28, finetune 102) so that C-4 plays it at about 44100 Hz, its own pitch.
bool writeXm(const std::string& path, const std::vector<std::vector<int16_t>>& sounds, uint32_t channels, bool pitched)
{
    constexpr int kMiddleC = 49; // C-4
    std::vector<uint8_t> bytes;
    putText(bytes, "Extended Module: ", 17);
    putText(bytes, "Pulsara race", 20);
    bytes.push_back(0x1A);
    putText(bytes, "pulsara_race_songs", 20);
    put(bytes, 0x0104, 2);
    put(bytes, 276, 4);
    put(bytes, kPatterns, 2); // song length
    put(bytes, 0, 2); // restart position
    put(bytes, channels, 2);
    put(bytes, kPatterns, 2);
    put(bytes, kSounds, 2); // instruments
    put(bytes, 1, 2); // linear frequency table
    put(bytes, 6, 2); // speed
    put(bytes, 147, 2); // BPM
    for (uint32_t i = 0; i < 256; ++i)
        bytes.push_back(static_cast<uint8_t>(i < kPatterns ? i : 0));

    for (uint32_t p = 0; p < kPatterns; ++p) {
        std::vector<uint8_t> data;
        for (uint32_t step = 0; step < kSteps; ++step) {
            for (uint32_t c = 0; c < channels; ++c) {
                Note note = noteAt(p, c, step, pitched);
                if (!note.on) {
                    data.push_back(0x80);
                    continue;
                }
                data.push_back(0x87); // note, instrument and volume follow
                data.push_back(static_cast<uint8_t>(kMiddleC + note.semitones));
                data.push_back(static_cast<uint8_t>(c % kSounds + 1));
                data.push_back(static_cast<uint8_t>(0x10 + note.volume));
            }
        }
        put(bytes, 9, 4);
        bytes.push_back(0);
        put(bytes, kSteps, 2);
        put(bytes, static_cast<uint32_t>(data.size()), 2);
        bytes.insert(bytes.end(), data.begin(), data.end());
    }

    for (uint32_t s = 0; s < kSounds; ++s) {
        const std::vector<int16_t>& samples = sounds[s];
        put(bytes, 263, 4);
        putText(bytes, "race" + std::to_string(s), 22);
        bytes.push_back(0);
        put(bytes, 1, 2); // samples
        put(bytes, 40, 4);
        bytes.insert(bytes.end(), 96 + 48 + 48 + 14, 0); // keymap, envelopes (off), vibrato
        put(bytes, 0, 2); // fadeout
        bytes.insert(bytes.end(), 22, 0);

        put(bytes, static_cast<uint32_t>(samples.size() * 2), 4);
        put(bytes, 0, 4);
        put(bytes, 0, 4);
        bytes.push_back(64); // volume
        bytes.push_back(102); // finetune
        bytes.push_back(0x10); // 16-bit, no loop
        bytes.push_back(128); // panning: centre
        bytes.push_back(28); // relative note
        bytes.push_back(0);
        putText(bytes, "race" + std::to_string(s), 22);
        int16_t previous = 0;
        for (int16_t sample : samples) {
            put(bytes, static_cast<uint16_t>(sample - previous), 2);
            previous = sample;
        }
    }
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(file);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    const std::string folder = argv[1];
    std::filesystem::create_directories(folder);
    std::vector<std::vector<int16_t>> sounds;
    for (uint32_t s = 0; s < kSounds; ++s) {
        std::vector<float> samples = sound(s);
        if (!demo::writeWavFile(folder + "/race" + std::to_string(s) + ".wav", samples, kRate, 16))
            return 1;
        // As the WAV file holds them.
        std::vector<int16_t>& pcm = sounds.emplace_back();
        for (float sample : samples)
            pcm.push_back(static_cast<int16_t>(std::lround(std::clamp(sample, -1.0f, 1.0f) * 32767.0f)));
    }
    for (uint32_t channels : { 8u, 16u, 32u }) {
        for (bool pitched : { false, true }) {
            std::string name = folder + "/race" + std::to_string(channels) + (pitched ? "-pitched" : "-plain");
            if (!writePulsaraSong(name + ".kqu", folder, channels, pitched) || !writeXm(name + ".xm", sounds, channels, pitched)) {
                std::fprintf(stderr, "%s: could not write %s\n", argv[0], name.c_str());
                return 1;
            }
        }
    }
    return 0;
}
