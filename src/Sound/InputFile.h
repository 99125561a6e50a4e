#pragma once

#include "Sound/ByteSource.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace pulsara {

// A regular file opened for reading, closed when this goes away.
class InputFile final : public ByteSource {
public:
    // `nativeName` is the UTF-8 path. A missing file, a folder or anything not a regular file
    // leaves it closed.
    explicit InputFile(const std::string& nativeName);
    ~InputFile() override;
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool isOpen() const { return fd_ >= 0; }
    std::size_t read(void* into, std::size_t count) override;
    void skip(uint64_t count) override { offset_ += count; }
    uint64_t remaining() const override { return offset_ < size_ ? size_ - offset_ : 0; }

private:
    int fd_ = -1;
    uint64_t size_ = 0;
    uint64_t offset_ = 0;
};

} // namespace pulsara
