#pragma once

#include <cstdint>

namespace pulsara {

// The numbers of the window messages the canvas hands to the root's handleMessage.
enum WindowMessage : uint32_t {
    kMessageCreate = 1,
    kMessageDestroy = 2,
    kMessageSize = 5,
    kMessagePaint = 15,
    kMessageClose = 16,
    kMessageEraseBackground = 20,
    kMessageKeyDown = 256,
    kMessageCommand = 273,
    kMessageMouseMove = 512,
    kMessageLeftButtonDown = 513,
    kMessageLeftButtonUp = 514,
    kMessageRightButtonDown = 516,
    kMessageRightButtonUp = 517,
    kMessageUser = 0x400,
};

constexpr uint32_t kKeyEscape = 27;

// The position word of the mouse messages: x in the low 16 bits, y in the high 16 bits.
constexpr intptr_t packPosition(int32_t x, int32_t y)
{
    return intptr_t((uint32_t(x) & 0xFFFF) | (uint32_t(y) & 0xFFFF) << 16);
}
constexpr int32_t positionX(intptr_t position)
{
    return int32_t(uint32_t(position) & 0xFFFF);
}
constexpr int32_t positionY(intptr_t position)
{
    return int32_t((uint32_t(position) >> 16) & 0xFFFF);
}

} // namespace pulsara
