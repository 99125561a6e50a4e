#include "Sound/InputFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pulsara {

InputFile::InputFile(const std::string& nativeName)
{
    // Not blocking on the open keeps a named pipe from hanging the reader; it is refused below.
    fd_ = ::open(nativeName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd_ < 0)
        return;
    struct stat info {};
    if (::fstat(fd_, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd_);
        fd_ = -1;
        return;
    }
    size_ = static_cast<uint64_t>(info.st_size);
}

InputFile::~InputFile()
{
    if (fd_ >= 0)
        ::close(fd_);
}

std::size_t InputFile::read(void* into, std::size_t count)
{
    auto* bytes = static_cast<unsigned char*>(into);
    std::size_t done = 0;
    while (done < count && offset_ < size_) {
        ssize_t got = ::pread(fd_, bytes + done, count - done, static_cast<off_t>(offset_));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
        offset_ += static_cast<uint64_t>(got);
    }
    return done;
}

} // namespace pulsara
