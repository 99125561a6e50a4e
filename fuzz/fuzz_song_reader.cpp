// Feeds arbitrary bytes to the song file reader: every input must end in a loaded song, a
// report, or the fatal "corrupted" report, without reading outside the data, recursing without
// bound or asking for unbounded memory. A song that loads must also survive a save and a load:
// writing it, reading that back and writing again gives the same bytes.
#include "FuzzInput.h"
#include "Sound/SampleLocator.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "Sound/SongReader.h"
#include "Sound/SongWriter.h"

#include <cstdlib>
#include <vector>

using namespace pulsara;

namespace {

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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static fuzz::SilentPresenter presenter;
    static CheckingLocator locator;
    static Song song;
    std::u16string path = fuzz::storeInMemoryFile(data, size);
    try {
        if (loadSong(song, path, locator) != 1)
            return 0;
    } catch (const FatalErrorUnwind&) {
        return 0;
    }
    std::vector<uint8_t> saved = SongWriter(song, locator, path).write();
    try {
        if (SongReader(song, locator, saved).read() != 1)
            std::abort();
    } catch (const FatalErrorUnwind&) {
        std::abort(); // the writer wrote a file its own reader refuses
    }
    if (SongWriter(song, locator, path).write() != saved)
        std::abort();
    return 0;
}
