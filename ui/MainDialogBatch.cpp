// Tools > Batch Converter: the script, the files and the output, then the converter process and
// a summary naming every file that failed and why.
#include "core/LEdFile.h"
#include "lists/EdBatchConverter.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LUiPrompts.h"
#include "ui/MainDialog.h"
#include "ui/batch/LSelectBatchCommandDlg.h"
#include "ui/batch/LSelectBatchFileDlg.h"
#include "ui/batch/LSelectSaveFormatDlg.h"

namespace {
QString Summary(const EdBatchConverter& proc)
{
    const auto& vResults = proc.GetResults();
    QString sz = QObject::tr("%1 of %2 files converted.").arg(vResults.size() - proc.FailedCount()).arg(vResults.size());
    if (proc.FailedCount()) {
        sz += QObject::tr("\n\nThese files failed:");
        for (const LBatchResult& r : vResults)
            if (!r.bOk)
                sz += QString("\n%1: %2").arg(QString::fromStdString(r.szInput), QString::fromStdString(r.szError));
    }
    return sz;
}
} // namespace

bool MainDialog::CmBatchConverter(int nId)
{
    if (nId != CmBatchConverterId)
        return false;
    LSelectBatchCommandDlg commands(this);
    if (commands.exec() != QDialog::Accepted)
        return true;
    // The current file is offered first, when it has one on disk.
    std::vector<std::string> vFiles;
    if (LEdFileWindow* pWindow = GetCurrentFileWindow(); pWindow && !pWindow->GetPath().empty())
        vFiles.push_back(pWindow->GetPath());
    LSelectBatchFileDlg files(this, vFiles);
    if (files.exec() != QDialog::Accepted)
        return true;
    LSelectSaveFormatDlg format(this);
    if (format.exec() != QDialog::Accepted)
        return true;
    EdBatchConverter proc(commands.GetItems(), files.GetFiles(), format.GetOutput());
    const int32_t nResult = proc.Run();
    if (nResult == LProgressDialog::ResultCancelled)
        return true;
    LUiPrompts::Get().Inform(this, "Batch Converter", Summary(proc),
                             proc.FailedCount() ? LUiPrompts::IconWarning : LUiPrompts::IconInformation);
    return true;
}
