#pragma once

#include "Sound/ByteSource.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace pulsara {

// Bytes held in memory, read like a file. The bytes are not copied: they must outlive this.
class MemorySource final : public ByteSource {
public:
    explicit MemorySource(std::span<const uint8_t> bytes)
        : bytes_(bytes)
    {
    }

    std::size_t read(void* into, std::size_t count) override;
    void skip(uint64_t count) override { offset_ += count; }
    uint64_t remaining() const override { return offset_ < bytes_.size() ? bytes_.size() - offset_ : 0; }

private:
    std::span<const uint8_t> bytes_;
    uint64_t offset_ = 0;
};

} // namespace pulsara
