// The list of compressed WAV formats to choose from: format, rate, channels and bytes per second.
#pragma once

#include <QDialog>

#include <vector>

#include "formats/LWaveFormatRecord.h"

class QTreeWidget;

class LWaveFormatChooseDlg : public QDialog
{
    Q_OBJECT
public:
    // The current record comes first when it is not among those listed, so that it shows even
    // where nothing here can write it.
    LWaveFormatChooseDlg(QWidget* pParent, const QString& szTitle, std::vector<LWaveFormatRecord> vRecords,
                         const LWaveFormatRecord* pCurrent);
    const LWaveFormatRecord& GetChoice() const { return choice; }

    // OK: keeps the choice, or refuses one that cannot be written.
    void accept() override;

private:
    QTreeWidget* pList;
    std::vector<LWaveFormatRecord> vRecords;
    LWaveFormatRecord choice;
};
