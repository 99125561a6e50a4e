#include "Sound/MemorySource.h"

#include <algorithm>
#include <cstring>

namespace pulsara {

std::size_t MemorySource::read(void* into, std::size_t count)
{
    auto done = static_cast<std::size_t>(std::min<uint64_t>(count, remaining()));
    if (done > 0)
        std::memcpy(into, bytes_.data() + offset_, done);
    offset_ += done;
    return done;
}

} // namespace pulsara
