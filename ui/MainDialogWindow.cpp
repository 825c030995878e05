// The Window menu (arranging, zoom, display options), the current file and its views.
#include <QAction>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>

#include "core/LEdFile.h"
#include "core/LSoundTime.h"
#include "core/LVersion.h"
#include "dsp/effects/LEffectCatalog.h"
#include "platform/audio/LPortAudioWave.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LHelpDlg.h"
#include "ui/LProjectCommands.h"
#include "ui/LTimeFields.h"
#include "ui/LTransport.h"
#include "ui/LUiPrompts.h"
#include "ui/MainDialog.h"
#include "ui/tools/LSpectrumWindow.h"

namespace {

QString AboutText()
{
    return QString("%1\n\nA sound editor.\n\nVersion %2 (%3)\nRuns on Qt %4 and %5.")
        .arg(LVersion::Text(), LVersion::Number(), LVersion::Build(), qVersion(),
             LPortAudioVersionText());
}

} // namespace

bool MainDialog::CmWindow(int nId)
{
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    switch (nId) {
    case CmCascadeId: pMdi->cascadeSubWindows(); return true;
    case CmFrequencyAnalysisId: ShowSpectrumWindow(); return true;
    case CmCloseAllId: CloseAllFiles(); return true;
    case CmBookmarkListId:
    case CmRegionListId: ShowMarkList(nId); return true;
    case CmTileHorizontalId:
    case CmTileVerticalId: {
        // One window above the other, or side by side.
        const QList<QMdiSubWindow*> subs = pMdi->subWindowList();
        if (subs.isEmpty())
            return true;
        const QSize area = pMdi->viewport()->size();
        const int n = static_cast<int>(subs.size());
        for (int i = 0; i < n; ++i) {
            subs[i]->showNormal();
            if (nId == CmTileHorizontalId)
                subs[i]->setGeometry(0, area.height() * i / n, area.width(), area.height() / n);
            else
                subs[i]->setGeometry(area.width() * i / n, 0, area.width() / n, area.height());
        }
        return true;
    }
    case CmArrangeIconsId: pMdi->tileSubWindows(); return true;
    case CmHelpId: {
        // Modeless, and one at a time: it can stay open beside the files.
        if (!pHelp)
            pHelp = new LHelpDlg(this, menuBar());
        pHelp->show();
        pHelp->raise();
        return true;
    }
    case CmAboutId:
        QMessageBox::about(this, "About Sonitra", AboutText());
        return true;
    default: break;
    }
    if (!pWindow)
        return false;
    switch (nId) {
    case CmZoomInId: pWindow->ZoomIn(); return true;
    case CmZoomOutId: pWindow->ZoomOut(); return true;
    case CmZoomSelectionId: pWindow->ZoomToSelection(); return true;
    case CmZoomFullId: pWindow->ZoomFull(); return true;
    case CmVerticalZoomId: pWindow->ToggleVerticalZoom(); return true;
    case CmDisplayPosNegId: pWindow->SetDisplayMode(0); return true;
    case CmDisplayLeftRightId: pWindow->SetDisplayMode(1); return true;
    case CmSpectrogramId: pWindow->ToggleSpectrogram(); return true;
    default: return false;
    }
}

// The frequency analysis is a window of the frame's own, following the current file.
void MainDialog::ShowSpectrumWindow()
{
    auto* pWindow = findChild<LSpectrumWindow*>();
    if (!pWindow)
        pWindow = new LSpectrumWindow(*this);
    pWindow->show();
    pWindow->raise();
    pWindow->activateWindow();
    pWindow->Follow();
}

void MainDialog::OnSubWindowActivated(QMdiSubWindow*)
{
    ScheduleWindowMenu();
    pProject->LoadBookmarksFor(GetCurrentFileWindow());
    UpdateMarks();
    SetWindowCaption();
    UpdateMenuStates();
    UpdateTimeFields();
    UpdateStatusLine();
    emit CurrentFileChanged();
}

