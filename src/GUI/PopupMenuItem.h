#pragma once

#include <cstdint>
#include <string>

namespace pulsara {

// One entry of a pop-up menu: a text and the command it sends; a separator has no text.
struct PopupMenuItem {
    std::u16string text;
    uint32_t commandId = 0;
    bool checked = false;
};

} // namespace pulsara
