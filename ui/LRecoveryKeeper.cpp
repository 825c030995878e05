#include "ui/LRecoveryKeeper.h"

#include <QTimer>
#include <QWidget>

#include "core/LAtomicFile.h"
#include "core/LAudioCutTank.h"
#include "core/LFile.h"
#include "core/LTrace.h"
#include "lists/LListFile.h"
#include "project/LBytes.h"
#include "project/LEdLoadProject.h"
#include "project/LEdProject.h"
#include "project/LRecovery.h"
#include "ui/LUiPrompts.h"

LRecoveryKeeper::LRecoveryKeeper(LFrame& frame, CollectFn fnCollect, AddFn fnAdd)
    : frame(frame), fnCollect(std::move(fnCollect)), fnAdd(std::move(fnAdd))
{
}

LRecoveryKeeper::~LRecoveryKeeper() = default;

bool LRecoveryKeeper::RecoverSession(const std::string& szFolder)
{
    const auto answer = LUiPrompts::Get().Ask(
        frame.GetWidget(), "Sonitra",
        "Sonitra did not close normally last time.\n\nDo you want to recover the documents that were open then?",
        false);
    if (answer != LUiPrompts::AnswerYes)
        return true;
    LEdLoadProject load(szFolder + LRecovery::kProjectName, szFolder);
    if (load.Run() == LProgressDialog::ResultDone) {
        fnAdd(load.GetProject());
        return true;
    }
    // Its folder is all that is left of that session: it stays for another try.
    std::string szWhy = load.GetError();
    if (!load.IsVersionError() && !load.IsOpenError() && !load.IsMissingAudio())
        szWhy = "its recovery project is damaged (" + szWhy + ")";
    if (!szWhy.empty() && szWhy.back() != '.')
        szWhy += '.';
    LTRACE("LRecoveryKeeper::RecoverSession %s: %s", szFolder.c_str(), szWhy.c_str());
    LUiPrompts::Get().Inform(frame.GetWidget(), "File Error",
                             QString("The documents of the last session could not be recovered: %1\n\n"
                                     "Their files are kept in \"%2\"; Sonitra offers them again at its next start.")
                                 .arg(QString::fromStdString(szWhy), QString::fromStdString(szFolder)),
                             LUiPrompts::IconError);
    return false;
}

void LRecoveryKeeper::Start()
{
    const std::string szOwn = LAudioCutTank::Instance().GetWorkingFolder();
    for (const std::string& szFolder : LRecovery::FindAbandoned(szOwn)) {
        LRecoveryLock claim;
        if (!claim.Take(szFolder))
            continue; // another editor took it first
        if (RecoverSession(szFolder))
            LRecovery::Sweep(szFolder);
    }
    pRecoveryLock = std::make_unique<LRecoveryLock>();
    if (!pRecoveryLock->Take(szOwn)) {
        LTRACE("LRecoveryKeeper::Start cannot lock %s", szOwn.c_str());
        pRecoveryLock.reset();
        return;
    }
    szRecoveryPath = szOwn + LRecovery::kProjectName;
    Write();
}

void LRecoveryKeeper::Write()
{
    if (szRecoveryPath.empty())
        return;
    LEdProject project;
    fnCollect(project);
    LByteWriter out;
    // The working folder's own numbers: its segments are the recovery project's audio.
    auto mapRef = [](uint16_t nTankRef, uint16_t& nStored) {
        nStored = nTankRef;
        return true;
    };
    std::string szError = "the recovery project cannot be built";
    if (project.Write(out, mapRef) &&
        LAtomicFile::Write(szRecoveryPath, out.Bytes(), &szError, LAtomicFile::MakeFolder)) {
        bRecoveryFailTold = false;
        return;
    }
    LTRACE("LRecoveryKeeper::Write cannot write %s", szRecoveryPath.c_str());
    if (bRecoveryFailTold)
        return;
    bRecoveryFailTold = true;
    const QString szText = QString::fromStdString(LListFile::SaveFailedMessage(szRecoveryPath, szError));
    QTimer::singleShot(0, frame.GetWidget(), [this, szText] {
        LUiPrompts::Get().Inform(frame.GetWidget(), "File Error", szText, LUiPrompts::IconWarning);
    });
}

void LRecoveryKeeper::Stop()
{
    if (szRecoveryPath.empty())
        return;
    LFile::Delete(szRecoveryPath);
    szRecoveryPath.clear();
    if (pRecoveryLock) {
        LFile::Delete(LAudioCutTank::Instance().GetWorkingFolder() + LRecovery::kLockName);
        pRecoveryLock.reset();
    }
}
