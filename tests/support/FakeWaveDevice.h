#pragma once

#include "Sound/WaveDevice.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace pulsara::testing {

// A wave device that plays nothing by itself: it records every call and plays one queued buffer
// each time the test calls playOne(), reporting it done synchronously on the caller's thread.
// Any thread may call playOne(); notifications are sent without the fake's own lock held.
class FakeWaveDevice : public WaveDevice {
    template <typename Read>
    auto locked(Read read) const
    {
        std::lock_guard lock(mutex_);
        return read();
    }

public:
    // What the next calls answer; Ok means "behave like a device".
    WaveResult openResult = WaveResult::Ok;
    WaveResult prepareResult = WaveResult::Ok;
    WaveResult closeResult = WaveResult::Ok;
    WaveResult positionResult = WaveResult::Ok;

    WaveResult open(const WaveFormat& format, WaveDeviceListener* listener) override
    {
        {
            std::lock_guard lock(mutex_);
            calls_.push_back("open");
            if (openResult != WaveResult::Ok || open_)
                return openResult != WaveResult::Ok ? openResult : WaveResult::NoDevice;
            open_ = true;
            format_ = format;
            listener_ = listener;
            framesPlayed_ = 0;
            ++opens_;
        }
        notify(WaveMessage::Open, nullptr);
        return WaveResult::Ok;
    }

    bool isOpen() const override { return locked([&] { return open_; }); }

    WaveResult prepare(WaveHeader& header) override
    {
        std::lock_guard lock(mutex_);
        calls_.push_back("prepare");
        if (!open_ || prepareResult != WaveResult::Ok)
            return open_ ? prepareResult : WaveResult::NotOpen;
        if (!header.data || header.bufferLength == 0)
            return WaveResult::InvalidBuffer;
        header.flags |= WaveHeader::kPrepared;
        return WaveResult::Ok;
    }

    WaveResult unprepare(WaveHeader& header) override
    {
        std::lock_guard lock(mutex_);
        calls_.push_back("unprepare");
        if (!open_ || header.has(WaveHeader::kInQueue))
            return open_ ? WaveResult::StillPlaying : WaveResult::NotOpen;
        header.flags &= ~WaveHeader::kPrepared;
        return WaveResult::Ok;
    }

    WaveResult write(WaveHeader& header) override
    {
        std::lock_guard lock(mutex_);
        calls_.push_back("write");
        if (!open_ || !header.has(WaveHeader::kPrepared))
            return open_ ? WaveResult::Unprepared : WaveResult::NotOpen;
        header.flags = (header.flags & ~WaveHeader::kDone) | WaveHeader::kInQueue;
        queue_.push_back(&header);
        return WaveResult::Ok;
    }

    WaveResult pause() override
    {
        return locked([&] {
            calls_.push_back("pause");
            return open_ ? WaveResult::Ok : WaveResult::NotOpen;
        });
    }

    WaveResult reset() override
    {
        std::deque<WaveHeader*> returned;
        {
            std::lock_guard lock(mutex_);
            calls_.push_back("reset");
            if (!open_)
                return WaveResult::NotOpen;
            returned.swap(queue_);
            framesPlayed_ = 0;
        }
        for (WaveHeader* header : returned)
            finish(header);
        return WaveResult::Ok;
    }

    WaveResult close() override
    {
        {
            std::lock_guard lock(mutex_);
            calls_.push_back("close");
            if (!open_ || closeResult != WaveResult::Ok || !queue_.empty())
                return !open_ ? WaveResult::NotOpen : closeResult != WaveResult::Ok ? closeResult : WaveResult::StillPlaying;
            open_ = false;
        }
        notify(WaveMessage::Close, nullptr);
        return WaveResult::Ok;
    }

    WaveResult position(uint32_t& frames) const override
    {
        std::lock_guard lock(mutex_);
        if (positionResult == WaveResult::Ok)
            frames = framesPlayed_;
        return positionResult;
    }

    WaveResult setVolume(uint32_t volume) override { return locked([&] { volume_ = volume; return WaveResult::Ok; }); }
    WaveResult volume(uint32_t& volume) const override { return locked([&] { volume = volume_; return WaveResult::Ok; }); }

    // Plays the oldest queued buffer: keeps a copy of its samples and reports it done. False
    // when nothing is queued.
    bool playOne()
    {
        WaveHeader* header = nullptr;
        {
            std::lock_guard lock(mutex_);
            if (queue_.empty())
                return false;
            header = queue_.front();
            queue_.pop_front();
            lastPlayed_.resize(header->bufferLength / sizeof(int16_t));
            std::memcpy(lastPlayed_.data(), header->data, lastPlayed_.size() * sizeof(int16_t));
            framesPlayed_ += static_cast<uint32_t>(lastPlayed_.size() / format_.channels);
        }
        finish(header);
        return true;
    }

    std::vector<std::string> calls() const { return locked([&] { return calls_; }); }
    void clearCalls() { locked([&] { calls_.clear(); }); }
    size_t queued() const { return locked([&] { return queue_.size(); }); }
    WaveHeader* queuedHeader(size_t index) const { return locked([&] { return index < queue_.size() ? queue_[index] : nullptr; }); }
    std::vector<int16_t> lastPlayed() const { return locked([&] { return lastPlayed_; }); }
    WaveFormat openedFormat() const { return locked([&] { return format_; }); }
    WaveDeviceListener* listener() const { return locked([&] { return listener_; }); }
    int opens() const { return locked([&] { return opens_; }); }

private:
    void finish(WaveHeader* header)
    {
        header->flags = (header->flags & ~WaveHeader::kInQueue) | WaveHeader::kDone;
        notify(WaveMessage::Done, header);
    }

    void notify(WaveMessage message, WaveHeader* header)
    {
        if (WaveDeviceListener* target = listener())
            target->onWaveMessage(message, header);
    }

    mutable std::mutex mutex_;
    bool open_ = false;
    int opens_ = 0;
    WaveFormat format_;
    WaveDeviceListener* listener_ = nullptr;
    std::deque<WaveHeader*> queue_;
    std::vector<std::string> calls_;
    std::vector<int16_t> lastPlayed_;
    uint32_t framesPlayed_ = 0;
    uint32_t volume_ = 0xFFFFFFFF;
};

// Plays the fake's queued buffers on another thread until destroyed, as a real device would
// while the owner waits in a graceful stop. Playing starts once `ready` says so.
class DevicePlayer {
public:
    explicit DevicePlayer(FakeWaveDevice& device, std::function<bool()> ready = [] { return true; })
        : thread_([&device, ready, this] {
            for (; !done_; std::this_thread::sleep_for(std::chrono::milliseconds(2))) {
                if (ready())
                    device.playOne();
            }
        })
    {
    }
    ~DevicePlayer()
    {
        done_ = true;
        thread_.join();
    }

private:
    std::atomic<bool> done_ { false };
    std::thread thread_;
};

} // namespace pulsara::testing
