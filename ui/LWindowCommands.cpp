#include "ui/LWindowCommands.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMessageBox>

#include "core/LVersion.h"
#include "platform/audio/LPortAudioWave.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LHelpDlg.h"

namespace {

QString AboutText()
{
    return QString("%1\n\nA sound editor.\n\nVersion %2 (%3)\nRuns on Qt %4 and %5.")
        .arg(LVersion::Text(), LVersion::Number(), LVersion::Build(), qVersion(),
             LPortAudioVersionText());
}

} // namespace

LWindowCommands::LWindowCommands(LFrame& owner, QMdiArea& area, const QMenuBar* pMenuBar,
                                 std::function<void()> fnAnalysis)
    : frame(owner), mdi(area), pMenus(pMenuBar), fnShowAnalysis(std::move(fnAnalysis))
{
}

bool LWindowCommands::Command(int nId)
{
    return CmArrange(nId) || CmView(nId);
}

bool LWindowCommands::CmArrange(int nId)
{
    switch (nId) {
    case CmCascadeId: mdi.cascadeSubWindows(); return true;
    case CmArrangeIconsId: mdi.tileSubWindows(); return true;
    case CmTileHorizontalId:
    case CmTileVerticalId: Tile(nId == CmTileHorizontalId); return true;
    case CmFrequencyAnalysisId: fnShowAnalysis(); return true;
    case CmCloseAllId: frame.CloseAllFiles(); return true;
    case CmHelpId: ShowHelp(); return true;
    case CmAboutId: QMessageBox::about(frame.GetWidget(), "About Sonitra", AboutText()); return true;
    default: return false;
    }
}

bool LWindowCommands::CmView(int nId)
{
    LEdFileWindow* pWindow = frame.GetCurrentFileWindow();
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

void LWindowCommands::Tile(bool bHorizontal)
{
    const QList<QMdiSubWindow*> subs = mdi.subWindowList();
    const QSize area = mdi.viewport()->size();
    const int n = static_cast<int>(subs.size());
    for (int i = 0; i < n; ++i) {
        subs[i]->showNormal();
        if (bHorizontal)
            subs[i]->setGeometry(0, area.height() * i / n, area.width(), area.height() / n);
        else
            subs[i]->setGeometry(area.width() * i / n, 0, area.width() / n, area.height());
    }
}

void LWindowCommands::ShowHelp()
{
    // Modeless, and one at a time: it can stay open beside the files.
    if (!pHelp)
        pHelp = new LHelpDlg(frame.GetWidget(), pMenus);
    pHelp->show();
    pHelp->raise();
}
