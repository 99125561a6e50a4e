// The entry of the audio module (see AudioModule.h); built into pulsara-audio.so only.
#include "Sound/AudioModule.h"

#include "Sound/RtAudioDevice.h"

extern "C" [[gnu::visibility("default")]] void pulsaraCreateWaveDevice(const char* backend,
    std::unique_ptr<pulsara::WaveDevice>* device)
{
    *device = std::make_unique<pulsara::RtAudioDevice>(backend ? RtAudio::getCompiledApiByName(backend) : RtAudio::UNSPECIFIED);
}
