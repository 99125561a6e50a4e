#include "App/SingleInstance.h"

#include <QDir>
#include <QLocalSocket>
#include <QStandardPaths>

#include <unistd.h>

namespace pulsara {

namespace {

constexpr int kConnectMs = 1000;
constexpr char kHandled = 'H';

} // namespace

QString SingleInstance::serverName()
{
    // The user's own runtime folder: one program per user and session, out of other users' reach.
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::tempPath() + QStringLiteral("/pulsara-%1").arg(::getuid());
    return folder + QStringLiteral("/pulsara-instance");
}

bool SingleInstance::sendToRunning(Request request)
{
    QLocalSocket socket;
    socket.connectToServer(serverName());
    if (!socket.waitForConnected(kConnectMs))
        return false;
    const char byte = static_cast<char>(request);
    socket.write(&byte, 1);
    socket.flush();
    // The answer comes once the request is handled, however long the user takes; a program that
    // closes while handling it closes the socket, which ends the wait too.
    while (socket.state() == QLocalSocket::ConnectedState && socket.bytesAvailable() == 0)
        socket.waitForReadyRead(-1);
    return true;
}

bool SingleInstance::listen(std::function<void(Request)> onRequest)
{
    onRequest_ = std::move(onRequest);
    connect(&server_, &QLocalServer::newConnection, this, [this] { serve(); });
    if (server_.listen(serverName()))
        return true;
    // A socket left by a program that ended without closing it: nobody answers there.
    QLocalSocket probe;
    probe.connectToServer(serverName());
    if (probe.waitForConnected(kConnectMs))
        return false;
    QLocalServer::removeServer(serverName());
    return server_.listen(serverName());
}

void SingleInstance::serve()
{
    while (QLocalSocket* client = server_.nextPendingConnection()) {
        connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
        connect(client, &QLocalSocket::readyRead, this, [this, client] {
            char byte = 0;
            while (client->read(&byte, 1) == 1) {
                if (byte == static_cast<char>(Request::Foreground) || byte == static_cast<char>(Request::OpenFromShell)) {
                    if (onRequest_)
                        onRequest_(static_cast<Request>(byte));
                }
                client->write(&kHandled, 1);
                client->flush();
            }
        });
    }
}

} // namespace pulsara
