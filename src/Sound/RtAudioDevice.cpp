#include "Sound/RtAudioDevice.h"

#include <alsa/asoundlib.h>

#include <iostream>
#include <sstream>

namespace pulsara {

namespace {

void ignoreAlsaMessage(const char*, int, const char*, int, const char*, ...) { }

// RtAudio and ALSA describe on stderr every back end they fail to reach while RtAudio probes for
// devices, before its own warnings can be switched off; the device's caller says in one line
// what failed instead.
class QuietAudioLibraries {
public:
    QuietAudioLibraries()
        : saved_(std::cerr.rdbuf(discarded_.rdbuf()))
    {
        snd_lib_error_set_handler(&ignoreAlsaMessage);
    }
    ~QuietAudioLibraries()
    {
        std::cerr.rdbuf(saved_);
        snd_lib_error_set_handler(nullptr);
    }
    QuietAudioLibraries(const QuietAudioLibraries&) = delete;
    QuietAudioLibraries& operator=(const QuietAudioLibraries&) = delete;

private:
    std::ostringstream discarded_;
    std::streambuf* saved_;
};

// Errors on RtAudio's own thread must neither throw nor print there; the device notices a
// dead output by the missing done notifications.
void ignoreStreamError(RtAudioError::Type, const std::string&) { }

} // namespace

RtAudioDevice::RtAudioDevice(RtAudio::Api api)
    : api_(api)
{
}

RtAudioDevice::~RtAudioDevice()
{
    // Joins RtAudio's callback thread before the queue it reads goes away.
    closeOutput();
}

std::vector<std::string> RtAudioDevice::outputNames()
{
    QuietAudioLibraries quiet;
    std::vector<std::string> names;
    try {
        RtAudio probe(api_);
        probe.showWarnings(false);
        const unsigned defaultOutput = probe.getDefaultOutputDevice();
        for (unsigned id = 0; id < probe.getDeviceCount(); ++id) {
            RtAudio::DeviceInfo info = probe.getDeviceInfo(id);
            if (!info.probed || info.outputChannels == 0)
                continue;
            if (id == defaultOutput)
                names.insert(names.begin(), info.name);
            else
                names.push_back(info.name);
        }
    } catch (const RtAudioError&) {
    }
    return names;
}

WaveResult RtAudioDevice::openOutput(const WaveFormat& format)
{
    QuietAudioLibraries quiet;
    try {
        rtAudio_ = std::make_unique<RtAudio>(api_);
        rtAudio_->showWarnings(false);
        if (rtAudio_->getDeviceCount() == 0) {
            rtAudio_.reset();
            return WaveResult::NoDevice;
        }
        RtAudio::StreamParameters parameters;
        parameters.deviceId = rtAudio_->getDefaultOutputDevice();
        // The chosen output by its name; one that has gone leaves the default, once said.
        if (!chosenOutput_.empty()) {
            bool found = false;
            for (unsigned id = 0; id < rtAudio_->getDeviceCount() && !found; ++id) {
                RtAudio::DeviceInfo info = rtAudio_->getDeviceInfo(id);
                if (info.probed && info.outputChannels > 0 && info.name == chosenOutput_) {
                    parameters.deviceId = id;
                    found = true;
                }
            }
            fellBack_ = !found && !missingTold_;
            missingTold_ = !found;
        }
        parameters.nChannels = format.channels;
        RtAudio::StreamOptions options;
        options.streamName = "Pulsara";
        unsigned frames = kFramesPerCallback;
        rtAudio_->openStream(&parameters, nullptr, RTAUDIO_SINT16, format.samplesPerSecond, &frames,
            &RtAudioDevice::fillOutput, this, &options, &ignoreStreamError);
        if (rtAudio_->isStreamOpen())
            rtAudio_->startStream();
        if (rtAudio_->isStreamRunning())
            return WaveResult::Ok;
    } catch (const RtAudioError&) {
    } catch (const std::bad_alloc&) {
    }
    closeOutput();
    return WaveResult::NoDevice;
}

void RtAudioDevice::closeOutput()
{
    if (!rtAudio_)
        return;
    try {
        // Stopping drains what RtAudio already holds, so the last buffer is heard whole.
        if (rtAudio_->isStreamRunning())
            rtAudio_->stopStream();
        if (rtAudio_->isStreamOpen())
            rtAudio_->closeStream();
    } catch (const RtAudioError&) {
    }
    rtAudio_.reset();
}

int RtAudioDevice::fillOutput(void* output, void*, unsigned frames, double, RtAudioStreamStatus status, void* device)
{
    auto* self = static_cast<RtAudioDevice*>(device);
    if (status & RTAUDIO_OUTPUT_UNDERFLOW)
        self->noteUnderrun();
    self->play(static_cast<int16_t*>(output), frames);
    return 0;
}

} // namespace pulsara
