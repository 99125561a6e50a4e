#pragma once

#include "Sound/WaveDevice.h"
#include "Sound/WaveHeaderRing.h"

#include <atomic>
#include <cstdint>

namespace pulsara {

// The waveOut semantics on top of any output that pulls 16-bit frames from a callback thread:
// written buffers wait in a lock-free ring and are played in order by play(); each one is
// reported done on that thread as soon as its last sample has been handed out, so the listener
// can refill it right there. Subclasses only open and close the real output.
//
// Reset and close must never be called from the callback thread: they wait until the callback
// has left play() so that the queue is never touched by both threads at once.
class QueuedWaveDevice : public WaveDevice {
public:
    ~QueuedWaveDevice() override = default;

    WaveResult open(const WaveFormat&, WaveDeviceListener*) override;
    bool isOpen() const override { return open_.load(std::memory_order_acquire); }
    WaveResult prepare(WaveHeader&) override;
    WaveResult unprepare(WaveHeader&) override;
    WaveResult write(WaveHeader&) override;
    WaveResult pause() override;
    WaveResult reset() override;
    WaveResult close() override;
    WaveResult position(uint32_t& frames) const override;
    WaveResult setVolume(uint32_t) override;
    WaveResult volume(uint32_t&) const override;

    // Gaps in the sound since the device was opened: times the queue ran dry while playing and
    // a later buffer then had to start after silence (draining at the end of playback is not
    // one), and times the output itself ran short (noteUnderrun).
    uint32_t underruns() const { return underruns_.load(std::memory_order_relaxed); }

protected:
    // Opens and starts the real output for the format, which has been checked already.
    virtual WaveResult openOutput(const WaveFormat&) = 0;
    // Stops and closes the real output; play() is no longer called once this returns.
    virtual void closeOutput() = 0;

    // Fills `frames` interleaved frames from the queue, silence where nothing is queued.
    // Device callback thread: no allocation, locks, I/O or logging.
    void play(int16_t* out, uint32_t frames);
    // The output reports that it ran short of frames. Device callback thread.
    void noteUnderrun() { underruns_.fetch_add(1, std::memory_order_relaxed); }

private:
    static bool isPlayable(const WaveFormat&);
    // Keeps the callback thread out of the queue until admitCallback().
    void excludeCallback();
    void admitCallback();
    void finish(WaveHeader*);
    // Copies samples from the current buffer at the device volume. Device callback thread.
    void copyFromCurrent(int16_t* out, uint32_t firstSample, uint32_t samples);

    WaveHeaderRing queue_;
    std::atomic<WaveDeviceListener*> listener_ { nullptr };
    std::atomic<uint16_t> channels_ { 1 };
    std::atomic<bool> open_ { false };
    std::atomic<bool> paused_ { false };
    std::atomic<bool> admitting_ { true };
    std::atomic<bool> inCallback_ { false };
    std::atomic<uint32_t> queued_ { 0 };
    std::atomic<uint32_t> framesPlayed_ { 0 };
    std::atomic<uint32_t> volume_ { 0xFFFFFFFF };
    std::atomic<uint32_t> underruns_ { 0 };

    // Owned by whichever thread holds the queue: the callback inside play(), or the caller of
    // reset and close while the callback is kept out.
    WaveHeader* current_ = nullptr;
    uint32_t offset_ = 0; // bytes of current_ already played
    bool sounding_ = false; // a buffer has played since open or reset
    bool starved_ = false; // the queue ran dry after sound
};

} // namespace pulsara
