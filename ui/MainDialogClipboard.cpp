// The system clipboard: the selection goes out as WAV data through "clipboard.wav" in the
// working folder, and WAV data from other programs comes in the same way.
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QMimeData>

#include "core/LAudioCutTank.h"
#include "core/LEdFile.h"
#include "core/LTrace.h"
#include "ui/LEdSaveProcess.h"
#include "ui/MainDialog.h"

namespace {
const char* const kWavMime = "audio/wav";
const char* const kWavMimeOld = "audio/x-wav";

std::string ClipboardFilePath()
{
    return LAudioCutTank::Instance().GetWorkingFolder() + "clipboard.wav";
}
} // namespace

bool MainDialog::RenderToWindowClipboard()
{
    if (pClipboard->GetLength() <= 0)
        return false;
    const std::string szPath = ClipboardFilePath();
    LEdSaveProcess save("Saving to clipboard", *pClipboard, szPath, LAudioEncoding::Named("pcm16"));
    if (save.Run() != LProgressDialog::ResultDone) {
        LTRACE("MainDialog::RenderToWindowClipboard save failed: %s", save.GetError().c_str());
        return false;
    }
    QFile file(QString::fromStdString(szPath));
    if (!file.open(QIODevice::ReadOnly)) {
        LTRACE("MainDialog::RenderToWindowClipboard cannot open %s", szPath.c_str());
        return false;
    }
    const qint64 nSize = file.size();
    const QByteArray bytes = file.readAll();
    if (bytes.size() != nSize) {
        LTRACE("MainDialog::RenderToWindowClipboard dwRead != dwSize");
        return false;
    }
    auto* pMime = new QMimeData;
    pMime->setData(kWavMime, bytes);
    pMime->setData(kWavMimeOld, bytes);
    QApplication::clipboard()->setMimeData(pMime);
    return true;
}

bool MainDialog::RenderFromWindowClipboard(std::string& szPath)
{
    const QMimeData* pMime = QApplication::clipboard()->mimeData();
    if (!pMime)
        return false;
    QByteArray bytes = pMime->data(kWavMime);
    if (bytes.isEmpty())
        bytes = pMime->data(kWavMimeOld);
    if (bytes.isEmpty()) {
        LTRACE("MainDialog::RenderFromWindowClipboard no wave data");
        return false;
    }
    szPath = ClipboardFilePath();
    QFile file(QString::fromStdString(szPath));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size()) {
        LTRACE("MainDialog::RenderFromWindowClipboard cannot write %s", szPath.c_str());
        return false;
    }
    return true;
}

void MainDialog::CmPasteFromClipboard()
{
    LEdFile* pFile = GetCurrentFile();
    std::string szPath;
    if (!pFile || !RenderFromWindowClipboard(szPath))
        return;
    const LCutListAudio& doc = pFile->GetDocument();
    LCutListAudioPtr pOther = ReadFileConformed(szPath, doc.GetSampleRate(), doc.GetChannels());
    if (pOther)
        PasteDocument(*pOther);
}
