#include "cli/KeyboardSession.h"

#include <cerrno>
#include <chrono>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace pulsara {

namespace {

volatile std::sig_atomic_t interruptSeen = 0;

void onInterrupt(int)
{
    interruptSeen = 1;
}

} // namespace

KeyboardSession::KeyboardSession()
{
    interruptSeen = 0;
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &savedInterrupt_);

    if (isatty(STDIN_FILENO) && tcgetattr(STDIN_FILENO, &savedTerminal_) == 0) {
        termios keys = savedTerminal_;
        keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        keys.c_cc[VMIN] = 0;
        keys.c_cc[VTIME] = 0;
        terminalChanged_ = tcsetattr(STDIN_FILENO, TCSANOW, &keys) == 0;
    }
}

KeyboardSession::~KeyboardSession()
{
    if (terminalChanged_)
        tcsetattr(STDIN_FILENO, TCSANOW, &savedTerminal_);
    sigaction(SIGINT, &savedInterrupt_, nullptr);
}

bool KeyboardSession::interrupted() const
{
    return interruptSeen != 0;
}

std::string KeyboardSession::waitForKeys(int milliseconds)
{
    if (!inputOpen_) {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        return {};
    }
    pollfd input { STDIN_FILENO, POLLIN, 0 };
    if (poll(&input, 1, milliseconds) <= 0)
        return {};
    char keys[64];
    ssize_t count = read(STDIN_FILENO, keys, sizeof keys);
    if (count > 0)
        return std::string(keys, static_cast<size_t>(count));
    // End of input (or an error other than an interruption): nothing more will come.
    if (count == 0 || errno != EINTR)
        inputOpen_ = false;
    return {};
}

} // namespace pulsara
