#pragma once

#include <cstdint>
#include <functional>

class QMenuBar;
class QUndoStack;

namespace pulsara {

// Fills the menu bar with File, Edit, Tools and Help. Each item carries its command id and,
// when chosen, is handed to `sendCommand`; items for which `isAvailable` says no are shown
// greyed. The Edit menu's Undo and Redo follow the history and name the step they act on.
bool buildMenuBar(QMenuBar*, QUndoStack& history, std::function<void(uint16_t commandId)> sendCommand,
    std::function<bool(uint16_t commandId)> isAvailable);

} // namespace pulsara
