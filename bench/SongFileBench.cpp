// Opening and saving the largest song the program makes (40 patterns of 40 rows of 64 notes,
// every pattern named, the playlist full: about 4 MB). A save is the whole of it: the song
// encoded, written to a temporary file, synced to the disk, the old file kept as .bak and the
// new one renamed over it.
#include "cli/ConsoleReporting.h"
#include "Sound/SongFile.h"
#include "Sound/SongWriter.h"
#include "support/FullSong.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

using namespace pulsara;

namespace {

struct FullSongFile {
    std::filesystem::path folder;
    std::u16string path;
    Song song;
    ConsoleSampleLocator locator { {}, {} };

    FullSongFile()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "pulsara-bench-XXXXXX").string();
        folder = ::mkdtemp(pattern.data());
        path = (folder / "full.kqu").u16string();
        test::fillSong(song, 1.5f);
        saveSong(song, path, locator);
    }
    ~FullSongFile() { std::filesystem::remove_all(folder); }
};

void BM_SaveFullSong(benchmark::State& state)
{
    auto file = std::make_unique<FullSongFile>();
    for (auto _ : state)
        benchmark::DoNotOptimize(saveSong(file->song, file->path, file->locator));
    state.counters["bytes"] = double(std::filesystem::file_size(file->folder / "full.kqu"));
}

// The first part of a save: the song encoded in memory, nothing written.
void BM_EncodeFullSong(benchmark::State& state)
{
    auto file = std::make_unique<FullSongFile>();
    for (auto _ : state)
        benchmark::DoNotOptimize(SongWriter(file->song, file->locator, file->path).write());
}

void BM_OpenFullSong(benchmark::State& state)
{
    auto file = std::make_unique<FullSongFile>();
    auto loaded = std::make_unique<Song>();
    for (auto _ : state)
        benchmark::DoNotOptimize(loadSong(*loaded, file->path, file->locator));
}

} // namespace

BENCHMARK(BM_SaveFullSong)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EncodeFullSong)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenFullSong)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
