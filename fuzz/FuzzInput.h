#pragma once

// What every fuzz target shares: reports go nowhere and fatal ones unwind instead of ending
// the process, and the input lives in a memory file that readers open by its /proc path like
// any other file.
#include "base/ErrorReporter.h"
#include "base/text.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace pulsara::fuzz {

class SilentPresenter final : public ErrorPresenter {
public:
    SilentPresenter()
    {
        setFatalErrorsUnwind(true);
        setErrorPresenter(this);
    }
    void present(const ErrorReport&) override { }
};

inline std::u16string storeInMemoryFile(const uint8_t* data, size_t size)
{
    static const int fd = memfd_create("fuzz-input", 0);
    if (fd < 0 || ftruncate(fd, 0) != 0 || pwrite(fd, data, size, 0) != static_cast<ssize_t>(size))
        __builtin_trap();
    return fromUtf8("/proc/self/fd/" + std::to_string(fd));
}

} // namespace pulsara::fuzz
