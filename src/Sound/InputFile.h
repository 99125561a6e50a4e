#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace pulsara {

// A regular file opened for reading, closed when this goes away. Reads go forward from a
// current offset that skips may move past the end; what lies beyond the end reads as nothing.
class InputFile {
public:
    // `nativeName` is the UTF-8 path. A missing file, a folder or anything not a regular file
    // leaves it closed.
    explicit InputFile(const std::string& nativeName);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool isOpen() const { return fd_ >= 0; }
    // Reads up to `count` bytes at the offset and moves past them; returns how many came.
    std::size_t read(void* into, std::size_t count);
    void skip(uint64_t count) { offset_ += count; }
    // Bytes between the offset and the end of the file.
    uint64_t remaining() const { return offset_ < size_ ? size_ - offset_ : 0; }

private:
    int fd_ = -1;
    uint64_t size_ = 0;
    uint64_t offset_ = 0;
};

} // namespace pulsara
