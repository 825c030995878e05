// Shared by the editor's Qt tests: scripted answers for every question the editor asks,
// WAV files made on the spot, and the samples of a document.
#pragma once

#include <QApplication>
#include <QTimer>
#include <QStringList>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdint>
#include <deque>
#include <functional>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "core/LCutListAudio.h"
#include "core/LSettings.h"
#include "dsp/effects/LEffectCatalog.h"
#include "platform/qtcore/LQtNotifyPoster.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/MainDialog.h"
#include "ui/LUiPrompts.h"

namespace uitest {

// The command of an effect, by its command-line name: effects are numbered by their descriptors.
struct EffectCommand
{
    explicit EffectCommand(const char* szName) : nId(LEffectCatalog::ByCliName(szName)->nCommandId) {}
    operator int() const { return nId; }
    operator uint32_t() const { return static_cast<uint32_t>(nId); }
    int nId;
};

// Acts on the dialog once it is up; set after the command, whose dialog opens from the event loop.
template <typename Dlg>
void WhenDialogShows(std::function<void(Dlg&)> fn)
{
    QTimer::singleShot(0, [fn] {
        QTRY_VERIFY(qobject_cast<Dlg*>(QApplication::activeModalWidget()));
        fn(*qobject_cast<Dlg*>(QApplication::activeModalWidget()));
    });
}

// Answers from queues; what was asked is kept for the test to check.
class ScriptedPrompts : public LUiPrompts
{
public:
    std::deque<Answer> answers;
    std::deque<QStringList> openNames;
    std::deque<QString> saveNames;
    std::deque<double> numbers;
    QStringList questions;
    QStringList informs;
    QStringList dialogTitles;
    QStringList dialogStarts;  // the folder or path each file dialog started at
    QStringList dialogFilters;

    Answer Ask(QWidget*, const QString&, const QString& szText, bool) override
    {
        questions << szText;
        if (answers.empty())
            return AnswerCancel;
        Answer a = answers.front();
        answers.pop_front();
        return a;
    }
    void Inform(QWidget*, const QString& szCaption, const QString& szText, Icon) override
    {
        informs << szCaption + ": " + szText;
    }
    QStringList GetOpenFileNames(QWidget*, const QString& szTitle, const QString& szStart,
                                 const QString& szFilter) override
    {
        dialogTitles << szTitle;
        dialogStarts << szStart;
        dialogFilters << szFilter;
        if (openNames.empty())
            return {};
        QStringList v = openNames.front();
        openNames.pop_front();
        return v;
    }
    QString GetSaveFileName(QWidget*, const QString& szTitle, const QString& szStart, const QString& szFilter) override
    {
        dialogTitles << szTitle;
        dialogStarts << szStart;
        dialogFilters << szFilter;
        if (saveNames.empty())
            return {};
        QString v = saveNames.front();
        saveNames.pop_front();
        return v;
    }
    bool AskNumber(QWidget*, const QString&, const QString&, double& fValue, double, double, int) override
    {
        if (numbers.empty())
            return false;
        fValue = numbers.front();
        numbers.pop_front();
        return true;
    }
    bool AskNewFormat(QWidget*, int32_t&, int&) override { return true; }
};

// Settings in memory, the Qt poster and the scripted prompts, for one test.
struct Harness
{
    LMemorySettings settings;
    LQtNotifyPoster poster;
    ScriptedPrompts prompts;
    QTemporaryDir dir;

    Harness()
    {
        LSettings::SetStore(&settings);
        poster.Install();
        LUiPrompts::Set(&prompts);
        LSettings::SetBool("Settings", "AutoPlaybackAfterEffects", false);
        LSettings::SetBool("Settings", "PromptSampleAndChannels", false);
    }
    ~Harness()
    {
        LUiPrompts::Set(nullptr);
        LSettings::SetStore(nullptr);
    }
    QString File(const QString& szName) const { return dir.filePath(szName); }
};

inline void PutLe(std::ofstream& f, uint32_t v, int nBytes)
{
    for (int i = 0; i < nBytes; ++i)
        f.put(static_cast<char>((v >> (8 * i)) & 0xFF));
}

// A 16-bit PCM WAV of interleaved samples in file units.
inline void WriteWav16(const QString& szPath, int nRate, int nChans, const std::vector<int16_t>& v)
{
    std::ofstream f(szPath.toStdString(), std::ios::binary);
    const uint32_t nData = static_cast<uint32_t>(v.size() * 2);
    f.write("RIFF", 4);
    PutLe(f, 36 + nData, 4);
    f.write("WAVEfmt ", 8);
    PutLe(f, 16, 4);
    PutLe(f, 1, 2);
    PutLe(f, nChans, 2);
    PutLe(f, nRate, 4);
    PutLe(f, nRate * nChans * 2, 4);
    PutLe(f, nChans * 2, 2);
    PutLe(f, 16, 2);
    f.write("data", 4);
    PutLe(f, nData, 4);
    for (int16_t s : v)
        PutLe(f, static_cast<uint16_t>(s), 2);
}

// A ramp that never repeats within 20000 frames, so that any misplaced frame shows.
inline std::vector<int16_t> Ramp(int nFrames, int nChans = 1)
{
    std::vector<int16_t> v;
    for (int i = 0; i < nFrames; ++i)
        for (int c = 0; c < nChans; ++c)
            v.push_back(static_cast<int16_t>((i % 20000) - 10000 + c * 3));
    return v;
}

// The document's samples back in file units.
inline std::vector<int16_t> Samples(const LCutListAudio& doc)
{
    LSoundSourcePtr p = doc.OpenSource();
    std::vector<int32_t> v(static_cast<size_t>(doc.GetLength()) * doc.GetChannels());
    if (!v.empty())
        p->Read(v.data(), doc.GetLength());
    std::vector<int16_t> out;
    for (int32_t s : v)
        out.push_back(static_cast<int16_t>(s >> 4));
    return out;
}

// The real frame over a fresh harness, shown at a size where every control has room. Test
// classes derive from it beside QObject and call Start and Stop from init and cleanup.
struct FrameFixture
{
    std::unique_ptr<Harness> h;
    std::unique_ptr<MainDialog> frame;
    std::vector<int16_t> vOrig; // the samples of the last ramp opened
    int nRamps = 0;

    bool Start()
    {
        nRamps = 0;
        h = std::make_unique<Harness>();
        frame = std::make_unique<MainDialog>();
        frame->resize(1000, 700);
        frame->show();
        return QTest::qWaitForWindowExposed(frame.get());
    }
    void Stop()
    {
        frame.reset();
        h.reset();
    }
    // A mono 8 kHz ramp opened through File > Open; null when that failed. The first is
    // "ramp.wav", the next ones "ramp-2.wav" and on: a file already open would only be activated.
    LEdFileWindow* OpenRamp(int nFrames)
    {
        vOrig = Ramp(nFrames);
        ++nRamps;
        const QString szPath = h->File(nRamps == 1 ? QString("ramp.wav") : QString("ramp-%1.wav").arg(nRamps));
        WriteWav16(szPath, 8000, 1, vOrig);
        h->prompts.openNames.push_back({szPath});
        return frame->Command(CmOpenId) ? frame->GetCurrentFileWindow() : nullptr;
    }
};

} // namespace uitest
