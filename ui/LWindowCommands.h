// The Window menu (arranging the file windows, zoom and display options, the lists of marks and
// the frequency analysis) and the Help menu.
#pragma once

#include <functional>

#include "ui/LFrame.h"

class QDialog;
class QMdiArea;
class QMenuBar;

class LWindowCommands : public LCommandController
{
public:
    // fnShowAnalysis brings up the frequency analysis; the help lists the commands of pMenus.
    LWindowCommands(LFrame& frame, QMdiArea& mdi, const QMenuBar* pMenus, std::function<void()> fnShowAnalysis);
    bool Command(int nId) override;

private:
    // The commands that need no file, then those of the current file's view.
    bool CmArrange(int nId);
    bool CmView(int nId);
    // One window above the other, or side by side.
    void Tile(bool bHorizontal);
    void ShowHelp();

    LFrame& frame;
    QMdiArea& mdi;
    const QMenuBar* pMenus;
    std::function<void()> fnShowAnalysis;
    QDialog* pHelp = nullptr; // a child of the frame, made when first asked for
};
