#include "cli/AudioModuleLoader.h"

#include "App/DataFolders.h"
#include "Sound/AudioModule.h"
#include "Sound/WaveDevice.h"

#include <dlfcn.h>

namespace pulsara {

std::unique_ptr<WaveDevice> loadAudioDevice(const char* backend, std::string& problem)
{
    const std::string program = programFolder();
    // Never unloaded: the audio libraries may leave threads and exit handlers behind them.
    void* module = nullptr;
    for (const char* folder : { "/lib/pulsara/", "/" PULSARA_MODULE_DIR "/" }) {
        std::string path = program + folder + audiomodule::kFileName;
        module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (module)
            break;
        problem = "can't load the audio output (" + std::string(::dlerror()) + ")";
    }
    if (!module)
        return nullptr;
    auto create = reinterpret_cast<audiomodule::CreateDevice>(::dlsym(module, audiomodule::kCreateDevice));
    if (!create) {
        problem = "can't load the audio output (" + std::string(::dlerror()) + ")";
        return nullptr;
    }
    std::unique_ptr<WaveDevice> device;
    create(backend, &device);
    return device;
}

} // namespace pulsara
