#pragma once

#include <string>

namespace pulsara {

// Opens the editor window and runs its event loop until the window closes or Escape is
// pressed; returns the process's exit status. The skin is loaded from the data folder first;
// a missing skin file ends the program with its message.
int runWindow(int argc, char** argv, const std::u16string& songPath);

} // namespace pulsara
