#pragma once

#include <cstdint>

namespace pulsara {

// A link in the chain of filters that see every window message before it is dispatched.
class MessageFilter {
public:
    virtual ~MessageFilter() = default;

    // Non-zero when the filter consumed the message; it then goes no further.
    virtual int filterMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) = 0;

    MessageFilter* next = nullptr; // not owned
};

} // namespace pulsara
