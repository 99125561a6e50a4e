#pragma once

#include "Sound/AudioFormat.h"
#include "Sound/Sample.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace pulsara {

enum class RunMode { Window, Export, Dump, Play, Help, Version };

// What the command line asks for. Without a window the options default to the program's
// defaults (44100 Hz, mono, no interpolation, 200 ms), not to the saved settings.
struct CommandLineOptions {
    RunMode mode = RunMode::Window;
    std::string songPath; // as given, in the local encoding (UTF-8)
    std::string outputPath;
    uint32_t sampleRate = 44100;
    uint8_t channels = 1;
    Interpolation interpolation = Interpolation::None;
    int latencyMs = 200;
    bool loop = false;
    bool live = false;

    AudioFormat format() const { return { sampleRate, 32, channels }; }
};

struct UsageError {
    std::string message;
};

// Parses the arguments after the program name.
std::variant<CommandLineOptions, UsageError> parseCommandLine(const std::vector<std::string>& arguments);

extern const char* const kUsageText;

} // namespace pulsara
