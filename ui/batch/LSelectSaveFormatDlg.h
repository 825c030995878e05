// The output of a batch: the format (every format that can be written), its settings through the
// format's own dialog, and the folder the outputs go to (empty: beside each input).
#pragma once

#include <QDialog>

#include "lists/EdBatchConverter.h"

class QComboBox;
class QLineEdit;
class QPushButton;

class LSelectSaveFormatDlg : public QDialog
{
    Q_OBJECT
public:
    explicit LSelectSaveFormatDlg(QWidget* pParent);

    // The chosen output (valid after OK).
    const LBatchOutput& GetOutput() const { return output; }
    QComboBox* GetFormats() const { return pFormat; }
    QLineEdit* GetFolder() const { return pFolder; }

    void CmFormatOptions();
    void CmOk();

public slots:
    void accept() override { CmOk(); }

private:
    std::string FormatName() const;
    std::string Extension() const;

    QComboBox* pFormat;
    QLineEdit* pFolder;
    QPushButton* pOptions;
    LBatchOutput output;
};
