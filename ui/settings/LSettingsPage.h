// One page of the settings dialog (no signals of its own, so no meta-object): it shows its
// values as they are stored, checks what was typed, and writes it back only when every page
// agreed.
#pragma once

#include <QWidget>

class LSettingsPage : public QWidget
{
public:
    using QWidget::QWidget;

    virtual QString Title() const = 0;
    // False, after telling the user why, when a value cannot be kept.
    virtual bool Validate() { return true; }
    virtual void Save() = 0;
};
