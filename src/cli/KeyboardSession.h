#pragma once

#include <csignal>
#include <string>
#include <termios.h>

namespace pulsara {

// The terminal side of command-line playback: while alive, a terminal on standard input hands
// over single keys without echo, and Ctrl+C only raises a flag. Both are restored on
// destruction, so the shell gets its terminal back whatever way playback ends.
class KeyboardSession {
public:
    KeyboardSession();
    ~KeyboardSession();
    KeyboardSession(const KeyboardSession&) = delete;
    KeyboardSession& operator=(const KeyboardSession&) = delete;

    // Waits up to `milliseconds` for input and returns what was typed (often nothing). Once
    // standard input has ended it only waits.
    std::string waitForKeys(int milliseconds);
    // Ctrl+C was pressed.
    bool interrupted() const;

private:
    bool terminalChanged_ = false;
    bool inputOpen_ = true;
    termios savedTerminal_ {};
    struct sigaction savedInterrupt_ {};
};

} // namespace pulsara
