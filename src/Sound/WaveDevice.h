#pragma once

#include <atomic>
#include <string>
#include <vector>
#include <cstdint>

namespace pulsara {

// The notifications a wave device sends to whoever opened it, with their message numbers.
enum class WaveMessage : uint32_t {
    Open = 955,  // the device has been opened
    Close = 956, // the device has been closed
    Done = 957,  // a written buffer has been played (or returned by reset)
};

// Why a wave device call failed.
enum class WaveResult : uint8_t {
    Ok,
    NoDevice,      // no output device could be opened, or the format was refused
    NotOpen,       // the call needs an open device
    StillPlaying,  // a buffer is still queued (close), or this one is (unprepare, write)
    Unprepared,    // the buffer was written without being prepared
    InvalidBuffer, // the buffer has no data or its length is not a whole number of samples
    QueueFull,
};

// The device-side format: always 16-bit PCM here, interleaved.
struct WaveFormat {
    static constexpr uint16_t kPcm = 1;

    uint16_t formatTag = kPcm;
    uint16_t channels = 1;
    uint32_t samplesPerSecond = 44100;
    uint32_t averageBytesPerSecond = 88200;
    uint16_t blockAlign = 2;
    uint16_t bitsPerSample = 16;
    uint16_t extraSize = 0;
};

// One buffer handed to the device. The owner keeps data and length; the device sets the flags.
// The flags are atomic because the device's callback thread sets Done while the owner's thread
// reads them.
struct WaveHeader {
    static constexpr uint32_t kDone = 1;     // played or returned by reset
    static constexpr uint32_t kPrepared = 2; // may be written
    static constexpr uint32_t kInQueue = 16; // written and not yet done

    uint8_t* data = nullptr;
    uint32_t bufferLength = 0; // bytes
    std::atomic<uint32_t> flags { 0 };

    bool has(uint32_t flag) const { return (flags.load(std::memory_order_acquire) & flag) != 0; }
};

// Receives a device's notifications. Open and Close arrive on the thread that opened or closed
// the device. Done arrives on the device's callback thread when a buffer finishes playing, and
// on the caller's thread for the buffers that reset returns.
class WaveDeviceListener {
public:
    virtual ~WaveDeviceListener() = default;
    virtual void onWaveMessage(WaveMessage, WaveHeader*) = 0;
};

// A waveform output device with the waveOut call set: buffers are prepared, written to the
// queue, played in order and reported done one by one.
class WaveDevice {
public:
    virtual ~WaveDevice() = default;

    // Opens the default output device; the listener is not owned and must outlive the device's
    // open period.
    virtual WaveResult open(const WaveFormat&, WaveDeviceListener*) = 0;
    virtual bool isOpen() const = 0;
    virtual WaveResult prepare(WaveHeader&) = 0;
    // Fails with StillPlaying while the buffer is queued.
    virtual WaveResult unprepare(WaveHeader&) = 0;
    // Queues a prepared buffer behind the ones already queued.
    virtual WaveResult write(WaveHeader&) = 0;
    // Holds playback where it is until reset.
    virtual WaveResult pause() = 0;
    // Stops playback, returns every queued buffer (each reported done) and sets the position
    // back to 0.
    virtual WaveResult reset() = 0;
    // Fails with StillPlaying while any buffer is queued.
    virtual WaveResult close() = 0;
    // Frames played since the device was opened or last reset.
    virtual WaveResult position(uint32_t& frames) const = 0;
    // Left volume in the low 16 bits, right volume in the high 16 bits, 0xFFFF is full. The
    // volume is the device's and outlasts closing.
    virtual WaveResult setVolume(uint32_t) = 0;
    virtual WaveResult volume(uint32_t&) const = 0;

    // The outputs a user can choose between, the system's default first; none where the device
    // offers no choice.
    virtual std::vector<std::string> outputNames() { return {}; }
    // Plays on the named output from the next open; an empty name is the system's default.
    virtual void chooseOutput(std::string name) { }
    // The chosen output was gone at the last open and the default played instead: true once for
    // each time that happened.
    virtual bool takeFallbackNotice() { return false; }
};

} // namespace pulsara
