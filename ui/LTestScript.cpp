#include "ui/LTestScript.h"

#include <QApplication>
#include <QFile>
#include <QTimer>

#include <cstdio>
#include <deque>

#include "core/LEdFile.h"
#include "formats/LAudioFile.h"
#include "core/LAtomicFile.h"
#include "ui/LEdFileWindow.h"
#include "ui/LEdSaveProcess.h"
#include "ui/LUiPrompts.h"
#include "ui/MainDialog.h"

class LScriptedAnswers : public LUiPrompts
{
public:
    std::deque<Answer> answers;

    Answer Ask(QWidget*, const QString&, const QString& szText, bool) override
    {
        std::fprintf(stderr, "question: %s\n", szText.toUtf8().constData());
        if (answers.empty())
            return AnswerNo;
        const Answer a = answers.front();
        answers.pop_front();
        return a;
    }
    void Inform(QWidget*, const QString& szCaption, const QString& szText, Icon) override
    {
        std::fprintf(stderr, "message: %s: %s\n", szCaption.toUtf8().constData(), szText.toUtf8().constData());
    }
    QStringList GetOpenFileNames(QWidget*, const QString&, const QString&, const QString&) override { return {}; }
    QString GetSaveFileName(QWidget*, const QString&, const QString&, const QString&) override { return {}; }
    bool AskNumber(QWidget*, const QString&, const QString&, double&, double, double, int) override { return false; }
    bool AskNewFormat(QWidget*, int32_t&, int&) override { return true; }
};

std::unique_ptr<LTestScript> LTestScript::FromEnvironment()
{
    const QString szPath = qEnvironmentVariable("SONITRA_TEST_SCRIPT");
    if (szPath.isEmpty())
        return nullptr;
    QFile f(szPath);
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) {
        std::fprintf(stderr, "error: cannot read %s\n", szPath.toUtf8().constData());
        return nullptr;
    }
    auto p = std::unique_ptr<LTestScript>(new LTestScript);
    p->pAnswers = std::make_unique<LScriptedAnswers>();
    for (const QString& szLine : QString::fromUtf8(f.readAll()).split('\n', Qt::SkipEmptyParts)) {
        const QString s = szLine.trimmed();
        if (s.startsWith("answer ")) {
            const QString a = s.mid(7);
            p->pAnswers->answers.push_back(a == "yes" ? LUiPrompts::AnswerYes
                                           : a == "no" ? LUiPrompts::AnswerNo
                                                       : LUiPrompts::AnswerCancel);
        } else if (!s.isEmpty()) {
            p->vLines << s;
        }
    }
    return p;
}

LTestScript::~LTestScript()
{
    if (&LUiPrompts::Get() == pAnswers.get())
        LUiPrompts::Set(nullptr);
}

void LTestScript::InstallPrompts()
{
    LUiPrompts::Set(pAnswers.get());
}

void LTestScript::Start(MainDialog& frame)
{
    QTimer::singleShot(0, &frame, [this, &frame] {
        for (const QString& szLine : vLines) {
            if (!RunLine(frame, szLine)) {
                std::fprintf(stderr, "error: %s\n", szLine.toUtf8().constData());
                return;
            }
        }
    });
}

bool LTestScript::RunLine(MainDialog& frame, const QString& szLine)
{
    const QString szVerb = szLine.section(' ', 0, 0);
    const QString szRest = szLine.section(' ', 1);
    if (szVerb == "open")
        return frame.LoadFile(szRest.toStdString());
    if (szVerb == "select") {
        LEdFileWindow* pWindow = frame.GetCurrentFileWindow();
        if (!pWindow)
            return false;
        pWindow->SetSelection(szRest.section(' ', 0, 0).toInt(), szRest.section(' ', 1, 1).toInt());
        return true;
    }
    if (szVerb == "cursor") {
        LEdFileWindow* pWindow = frame.GetCurrentFileWindow();
        if (!pWindow)
            return false;
        pWindow->SetCursorPosition(szRest.toInt());
        return true;
    }
    if (szVerb == "command")
        return frame.Command(szRest.toInt());
    if (szVerb == "render") {
        LEdFile* pFile = frame.GetCurrentFile();
        if (!pFile)
            return false;
        LEdSaveProcess save("Saving...", pFile->GetDocument(), szRest.toStdString(), LAudioEncoding::Named("pcm16"));
        return save.Run() == 0;
    }
    if (szVerb == "mark") {
        const std::string szPid = std::to_string(QApplication::applicationPid()) + "\n";
        return LAtomicFile::Write(szRest.toStdString(), std::vector<uint8_t>(szPid.begin(), szPid.end()));
    }
    if (szVerb == "quit") {
        frame.close();
        return true;
    }
    return false;
}
