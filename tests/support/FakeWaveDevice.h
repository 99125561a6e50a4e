#pragma once

#include "support/PulledWaveDevice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace pulsara::testing {

// The real queue (QueuedWaveDevice) with a record of the calls made on it, a few answers that a
// test can force, and a view of what is queued. Nothing plays by itself: playOne() plays the
// oldest queued buffer whole on the caller's thread, which receives its done notification.
class FakeWaveDevice : public PulledWaveDevice, private WaveDeviceListener {
    template <typename Read>
    auto locked(Read read) const
    {
        std::lock_guard lock(mutex_);
        return read();
    }

public:
    // What the next calls answer instead of the queue's own answer; Ok means "ask the queue".
    // (openResult, inherited, is the output's answer to an open.)
    WaveResult prepareResult = WaveResult::Ok;
    WaveResult closeResult = WaveResult::Ok;
    WaveResult positionResult = WaveResult::Ok;

    WaveResult open(const WaveFormat& format, WaveDeviceListener* listener) override
    {
        record("open", [&] {
            format_ = format;
            listener_ = listener;
        });
        WaveResult result = PulledWaveDevice::open(format, this);
        opens_ += result == WaveResult::Ok;
        return result;
    }
    WaveResult prepare(WaveHeader& header) override
    {
        record("prepare");
        return isOpen() && prepareResult != WaveResult::Ok ? prepareResult : PulledWaveDevice::prepare(header);
    }
    WaveResult unprepare(WaveHeader& header) override
    {
        record("unprepare");
        return PulledWaveDevice::unprepare(header);
    }
    WaveResult write(WaveHeader& header) override
    {
        record("write");
        std::lock_guard lock(mutex_); // before the header can play and be taken out again
        WaveResult result = PulledWaveDevice::write(header);
        if (result == WaveResult::Ok)
            queue_.push_back(&header);
        return result;
    }
    WaveResult pause() override
    {
        record("pause");
        return PulledWaveDevice::pause();
    }
    WaveResult reset() override
    {
        record("reset");
        return PulledWaveDevice::reset();
    }
    WaveResult close() override
    {
        record("close");
        return isOpen() && closeResult != WaveResult::Ok ? closeResult : PulledWaveDevice::close();
    }
    WaveResult position(uint32_t& frames) const override
    {
        return positionResult != WaveResult::Ok ? positionResult : PulledWaveDevice::position(frames);
    }

    // Plays the oldest queued buffer and keeps what the output got. False when nothing is queued.
    bool playOne()
    {
        WaveHeader* header = queuedHeader(0);
        if (!header)
            return false;
        uint32_t channels = openedFormat().channels;
        std::vector<int16_t> played = pull(header->bufferLength / 2 / channels, channels);
        std::lock_guard lock(mutex_);
        lastPlayed_ = std::move(played);
        return true;
    }

    std::vector<std::string> calls() const { return locked([&] { return calls_; }); }
    void clearCalls() { locked([&] { calls_.clear(); return true; }); }
    size_t queued() const { return locked([&] { return queue_.size(); }); }
    WaveHeader* queuedHeader(size_t index) const { return locked([&] { return index < queue_.size() ? queue_[index] : nullptr; }); }
    std::vector<int16_t> lastPlayed() const { return locked([&] { return lastPlayed_; }); }
    WaveFormat openedFormat() const { return locked([&] { return format_; }); }
    WaveDeviceListener* listener() const { return locked([&] { return listener_; }); }
    int opens() const { return opens_; }

    // Waits until the device has seen more than `seen` calls (then counts them into `seen`) or
    // `stop` is set. False on stop, and a test failure after ten seconds without a call.
    bool waitForCall(std::size_t& seen, const bool& stop)
    {
        std::unique_lock lock(mutex_);
        bool woken = called_.wait_for(lock, std::chrono::seconds(10), [&] { return stop || callCount_ > seen; });
        if (!woken)
            ADD_FAILURE() << "the wave device waited ten seconds for a call";
        seen = callCount_;
        return woken && !stop;
    }
    void stopWaiting(bool& stop) { record("", [&] { stop = true; }); }
    std::size_t callCount() const { return locked([&] { return callCount_; }); }

private:
    // Counts the call (an empty name is not kept) and wakes the waiters, with `change` made
    // under the lock.
    void record(const char* call, const std::function<void()>& change = [] { })
    {
        std::lock_guard lock(mutex_);
        if (*call)
            calls_.push_back(call);
        ++callCount_;
        change();
        called_.notify_all();
    }
    void onWaveMessage(WaveMessage message, WaveHeader* header) override
    {
        if (message == WaveMessage::Done) {
            std::lock_guard lock(mutex_);
            queue_.erase(std::remove(queue_.begin(), queue_.end(), header), queue_.end());
        }
        if (WaveDeviceListener* target = listener())
            target->onWaveMessage(message, header);
    }

    mutable std::mutex mutex_;
    std::condition_variable called_;
    std::size_t callCount_ = 0;
    std::vector<std::string> calls_;
    WaveFormat format_;
    WaveDeviceListener* listener_ = nullptr;
    std::deque<WaveHeader*> queue_; // as the device holds it, oldest first
    std::vector<int16_t> lastPlayed_;
    std::atomic<int> opens_ { 0 };
};

// Plays one of the fake's queued buffers on another thread for every call made on the device
// from now on while `ready` holds, as a real device would while its owner waits in a graceful
// stop (which keeps calling unprepare and close until the queue is empty).
class DevicePlayer {
public:
    explicit DevicePlayer(FakeWaveDevice& device, std::function<bool()> ready = [] { return true; })
        : device_(device)
        , thread_([this, ready, seen = device.callCount()]() mutable {
            while (device_.waitForCall(seen, done_)) {
                if (ready())
                    device_.playOne();
            }
        })
    {
    }
    ~DevicePlayer()
    {
        device_.stopWaiting(done_);
        thread_.join();
    }

private:
    FakeWaveDevice& device_;
    bool done_ = false; // under the device's lock
    std::thread thread_;
};

} // namespace pulsara::testing
