#include "Sound/QueuedWaveDevice.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <thread>

namespace pulsara {

namespace {

constexpr uint32_t kFullVolume = 0xFFFF;
constexpr uint32_t kMaxSampleRate = 384000;

} // namespace

bool QueuedWaveDevice::isPlayable(const WaveFormat& format)
{
    return format.formatTag == WaveFormat::kPcm && format.bitsPerSample == 16
        && (format.channels == 1 || format.channels == 2)
        && format.samplesPerSecond > 0 && format.samplesPerSecond <= kMaxSampleRate
        && format.blockAlign == format.channels * 2;
}

WaveResult QueuedWaveDevice::open(const WaveFormat& format, WaveDeviceListener* listener)
{
    // One object is one handle: a second open while open is refused like a busy device.
    if (isOpen() || !isPlayable(format))
        return WaveResult::NoDevice;
    // An output may go on calling play() while closed; it stays out while the state is reset.
    excludeCallback();
    listener_.store(listener, std::memory_order_release);
    channels_.store(format.channels, std::memory_order_release);
    paused_.store(false, std::memory_order_release);
    framesPlayed_.store(0, std::memory_order_relaxed);
    underruns_.store(0, std::memory_order_relaxed);
    current_ = nullptr;
    offset_ = 0;
    sounding_ = false;
    starved_ = false;
    admitCallback();
    if (WaveResult result = openOutput(format); result != WaveResult::Ok)
        return result;
    open_.store(true, std::memory_order_release);
    if (listener)
        listener->onWaveMessage(WaveMessage::Open, nullptr);
    return WaveResult::Ok;
}

WaveResult QueuedWaveDevice::prepare(WaveHeader& header)
{
    if (!isOpen())
        return WaveResult::NotOpen;
    uint32_t frameBytes = channels_.load(std::memory_order_acquire) * 2u;
    if (!header.data || header.bufferLength == 0 || header.bufferLength % frameBytes != 0)
        return WaveResult::InvalidBuffer;
    header.flags.fetch_or(WaveHeader::kPrepared, std::memory_order_acq_rel);
    return WaveResult::Ok;
}

WaveResult QueuedWaveDevice::unprepare(WaveHeader& header)
{
    if (!isOpen())
        return WaveResult::NotOpen;
    if (header.has(WaveHeader::kInQueue))
        return WaveResult::StillPlaying;
    header.flags.fetch_and(~WaveHeader::kPrepared, std::memory_order_acq_rel);
    return WaveResult::Ok;
}

WaveResult QueuedWaveDevice::write(WaveHeader& header)
{
    if (!isOpen())
        return WaveResult::NotOpen;
    if (!header.has(WaveHeader::kPrepared))
        return WaveResult::Unprepared;
    if (header.has(WaveHeader::kInQueue))
        return WaveResult::StillPlaying;
    header.flags.store((header.flags.load(std::memory_order_relaxed) & ~WaveHeader::kDone) | WaveHeader::kInQueue,
        std::memory_order_release);
    queued_.fetch_add(1, std::memory_order_acq_rel);
    if (!queue_.push(&header)) {
        queued_.fetch_sub(1, std::memory_order_acq_rel);
        header.flags.fetch_and(~WaveHeader::kInQueue, std::memory_order_acq_rel);
        return WaveResult::QueueFull;
    }
    return WaveResult::Ok;
}

WaveResult QueuedWaveDevice::pause()
{
    if (!isOpen())
        return WaveResult::NotOpen;
    paused_.store(true, std::memory_order_release);
    return WaveResult::Ok;
}

WaveResult QueuedWaveDevice::reset()
{
    if (!isOpen())
        return WaveResult::NotOpen;
    excludeCallback();
    // Take everything out first: a listener that writes again from its done notification
    // queues behind the returned buffers instead of being returned in the same sweep.
    std::array<WaveHeader*, WaveHeaderRing::kCapacity + 1> returned {};
    std::size_t count = 0;
    if (current_)
        returned[count++] = current_;
    current_ = nullptr;
    offset_ = 0;
    while (count < returned.size()) {
        WaveHeader* header = queue_.pop();
        if (!header)
            break;
        returned[count++] = header;
    }
    sounding_ = false;
    starved_ = false;
    framesPlayed_.store(0, std::memory_order_relaxed);
    paused_.store(false, std::memory_order_release);
    for (std::size_t i = 0; i < count; ++i)
        finish(returned[i]);
    admitCallback();
    return WaveResult::Ok;
}

WaveResult QueuedWaveDevice::close()
{
    if (!isOpen())
        return WaveResult::NotOpen;
    excludeCallback();
    if (current_ || queued_.load(std::memory_order_acquire) != 0) {
        admitCallback();
        return WaveResult::StillPlaying;
    }
    closeOutput();
    open_.store(false, std::memory_order_release);
    admitCallback();
    if (WaveDeviceListener* listener = listener_.load(std::memory_order_acquire))
        listener->onWaveMessage(WaveMessage::Close, nullptr);
    return WaveResult::Ok;
}

WaveResult QueuedWaveDevice::position(uint32_t& frames) const
{
    if (!isOpen())
        return WaveResult::NotOpen;
    frames = framesPlayed_.load(std::memory_order_relaxed);
    return WaveResult::Ok;
}

WaveResult QueuedWaveDevice::setVolume(uint32_t volume)
{
    volume_.store(volume, std::memory_order_relaxed);
    return WaveResult::Ok;
}

WaveResult QueuedWaveDevice::volume(uint32_t& volume) const
{
    volume = volume_.load(std::memory_order_relaxed);
    return WaveResult::Ok;
}

void QueuedWaveDevice::excludeCallback()
{
    // Dekker's handshake: with both flags sequentially consistent, either the callback sees
    // that it is not admitted, or this thread sees it inside play() and waits for it to leave.
    admitting_.store(false, std::memory_order_seq_cst);
    while (inCallback_.load(std::memory_order_seq_cst))
        std::this_thread::yield();
}

void QueuedWaveDevice::admitCallback()
{
    admitting_.store(true, std::memory_order_seq_cst);
}

void QueuedWaveDevice::finish(WaveHeader* header)
{
    header->flags.store((header->flags.load(std::memory_order_relaxed) & ~WaveHeader::kInQueue) | WaveHeader::kDone,
        std::memory_order_release);
    queued_.fetch_sub(1, std::memory_order_acq_rel);
    if (WaveDeviceListener* listener = listener_.load(std::memory_order_acquire))
        listener->onWaveMessage(WaveMessage::Done, header);
}

void QueuedWaveDevice::copyFromCurrent(int16_t* out, uint32_t firstSample, uint32_t samples)
{
    std::memcpy(out + firstSample, current_->data + offset_, samples * sizeof(int16_t));
    uint32_t volume = volume_.load(std::memory_order_relaxed);
    if (volume == 0xFFFFFFFF)
        return;
    uint32_t channels = channels_.load(std::memory_order_relaxed);
    const std::array<int32_t, 2> gains { static_cast<int32_t>(volume & kFullVolume), static_cast<int32_t>(volume >> 16) };
    for (uint32_t i = firstSample; i < firstSample + samples; ++i)
        out[i] = static_cast<int16_t>(out[i] * gains[i % channels] / static_cast<int32_t>(kFullVolume));
}

void QueuedWaveDevice::play(int16_t* out, uint32_t frames)
{
    uint32_t channels = channels_.load(std::memory_order_relaxed);
    uint32_t wanted = frames * channels;
    uint32_t written = 0;
    inCallback_.store(true, std::memory_order_seq_cst);
    if (admitting_.load(std::memory_order_seq_cst) && !paused_.load(std::memory_order_acquire)) {
        while (written < wanted) {
            if (!current_) {
                current_ = queue_.pop();
                if (!current_)
                    break;
                offset_ = 0;
                if (starved_)
                    underruns_.fetch_add(1, std::memory_order_relaxed);
                starved_ = false;
                sounding_ = true;
            }
            uint32_t left = (current_->bufferLength - offset_) / sizeof(int16_t);
            uint32_t samples = std::min(left, wanted - written);
            copyFromCurrent(out, written, samples);
            offset_ += samples * sizeof(int16_t);
            written += samples;
            framesPlayed_.fetch_add(samples / channels, std::memory_order_relaxed);
            if (offset_ >= current_->bufferLength) {
                WaveHeader* done = current_;
                current_ = nullptr;
                finish(done);
            }
        }
        if (written < wanted && sounding_)
            starved_ = true;
    }
    std::fill(out + written, out + wanted, int16_t { 0 });
    inCallback_.store(false, std::memory_order_seq_cst);
}

} // namespace pulsara
