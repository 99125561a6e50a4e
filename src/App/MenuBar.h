#pragma once

#include <cstdint>
#include <functional>

class QMenuBar;

namespace pulsara {

// Fills the menu bar with File, Tools and Help. Each item carries its command id and, when
// chosen, is handed to `sendCommand`; items for which `isAvailable` says no are shown greyed.
bool buildMenuBar(QMenuBar*, std::function<void(uint16_t commandId)> sendCommand,
    std::function<bool(uint16_t commandId)> isAvailable);

} // namespace pulsara
