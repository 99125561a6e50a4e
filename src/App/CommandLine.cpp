#include "App/CommandLine.h"

#include "App/CommandLineOptions.h"
#include "App/ConsoleReporting.h"
#include "App/DataFolders.h"
#include "App/PlayCommand.h"
#include "App/SongDump.h"
#include "App/WindowMain.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "Sound/WavExporter.h"
#include "base/text.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <unistd.h>

#ifndef PULSARA_VERSION
#define PULSARA_VERSION "0"
#endif

namespace pulsara {

namespace {

constexpr int kExitDone = 0;
constexpr int kExitError = 1;
constexpr int kExitUsage = 2;

std::u16string absolutePath(const std::string& path)
{
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(path, error);
    return fromUtf8(error ? path : absolute.lexically_normal().string());
}

// Draws "[#####.....]  42%" in place on stderr.
void drawProgress(uint64_t done, uint64_t total)
{
    constexpr int kWidth = 40;
    int percent = total ? static_cast<int>(done * 100 / total) : 100;
    int filled = percent * kWidth / 100;
    std::fprintf(stderr, "\r[%.*s%*s] %3d%%", filled, "########################################", kWidth - filled, "", percent);
    if (done >= total)
        std::fputs("\r\033[K", stderr);
}

// A song loaded for the command line, with the reporting it needs.
struct LoadedSong {
    ConsolePresenter presenter;
    std::unique_ptr<Song> song;
};

int loadForCommandLine(LoadedSong& loaded, const CommandLineOptions& options)
{
    setErrorPresenter(&loaded.presenter);
    std::u16string songPath = absolutePath(options.songPath);
    loaded.presenter.setCurrentFile(songPath);
    loaded.song = std::make_unique<Song>(options.format());
    loaded.song->setInterpolation(options.interpolation);
    ConsoleSampleLocator locator(songPath, samplesFolder());
    if (!loadSong(*loaded.song, songPath, locator))
        return kExitError;
    return kExitDone;
}

int runExport(const CommandLineOptions& options)
{
    LoadedSong loaded;
    int status = loadForCommandLine(loaded, options);
    if (status == kExitDone) {
        std::u16string output = absolutePath(options.outputPath);
        loaded.presenter.setCurrentFile(output);
        WavExporter::Progress progress;
        if (isatty(STDERR_FILENO))
            progress = drawProgress;
        WavExporter exporter;
        if (!exporter.exportTo(loaded.song->player(), output, progress))
            status = kExitError;
    }
    setErrorPresenter(nullptr);
    return loaded.presenter.sawError() ? kExitError : status;
}

int runDump(const CommandLineOptions& options)
{
    LoadedSong loaded;
    int status = loadForCommandLine(loaded, options);
    if (status == kExitDone)
        std::fputs(dumpSongJson(*loaded.song).c_str(), stdout);
    setErrorPresenter(nullptr);
    return loaded.presenter.sawError() ? kExitError : status;
}

int runPlay(const CommandLineOptions& options)
{
    LoadedSong loaded;
    int status = loadForCommandLine(loaded, options);
    if (status == kExitDone)
        status = playSong(*loaded.song, options);
    setErrorPresenter(nullptr);
    return loaded.presenter.sawError() ? kExitError : status;
}

} // namespace

int runCommandLine(int argc, char** argv)
{
    std::vector<std::string> arguments(argv + 1, argv + argc);
    auto parsed = parseCommandLine(arguments);
    if (auto* usage = std::get_if<UsageError>(&parsed)) {
        std::fprintf(stderr, "pulsara: %s\n%s", usage->message.c_str(), kUsageText);
        return kExitUsage;
    }
    const auto& options = std::get<CommandLineOptions>(parsed);
    switch (options.mode) {
    case RunMode::Help:
        std::fputs(kUsageText, stdout);
        return kExitDone;
    case RunMode::Version:
        std::printf("pulsara %s\n", PULSARA_VERSION);
        return kExitDone;
    case RunMode::Export:
        return runExport(options);
    case RunMode::Dump:
        return runDump(options);
    case RunMode::Play:
        return runPlay(options);
    case RunMode::Window:
        // The window
        return runWindow(argc, argv, fromUtf8(options.songPath));
    }
    return kExitUsage;
}

} // namespace pulsara
