#include "ui/LTimeFields.h"

#include <QEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

#include "core/LSoundTime.h"

namespace {
bool IsTypedField(int nField)
{
    return nField <= LTimeFields::FieldSelLength;
}
} // namespace

LTimeFields::LTimeFields(QWidget* pParent) : QWidget(pParent)
{
    setObjectName("TimeFields");
    const char* const kLabels[FieldCount] = {"Selected Region Start", "Selected Region End", "Selected Region Length",
                                             "Current Time", "File Length"};
    auto* pGrid = new QGridLayout(this);
    pGrid->setContentsMargins(6, 0, 6, 0);
    pGrid->setHorizontalSpacing(8);
    pGrid->setVerticalSpacing(0);
    for (int i = 0; i < FieldCount; ++i) {
        auto* pLabel = new QLabel(tr(kLabels[i]), this);
        pLabel->setAlignment(Qt::AlignCenter);
        QFont small = pLabel->font();
        small.setPointSizeF(small.pointSizeF() * 0.85);
        pLabel->setFont(small);
        pField[i] = new QLineEdit(this);
        pField[i]->setObjectName(QString("time%1").arg(i));
        pField[i]->setAlignment(Qt::AlignCenter);
        pField[i]->setMinimumWidth(pField[i]->fontMetrics().horizontalAdvance("00:00:00.000") + 16);
        pLabel->setBuddy(pField[i]);
        if (IsTypedField(i)) {
            pField[i]->setToolTip(tr("Type a time (such as 0:01:30.250, 1:30 or 90.5s) and press Enter."));
            pField[i]->installEventFilter(this);
            // Taken by a click only: the frame's keys go to the files until the user types here.
            pField[i]->setFocusPolicy(Qt::ClickFocus);
            connect(pField[i], &QLineEdit::returnPressed, this, [this, i] { emit TimeTyped(i, pField[i]->text()); });
        } else {
            pField[i]->setReadOnly(true);
            pField[i]->setFocusPolicy(Qt::NoFocus);
        }
        pGrid->addWidget(pLabel, 0, i);
        pGrid->addWidget(pField[i], 1, i);
    }
}

QString LTimeFields::Format(int32_t sFrames, int32_t nRate)
{
    LSoundTime t;
    t.SetSamples(sFrames, nRate);
    return QString::fromStdString(t.FormatMilliseconds());
}

void LTimeFields::Show(Field f, const QString& szText)
{
    szShown[f] = szText;
    QLineEdit* p = pField[f];
    if (p->hasFocus() && p->isModified())
        return; // the user's typing wins until Enter or Escape
    p->setText(szText);
}

void LTimeFields::Restore(Field f)
{
    pField[f]->setText(szShown[f]);
    pField[f]->setModified(false);
}

void LTimeFields::SetTimes(int32_t sSelStart, int32_t sSelEnd, int32_t sCurrent, int32_t sFileLength, int32_t nRate)
{
    if (nRate <= 0) {
        for (int i = 0; i < FieldCount; ++i)
            Show(static_cast<Field>(i), QString());
        return;
    }
    const bool bSel = sSelStart < sSelEnd;
    Show(FieldSelStart, bSel ? Format(sSelStart, nRate) : QString());
    Show(FieldSelEnd, bSel ? Format(sSelEnd, nRate) : QString());
    Show(FieldSelLength, bSel ? Format(sSelEnd - sSelStart, nRate) : QString());
    Show(FieldCurrent, Format(sCurrent, nRate));
    Show(FieldFileLength, Format(sFileLength, nRate));
}

void LTimeFields::SetCurrent(int32_t sCurrent, int32_t nRate)
{
    Show(FieldCurrent, nRate > 0 ? Format(sCurrent, nRate) : QString());
}

QString LTimeFields::GetText(Field f) const
{
    return pField[f]->text();
}

bool LTimeFields::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    // The frame's own keys (Ctrl+A selects the whole file, Ctrl+Z undoes an edit) would take
    // these from a field: inside one they edit its text.
    if (pEvent->type() == QEvent::ShortcutOverride) {
        auto* pKey = static_cast<QKeyEvent*>(pEvent);
        if (pKey->matches(QKeySequence::SelectAll) || pKey->matches(QKeySequence::Undo) ||
            pKey->matches(QKeySequence::Redo) || pKey->matches(QKeySequence::Copy) ||
            pKey->matches(QKeySequence::Cut) || pKey->matches(QKeySequence::Paste) ||
            pKey->matches(QKeySequence::Delete) || pKey->key() == Qt::Key_Home || pKey->key() == Qt::Key_End ||
            pKey->key() == Qt::Key_Escape) {
            pEvent->accept();
            return true;
        }
        return false;
    }
    if (pEvent->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(pEvent)->key() == Qt::Key_Escape) {
        for (int i = 0; i < FieldCount; ++i)
            if (pField[i] == pWatched)
                Restore(static_cast<Field>(i));
        return true;
    }
    return QWidget::eventFilter(pWatched, pEvent);
}
