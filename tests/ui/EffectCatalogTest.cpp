// Every effect of the catalog reaches the editor: a menu item under its menu with its status-bar
// text, a row of the command table, and a settings dialog with a field per value that opens
// with the value's default.
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QtTest>

#include "dsp/effects/LEffectCatalog.h"
#include "ui/LCommandTable.h"
#include "ui/LMenuLayout.h"
#include "ui/effects/LEffectSettingsDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
// The value a field shows.
int ValueShown(QWidget* pField)
{
    if (auto* pEdit = qobject_cast<QLineEdit*>(pField))
        return pEdit->text().toInt();
    if (auto* pCombo = qobject_cast<QComboBox*>(pField))
        return pCombo->currentIndex();
    auto* pFirst = qobject_cast<QRadioButton*>(pField);
    return pFirst && pFirst->isChecked() ? 0 : -1;
}

QMenu* TopMenu(QMenuBar* pBar, const QString& szTitle)
{
    for (QAction* p : pBar->actions())
        if (p->menu() && p->text().remove('&') == szTitle)
            return p->menu();
    return nullptr;
}

bool Holds(QMenu* pMenu, QAction* pAction)
{
    for (QAction* p : pMenu->actions())
        if (p == pAction || (p->menu() && Holds(p->menu(), pAction)))
            return true;
    return false;
}
} // namespace

class EffectCatalogTest : public QObject, public FrameFixture
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(Start()); }
    void cleanup() { Stop(); }

    void everyEffectHasItsMenuItemAndCommandRow()
    {
        for (const LEffectInfo* p : LEffectCatalog::All()) {
            const QString szName = p->szCliName;
            const LCommandInfo* pRow = LCommandTable::Find(p->nCommandId);
            QVERIFY2(pRow, qPrintable(szName));
            QCOMPARE(LCommandTable::Hint(p->nCommandId), QString(p->szHint));
            QVERIFY2(LMenuLayout::PathOf(p->nCommandId).startsWith(QString(p->szMenu) + " > "), qPrintable(szName));
            QAction* pAction = frame->GetAction(p->nCommandId);
            QVERIFY2(pAction, qPrintable(szName));
            QCOMPARE(pAction->statusTip(), QString(p->szHint));
            QMenu* pMenu = TopMenu(frame->menuBar(), p->szMenu);
            QVERIFY2(pMenu && Holds(pMenu, pAction), qPrintable(szName));
        }
    }

    void effectsMenuIsTheCatalogsEffectsInOrder()
    {
        QMenu* pMenu = TopMenu(frame->menuBar(), "Effects");
        QVERIFY(pMenu);
        std::vector<int> vShown;
        for (QAction* p : pMenu->actions())
            if (!p->isSeparator())
                vShown.push_back(p->data().toInt());
        std::vector<int> vCatalog;
        for (const LEffectInfo* p : LEffectCatalog::All())
            if (QString(p->szMenu) == "Effects")
                vCatalog.push_back(p->nCommandId);
        QCOMPARE(vShown, vCatalog);
    }

    void everySettingsDialogHasAFieldPerValueAtItsDefault()
    {
        for (const LEffectInfo* p : LEffectCatalog::All()) {
            if (p->vParams.empty())
                continue;
            LEffectSettingsDlg dlg(nullptr, *p);
            for (const LEffectParam& param : p->vParams) {
                QWidget* pField = dlg.FieldOf(param.szKey);
                QVERIFY2(pField, qPrintable(QString("%1 %2").arg(p->szCliName, param.szKey)));
                QCOMPARE(ValueShown(pField), param.nDefault);
            }
        }
    }
};

QTEST_MAIN(EffectCatalogTest)
#include "EffectCatalogTest.moc"
