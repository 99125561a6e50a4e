#pragma once

#include "support/PulledWaveDevice.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace pulsara::testing {

// The real queue (QueuedWaveDevice) with a record of the calls made on it, a few answers that a
// test can force and a view of what is queued. Nothing plays by itself: playOne() plays the
// oldest queued buffer whole on the caller's thread, which also receives its done notification.
// For tests that run on one thread.
class FakeWaveDevice : public PulledWaveDevice, private WaveDeviceListener {
public:
    // What the next calls answer instead of the queue's own answer; Ok means "ask the queue".
    // (openResult, inherited, is the output's answer to an open.)
    WaveResult prepareResult = WaveResult::Ok;
    WaveResult closeResult = WaveResult::Ok;
    WaveResult positionResult = WaveResult::Ok;
    // While it answers true, every call is followed by the playing of one buffer (DevicePlayer).
    std::function<bool()> player;

    WaveResult open(const WaveFormat& format, WaveDeviceListener* listener) override
    {
        listener_ = listener;
        WaveResult result = call("open", [&] { return PulledWaveDevice::open(format, this); });
        if (result == WaveResult::Ok) {
            format_ = format;
            ++opens_;
        }
        return result;
    }
    WaveResult prepare(WaveHeader& header) override
    {
        return call("prepare", [&] { return isOpen() && prepareResult != WaveResult::Ok ? prepareResult : PulledWaveDevice::prepare(header); });
    }
    WaveResult unprepare(WaveHeader& header) override { return call("unprepare", [&] { return PulledWaveDevice::unprepare(header); }); }
    WaveResult write(WaveHeader& header) override
    {
        return call("write", [&] {
            WaveResult result = PulledWaveDevice::write(header);
            if (result == WaveResult::Ok)
                queue_.push_back(&header);
            return result;
        });
    }
    WaveResult pause() override { return call("pause", [&] { return PulledWaveDevice::pause(); }); }
    WaveResult reset() override { return call("reset", [&] { return PulledWaveDevice::reset(); }); }
    WaveResult close() override
    {
        return call("close", [&] { return isOpen() && closeResult != WaveResult::Ok ? closeResult : PulledWaveDevice::close(); });
    }
    WaveResult position(uint32_t& frames) const override
    {
        return positionResult != WaveResult::Ok ? positionResult : PulledWaveDevice::position(frames);
    }

    // Plays the oldest queued buffer and keeps what the output got. False when nothing is queued.
    bool playOne()
    {
        if (queue_.empty())
            return false;
        lastPlayed_ = pull(queue_.front()->bufferLength / 2 / format_.channels, format_.channels);
        return true;
    }

    const std::vector<std::string>& calls() const { return calls_; }
    void clearCalls() { calls_.clear(); }
    size_t queued() const { return queue_.size(); }
    WaveHeader* queuedHeader(size_t index) const { return index < queue_.size() ? queue_[index] : nullptr; }
    const std::vector<int16_t>& lastPlayed() const { return lastPlayed_; }
    const WaveFormat& openedFormat() const { return format_; }
    WaveDeviceListener* listener() const { return listener_; }
    int opens() const { return opens_; }

private:
    template <typename Act>
    WaveResult call(const char* name, Act act)
    {
        calls_.push_back(name);
        WaveResult result = act();
        // Not again for the calls that the played buffer's done notification makes.
        if (player && !playing_ && player()) {
            playing_ = true;
            playOne();
            playing_ = false;
        }
        return result;
    }
    void onWaveMessage(WaveMessage message, WaveHeader* header) override
    {
        if (message == WaveMessage::Done)
            queue_.erase(std::remove(queue_.begin(), queue_.end(), header), queue_.end());
        if (listener_)
            listener_->onWaveMessage(message, header);
    }

    std::vector<std::string> calls_;
    WaveFormat format_;
    WaveDeviceListener* listener_ = nullptr;
    std::deque<WaveHeader*> queue_; // as the device holds it, oldest first
    std::vector<int16_t> lastPlayed_;
    int opens_ = 0;
    bool playing_ = false;
};

// Plays one of the fake's queued buffers after every call made on it while `ready` holds, as a
// real device plays on while its owner waits in a graceful stop (which keeps calling unprepare
// and close until the queue is empty).
class DevicePlayer {
public:
    explicit DevicePlayer(FakeWaveDevice& device, std::function<bool()> ready = [] { return true; })
        : device_(device)
    {
        device_.player = std::move(ready);
    }
    ~DevicePlayer() { device_.player = nullptr; }

private:
    FakeWaveDevice& device_;
};

} // namespace pulsara::testing
