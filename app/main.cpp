// The editor. A second start hands its files to the editor already running and ends.
#include <QApplication>
#include <QDir>
#include <QFileInfo>

#include "core/LSettings.h"
#include "platform/qtcore/LQtNotifyPoster.h"
#include "platform/qtcore/LQtSettingsStore.h"
#include "ui/LInstanceChannel.h"
#include "ui/LTestScript.h"
#include "ui/MainDialog.h"
#include "work/LSystemLockMutex.h"

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName("Korvane");
    QApplication::setApplicationName("Sonitra");
    LQtSettingsStore store;
    LSettings::SetStore(&store);
    LQtNotifyPoster poster;
    poster.Install();

    QStringList files;
    for (const QString& szArg : QApplication::arguments().mid(1))
        files << QFileInfo(szArg).absoluteFilePath();

    // Starts are serialised so that a second one finds the first ready to take its files.
    LSystemLockMutex runMutex("SonitraRunMutex");
    runMutex.Lock();
    const QString szChannel = LInstanceChannel::DefaultName();
    if (LInstanceChannel::SendToRunning(szChannel, files))
        return 0;

    std::unique_ptr<LTestScript> pScript = LTestScript::FromEnvironment();
    if (pScript)
        pScript->InstallPrompts();
    MainDialog frame;
    frame.show();
    LInstanceChannel channel;
    QObject::connect(&channel, &LInstanceChannel::FilesReceived, &frame, &MainDialog::HandOver);
    channel.Listen(szChannel);
    runMutex.Unlock();
    frame.StartRecovery();

    for (const QString& s : files)
        frame.LoadFile(s.toStdString());
    if (pScript)
        pScript->Start(frame);
    const int nResult = app.exec();
    LSettings::SetStore(nullptr);
    return nResult;
}
