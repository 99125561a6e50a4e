// Feeds arbitrary bytes to the song file reader: every input must end in a loaded song, a
// report, or the fatal "corrupted" report, without reading outside the data, recursing without
// bound or asking for unbounded memory. A song that loads must also survive a save and a load:
// writing it, reading that back and writing again gives the same bytes.
#include "Sound/SampleLocator.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "Sound/SongReader.h"
#include "Sound/SongWriter.h"
#include "base/ErrorReporter.h"
#include "base/text.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace pulsara;

class SilentPresenter final : public ErrorPresenter {
public:
    void present(const ErrorReport&) override { }
};

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

struct Harness {
    Harness()
        : path(fromUtf8("/tmp/pulsara_fuzz_song_" + std::to_string(::getpid()) + ".kqu"))
    {
        setFatalErrorsUnwind(true);
        setErrorPresenter(&presenter);
    }

    SilentPresenter presenter;
    CheckingLocator locator;
    Song song;
    std::u16string path;
};

// The input's file lives only while it is being loaded: libFuzzer ends without running static
// destructors, so nothing is left to remove at exit.
class ScratchFile {
public:
    ScratchFile(const std::u16string& path, const uint8_t* data, size_t size);
    ~ScratchFile() { std::remove(name_.c_str()); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

private:
    std::string name_;
};

ScratchFile::ScratchFile(const std::u16string& path, const uint8_t* data, size_t size)
    : name_(toUtf8(path))
{
    std::FILE* file = std::fopen(name_.c_str(), "wb");
    if (!file)
        std::abort();
    bool written = std::fwrite(data, 1, size, file) == size;
    if (std::fclose(file) != 0 || !written)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Harness harness;
    int loaded = 0;
    try {
        ScratchFile file(harness.path, data, size);
        loaded = loadSong(harness.song, harness.path, harness.locator);
    } catch (const FatalErrorUnwind&) {
        return 0;
    }
    if (loaded != 1)
        return 0;

    std::vector<uint8_t> saved = SongWriter(harness.song, harness.locator, harness.path).write();
    try {
        if (SongReader(harness.song, harness.locator, saved).read() != 1)
            std::abort();
    } catch (const FatalErrorUnwind&) {
        std::abort(); // the writer wrote a file its own reader refuses
    }
    if (SongWriter(harness.song, harness.locator, harness.path).write() != saved)
        std::abort();
    return 0;
}
