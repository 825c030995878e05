// The list of WAV formats to choose from, under "PCM" (wider and float samples) and "Compressed":
// format, rate, channels and bytes per second.
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
    // nDocChans: the channels of the sound to be saved (0 for any); a mono format offered for a
    // stereo sound says that the sound becomes one channel.
    LWaveFormatChooseDlg(QWidget* pParent, const QString& szTitle, std::vector<LWaveFormatRecord> vRecords,
                         const LWaveFormatRecord* pCurrent, uint8_t nDocChans = 0);
    const LWaveFormatRecord& GetChoice() const { return choice; }

    // OK: keeps the choice, or refuses one that cannot be written.
    void accept() override;

private:
    QTreeWidget* pList;
    std::vector<LWaveFormatRecord> vRecords;
    LWaveFormatRecord choice;
};
