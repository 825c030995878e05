#include "ui/LTypedTime.h"

#include "core/LEdFile.h"
#include "core/LSoundTime.h"
#include "ui/LEdFileWindow.h"
#include "ui/LTimeFields.h"
#include "ui/LUiPrompts.h"

void LTypedTime::Apply(QWidget* pParent, LTimeFields& fields, LEdFileWindow* pWindow, int nField, const QString& szText)
{
    const auto field = static_cast<LTimeFields::Field>(nField);
    if (!pWindow) {
        fields.Restore(field);
        return;
    }
    LEdFile& file = pWindow->GetFile();
    const LCutListAudio& doc = file.GetDocument();
    const int32_t nRate = doc.GetSampleRate();
    LSoundTime t;
    if (!LSoundTime::Parse(szText.trimmed().toStdString(), t)) {
        LUiPrompts::Get().Inform(pParent, "Sonitra",
                                 QString("\"%1\" is not a time. Please type a time such as 0:01:30.250, 1:30 or 90.5s.")
                                     .arg(szText.trimmed()),
                                 LUiPrompts::IconWarning);
        fields.Restore(field);
        return;
    }
    // In 64 bits: hours of audio at high rates pass 32 bits before the range check.
    const int64_t nMs = t.GetMilliseconds();
    const int64_t sTyped = nMs / 1000 * nRate + nMs % 1000 * nRate / 1000;
    LViewRange sel;
    if (!LEdViewMath::SelectionAfterTyping(static_cast<LEdViewMath::TypedField>(nField), sTyped,
                                           {file.GetSelStart(), file.GetSelEnd()}, file.GetCursor(),
                                           doc.GetLength(), sel)) {
        LUiPrompts::Get().Inform(pParent, "Sonitra",
                                 QString("The time %1 lies outside the file, which runs from %2 to %3.")
                                     .arg(szText.trimmed(), LTimeFields::Format(0, nRate),
                                          LTimeFields::Format(doc.GetLength(), nRate)),
                                 LUiPrompts::IconWarning);
        fields.Restore(field);
        return;
    }
    fields.Restore(field); // typing is over: the field shows the new selection
    pWindow->SetCursorPosition(sel.sStart);
    pWindow->SetSelection(sel.sStart, sel.sEnd);
}
