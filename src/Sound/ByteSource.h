#pragma once

#include <cstddef>
#include <cstdint>

namespace pulsara {

// Bytes read forward from a current offset that skips may move past the end; what lies beyond
// the end reads as nothing. The WAV reader reads through this, so that one code path reads a
// file on disk and bytes already in memory alike.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    // Reads up to `count` bytes at the offset and moves past them; returns how many came.
    virtual std::size_t read(void* into, std::size_t count) = 0;
    virtual void skip(uint64_t count) = 0;
    // Bytes between the offset and the end.
    virtual uint64_t remaining() const = 0;
};

} // namespace pulsara
