#include "cli/CommandLine.h"

#include "App/DataFolders.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "Sound/WavExporter.h"
#include "base/Path.h"
#include "base/text.h"
#include "cli/CommandLineOptions.h"
#include "cli/ConsoleReporting.h"
#include "cli/PlayCommand.h"
#include "cli/SongDump.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace pulsara {

namespace {

constexpr int kExitDone = 0;
constexpr int kExitError = 1;
constexpr int kExitUsage = 2;
constexpr const char* kWindowProgram = "pulsara-window";

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

// Loads the song for a mode without a window and runs `action` on it. Any error reported on
// the way makes the exit status 1, even when the action itself got through.
template<typename Action>
int withLoadedSong(const CommandLineOptions& options, Action action)
{
    ConsolePresenter presenter;
    setErrorPresenter(&presenter);
    std::u16string songPath = absolutePath(options.songPath);
    presenter.setCurrentFile(songPath);
    Song song(options.format());
    song.setInterpolation(options.interpolation);
    ConsoleSampleLocator locator(songPath, samplesFolder());
    int status = loadSong(song, songPath, locator) ? action(song, presenter) : kExitError;
    setErrorPresenter(nullptr);
    return presenter.sawError() ? kExitError : status;
}

int runExport(const CommandLineOptions& options)
{
    return withLoadedSong(options, [&](Song& song, ConsolePresenter& presenter) {
        std::u16string output = absolutePath(options.outputPath);
        presenter.setCurrentFile(output);
        // An export never takes the place of the song it renders.
        std::error_code error;
        if (std::filesystem::equivalent(nativePath(output), nativePath(absolutePath(options.songPath)), error)) {
            reportError(&errorContext(), kRecoverable, "Sound/fileOut", 15, u"can't write file \"" + output + u"\"");
            return kExitError;
        }
        WavExporter::Progress progress;
        if (isatty(STDERR_FILENO)) {
            progress = [](uint64_t done, uint64_t total) {
                drawProgress(done, total);
                return true;
            };
        }
        return WavExporter().exportTo(song.player(), output, progress) ? kExitDone : kExitError;
    });
}

int runDump(const CommandLineOptions& options)
{
    return withLoadedSong(options, [](Song& song, ConsolePresenter&) {
        std::fputs(dumpSongJson(song).c_str(), stdout);
        return kExitDone;
    });
}

int runPlay(const CommandLineOptions& options)
{
    return withLoadedSong(options, [&](Song& song, ConsolePresenter&) { return playSong(song, options); });
}

// The window is a program of its own installed beside this one, so that a run without a window
// never loads the window system's libraries. It takes the song (or nothing) and this program's
// name, which the window system shows as the program's.
int runWindow(const char* programName, const std::string& songPath)
{
    std::string window = programFolder() + '/' + kWindowProgram;
    std::vector<char*> arguments { const_cast<char*>(programName) };
    if (!songPath.empty())
        arguments.push_back(const_cast<char*>(songPath.c_str()));
    arguments.push_back(nullptr);
    ::execv(window.c_str(), arguments.data());
    std::fprintf(stderr, "pulsara: error: can't start the window (%s: %s)\n", window.c_str(), std::strerror(errno));
    return kExitError;
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
        return runWindow(argc > 0 ? argv[0] : "pulsara", options.songPath);
    }
    return kExitUsage;
}

} // namespace pulsara
