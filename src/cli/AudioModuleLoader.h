#pragma once

#include <memory>
#include <string>

namespace pulsara {

class WaveDevice;

// Loads the audio module (Sound/AudioModule.h) for `pulsara --play`: from lib/pulsara beside the
// program in the build tree, or from the installed library folder. The module stays loaded for
// the rest of the run. Returns the device, or nullptr with `problem` saying why.
std::unique_ptr<WaveDevice> loadAudioDevice(const char* backend, std::string& problem);

} // namespace pulsara
