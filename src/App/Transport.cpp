#include "App/Transport.h"

#include "Sound/Song.h"

#include <string_view>

namespace pulsara {

namespace {

// The live keys in track order: the digit row, then the three letter rows.
constexpr std::string_view kLiveKeys = "1234567890QWERTYUIOPASDFGHJKLZXCVBNM";

} // namespace

Transport::Transport(WaveDevice& device, Song& song)
    : WaveOutStream(device)
    , song_(song)
{
}

Transport::~Transport()
{
    close();
}

void Transport::open(int latencyMs)
{
    setSource(&song_.player());
    setFormat(&song_.format());
    setLatency(latencyMs);
}

int Transport::play()
{
    // The song starts before the stream so that the two first buffers already hold it.
    song_.player().start();
    if (!start()) {
        song_.player().stop();
        return 0;
    }
    return 1;
}

void Transport::stopPlaying()
{
    song_.player().stop();
    if (releasesDevice() && !liveMode_)
        drain();
}

void Transport::close()
{
    song_.player().stop();
    stop();
}

void Transport::moveToSongPosition(int32_t position, uint32_t step)
{
    // Only a Playing stream renders: the others have no fill that could run now.
    if (isRunning())
        song_.player().requestSongPosition(position, step);
    else
        song_.player().moveToSongPosition(position, step);
}

void Transport::drain()
{
    if (drainsInBackground_)
        beginDrain();
    else
        stopGracefully();
}

void Transport::changeFormat(AudioFormat format)
{
    bool running = isRunning();
    // The stream reads the format record while it is open, and its buffers are sized for it.
    if (state() != StreamState::Closed)
        stop();
    song_.setFormat(format);
    setFormat(&song_.format());
    if (running)
        start();
}

bool Transport::isPlaying() const
{
    return song_.player().isPlaying();
}

void Transport::setLiveMode(bool on)
{
    liveMode_ = on;
    if (on)
        start();
    else if (!isPlaying() && releasesDevice())
        drain();
}

int Transport::triggerLive(int32_t track)
{
    if (!isRunning() && !start())
        return 0;
    song_.player().triggerLive(track);
    return 1;
}

int32_t Transport::liveTrackForKey(uint32_t key)
{
    if (key > 0x7F)
        return -1;
    size_t index = kLiveKeys.find(static_cast<char>(key));
    return index == std::string_view::npos ? -1 : static_cast<int32_t>(index);
}

int Transport::filterMessage(uint32_t message, uintptr_t wParam, intptr_t)
{
    if (!liveMode_ || message != kKeyDownMessage)
        return 0;
    int32_t track = liveTrackForKey(static_cast<uint32_t>(wParam));
    if (track < 0)
        return 0;
    triggerLive(track);
    return 1;
}

void Transport::onPeaks(float left, float right)
{
    if (MeterListener* listener = meterListener_.load(std::memory_order_acquire))
        listener->onPeaks(left, right);
}

void Transport::onCpuLoad(float load)
{
    if (MeterListener* listener = meterListener_.load(std::memory_order_acquire))
        listener->onCpuLoad(load);
}

} // namespace pulsara
