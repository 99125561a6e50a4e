#pragma once

#include "Sound/WaveDevice.h"

#include <array>
#include <atomic>
#include <cstddef>

namespace pulsara {

// A fixed-size lock-free queue of header pointers (a bounded queue after Dmitry Vyukov's design:
// each cell carries a sequence number that says whose turn it is). Any thread may push or pop
// without locks or allocation, which lets the device's callback thread and the owner's thread
// share it.
class WaveHeaderRing {
public:
    static constexpr std::size_t kCapacity = 8; // the stream only ever queues two

    WaveHeaderRing()
    {
        for (std::size_t i = 0; i < kCapacity; ++i)
            cells_[i].sequence.store(i, std::memory_order_relaxed);
    }

    // False when the ring is full.
    bool push(WaveHeader* header)
    {
        std::size_t position = tail_.load(std::memory_order_relaxed);
        for (;;) {
            Cell& cell = cells_[position % kCapacity];
            std::size_t sequence = cell.sequence.load(std::memory_order_acquire);
            auto lag = static_cast<std::ptrdiff_t>(sequence) - static_cast<std::ptrdiff_t>(position);
            if (lag == 0) {
                if (tail_.compare_exchange_weak(position, position + 1, std::memory_order_relaxed)) {
                    cell.header = header;
                    cell.sequence.store(position + 1, std::memory_order_release);
                    return true;
                }
            } else if (lag < 0) {
                return false;
            } else {
                position = tail_.load(std::memory_order_relaxed);
            }
        }
    }

    // nullptr when the ring is empty.
    WaveHeader* pop()
    {
        std::size_t position = head_.load(std::memory_order_relaxed);
        for (;;) {
            Cell& cell = cells_[position % kCapacity];
            std::size_t sequence = cell.sequence.load(std::memory_order_acquire);
            auto lag = static_cast<std::ptrdiff_t>(sequence) - static_cast<std::ptrdiff_t>(position + 1);
            if (lag == 0) {
                if (head_.compare_exchange_weak(position, position + 1, std::memory_order_relaxed)) {
                    WaveHeader* header = cell.header;
                    cell.sequence.store(position + kCapacity, std::memory_order_release);
                    return header;
                }
            } else if (lag < 0) {
                return nullptr;
            } else {
                position = head_.load(std::memory_order_relaxed);
            }
        }
    }

private:
    struct Cell {
        std::atomic<std::size_t> sequence { 0 };
        WaveHeader* header = nullptr; // published by the sequence store
    };

    std::array<Cell, kCapacity> cells_;
    alignas(64) std::atomic<std::size_t> tail_ { 0 };
    alignas(64) std::atomic<std::size_t> head_ { 0 };
};

} // namespace pulsara
