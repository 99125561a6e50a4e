#include "DemoSong.h"

#include "DemoKit.h"
#include "WavFileWriter.h"

#include "Sound/SampleLocator.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "base/Path.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <initializer_list>

namespace demo {

using namespace pulsara;

namespace {

enum Slot : uint32_t { Kick, Snare, Clap, ClosedHat, OpenHat, Bass, Stab, Rim };

// Samples sit beside the song, so the song stores them by bare name.
class BesideTheSong final : public SampleLocator {
public:
    void locateSample(Song&, std::u16string_view, uint32_t) override { }
    PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view songPath) override
    {
        return PathString(pathFileName(samplePath));
    }
};

float semitones(int steps)
{
    return static_cast<float>(std::pow(2.0, steps / 12.0));
}

// Note length in steps, as the 8.8 fixed-point parameter.
int32_t steps(double length)
{
    return static_cast<int32_t>(length * 256.0);
}

struct Note {
    uint32_t step;
    float volume = 1.0f;
    float rate = 1.0f;
    int32_t parameter = 0;
};

void put(StepGrid& pattern, Slot row, std::initializer_list<Note> notes)
{
    for (const Note& note : notes)
        pattern.setCell(row, note.step, { note.volume, note.rate, note.parameter });
}

void hats(StepGrid& pattern)
{
    for (uint32_t step = 0; step < 16; step += 2)
        put(pattern, ClosedHat, { { step, step % 4 == 2 ? 0.75f : 0.45f } });
    put(pattern, ClosedHat, { { 15, 0.3f } });
}

void twoStep(StepGrid& pattern)
{
    put(pattern, Kick, { { 0 }, { 10, 0.9f } });
    put(pattern, Snare, { { 4 }, { 7, 0.25f }, { 12 }, { 15, 0.3f } });
    hats(pattern);
}

void buildPatterns(SongPlayer& player)
{
    auto pattern = [&](uint32_t slot, const char16_t* name) -> StepGrid& {
        player.setPatternName(slot, name);
        return player.pattern(slot);
    };

    StepGrid& intro = pattern(0, u"Intro");
    put(intro, Kick, { { 0 }, { 10, 0.8f } });
    hats(intro);

    twoStep(pattern(1, u"Two-step"));

    put(pattern(2, u"Bass A"), Bass,
        { { 0, 1.0f, 1.0f, steps(2.5) }, { 3, 0.8f, semitones(3), steps(1) }, { 6, 0.9f, semitones(-2), steps(3) },
            { 10, 1.0f, 1.0f, steps(1.5) }, { 13, 0.7f, semitones(5), steps(2) } });

    put(pattern(3, u"Bass B"), Bass,
        { { 0, 1.0f, semitones(-4), steps(3) }, { 4, 0.8f, semitones(-4), steps(1) }, { 6, 0.9f, semitones(-2), steps(2.5) },
            { 10, 1.0f, semitones(-7), steps(2) }, { 14, 0.7f, semitones(-5), steps(1.5) } });

    put(pattern(4, u"Stabs"), Stab,
        { { 2, 0.7f, 1.0f, steps(1.5) }, { 7, 0.5f, 1.0f, steps(1) }, { 10, 0.7f, semitones(-4), steps(2) } });

    StepGrid& fill = pattern(5, u"Fill");
    put(fill, Kick, { { 0 } });
    for (uint32_t step = 8; step < 16; ++step)
        put(fill, Snare, { { step, 0.35f + 0.08f * static_cast<float>(step - 8), step % 2 ? semitones(2) : 1.0f } });
    put(fill, Rim, { { 2, 0.8f }, { 5, 0.6f } });
    put(fill, OpenHat, { { 0, 0.6f, 1.0f, steps(4) } });

    put(pattern(6, u"Claps"), Clap, { { 4, 0.6f }, { 12, 0.6f } });
    put(player.pattern(6), Rim, { { 3, 0.35f }, { 11, 0.35f } });

    put(pattern(7, u"Open hats"), OpenHat, { { 2, 0.45f, 1.0f, steps(1.5) }, { 6, 0.4f }, { 10, 0.45f, 1.0f, steps(1.5) }, { 14, 0.4f } });
}

void arrange(Playlist& playlist)
{
    auto on = [&](uint32_t pattern, std::initializer_list<uint32_t> positions) {
        for (uint32_t position : positions)
            playlist.set(pattern, position, 1.0f);
    };
    on(0, { 0, 1 });
    on(1, { 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 14, 15, 16, 17, 18 });
    on(2, { 4, 5, 8, 10, 12, 13, 15, 17 });
    on(3, { 6, 7, 9, 11, 14, 16, 18, 19 });
    on(4, { 8, 9, 10, 11, 15, 16, 17, 18 });
    on(5, { 12, 19 });
    on(6, { 6, 7, 10, 11, 13, 14, 15, 16, 17, 18 });
    on(7, { 13, 14, 15, 16, 17, 18 });
}

bool loadKit(Song& song, const std::string& folder)
{
    std::vector<KitSound> kit = synthesiseKit();
    for (uint32_t slot = 0; slot < kit.size(); ++slot) {
        std::string path = folder + "/" + kit[slot].fileName;
        if (!writeWavFile(path, kit[slot].samples, kit[slot].sampleRate, kit[slot].bits))
            return false;
        Instrument& instrument = song.instrument(slot);
        instrument.sample().load(fromUtf8(path));
        if (!instrument.sample().isLoaded())
            return false;
        instrument.setName(fromUtf8(kit[slot].name));
    }
    song.instrument(ClosedHat).setVolume(0.55f);
    song.instrument(OpenHat).setVolume(0.5f);
    song.instrument(Bass).setVolume(0.8f);
    song.instrument(Stab).setVolume(0.45f);
    return true;
}

bool save(Song& song, const std::string& path)
{
    BesideTheSong locator;
    // A fresh file each build: no earlier one is kept as a backup beside it.
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    return saveSong(song, fromUtf8(path), locator) == 1;
}

} // namespace

bool writeDemo(const std::string& folder)
{
    std::filesystem::create_directories(folder);
    Song song;
    if (!loadKit(song, folder))
        return false;
    song.player().setTempo(172.0f);
    song.player().setVolume(0.7f);

    // An empty kit to start from, then the same kit with a beat to build on.
    if (!save(song, folder + "/Empty kit.kqt"))
        return false;
    twoStep(song.player().pattern(0));
    song.player().setPatternName(0, u"Two-step");
    song.player().playlist().set(0, 0, 1.0f);
    if (!save(song, folder + "/Drum and bass.kqt"))
        return false;

    song.player().clearSong();
    buildPatterns(song.player());
    arrange(song.player().playlist());
    return save(song, folder + "/zzzDemo.kqu");
}

} // namespace demo
