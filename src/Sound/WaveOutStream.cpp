#include "Sound/WaveOutStream.h"

#include "base/mem.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>

namespace pulsara {

namespace {

constexpr uint32_t kSamplesPerUnit = 32;
constexpr uint16_t kDeviceBits = 16;
constexpr double kFullScale = 32767.0;
constexpr float kVolumeScale = 1.5259022e-5f; // 1/65535
constexpr double kMaxVolumeWord = 65535.0;

} // namespace

uint32_t steadyTickCount()
{
    auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

WaveOutStream::WaveOutStream(WaveDevice& device, SoundSource* source, TickClock tickClock)
    : source_(source)
    , device_(device)
    , tickClock_(tickClock)
{
}

WaveOutStream::~WaveOutStream()
{
    // The device must not call back into a stream that is gone.
    if (handle_.load(std::memory_order_acquire))
        WaveOutStream::stop();
}

int WaveOutStream::setFormat(const AudioFormat* format)
{
    format_.store(format, std::memory_order_release);
    if (SoundSource* source = this->source())
        source->setFormat(format);
    return 1;
}

int WaveOutStream::start()
{
    StreamState state = this->state();
    if (state == StreamState::Playing)
        return 1;
    if (state == StreamState::Draining) {
        // The queued buffers are still on the device; they will be refilled as they come back.
        state_.store(StreamState::Playing, std::memory_order_release);
        return 1;
    }
    if (!openDevice())
        return 0;
    currentBuffer_.store(0, std::memory_order_relaxed);
    startGate_.store(StartGate::Queuing, std::memory_order_relaxed);
    state_.store(StreamState::Playing, std::memory_order_release);
    // Once the first buffer is queued the device may hand it back and refill it on its own
    // thread, which must not meet a render of the second one here.
    if (renderBuffer(0) && renderBuffer(1)) {
        WaveDevice* handle = handle_.load(std::memory_order_acquire);
        handle->write(headers_[0]);
        handle->write(headers_[1]);
    }
    StartGate queuing = StartGate::Queuing;
    startGate_.compare_exchange_strong(queuing, StartGate::Open, std::memory_order_acq_rel);
    return 1;
}

bool WaveOutStream::openDevice()
{
    if (state() == StreamState::Playing || handle_.load(std::memory_order_acquire))
        stop();
    // A failed preparation leaves the device open while the state says Closed, where stop does
    // nothing: let go of that device before opening it again.
    if (WaveDevice* stale = handle_.load(std::memory_order_acquire); stale && state() == StreamState::Closed) {
        stale->reset();
        closeDevice();
    }
    const AudioFormat* format = this->format();
    if (!format)
        return false;
    waveFormat_.formatTag = WaveFormat::kPcm;
    waveFormat_.channels = format->channels;
    waveFormat_.samplesPerSecond = format->sampleRate;
    waveFormat_.bitsPerSample = kDeviceBits;
    waveFormat_.blockAlign = static_cast<uint16_t>(format->channels * kDeviceBits / 8);
    waveFormat_.averageBytesPerSecond = static_cast<uint32_t>(uint64_t { format->channels } * kDeviceBits * format->sampleRate / 8);
    waveFormat_.extraSize = kWaveFormatExtraSize;

    handle_.store(nullptr, std::memory_order_release);
    WaveDeviceListener* listener = notificationWindow_ ? notificationWindow_ : this;
    if (device_.open(waveFormat_, listener) != WaveResult::Ok)
        return false;
    handle_.store(&device_, std::memory_order_release);
    if (!sizeBuffers(*format))
        return false;
    for (size_t i = 0; i < headers_.size(); ++i) {
        WaveHeader& header = headers_[i];
        header.data = reinterpret_cast<uint8_t*>(deviceBuffers_[i].data());
        header.bufferLength = static_cast<uint32_t>(deviceBuffers_[i].size() * sizeof(int16_t));
        header.flags.store(0, std::memory_order_release);
        if (device_.prepare(header) != WaveResult::Ok)
            return false;
    }
    return true;
}

bool WaveOutStream::sizeBuffers(const AudioFormat& format)
{
    // One unit is 32 samples; a buffer holds the latency period rounded down to whole units.
    int64_t framesPerPeriod = int64_t { format.sampleRate } * latency() / 1000;
    int64_t unit = std::max<int64_t>(0, framesPerPeriod * format.channels / kSamplesPerUnit);
    auto samples = static_cast<size_t>(unit * kSamplesPerUnit);
    return tryResize(mixBuffer_, samples) && tryResize(deviceBuffers_[0], samples)
        && tryResize(deviceBuffers_[1], samples);
}

void WaveOutStream::stop()
{
    if (state() == StreamState::Closed)
        return;
    state_.store(StreamState::Resetting, std::memory_order_release);
    WaveDevice* handle = handle_.load(std::memory_order_acquire);
    if (!handle)
        return;
    handle->pause();
    handle->reset();
    if (!closeDevice())
        reportError(context_, kFatal, kSourceName, kCloseLine, u"Close");
    onPeaks(0.0f, 0.0f);
    clipFlag_.store(0, std::memory_order_relaxed);
    onCpuLoad(0.0f);
}

bool WaveOutStream::closeDevice()
{
    WaveDevice* handle = handle_.load(std::memory_order_acquire);
    if (!handle)
        return false;
    for (WaveHeader& header : headers_) {
        if (header.has(WaveHeader::kPrepared) && handle->unprepare(header) != WaveResult::Ok)
            return false;
    }
    if (handle->close() != WaveResult::Ok)
        return false;
    handle_.store(nullptr, std::memory_order_release);
    state_.store(StreamState::Closed, std::memory_order_release);
    return true;
}

int WaveOutStream::stopGracefully()
{
    if (state() != StreamState::Playing)
        return 1;
    beginDrain();
    if (notificationWindow_)
        return 1;
    while (!finishDrain())
        std::this_thread::sleep_for(kDrainPollInterval);
    return 1;
}

void WaveOutStream::beginDrain()
{
    if (state() == StreamState::Playing)
        state_.store(StreamState::Draining, std::memory_order_release);
}

bool WaveOutStream::finishDrain()
{
    if (state() != StreamState::Draining)
        return true;
    // Closing fails while the device still holds a queued buffer: that is the sign that the
    // sound has not finished yet.
    return !handle_.load(std::memory_order_acquire) || closeDevice();
}

int WaveOutStream::setLatency(int milliseconds)
{
    if (SoundSource* source = this->source())
        source->setLatency(milliseconds);
    auto stored = static_cast<int16_t>(std::clamp<int>(milliseconds, std::numeric_limits<int16_t>::min(),
        std::numeric_limits<int16_t>::max()));
    if (state() == StreamState::Playing) {
        stop();
        latency_.store(stored, std::memory_order_relaxed);
        start();
    } else {
        latency_.store(stored, std::memory_order_relaxed);
    }
    return 1;
}

uint32_t WaveOutStream::position() const
{
    if (state() == StreamState::Closed)
        return 0;
    WaveDevice* handle = handle_.load(std::memory_order_acquire);
    if (!handle)
        return kNoHandlePosition;
    uint32_t frames = 0;
    if (handle->position(frames) != WaveResult::Ok) {
        reportError(context_, kFatal, kSourceName, kPositionLine, u"waveOutGetPosition");
        return 0;
    }
    return frames;
}

void WaveOutStream::setVolume(float volume)
{
    // Clamped so that the conversion stays defined; inside [0, 1] it is plain truncation.
    double scaled = std::clamp(static_cast<double>(volume) * kMaxVolumeWord, 0.0, kMaxVolumeWord);
    if (std::isnan(scaled))
        scaled = 0.0;
    auto word = static_cast<uint32_t>(scaled);
    device_.setVolume(word | (word << 16));
}

float WaveOutStream::volume() const
{
    uint32_t word = 0;
    device_.volume(word);
    return static_cast<float>(word) * kVolumeScale;
}

int WaveOutStream::onDeviceMessage(uint32_t message)
{
    switch (static_cast<WaveMessage>(message)) {
    case WaveMessage::Open:
    case WaveMessage::Close:
        return 1;
    case WaveMessage::Done:
        if (state() == StreamState::Playing)
            fill();
        else if (state() == StreamState::Draining)
            stop();
        return 1;
    }
    return 0;
}

void WaveOutStream::onWaveMessage(WaveMessage message, WaveHeader*)
{
    lastRequestTick_.store(tickClock_(), std::memory_order_relaxed);
    if (message != WaveMessage::Done || state() != StreamState::Playing)
        return;
    StartGate gate = startGate_.load(std::memory_order_acquire);
    if (gate == StartGate::Queuing && startGate_.compare_exchange_strong(gate, StartGate::Owed, std::memory_order_acq_rel))
        return;
    if (gate == StartGate::Owed) {
        // Only the second buffer can come back after an owed fill: both are free again.
        startGate_.store(StartGate::Open, std::memory_order_relaxed);
        fill();
    }
    fill();
}

void WaveOutStream::fill()
{
    WaveDevice* handle = handle_.load(std::memory_order_acquire);
    int16_t current = currentBuffer_.load(std::memory_order_relaxed);
    if (!handle || !renderBuffer(current))
        return;
    handle->write(headers_[current]);
    currentBuffer_.store(static_cast<int16_t>((current + 1) % 2), std::memory_order_relaxed);
}

bool WaveOutStream::renderBuffer(int16_t buffer)
{
    const AudioFormat* format = this->format();
    WaveDevice* handle = handle_.load(std::memory_order_acquire);
    if (!format || !handle || format->channels < 1 || format->channels > 2)
        return false;
    uint32_t channels = format->channels;

    // The count is the float buffer's bytes over the source's frame size. With a float format
    // that is the frames the buffer holds; a smaller sample size would ask for more than fits,
    // so the request is capped there.
    uint32_t sourceFrameBytes = format->bitsPerSample * channels / 8;
    auto count = static_cast<uint32_t>(sourceFrameBytes ? floatBufferBytes() / sourceFrameBytes : 0);
    count = std::min<uint32_t>(count, static_cast<uint32_t>(mixBuffer_.size() / channels));
    if (SoundSource* source = this->source())
        source->render(mixBuffer_.data(), count, channels);

    std::array<float, 2> peaks { 0.0f, 0.0f };
    std::vector<int16_t>& device = deviceBuffers_[buffer];
    convert(device.data(), static_cast<uint32_t>(device.size() / channels), channels, peaks);
    float loudest = std::max(peaks[0], peaks[1]);
    clipFlag_.store(loudest >= 1.0f ? 1 : 0, std::memory_order_relaxed);
    onPeaks(peaks[0], channels <= 1 ? peaks[0] : peaks[1]);

    int latency = this->latency();
    uint32_t elapsed = tickClock_() - lastRequestTick_.load(std::memory_order_relaxed);
    onCpuLoad(latency != 0 ? static_cast<float>(elapsed) / static_cast<float>(latency) : 0.0f);
    return true;
}

void WaveOutStream::convert(int16_t* out, uint32_t frames, uint32_t channels, std::array<float, 2>& peaks)
{
    const float* in = mixBuffer_.data();
    for (uint32_t frame = 0; frame < frames; ++frame) {
        for (uint32_t channel = 0; channel < channels; ++channel) {
            float x = *in++;
            if (x > 1.0f)
                x = 1.0f;
            else if (x < -1.0f)
                x = -1.0f;
            else if (std::isnan(x))
                x = 0.0f; // would have no defined 16-bit value
            // The peak keeps its sign: a stored negative peak is replaced by any later sample.
            if (std::fabs(static_cast<double>(x)) > static_cast<double>(peaks[channel]))
                peaks[channel] = x;
            *out++ = static_cast<int16_t>(x * kFullScale);
        }
    }
}

} // namespace pulsara
