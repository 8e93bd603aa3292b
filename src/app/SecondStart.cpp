#include "app/SecondStart.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace vt::app {

namespace {

constexpr int answersWithinMs = 2000;
constexpr int triesAgainAfterMs = 200;

// One a line; a line of its own for each press, each release and each key typed.
constexpr QByteArrayView activate = "activate";
constexpr QByteArrayView altDown = "down Alt";
constexpr QByteArrayView altUp = "up Alt";
constexpr QByteArrayView typed = "type ";
constexpr QByteArrayView greeting = "vantrel window\n";

} // namespace

QString socketPath(const Gate& gate)
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty() || !QDir(folder).exists())
        folder = QDir::tempPath();
    return folder + u"/vantrel-"_s + gate.identity(RootId::Program);
}

SecondStart::SecondStart(QObject* parent) : QObject(parent)
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SecondStart::accept);
}

bool SecondStart::listen(const Gate& gate)
{
    // What a dead window left behind: nobody else holds the lock.
    QLocalServer::removeServer(socketPath(gate));
    return m_server.listen(socketPath(gate));
}

void SecondStart::accept()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            while (socket->canReadLine())
                m_waiting.append(QString::fromLatin1(socket->readLine().trimmed()));
            // Once the socket has returned: a command may process events, and the other start's
            // leaving deletes the socket then.
            QMetaObject::invokeMethod(this, &SecondStart::carryOut, Qt::QueuedConnection);
        });
        socket->write(greeting.data(), greeting.size());
    }
}

void SecondStart::carryOut()
{
    if (m_waiting.isEmpty())
        return;
    if (ready && !ready()) {
        QTimer::singleShot(triesAgainAfterMs, this, &SecondStart::carryOut);
        return;
    }
    const QStringList keys = std::exchange(m_waiting, {});
    bool alt = false;
    QChar menu;
    for (const QString& key : keys) {
        if (key == QLatin1StringView(activate)) {
            Q_EMIT activated();
        } else if (key == QLatin1StringView(altDown)) {
            alt = true;
        } else if (key == QLatin1StringView(altUp)) {
            alt = false;
        } else if (key.startsWith(QLatin1StringView(typed))) {
            const QChar letter = key.back();
            if (alt)
                menu = letter;
            else if (!menu.isNull())
                Q_EMIT menuKey(std::exchange(menu, QChar()), letter);
        }
    }
}

bool handOver(const Gate& gate, const std::function<void()>& beforeKeys)
{
    QLocalSocket socket;
    QElapsedTimer waited;
    waited.start();
    // A window that is only starting listens a moment after it took the lock.
    do {
        socket.connectToServer(socketPath(gate));
        if (socket.waitForConnected(answersWithinMs))
            break;
        QThread::msleep(50);
    } while (waited.elapsed() < answersWithinMs);
    if (socket.state() != QLocalSocket::ConnectedState || !socket.waitForReadyRead(answersWithinMs))
        return false;
    if (socket.readAll() != greeting)
        return false;
    beforeKeys();
    for (const QByteArray& line : {activate.toByteArray(),
                                   altDown.toByteArray(),
                                   typed.toByteArray() + 'f',
                                   altUp.toByteArray(),
                                   typed.toByteArray() + 'i'})
        socket.write(line + '\n');
    const bool sent = socket.waitForBytesWritten(answersWithinMs);
    socket.disconnectFromServer();
    return sent;
}

} // namespace vt::app
