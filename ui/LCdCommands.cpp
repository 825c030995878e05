#include "ui/LCdCommands.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTimer>

#include "cd/LCdImageWriter.h"
#include "core/LEdFile.h"
#include "core/LSettings.h"
#include "formats/LAudioFile.h"
#include "ui/LEdFileWindow.h"
#include "ui/LUiPrompts.h"
#include "ui/LCommandIds.h"
#include "ui/cd/LCdCopyDlg.h"
#include "ui/cd/LCdLoadDlg.h"
#include "ui/cd/LCdProcess.h"
#include "work/LCutListAudioLoadSource.h"

namespace {

// One track into a new document; 0 done, 1 cancelled, 2 error, as the load process says.
int32_t ReadTrack(LCdDisc& disc, const LCdLoadDlg::Track& track, LCdReadMode mode, std::unique_ptr<LEdFile>& pFile)
{
    pFile = std::make_unique<LEdFile>();
    LSoundSourcePtr pSource = disc.OpenTrack(track.nNumber, mode);
    char szNumber[8];
    std::snprintf(szNumber, sizeof szNumber, "%02d", track.nNumber);
    LCutListAudioLoadSource load(std::string("Reading track ") + szNumber + ": " + track.szTitle, &pFile->GetDocument(),
                                 pSource.Get());
    return load.Run();
}

QString CountsText(size_t nRead, size_t nChosen, LCdReadMode mode, const LCdReadCounts& counts)
{
    return QString("Read %1 of %2 track(s) in %3 mode: %4 sector(s) corrected, %5 uncorrectable.")
        .arg(nRead)
        .arg(nChosen)
        .arg(LCd::ReadModeName(mode))
        .arg(counts.nCorrected)
        .arg(counts.nUncorrectable);
}

} // namespace

bool LCdCommands::Command(int nId)
{
    switch (nId) {
    case CmLoadCdId: QTimer::singleShot(0, frame.GetWidget(), [this] { LoadCd(); }); return true;
    case CmCopyToCdId: QTimer::singleShot(0, frame.GetWidget(), [this] { CmCopyToCd(); }); return true;
    default: return false;
    }
}

void LCdCommands::LoadCd(const std::string& szImage)
{
    LCdLoadDlg dlg(frame.GetWidget(), szImage);
    if (dlg.exec() != QDialog::Accepted || !dlg.GetDisc())
        return;
    std::shared_ptr<LCdDisc> pDisc = dlg.GetDisc();
    const std::vector<LCdLoadDlg::Track> vChosen = dlg.GetChosen();
    size_t nRead = 0;
    for (const LCdLoadDlg::Track& track : vChosen) {
        std::unique_ptr<LEdFile> pFile;
        const int32_t nResult = ReadTrack(*pDisc, track, dlg.GetMode(), pFile);
        if (nResult == LProgressDialog::ResultCancelled)
            break; // what was read before stays open
        if (nResult != LProgressDialog::ResultDone) {
            LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", QString("Unable to read track %1 of %2.").arg(track.nNumber).arg(QString::fromStdString(pDisc->GetName())),
                                     LUiPrompts::IconError);
            break;
        }
        pFile->SetView(0, pFile->GetDocument().GetLength());
        frame.AddFileToList(std::move(pFile), std::string(), LCd::TrackFileName(track.nNumber, track.szTitle, ""));
        ++nRead;
    }
    frame.UpdateMenuStates();
    LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", CountsText(nRead, vChosen.size(), dlg.GetMode(), pDisc->GetCounts()),
                             LUiPrompts::IconInformation);
}

bool LCdCommands::CopyToCdSources(const LCdCopyChoice& choice, std::vector<LCdSourceItem>& vItems)
{
    const std::vector<LEdFileWindow*> vOpen = frame.GetFileWindows();
    for (const LCdCopyChoice::Entry& e : choice.vEntries) {
        LSoundSourcePtr pSource;
        if (e.pWindow && std::find(vOpen.begin(), vOpen.end(), e.pWindow) != vOpen.end()) {
            pSource = e.pWindow->GetFile().GetDocument().OpenSource();
        } else {
            std::string szError;
            pSource = LAudioFile::OpenSource(e.szPath, &szError);
            if (pSource->IsError()) {
                LUiPrompts::Get().Inform(frame.GetWidget(), "File Error", QString("Unable to open \"%1\":\n%2").arg(QString::fromStdString(e.szPath), QString::fromStdString(szError)),
                                         LUiPrompts::IconError);
                return false;
            }
        }
        vItems.push_back({pSource, e.szTitle, ""});
    }
    return true;
}

void LCdCommands::CmCopyToCd()
{
    LCdCopyDlg dlg(frame.GetWidget(), frame.GetFileWindows());
    if (dlg.exec() != QDialog::Accepted)
        return;
    const LCdCopyChoice choice = dlg.GetChoice();
    std::vector<LCdSourceItem> vItems;
    if (!CopyToCdSources(choice, vItems))
        return;
    LCdImageWriter writer(vItems, choice.szAlbum, "", choice.nGapSectors);
    const std::string szFit = LCdLayout::FitMessage(writer.Plan().TotalSectors(), choice.nDiscMinutes);
    if (!szFit.empty()) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", QString::fromStdString(szFit), LUiPrompts::IconWarning);
        return;
    }
    QString szCue;
    QTemporaryDir tempDir;
    if (choice.bImage) {
        const QString szFolder = QString::fromStdString(LSettings::GetString("Folders", "SaveAsDir", QDir::homePath().toStdString()));
        szCue = LUiPrompts::Get().GetSaveFileName(frame.GetWidget(), "Save Disc Image", QDir(szFolder).filePath("disc.cue"), "CD Disc Images (*.cue)");
        if (szCue.isEmpty())
            return;
        if (QFileInfo(szCue).suffix().toLower() != "cue")
            szCue += ".cue";
    } else {
        szCue = tempDir.filePath("disc.cue");
    }
    std::string szError;
    LCdProcess image("Writing the disc image", [&](LProgressDialog& d) { return writer.Write(d, szCue.toStdString(), &szError); });
    int32_t nResult = image.Run();
    if (nResult == LProgressDialog::ResultDone && !choice.bImage) {
        const LCdBurnOptions options{std::string(), choice.bSimulate, choice.nSpeed};
        const std::string szBin = tempDir.filePath("disc.bin").toStdString();
        LCdProcess burn("Writing the CD", [&](LProgressDialog& d) { return LCdDisc::Burn(d, options, writer.GetLayout(), szBin, &szError); });
        nResult = burn.Run();
    }
    if (nResult == LProgressDialog::ResultError)
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", QString::fromStdString(szError), LUiPrompts::IconError);
    else if (nResult == LProgressDialog::ResultDone)
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra",
                                 choice.bImage ? QString("The disc image was written to %1.").arg(szCue)
                                               : choice.bSimulate ? QString("The simulated write finished without errors.")
                                                                  : QString("The CD was written."),
                                 LUiPrompts::IconInformation);
}
