// Binds the key macros of "keys.dat" to the frame: each macro's key runs its commands in order,
// each as if chosen from its menu (dialogs and all). Reloaded whenever the macros are saved.
#pragma once

#include <QObject>

#include <functional>
#include <vector>

#include "lists/LKeyMacroFile.h"

class QAction;
class QWidget;

class LKeyMacroRunner : public QObject
{
    Q_OBJECT
public:
    // Runs a command by number as its menu item would; false when it is not available.
    using CommandFn = std::function<bool(int nId)>;
    // The keys are the frame's; the runner goes with it.
    LKeyMacroRunner(QWidget* pFrame, CommandFn fnCommand);
    ~LKeyMacroRunner() override;

    // Reads the file again and rebinds the keys; a version mismatch is told to the user.
    void Reload();
    // Runs a macro's commands now; false when a command was not available or unknown.
    bool Run(const LKeyMacro& macro);
    const std::vector<LKeyMacro>& GetMacros() const { return vMacros; }

    // Every runner reloads (after the settings page saved the file).
    static void ReloadAll();

private:
    QWidget* pFrame;
    CommandFn fnCommand;
    std::vector<LKeyMacro> vMacros;
    std::vector<QAction*> vActions;
};
