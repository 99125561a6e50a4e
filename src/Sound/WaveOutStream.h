#pragma once

#include "Sound/AudioFormat.h"
#include "Sound/SoundSource.h"
#include "Sound/WaveDevice.h"
#include "base/ErrorReporter.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <vector>

namespace pulsara {

enum class StreamState : int16_t {
    Closed = 0,
    Playing = 1,
    Draining = 2,
    Resetting = 3,
};

// A millisecond tick counter that wraps at 32 bits.
using TickClock = uint32_t (*)();
// Milliseconds on the steady clock.
uint32_t steadyTickCount();

// Turns the float mix of a SoundSource into 16-bit PCM and keeps a wave device fed with exactly
// two buffers of one latency period each. Every time the device hands a buffer back, the next
// one is rendered, clipped, converted and written, and the peak levels and the render load of
// that period are passed to onPeaks and onCpuLoad.
//
// start, stop, stopGracefully, setLatency, setFormat and position run on the GUI thread; the
// fill runs on the device's callback thread. Start renders both buffers on the GUI thread
// before it queues either, so no fill can run meanwhile. The state word is the hand-over
// between the two: the callback fills only while it says Playing. The buffers, the mix buffer
// and the current buffer index belong to whichever thread renders (start, then the callback);
// the GUI thread sizes them while the device is closed.
class WaveOutStream : private WaveDeviceListener {
public:
    static constexpr const char* kSourceName = "Sound/waveOut";
    static constexpr int kCloseLine = 126;
    static constexpr int kPositionLine = 171;
    static constexpr uint32_t kNoHandlePosition = 0xFFFFFFFF;
    static constexpr uint16_t kWaveFormatExtraSize = 18;
    static constexpr int kDefaultLatencyMs = 200;
    static constexpr std::chrono::milliseconds kDrainPollInterval { 20 };

    // The device and the source are not owned. The format starts as the built-in default
    // (44100 Hz, 16 bits, mono) until setFormat hands over the application's.
    explicit WaveOutStream(WaveDevice&, SoundSource* = nullptr, TickClock = steadyTickCount);
    virtual ~WaveOutStream();

    WaveOutStream(const WaveOutStream&) = delete;
    WaveOutStream& operator=(const WaveOutStream&) = delete;

    // May be swapped while playing: the next fill renders from the new source.
    void setSource(SoundSource* source) { source_.store(source, std::memory_order_release); }
    SoundSource* source() const { return source_.load(std::memory_order_acquire); }
    // With a window set, the device reports to it instead of to the stream; the window then
    // passes every message to onDeviceMessage on its own thread. Takes effect at the next open.
    void setNotificationWindow(WaveDeviceListener* window) { notificationWindow_ = window; }

    // Stores the format (not owned; it must outlive the stream) and hands it to the source.
    // Returns 1.
    virtual int setFormat(const AudioFormat*);
    virtual const AudioFormat* format() const { return format_.load(std::memory_order_acquire); }
    // Opens the device and queues two rendered buffers. 1 on success, 0 when the device could
    // not be opened or a buffer could not be prepared.
    virtual int start();
    // The immediate stop: pause, reset, close; the meters fall to zero.
    virtual void stop();
    // Lets the queued sound finish. With the function callback it waits, polling every 20 ms,
    // until the device has played both buffers and closed. Returns 1.
    int stopGracefully();
    // The same without waiting: the stream drains, and finishDrain, called from time to time on
    // the GUI thread, closes the device once it has played both buffers. True once the stream is
    // no longer draining.
    void beginDrain();
    bool finishDrain();
    // Milliseconds. While playing, the stream restarts with buffers of the new size. Returns 1.
    int setLatency(int milliseconds);
    int latency() const { return latency_.load(std::memory_order_relaxed); }
    // Frames played since the device was opened: 0 while Closed, kNoHandlePosition without an
    // open device.
    uint32_t position() const;
    // 0.0 to 1.0, the same for both channels.
    void setVolume(float);
    // Both channel words of the device volume read as one number, scaled by 1/65535.
    float volume() const;
    // The entry for the window path: 1 for the device's open, close and done messages, 0 for
    // any other message number.
    int onDeviceMessage(uint32_t message);

    StreamState state() const { return state_.load(std::memory_order_acquire); }
    // Set when the last filled buffer reached full scale.
    bool isClipped() const { return clipFlag_.load(std::memory_order_relaxed) != 0; }
    // The format handed to the device at the last open.
    const WaveFormat& waveFormat() const { return waveFormat_; }
    size_t floatBufferBytes() const { return mixBuffer_.size() * sizeof(float); }
    // Buffer 0 or 1 (any other value reads buffer 1).
    size_t deviceBufferBytes(int buffer) const { return deviceBuffers_[buffer == 0 ? 0 : 1].size() * sizeof(int16_t); }

protected:
    // The peak of each channel in the buffer just filled, signed (mono: the same value twice).
    // Called on the device's callback thread: store the values, paint elsewhere.
    virtual void onPeaks(float left, float right) { }
    // Render time as a fraction of the latency period. Called on the device's callback thread.
    virtual void onCpuLoad(float load) { }

private:
    // The function-callback path. Device callback thread for Done.
    void onWaveMessage(WaveMessage, WaveHeader*) override;
    bool openDevice();
    bool sizeBuffers(const AudioFormat&);
    bool closeDevice();
    // Device callback thread: no allocation, locks, I/O or logging. Renders, converts and
    // queues the current buffer.
    void fill();
    // Renders one period into device buffer `buffer` and passes on the meters; false when there
    // is no open device or usable format. The thread that renders (GUI thread in start).
    bool renderBuffer(int16_t buffer);
    void convert(int16_t* out, uint32_t frames, uint32_t channels, std::array<float, 2>& peaks);

    // Whether start is still queuing its two buffers. A buffer the device hands back before the
    // second is queued is not refilled at once (it would be queued ahead of that one); the fill
    // is owed and made, in order, when the second comes back.
    enum class StartGate : uint8_t { Open, Queuing, Owed };

    ErrorContext* context_ = &errorContext();
    std::atomic<SoundSource*> source_ { nullptr };
    WaveDevice& device_;
    TickClock tickClock_;
    std::array<std::vector<int16_t>, 2> deviceBuffers_;
    std::array<WaveHeader, 2> headers_;
    std::vector<float> mixBuffer_;
    std::atomic<int16_t> currentBuffer_ { 0 };
    std::atomic<StartGate> startGate_ { StartGate::Open };
    std::atomic<WaveDevice*> handle_ { nullptr }; // &device_ while open
    AudioFormat defaultFormat_ { 44100, 16, 1 };
    std::atomic<const AudioFormat*> format_ { &defaultFormat_ };
    WaveFormat waveFormat_;
    std::atomic<int16_t> latency_ { kDefaultLatencyMs };
    std::atomic<StreamState> state_ { StreamState::Closed };
    WaveDeviceListener* notificationWindow_ = nullptr;
    std::atomic<uint8_t> clipFlag_ { 0 };
    std::atomic<uint32_t> lastRequestTick_ { 0 }; // when the device last asked for data
};

} // namespace pulsara
