#include "ui/LInstanceChannel.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QVariant>

#include "core/LTrace.h"
#include "work/LSystemLockMutex.h"

LInstanceChannel::LInstanceChannel(QObject* pParent) : QObject(pParent), pServer(new QLocalServer(this))
{
    connect(pServer, &QLocalServer::newConnection, this, &LInstanceChannel::OnNewConnection);
}

LInstanceChannel::~LInstanceChannel() = default;

QString LInstanceChannel::DefaultName()
{
    return QString::fromStdString(LSystemLockMutex::RuntimeFolder()) + "SonitraInstance";
}

bool LInstanceChannel::SendToRunning(const QString& szName, const QStringList& paths, int nTimeoutMs)
{
    QLocalSocket socket;
    socket.connectToServer(szName);
    if (!socket.waitForConnected(nTimeoutMs))
        return false;
    QByteArray message;
    for (const QString& s : paths)
        message += s.toUtf8() + '\n';
    message += '\n'; // an empty line ends the message
    socket.write(message);
    if (!socket.waitForBytesWritten(nTimeoutMs)) {
        LTRACE("LInstanceChannel::SendToRunning write failed");
        return false;
    }
    // The answer tells that the editor took the message.
    if (!socket.waitForReadyRead(nTimeoutMs))
        return false;
    socket.disconnectFromServer();
    return true;
}

bool LInstanceChannel::Listen(const QString& szName)
{
    pServer->setSocketOptions(QLocalServer::UserAccessOption);
    if (pServer->listen(szName))
        return true;
    // Only a dead editor's socket can be in the way: the caller holds the start-up mutex.
    QLocalServer::removeServer(szName);
    if (pServer->listen(szName))
        return true;
    LTRACE("LInstanceChannel::Listen failed: %s", pServer->errorString().toUtf8().constData());
    return false;
}

void LInstanceChannel::OnNewConnection()
{
    while (QLocalSocket* pSocket = pServer->nextPendingConnection()) {
        connect(pSocket, &QLocalSocket::disconnected, pSocket, &QObject::deleteLater);
        connect(pSocket, &QLocalSocket::readyRead, this, [this, pSocket] {
            QByteArray buffered = pSocket->property("buffer").toByteArray() + pSocket->readAll();
            pSocket->setProperty("buffer", buffered);
            if (!buffered.endsWith("\n\n") && buffered != "\n")
                return;
            QStringList paths;
            for (const QByteArray& line : buffered.split('\n'))
                if (!line.isEmpty())
                    paths << QString::fromUtf8(line);
            // The message is complete: nothing more is read from this socket, which may go as
            // soon as the sender has its answer.
            pSocket->setProperty("buffer", QByteArray());
            disconnect(pSocket, &QLocalSocket::readyRead, this, nullptr);
            pSocket->write("ok\n");
            pSocket->flush();
            // Handed on from the event loop: a receiver that loads files runs a nested event
            // loop, during which this socket and the signal running now could be deleted.
            QMetaObject::invokeMethod(this, [this, paths] { emit FilesReceived(paths); }, Qt::QueuedConnection);
        });
    }
}
