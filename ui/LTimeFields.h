// The five time fields of the frame: selection start, end and length, current time, file length.
// The three selection fields take a typed time: Enter hands it to the frame, Escape puts the
// shown value back.
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
    // Positions in frames at the rate; a rate of 0 empties the fields. A field being typed in
    // keeps its text.
    void SetTimes(int32_t sSelStart, int32_t sSelEnd, int32_t sCurrent, int32_t sFileLength, int32_t nRate);
    void SetCurrent(int32_t sCurrent, int32_t nRate);
    QString GetText(Field f) const;
    QLineEdit* GetField(Field f) const { return pField[f]; }
    // Puts back the value last shown in the field, ending any typing in it.
    void Restore(Field f);

    static QString Format(int32_t sFrames, int32_t nRate);

signals:
    // Enter in a selection field.
    void TimeTyped(int nField, const QString& szText);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void Show(Field f, const QString& szText);

    QLineEdit* pField[FieldCount];
    QString szShown[FieldCount];
};