void MainDialog::UpdateMarks()
{
    for (LEdFileWindow* pWindow : GetFileWindows()) {
        const std::string szKey = FileKey(pWindow);
        std::vector<LWaveMark> v;
        for (const LEdRegion& r : pProject->GetRegions())
            if (r.GetPath() == szKey)
                v.push_back({r.sStart, r.sEnd, QString::fromStdString(r.GetName()), true});
        for (const LEdBookMark& b : pProject->GetBookmarks())
            if (b.GetPath() == szKey)
                v.push_back({b.sPosition, b.sPosition, QString::fromStdString(b.GetName()), false});
        pWindow->SetMarks(v);
    }
}

void MainDialog::OnFileSelectionChanged()
{
    UpdateTimeFields();
    UpdateMenuStates();
}

void MainDialog::OnFileScroll(int32_t sTarget)
{
    auto* pWindow = qobject_cast<LEdFileWindow*>(sender());
    if (!pWindow)
        pWindow = GetCurrentFileWindow();
    if (!pWindow)
        return;
    pWindow->SetCursorPosition(sTarget);
    UpdateTimeFields();
}

void MainDialog::OnTimeTyped(int nField, const QString& szText)
{
    const auto field = static_cast<LTimeFields::Field>(nField);
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    if (!pWindow) {
        pTimeFields->Restore(field);
        return;
    }
    LEdFile& file = pWindow->GetFile();
    const LCutListAudio& doc = file.GetDocument();
    const int32_t nRate = doc.GetSampleRate();
    LSoundTime t;
    if (!LSoundTime::Parse(szText.trimmed().toStdString(), t)) {
        LUiPrompts::Get().Inform(this, "Sonitra",
                                 QString("\"%1\" is not a time. Please type a time such as 0:01:30.250, 1:30 or 90.5s.")
                                     .arg(szText.trimmed()),
                                 LUiPrompts::IconWarning);
        pTimeFields->Restore(field);
        return;
    }
    // In 64 bits: hours of audio at high rates pass 32 bits before the range check.
    const int64_t nMs = t.GetMilliseconds();
    const int64_t sTyped = nMs / 1000 * nRate + nMs % 1000 * nRate / 1000;
    LViewRange sel;
    if (!LEdViewMath::SelectionAfterTyping(static_cast<LEdViewMath::TypedField>(nField), sTyped,
                                           {file.GetSelStart(), file.GetSelEnd()}, file.GetCursor(),
                                           doc.GetLength(), sel)) {
        LUiPrompts::Get().Inform(this, "Sonitra",
                                 QString("The time %1 lies outside the file, which runs from %2 to %3.")
                                     .arg(szText.trimmed(), LTimeFields::Format(0, nRate),
                                          LTimeFields::Format(doc.GetLength(), nRate)),
                                 LUiPrompts::IconWarning);
        pTimeFields->Restore(field);
        return;
    }
    pTimeFields->Restore(field); // typing is over: the field shows the new selection
    pWindow->SetCursorPosition(sel.sStart);
    pWindow->SetSelection(sel.sStart, sel.sEnd);
}

void MainDialog::TrackWaveWindowMenu(const QPoint& ptGlobal)
{
    QMenu menu(this);
    for (int nId : std::initializer_list<int>{CmUndoId, CmRedoId, 0, CmCutId, CmCopyId, CmPasteId, CmPasteFromClipboardId, CmPasteMixId, CmDeleteId, 0,
                    CmSelectAllId, CmSelectToStartId, CmSelectToEndId, 0, CmTrimId, CmTrimStartId, CmTrimEndId,
                    CmSilenceId, CmRepeatLoopId, CmCopyToNewId}) {
        if (nId == 0)
            menu.addSeparator();
        else if (QAction* p = GetAction(nId))
            menu.addAction(p);
    }
    QMenu* pEffects = menu.addMenu(tr("Effects"));
    for (int nId : LEffectCatalog::MenuCommands("Effects")) {
        if (nId == 0)
            pEffects->addSeparator();
        else if (QAction* p = GetAction(nId))
            pEffects->addAction(p);
    }
    menu.addSeparator();
    menu.addAction(GetAction(CmSetBookmarkId));
    menu.addAction(GetAction(CmAddRegionId));
    UpdateMenuStates();
    menu.exec(ptGlobal);
}
