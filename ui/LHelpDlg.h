// The help window: how to work with the editor, and every menu command with its keys and what
// it does, read from the menus themselves so that it never disagrees with them.
#pragma once

#include <QDialog>

class QMenuBar;

class LHelpDlg : public QDialog
{
    Q_OBJECT
public:
    LHelpDlg(QWidget* pParent, const QMenuBar* pMenus);

    // The page shown: the guide, then a table per menu.
    static QString Html(const QMenuBar* pMenus);
};
