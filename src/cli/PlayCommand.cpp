#include "cli/PlayCommand.h"

#include "App/Transport.h"
#include "Sound/BoundedSource.h"
#include "Sound/Song.h"
#include "cli/AudioModuleLoader.h"
#include "cli/CommandLineOptions.h"
#include "cli/KeyboardSession.h"
#include "cli/PlayStatusLine.h"

#include <atomic>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace pulsara {

namespace {

constexpr int kExitDone = 0;
constexpr int kExitError = 1;
constexpr int kStatusIntervalMs = 100;

// Keeps the latest meter values for the status line, which reads them on the main thread.
class MeterValues final : public MeterListener {
public:
    // Device callback thread: no allocation, locks, I/O or logging.
    void onPeaks(float left, float right) override
    {
        left_.store(left, std::memory_order_relaxed);
        right_.store(right, std::memory_order_relaxed);
    }
    // Device callback thread.
    void onCpuLoad(float load) override { load_.store(load, std::memory_order_relaxed); }

    float left() const { return left_.load(std::memory_order_relaxed); }
    float right() const { return right_.load(std::memory_order_relaxed); }
    float load() const { return load_.load(std::memory_order_relaxed); }

private:
    std::atomic<float> left_ { 0.0f };
    std::atomic<float> right_ { 0.0f };
    std::atomic<float> load_ { 0.0f };
};

bool asksToStop(const std::string& keys)
{
    return keys.find_first_of("\r\n") != std::string::npos;
}

void showStatus(const Song& song, const Transport& transport, const MeterValues& meters, bool live)
{
    PlayStatus status;
    status.songPosition = song.player().songPosition();
    status.step = song.player().currentStep();
    status.peakLeft = meters.left();
    status.peakRight = meters.right();
    status.clipped = transport.isClipped();
    status.load = meters.load();
    status.live = live;
    std::fprintf(stderr, "\r%s\033[K", PlayStatusLine::format(status).c_str());
    std::fflush(stderr);
}

} // namespace

int playSong(Song& song, const CommandLineOptions& options)
{
    // PULSARA_AUDIO_BACKEND (jack, pulse or alsa) picks RtAudio's back end; otherwise the first
    // one that has an output device.
    std::string problem;
    std::unique_ptr<WaveDevice> device = loadAudioDevice(std::getenv("PULSARA_AUDIO_BACKEND"), problem);
    if (!device) {
        std::fprintf(stderr, "pulsara: error: %s\n", problem.c_str());
        return kExitError;
    }
    Transport transport(*device, song);
    transport.open(options.latencyMs);
    transport.setDocumentFlags(Transport::kReleaseDeviceFlag);
    MeterValues meters;
    transport.setMeterListener(&meters);

    // Without --loop the song is heard once: its player would otherwise wrap to the loop start.
    BoundedSource once(song.player());
    song.player().seek(0);
    if (!options.loop) {
        once.setEnd(song.player().lengthInFrames());
        transport.setSource(&once);
    }

    KeyboardSession keyboard;
    if (!transport.play()) {
        std::fputs("pulsara: error: no audio output device could be opened\n", stderr);
        return kExitError;
    }
    transport.setLiveMode(options.live);

    bool showsStatus = isatty(STDERR_FILENO);
    bool songRunning = true;
    for (;;) {
        std::string keys = keyboard.waitForKeys(kStatusIntervalMs);
        if (keyboard.interrupted() || asksToStop(keys))
            break;
        for (char key : keys) {
            int32_t track = Transport::liveTrackForKey(static_cast<uint32_t>(std::toupper(static_cast<unsigned char>(key))));
            if (options.live && track >= 0)
                transport.triggerLive(track);
        }
        if (songRunning && !options.loop && once.hasEnded()) {
            songRunning = false;
            if (!options.live) {
                // The last buffers still play out before the device is let go.
                transport.stopPlaying();
                break;
            }
            // Live notes go on through the player itself.
            song.player().stop();
            transport.setSource(&song.player());
        }
        if (showsStatus)
            showStatus(song, transport, meters, options.live);
    }
    transport.setMeterListener(nullptr);
    transport.close();
    if (showsStatus)
        std::fputs("\n", stderr);
    return kExitDone;
}

} // namespace pulsara
