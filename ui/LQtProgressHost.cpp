#include "ui/LQtProgressHost.h"

#include <QApplication>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "core/LTrace.h"
#include "ui/LUiPrompts.h"

LQtProgressWindow::LQtProgressWindow() : QDialog(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::CustomizeWindowHint)
{
    setObjectName("LProgressDialog");
    auto* pLayout = new QVBoxLayout(this);
    for (int i = 0; i < 2; ++i) {
        pLine[i] = new QLabel(this);
        pLine[i]->setObjectName(QString("line%1").arg(100 + i));
        pLine[i]->setMinimumWidth(320);
        pLayout->addWidget(pLine[i]);
    }
    pBar = new QProgressBar(this);
    pBar->setObjectName("bar102");
    pBar->setRange(0, 100);
    pBar->setValue(0);
    pLayout->addWidget(pBar);
    auto* pRow = new QHBoxLayout;
    pRow->addStretch();
    pCancel = new QPushButton(tr("Cancel"), this);
    pCancel->setObjectName("cancel");
    pRow->addWidget(pCancel);
    pLayout->addLayout(pRow);
    connect(pCancel, &QPushButton::clicked, this, &LQtProgressWindow::reject);
}

void LQtProgressWindow::reject()
{
    bCancelled = true;
    hide();
}

LQtProgressHost::LQtProgressHost(QWidget* pParent) : pParent(pParent) {}

LQtProgressHost::~LQtProgressHost()
{
    Close();
}

bool LQtProgressHost::Open(const std::string& szTitle)
{
    // Parentless on purpose: disabling the parent must not disable the dialog with it.
    pWindow = new LQtProgressWindow;
    pWindow->setAttribute(Qt::WA_DeleteOnClose, false);
    pWindow->setWindowTitle(QString::fromStdString(szTitle));
    if (pParent) {
        bParentWasEnabled = pParent->isEnabled();
        pParent->setEnabled(false);
        QWidget* pTop = pParent->window();
        pWindow->adjustSize();
        pWindow->move(pTop->geometry().center() - pWindow->rect().center());
    }
    pWindow->show();
    return true;
}

void LQtProgressHost::Close()
{
    if (pWindow) {
        pWindow->hide();
        delete pWindow.data();
        pWindow = nullptr;
    } else {
        return;
    }
    if (pParent) {
        pParent->setEnabled(bParentWasEnabled);
        pParent->window()->activateWindow();
        pParent->setFocus();
    }
}

void LQtProgressHost::SetText(int nLine, const std::string& szText)
{
    if (pWindow && !pWindow->bCancelled && (nLine == 0 || nLine == 1))
        pWindow->pLine[nLine]->setText(QString::fromStdString(szText));
}

void LQtProgressHost::SetProgress(int nPercent)
{
    if (pWindow && !pWindow->bCancelled)
        pWindow->pBar->setValue(nPercent);
}

bool LQtProgressHost::Pump()
{
    if (!pWindow || pWindow->bCancelled)
        return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    return pWindow && !pWindow->bCancelled;
}

bool LQtProgressHost::WaitForInput(int nMs)
{
    if (!Pump())
        return false;
    // A short local loop sleeps until input arrives or the time is up.
    QEventLoop loop;
    QTimer::singleShot(nMs, &loop, &QEventLoop::quit);
    loop.exec();
    return pWindow && !pWindow->bCancelled;
}

void LQtProgressHost::ShowError(const std::string& szText)
{
    LTRACE("LQtProgressHost::ShowError %s", szText.c_str());
    LUiPrompts::Get().Inform(pWindow ? static_cast<QWidget*>(pWindow.data()) : pParent.data(), "Error",
                             QString::fromStdString(szText), LUiPrompts::IconWarning);
}

std::unique_ptr<LProgressHost> LQtProgressHostFactory::Create()
{
    return std::make_unique<LQtProgressHost>(pParent.data());
}
