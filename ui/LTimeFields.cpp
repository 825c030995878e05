#include "ui/LTimeFields.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

#include "core/LSoundTime.h"

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
        pField[i]->setReadOnly(true);
        pField[i]->setFocusPolicy(Qt::NoFocus);
        pField[i]->setAlignment(Qt::AlignCenter);
        pField[i]->setMinimumWidth(pField[i]->fontMetrics().horizontalAdvance("00:00:00.000") + 16);
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

void LTimeFields::SetTimes(int32_t sSelStart, int32_t sSelEnd, int32_t sCurrent, int32_t sFileLength, int32_t nRate)
{
    if (nRate <= 0) {
        for (QLineEdit* p : pField)
            p->clear();
        return;
    }
    const bool bSel = sSelStart < sSelEnd;
    pField[FieldSelStart]->setText(bSel ? Format(sSelStart, nRate) : QString());
    pField[FieldSelEnd]->setText(bSel ? Format(sSelEnd, nRate) : QString());
    pField[FieldSelLength]->setText(bSel ? Format(sSelEnd - sSelStart, nRate) : QString());
    pField[FieldCurrent]->setText(Format(sCurrent, nRate));
    pField[FieldFileLength]->setText(Format(sFileLength, nRate));
}

void LTimeFields::SetCurrent(int32_t sCurrent, int32_t nRate)
{
    pField[FieldCurrent]->setText(nRate > 0 ? Format(sCurrent, nRate) : QString());
}

QString LTimeFields::GetText(Field f) const
{
    return pField[f]->text();
}
