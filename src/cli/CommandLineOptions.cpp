#include "cli/CommandLineOptions.h"

#include <charconv>

namespace pulsara {

const char* const kUsageText =
    "usage: pulsara [SONG]                    open the editor window (SONG: a .kqu or .kqt file)\n"
    "       pulsara --export OUT.wav SONG     render SONG to a 16-bit WAV file, no window\n"
    "       pulsara --dump SONG               print the loaded song as JSON on stdout, no window\n"
    "       pulsara --play SONG               play SONG on the audio device until it ends or Enter/Ctrl+C\n"
    "         --rate HZ  --mono | --stereo  --interpolation none|linear  --latency MS\n"
    "         --loop (play the song's loop range forever)  --live (keys 1-0, q-p, a-l, z-m play tracks 1-36)\n"
    "       pulsara --help | --version\n";

namespace {

constexpr uint32_t kMinRate = 8000;
constexpr uint32_t kMaxRate = 192000;
constexpr int kMinLatencyMs = 10;
constexpr int kMaxLatencyMs = 2000;

std::optional<long> parseNumber(const std::string& text)
{
    long value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

} // namespace

std::variant<CommandLineOptions, UsageError> parseCommandLine(const std::vector<std::string>& arguments)
{
    CommandLineOptions options;
    std::vector<std::string> positional;
    bool modeGiven = false;
    auto setMode = [&](RunMode mode) -> bool {
        if (modeGiven && options.mode != mode)
            return false;
        options.mode = mode;
        modeGiven = true;
        return true;
    };

    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        auto value = [&]() -> std::optional<std::string> {
            if (i + 1 >= arguments.size())
                return std::nullopt;
            return arguments[++i];
        };
        if (argument == "--help" || argument == "-h") {
            setMode(RunMode::Help);
            return options;
        }
        if (argument == "--version") {
            setMode(RunMode::Version);
            return options;
        }
        if (argument == "--export") {
            auto output = value();
            if (!output || !setMode(RunMode::Export))
                return UsageError { "--export needs an output file and no other mode" };
            options.outputPath = *output;
        } else if (argument == "--dump") {
            if (!setMode(RunMode::Dump))
                return UsageError { "--dump cannot be combined with another mode" };
        } else if (argument == "--play") {
            if (!setMode(RunMode::Play))
                return UsageError { "--play cannot be combined with another mode" };
        } else if (argument == "--rate") {
            auto number = value() ? parseNumber(arguments[i]) : std::nullopt;
            if (!number || *number < kMinRate || *number > kMaxRate)
                return UsageError { "--rate needs a sample rate from 8000 to 192000 Hz" };
            options.sampleRate = static_cast<uint32_t>(*number);
        } else if (argument == "--mono") {
            options.channels = 1;
        } else if (argument == "--stereo") {
            options.channels = 2;
        } else if (argument == "--interpolation") {
            auto method = value();
            if (method == "none")
                options.interpolation = Interpolation::None;
            else if (method == "linear")
                options.interpolation = Interpolation::Linear;
            else
                return UsageError { "--interpolation is none or linear" };
        } else if (argument == "--latency") {
            auto number = value() ? parseNumber(arguments[i]) : std::nullopt;
            if (!number || *number < kMinLatencyMs || *number > kMaxLatencyMs)
                return UsageError { "--latency needs milliseconds from 10 to 2000" };
            options.latencyMs = static_cast<int>(*number);
        } else if (argument == "--loop") {
            options.loop = true;
        } else if (argument == "--live") {
            options.live = true;
        } else if (argument.size() > 1 && argument[0] == '-') {
            return UsageError { "unknown option " + argument };
        } else {
            positional.push_back(argument);
        }
    }

    if (positional.size() > 1)
        return UsageError { "only one song file may be given" };
    if (!positional.empty())
        options.songPath = positional.front();
    bool needsSong = options.mode == RunMode::Export || options.mode == RunMode::Dump || options.mode == RunMode::Play;
    if (needsSong && options.songPath.empty())
        return UsageError { "a song file is needed" };
    if ((options.loop || options.live) && options.mode != RunMode::Play)
        return UsageError { "--loop and --live go with --play" };
    return options;
}

} // namespace pulsara
