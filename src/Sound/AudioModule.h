#pragma once

#include <memory>

namespace pulsara {

class WaveDevice;

// The sound device as a loadable module of its own (pulsara-audio.so, holding RtAudioDevice), for
// a program that plays only now and then: the command line loads it for --play alone, so that
// its export and dump start without the audio libraries. The window links the device directly.
namespace audiomodule {

constexpr const char* kFileName = "pulsara-audio.so";
constexpr const char* kCreateDevice = "pulsaraCreateWaveDevice";

// The module's one entry: stores a new device in `device`, on RtAudio's back end named `backend`
// ("jack", "pulse" or "alsa"), or on the first one with an output device when `backend` is null.
using CreateDevice = void (*)(const char* backend, std::unique_ptr<WaveDevice>* device);

} // namespace audiomodule

} // namespace pulsara
