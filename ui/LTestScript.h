// A driver for end-to-end tests of the built editor: when SONITRA_TEST_SCRIPT names a file,
// the editor answers its questions from that file and runs the file's commands once it has
// started, one line each:
//   answer yes|no|cancel   the next question's answer (all answers are queued before anything runs)
//   open PATH              opens an audio file
//   select START END       selects frames [START, END) of the current file
//   cursor POS             moves the current file's cursor to frame POS
//   command ID             runs a menu command by number
//   render PATH            writes the current document to PATH as 16-bit WAV
//   mark PATH              writes the editor's process id to PATH (a sign for the test)
//   quit                   closes the editor normally
// A line that fails ends the script and writes "error: <line>" to stderr.
#pragma once

#include <QStringList>

#include <memory>

class MainDialog;
class LScriptedAnswers;

class LTestScript
{
public:
    // Null unless the environment asks for a script.
    static std::unique_ptr<LTestScript> FromEnvironment();
    ~LTestScript();

    // Puts the scripted answers in place of the dialogs; before the first question.
    void InstallPrompts();
    // Runs the commands from the event loop.
    void Start(MainDialog& frame);

private:
    bool RunLine(MainDialog& frame, const QString& szLine);

    QStringList vLines;
    std::unique_ptr<LScriptedAnswers> pAnswers;
};
