// The progress dialog of the editor: a small modeless window with two text lines, a bar and
// Cancel. While it is open the parent window is disabled; the body that runs on the
// user-interface thread keeps the interface alive by pumping events through Pump().
#pragma once

#include <QDialog>
#include <QPointer>

#include "work/LProgressHost.h"

class QLabel;
class QProgressBar;
class QPushButton;

class LQtProgressWindow : public QDialog
{
    Q_OBJECT
public:
    LQtProgressWindow();
    QLabel* pLine[2];
    QProgressBar* pBar;
    QPushButton* pCancel;
    bool bCancelled = false;

protected:
    void reject() override;
};

class LQtProgressHost : public LProgressHost
{
public:
    explicit LQtProgressHost(QWidget* pParent);
    ~LQtProgressHost() override;

    bool Open(const std::string& szTitle) override;
    void Close() override;
    void SetText(int nLine, const std::string& szText) override;
    void SetProgress(int nPercent) override;
    bool Pump() override;
    bool WaitForInput(int nMs) override;
    void ShowError(const std::string& szText) override;

    LQtProgressWindow* GetWindow() const { return pWindow; }

private:
    QPointer<QWidget> pParent;
    QPointer<LQtProgressWindow> pWindow;
    bool bParentWasEnabled = true;
};

// Makes progress hosts over one parent window (the main frame, when there is one).
class LQtProgressHostFactory : public LProgressHostFactory
{
public:
    explicit LQtProgressHostFactory(QWidget* pParent = nullptr) : pParent(pParent) {}
    std::unique_ptr<LProgressHost> Create() override;
    void SetParent(QWidget* pNewParent) { pParent = pNewParent; }

private:
    QPointer<QWidget> pParent;
};
