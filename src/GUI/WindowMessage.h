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
    kMessageLeftButtonDoubleClick = 515,
    kMessageRightButtonDown = 516,
    kMessageRightButtonUp = 517,
    kMessageMouseWheel = 522,
    // Files dropped on the window: the first word points at the paths (a DroppedFiles), the
    // second is the drop point.
    kMessageDropFiles = 563,
    kMessageUser = 0x400,
};

// Virtual-key numbers of the keys the program reacts to; letters and digits are their upper-case
// character codes.
enum VirtualKey : uint32_t {
    kKeyBackspace = 8,
    kKeyTab = 9,
    kKeyReturn = 13,
    kKeyEscape = 27,
    kKeySpace = 32,
    kKeyPageUp = 33,
    kKeyPageDown = 34,
    kKeyEnd = 35,
    kKeyHome = 36,
    kKeyLeft = 37,
    kKeyUp = 38,
    kKeyRight = 39,
    kKeyDown = 40,
    kKeyInsert = 45,
    kKeyDelete = 46,
};

// The key-down message's second word has this bit set when the key was already down: an
// automatic repeat.
constexpr intptr_t kKeyRepeatFlag = intptr_t(1) << 30;

// The wheel message's first word: the turn in the high 16 bits (120 a notch, positive away from
// the user), the modifier keys in the low ones.
constexpr uint32_t kWheelShift = 0x4;
constexpr uint32_t kWheelControl = 0x8;
constexpr int32_t kWheelNotch = 120;
constexpr uintptr_t packWheel(int32_t delta, uint32_t keys)
{
    return uintptr_t((uint32_t(delta) & 0xFFFF) << 16 | (keys & 0xFFFF));
}
constexpr int32_t wheelDelta(uintptr_t wParam)
{
    return int16_t(uint16_t(uint32_t(wParam) >> 16));
}
constexpr uint32_t wheelKeys(uintptr_t wParam)
{
    return uint32_t(wParam) & 0xFFFF;
}

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
