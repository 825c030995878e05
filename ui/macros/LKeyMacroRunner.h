// Binds the key macros of "keys.dat" to the frame: each macro's key runs its commands in order,
// each as if chosen from its menu (dialogs and all). Reloaded whenever the macros are saved.
#pragma once

#include <QObject>

#include <vector>

#include "lists/LKeyMacroFile.h"

class MainDialog;
class QAction;

class LKeyMacroRunner : public QObject
{
    Q_OBJECT
public:
    explicit LKeyMacroRunner(MainDialog* pFrame);
    ~LKeyMacroRunner() override;

    // Reads the file again and rebinds the keys; a version mismatch is told to the user.
    void Reload();
    // Runs a macro's commands now; false when a command was not available or unknown.
    bool Run(const LKeyMacro& macro);
    const std::vector<LKeyMacro>& GetMacros() const { return vMacros; }

    // Every runner reloads (after the settings page saved the file).
    static void ReloadAll();

private:
    MainDialog* pFrame;
    std::vector<LKeyMacro> vMacros;
    std::vector<QAction*> vActions;
};
