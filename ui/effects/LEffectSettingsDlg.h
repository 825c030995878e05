// The settings dialog of an effect: one field per stored value, filled with the last accepted
// values (or the defaults). OK checks every value against its rule; a refused value is named in a
// message box with the rule's message, and the dialog stays open with nothing stored.
// The dialog keeps its values as the effect's settings record (LEffectSettingsRecord), the form a
// batch command stores them in; a batch command's settings are edited through the same dialog.
#pragma once

#include <QDialog>

#include <cstdint>
#include <vector>

#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LEffectCatalog.h"

class QButtonGroup;
class QComboBox;
class QLineEdit;

class LEffectSettingsDlg : public QDialog
{
    Q_OBJECT
public:
    // Opens with the given settings record, or with the stored values when none is given.
    LEffectSettingsDlg(QWidget* pParent, const LEffectInfo& info, const std::vector<uint8_t>* pRecord = nullptr);

    // Shows the dialog; true when the user accepted (the values are then stored).
    static bool Edit(QWidget* pParent, const LEffectInfo& info);
    // Shows the dialog over a settings record; true when accepted, the record then holding the
    // new values. The stored values are left alone.
    static bool EditRecord(QWidget* pParent, const LEffectInfo& info, std::vector<uint8_t>& vRecord);
    // The values as the user accepted them (or as they opened).
    const std::vector<uint8_t>& GetRecord() const { return vRecord; }

    // The field of a stored value (a line edit, or for the compressor ratio a combo box); for tests.
    QWidget* FieldOf(const char* szKey) const;

public slots:
    // OK: checks the values and keeps them; a refused value keeps the dialog open.
    void accept() override;

private:
    struct Field
    {
        const char* szKey;
        QLineEdit* pEdit = nullptr;
        QComboBox* pCombo = nullptr;
        QButtonGroup* pChoice = nullptr;
    };

    void AddField(class QFormLayout* pForm, const LEffectParam& param, int32_t nValue);
    // A typed value, with its presets (if any) in a list beside it that fills it in.
    void AddNumberField(class QFormLayout* pForm, const LEffectParam& param, Field& f, int32_t nValue);
    // The typed value; false when it is not a whole number.
    bool ValueOf(const Field& f, int32_t& nValue) const;
    void Refuse(const Field& f, const std::string& szMessage);
    // The values as typed, when every one is acceptable: what a preview plays.
    bool CurrentValues(LEffectArgs& args) const;

    const LEffectInfo& info;
    std::vector<Field> vFields;
    std::vector<uint8_t> vRecord;
    bool bStore;
};
