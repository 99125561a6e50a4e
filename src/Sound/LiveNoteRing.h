#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace pulsara {

// A note played live (a computer key, a pad, a MIDI keyboard): the track whose instrument plays,
// its volume before the master volume (below 0: the master volume alone, as a key plays), and its
// playback rate.
struct LiveNote {
    int32_t track = -1;
    float volume = -1.0f;
    float rate = 1.0f;
};

// Live notes on their way from one thread that plays them to the render: a single-producer,
// single-consumer ring, so each thread that plays notes has one of its own and no lock is taken.
// A note that finds the ring full is dropped: 64 notes between two blocks are more than a hand
// plays.
class LiveNoteRing {
public:
    static constexpr uint32_t kCapacity = 64;

    // The producer's thread. False when the note was dropped.
    bool push(LiveNote note)
    {
        const uint32_t tail = tail_.load(std::memory_order_relaxed);
        if (tail - head_.load(std::memory_order_acquire) >= kCapacity)
            return false;
        notes_[tail % kCapacity] = note;
        tail_.store(tail + 1, std::memory_order_release);
        return true;
    }

    // The render's thread: hands every waiting note to `take`, oldest first.
    // Device callback thread: no allocation, locks, I/O or logging.
    template<typename Take>
    void drain(Take take)
    {
        const uint32_t tail = tail_.load(std::memory_order_acquire);
        uint32_t head = head_.load(std::memory_order_relaxed);
        for (; head != tail; ++head)
            take(notes_[head % kCapacity]);
        head_.store(head, std::memory_order_release);
    }

private:
    std::array<LiveNote, kCapacity> notes_ {};
    std::atomic<uint32_t> head_ { 0 };
    std::atomic<uint32_t> tail_ { 0 };
};

} // namespace pulsara
