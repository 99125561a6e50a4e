// Feeds arbitrary bytes to the song file reader: every input must end in a loaded song, a
// report, or the fatal "corrupted" report, without reading outside the data, recursing without
// bound or asking for unbounded memory. A song that loads must also survive a save and a load:
// writing it, reading that back and writing again gives the same bytes.
#include "FuzzInput.h"
#include "Sound/SampleLocator.h"
#include "Sound/Song.h"
#include "Sound/SongReader.h"
#include "Sound/SongWriter.h"

#include <cstdlib>
#include <span>
#include <vector>

using namespace pulsara;

namespace {

// Only names the song in the writer; nothing is opened or written.
constexpr std::u16string_view kSongPath = u"/fuzz/input.kqu";

// Loads nothing; checks what the reader hands over.
class CheckingLocator final : public SampleLocator {
public:
    void locateSample(Song&, std::u16string_view storedName, uint32_t instrument) override
    {
        if (storedName.empty() || storedName.find(u'\\') != std::u16string_view::npos || instrument >= Song::kInstruments)
            std::abort();
    }
    PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view) override { return samplePath; }
};

// One song serves every input, as one serves the program for its whole run: each read starts by
// emptying it (Song::reset). That reset keeps the tempo, the master volume and, when the file
// names none, the editor shown, so those go back to where a new song starts; the pattern length
// and beats go back first, as the tempo's step length is worked out from them. No input then
// reads on top of what an earlier one left, and every fault found replays from its input alone.
void startAsNew(Song& song)
{
    song.setStepsPerPattern(Song::kDefaultStepsPerPattern);
    song.setBeatsPerPattern(Song::kDefaultBeatsPerPattern);
    song.player().setTempo(Song::kStartTempo);
    song.player().setVolume(Song::kStartVolume);
    song.setEditorShown(0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static fuzz::SilentPresenter presenter;
    static CheckingLocator locator;
    static Song song;
    startAsNew(song);
    try {
        if (SongReader(song, locator, std::span(data, size)).read() != 1)
            return 0;
    } catch (const FatalErrorUnwind&) {
        return 0;
    }
    std::vector<uint8_t> saved = SongWriter(song, locator, kSongPath).write();
    try {
        if (SongReader(song, locator, saved).read() != 1)
            std::abort();
    } catch (const FatalErrorUnwind&) {
        std::abort(); // the writer wrote a file its own reader refuses
    }
    if (SongWriter(song, locator, kSongPath).write() != saved)
        std::abort();
    return 0;
}
