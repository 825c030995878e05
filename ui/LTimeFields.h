// The five time fields of the frame: selection start, end and length, current time, file length.
#pragma once

#include <QWidget>

#include <cstdint>

class QLineEdit;

class LTimeFields : public QWidget
{
    Q_OBJECT
public:
    enum Field
    {
        FieldSelStart,
        FieldSelEnd,
        FieldSelLength,
        FieldCurrent,
        FieldFileLength,
        FieldCount,
    };

    explicit LTimeFields(QWidget* pParent);
    // Positions in frames at the rate; a rate of 0 empties the fields.
    void SetTimes(int32_t sSelStart, int32_t sSelEnd, int32_t sCurrent, int32_t sFileLength, int32_t nRate);
    void SetCurrent(int32_t sCurrent, int32_t nRate);
    QString GetText(Field f) const;

    static QString Format(int32_t sFrames, int32_t nRate);

private:
    QLineEdit* pField[FieldCount];
};
