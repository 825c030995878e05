#include "ui/LHelpDlg.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QMenu>
#include <QMenuBar>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "ui/LCommandTable.h"

namespace {

const char* const kGuide = R"(
<h1>Sonitra</h1>
<p>Each open file has a window of its own: the strip at the top shows the whole file, the large
view below it the part you are working on. Drag in either to select a stretch; click to place
the cursor. Edits never rewrite the audio on disk, so cutting, pasting and undoing are instant
however long the file is. Up to eight edits can be undone.</p>
<h2>Playing and recording</h2>
<p>Play starts at the cursor, or plays the selection. Hold Rewind or Fast Forward to move through
the file at speed, and hold Space to scrub. Record puts what the sound card hears at the cursor,
or over the selection; with voice activation (File &gt; Settings &gt; Recorder) it waits for
sound before it starts.</p>
<h2>Effects</h2>
<p>Effects work on the selection, or on the whole file when nothing is selected. A cancelled
effect leaves the file as it was. In an effect's dialog, Preview (or Space) plays the first
seconds of the selection through the effect as it is set; a changed value is heard at once, and
nothing changes in the file until OK.</p>
<h2>Settings</h2>
<p>File &gt; Settings chooses the sound devices, what a new file looks like, how recording starts
and stops, and the folders where Sonitra keeps its working audio and its data.</p>
)";

QString PlainText(QString sz)
{
    const int nTab = sz.indexOf('\t');
    if (nTab >= 0)
        sz.truncate(nTab);
    return sz.remove('&').trimmed().toHtmlEscaped();
}

void AddRows(QString& szHtml, const QMenu* pMenu)
{
    for (const QAction* p : pMenu->actions()) {
        if (p->isSeparator())
            continue;
        if (p->menu()) {
            AddRows(szHtml, p->menu());
            continue;
        }
        bool bCommand = false;
        const int nId = p->data().toInt(&bCommand);
        const LCommandInfo* pInfo = bCommand ? LCommandTable::Find(nId) : nullptr;
        if (!pInfo)
            continue;
        szHtml += QString("<tr><td>%1</td><td>%2</td><td>%3</td></tr>\n")
                      .arg(PlainText(p->text()), QString(pInfo->szAccel).toHtmlEscaped(),
                           LCommandTable::Hint(nId).toHtmlEscaped());
    }
}

} // namespace

QString LHelpDlg::Html(const QMenuBar* pMenus)
{
    QString szHtml = kGuide;
    szHtml += "<h2>Commands</h2>\n";
    for (const QAction* pTop : pMenus->actions()) {
        if (!pTop->menu())
            continue;
        szHtml += "<h3>" + PlainText(pTop->text()) + "</h3>\n<table cellpadding=\"3\">\n";
        AddRows(szHtml, pTop->menu());
        szHtml += "</table>\n";
    }
    return szHtml;
}

LHelpDlg::LHelpDlg(QWidget* pParent, const QMenuBar* pMenus) : QDialog(pParent)
{
    setWindowTitle(tr("Sonitra Help"));
    setObjectName("HelpDlg");
    auto* pText = new QTextBrowser(this);
    pText->setHtml(Html(pMenus));
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LHelpDlg::reject);
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(pText);
    pLayout->addWidget(pButtons);
    resize(640, 560);
}
