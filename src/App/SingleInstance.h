#pragma once

#include <QLocalServer>

#include <functional>

namespace pulsara {

// One Pulsara per user. The running program listens on a local socket in the user's runtime
// folder; a later start finds it there and asks it either to come to the front (a start without a song,
// which then ends) or to close so that the new start can open its song ("Open from shell").
class SingleInstance final : public QObject {
public:
    enum class Request : char { Foreground = 'F', OpenFromShell = 'O' };

    static QString serverName();
    // Hands the request to a running program and waits until it has been handled there (the
    // user may be asked about unsaved changes first). False when no program is running.
    static bool sendToRunning(Request);

    // Starts listening; each request is handed to `onRequest` on the GUI thread and answered
    // when it returns. False when another program holds the name.
    bool listen(std::function<void(Request)> onRequest);
    // Gives the name up at once, for a program that is about to end: the start that asked it to
    // close may be listening before this one is gone (playing sound drains first).
    void stopListening() { server_.close(); }

private:
    void serve();

    QLocalServer server_;
    std::function<void(Request)> onRequest_;
};

} // namespace pulsara
