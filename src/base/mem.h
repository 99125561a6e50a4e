#pragma once

#include "base/ErrorReporter.h"

#include <cstddef>
#include <new>

namespace pulsara {

// Reports the out-of-memory message that every failed allocation of the program shows.
inline void reportOutOfMemory()
{
    reportError(&errorContext(), kRecoverable, "mem", 14, u"Sorry, not enough memory to perform the operation");
}

// Resizes a growable buffer; on failure reports the out-of-memory message and returns false so
// that the caller abandons its operation.
template<typename Buffer>
bool tryResize(Buffer& buffer, std::size_t size)
{
    try {
        buffer.resize(size);
        return true;
    } catch (const std::bad_alloc&) {
        reportOutOfMemory();
        return false;
    } catch (const std::length_error&) {
        reportOutOfMemory();
        return false;
    }
}

} // namespace pulsara
