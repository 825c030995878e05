#include "ui/LWindowClipboard.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QMimeData>

#include "core/LAudioCutTank.h"
#include "core/LCutListAudio.h"
#include "core/LTrace.h"
#include "ui/LEdSaveProcess.h"

namespace {
const char* const kWavMime = "audio/wav";
const char* const kWavMimeOld = "audio/x-wav";

std::string ClipboardFilePath()
{
    return LAudioCutTank::Instance().GetWorkingFolder() + "clipboard.wav";
}
} // namespace

bool LWindowClipboard::RenderTo(const LCutListAudio& audio)
{
    if (audio.GetLength() <= 0)
        return false;
    const std::string szPath = ClipboardFilePath();
    LEdSaveProcess save("Saving to clipboard", audio, szPath, LAudioEncoding::Named("pcm16"));
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

bool LWindowClipboard::RenderFrom(std::string& szPath)
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

bool LWindowClipboard::HasWave()
{
    const QMimeData* pMime = QApplication::clipboard()->mimeData();
    return pMime && (pMime->hasFormat(kWavMime) || pMime->hasFormat(kWavMimeOld));
}
