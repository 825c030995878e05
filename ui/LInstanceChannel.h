// Hands the files of a second start to the editor already running, over a local socket, so
// that one frame holds every open file. The message is one absolute path per line.
#pragma once

#include <QObject>
#include <QStringList>

class QLocalServer;

class LInstanceChannel : public QObject
{
    Q_OBJECT
public:
    explicit LInstanceChannel(QObject* pParent = nullptr);
    ~LInstanceChannel() override;

    // The channel of this user's editor.
    static QString DefaultName();
    // Delivers the paths (possibly none: the running editor then comes to the front).
    // False when no editor answers.
    static bool SendToRunning(const QString& szName, const QStringList& paths, int nTimeoutMs = 2000);

    // Starts answering; a channel left behind by an editor that died is taken over.
    bool Listen(const QString& szName);

signals:
    void FilesReceived(const QStringList& paths);

private:
    void OnNewConnection();
    QLocalServer* pServer;
};
