#include "ui/LTransport.h"

#include <QPointer>
#include <QTimer>

#include <algorithm>

#include "core/LEdFile.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LSettings.h"
#include "core/LSoundTime.h"
#include "core/LTrace.h"
#include "devices/LSRCShuttle.h"
#include "devices/LSoundPlayer.h"
#include "devices/LSoundRecorder.h"
#include "ui/LEdFileWindow.h"
#include "ui/LFrame.h"
#include "ui/LUiPrompts.h"
#include "ui/NewWavDlg.h"

namespace {
const char* const kSettings = "Settings";
const char* const kRecorder = "Recorder";
constexpr int32_t kRampMs = 8000;
constexpr int32_t kRecordSilenceMs = 2000;
constexpr int8_t kNeverQuiet = -128; // a stop threshold no block falls below
constexpr int kRewindVolume = -8;
const char* const kPlayerDeviceText =
    "Please check that you have selected the correct sound player device using Settings. Open Settings using "
    "File->Settings";
const char* const kRecorderDeviceText =
    "Please check that you have selected the correct sound recorder device using Settings. Open Settings using "
    "File->Settings";
const char* const kRecordingNotWrittenText =
    "Not all of the recording could be written to the working folder (is the disk full?). What was written "
    "has been kept.";

enum Mode
{
    ModeIdle,
    ModePlaying,
    ModeShuttle,
    ModeRecording,
};

enum Resume
{
    ResumeNothing,
    ResumePlay,
    ResumeScrub,
};
} // namespace

struct LTransport::Impl : public LSoundPlayerNotify, public LSoundRecorderNotify
{
    Impl(LTransport& owner, LFrame& frame) : owner(owner), frame(frame)
    {
        player.SetNotify(this, 0);
        recorder.SetNotify(this, 0);
    }

    ~Impl() override
    {
        recorder.Stop();
        player.Stop();
    }

    // The window whose file plays; where its cursor goes.
    void PlayerPosition(uint32_t, int32_t nMs) override
    {
        if (!pWindow || nMode == ModeIdle || nMode == ModeRecording)
            return;
        const int32_t nRate = pWindow->GetFile().GetDocument().GetSampleRate();
        int32_t sPos = pShuttle ? pShuttle->GetInputPosition() : LSoundTime::MsToSamples(nMs, nRate);
        sPos += sOffset;
        pWindow->SetCursorPosition(sPos);
        emit owner.PositionChanged(pWindow->GetFile().GetCursor());
    }

    void PlayerStopped(uint32_t) override
    {
        if (nMode == ModePlaying || nMode == ModeShuttle)
            nMode = ModeIdle;
        pShuttle = nullptr;
        emit owner.StateChanged();
    }

    void PlayerPlaying(uint32_t) override { emit owner.StateChanged(); }
    void PlayerCued(uint32_t) override { emit owner.StateChanged(); }

    void RecorderTime(uint32_t, int32_t nMs) override
    {
        if (!pWindow || nMode != ModeRecording)
            return;
        emit owner.PositionChanged(sRecordAt + LSoundTime::MsToSamples(nMs, pRecordDoc->GetSampleRate()));
    }

    void RecorderStopped(uint32_t) override
    {
        if (nMode == ModeRecording)
            FinishRecording();
    }

    // Voice activation waits for the threshold before recording; auto-trim cuts silences
    // longer than two seconds back and keeps at most 50 ms after the last sound on stop.
    bool StartRecorder()
    {
        const int32_t nDevice = LSettings::GetInt(kRecorder, "Device", 0);
        const int8_t nThreshold = static_cast<int8_t>(std::clamp(LSettings::GetInt(kRecorder, "Threshold", -24), -127, 0));
        const bool bAutotrim = LSettings::GetBool(kRecorder, "Autotrim", false);
        const int8_t nStop = bAutotrim ? nThreshold : kNeverQuiet;
        const int32_t nSilenceMs = bAutotrim ? kRecordSilenceMs : 0;
        if (LSettings::GetBool(kRecorder, "Vor", false))
            return recorder.Restart(pWriter.Get(), nDevice, nThreshold, nStop, nSilenceMs, 0);
        return recorder.Start(pWriter.Get(), nDevice, -127, nStop, nSilenceMs, 0);
    }

    int32_t Device() const { return LSettings::GetInt(kSettings, "SoundOutDevice", 0); }

    bool StartPlayer(LSoundSourceBase* pSource)
    {
        player.SetDevice(Device());
        if (player.Start(pSource, 0))
            return true;
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", kPlayerDeviceText, LUiPrompts::IconInformation);
        nMode = ModeIdle;
        pShuttle = nullptr;
        return false;
    }

    // Plays the window's file from the cursor, or its selection, at the chosen speed.
    bool PlayWindow(LEdFileWindow* pPlay, bool bKeepPosition)
    {
        LEdFile& file = pPlay->GetFile();
        const LCutListAudio& doc = file.GetDocument();
        const int32_t nRate = doc.GetSampleRate();
        const int32_t sLength = doc.GetLength();
        if (!bKeepPosition && file.GetCursor() > sLength - nRate)
            pPlay->SetCursorPosition(0);
        LSoundSourcePtr pSource;
        if (file.GetSelStart() < file.GetSelEnd()) {
            pSource = doc.OpenSource(file.GetSelStart(), file.GetSelEnd());
            sOffset = file.GetSelStart();
        } else {
            pSource = doc.OpenSource();
            pSource->SetPosition(file.GetCursor());
            sOffset = 0;
        }
        pShuttle = nullptr;
        const int nSpeed = LSettings::GetInt(kSettings, "PlaySpeed", 1);
        if (nSpeed != 1) {
            pShuttle = new LSRCShuttle(pSource.Get(), (nSpeed + 1) * 0.5, 1.0, 0);
            pSource = pShuttle;
        }
        pWindow = pPlay;
        nMode = ModePlaying;
        const bool bOk = StartPlayer(pSource.Get());
        emit owner.StateChanged();
        return bOk;
    }

    void FinishRecording()
    {
        nMode = ModeIdle;
        recorder.Stop();
        // The writer finishes: the scratch document holds what was recorded. A failed finish (a
        // full disk) still keeps what reached the document, and the user is told.
        const bool bWritten = !pWriter || pWriter->Complete();
        pWriter.Reset();
        if (!bWritten)
            QTimer::singleShot(0, frame.GetWidget(), [this] {
                LUiPrompts::Get().Inform(frame.GetWidget(), "File Error", kRecordingNotWrittenText, LUiPrompts::IconError);
            });
        LCutListAudioPtr pTake = pRecordDoc;
        pRecordDoc.Reset();
        if (pWindow && pTake && pTake->GetLength() > 0) {
            LEdFile& file = pWindow->GetFile();
            file.StartModify("Record");
            if (bRecordOver)
                file.GetDocument().Replace(file.GetSelStart(), file.GetSelEnd(), *pTake);
            else
                file.GetDocument().Insert(sRecordAt, *pTake);
            file.SetSelection(sRecordAt, sRecordAt + pTake->GetLength());
            file.SetCursor(sRecordAt);
            pWindow->Refresh();
        }
        emit owner.StateChanged();
    }

    LTransport& owner;
    LFrame& frame;
    LSoundPlayer player;
    LSoundRecorder recorder;
    QPointer<LEdFileWindow> pWindow;
    Mode nMode = ModeIdle;
    Resume nResume = ResumeNothing;
    int nShuttleDirection = 0;
    LSRCShuttle* pShuttle = nullptr; // held by the player while it plays
    int32_t sOffset = 0;
    LCutListAudioPtr pRecordDoc;
    LSoundSinkPtr pWriter;
    int32_t sRecordAt = 0;
    bool bRecordOver = false;
};

LTransport::LTransport(LFrame& frame) : p(std::make_unique<Impl>(*this, frame)) {}

LTransport::~LTransport() = default;

bool LTransport::IsAvailable()
{
    return true;
}

bool LTransport::Play(bool bKeepPosition)
{
    if (p->nMode == ModeRecording)
        return false;
    if (p->player.GetState() & LSoundPlayer::kStateCue) {
        p->player.Play();
        return true;
    }
    LEdFileWindow* pWindow = p->frame.GetCurrentFileWindow();
    if (!pWindow)
        return false;
    p->player.Stop();
    return p->PlayWindow(pWindow, bKeepPosition);
}

void LTransport::Stop()
{
    if (p->nMode == ModeRecording) {
        p->FinishRecording();
        return;
    }
    if (p->nMode == ModeShuttle && LSettings::GetBool(kSettings, "ReduceVolWhenRewind", false))
        SetVolume(LSettings::GetInt(kSettings, "PlayVolume", 0));
    p->nMode = ModeIdle;
    p->player.Stop();
    p->pShuttle = nullptr;
    emit StateChanged();
}

void LTransport::GoToStart()
{
    LEdFileWindow* pWindow = p->frame.GetCurrentFileWindow();
    if (!pWindow)
        return;
    pWindow->SetCursorPosition(0);
    if (p->nMode == ModePlaying && p->pWindow == pWindow && p->sOffset == 0 && !p->pShuttle)
        p->player.Seek(0);
}

void LTransport::GoToEnd()
{
    LEdFileWindow* pWindow = p->frame.GetCurrentFileWindow();
    if (!pWindow)
        return;
    const LCutListAudio& doc = pWindow->GetFile().GetDocument();
    const bool bCue = (p->player.GetState() & LSoundPlayer::kStateCue) != 0;
    if (p->nMode == ModePlaying && p->pWindow == pWindow && p->sOffset == 0 && !p->pShuttle) {
        // While playing, the last second is still heard; in cue mode the very end.
        const int32_t sTarget = bCue ? doc.GetLength() : std::max(doc.GetLength() - doc.GetSampleRate(), 0);
        pWindow->SetCursorPosition(sTarget);
        p->player.Seek(sTarget);
        return;
    }
    pWindow->SetCursorPosition(doc.GetLength());
}

void LTransport::Scrub()
{
    if (p->nMode == ModeRecording || p->nMode == ModeShuttle)
        return;
    if (!p->player.IsOpen() && !Play(true))
        return;
    p->player.Cue();
}

void LTransport::StartShuttle(int nDirection)
{
    LEdFileWindow* pWindow = p->frame.GetCurrentFileWindow();
    if (!pWindow || p->nMode == ModeRecording)
        return;
    if (p->nMode == ModeShuttle) {
        if (p->nShuttleDirection == nDirection)
            return;
        EndShuttle();
    }
    const uint16_t nState = p->player.GetState();
    p->nResume = (nState & LSoundPlayer::kStateCue) ? ResumeScrub : p->player.IsOpen() ? ResumePlay : ResumeNothing;
    const bool bScrub = p->nResume == ResumeScrub;
    p->player.Stop();
    LEdFile& file = pWindow->GetFile();
    const LCutListAudio& doc = file.GetDocument();
    const int32_t nRate = doc.GetSampleRate();
    if (nDirection < 0)
        pWindow->SetCursorPosition(std::max(file.GetCursor() - (bScrub ? nRate / 10 : nRate / 5), 0));
    LSoundSourcePtr pInput = doc.OpenSource();
    pInput->SetPosition(file.GetCursor());
    double fFirst, fSecond;
    if (nDirection < 0) {
        fFirst = bScrub ? -0.1 : -0.5;
        fSecond = bScrub ? -3.0 : -7.0;
    } else {
        fFirst = bScrub ? 0.1 : 1.5;
        fSecond = bScrub ? 3.0 : 7.0;
    }
    auto* pShuttle = new LSRCShuttle(pInput.Get(), fFirst, fSecond, kRampMs);
    LSoundSourcePtr pHold(pShuttle);
    if (LSettings::GetBool(kSettings, "ReduceVolWhenRewind", false))
        LSoundPlayer::SetDeviceVolume(p->Device(), kRewindVolume);
    p->pWindow = pWindow;
    p->pShuttle = pShuttle;
    p->sOffset = 0;
    p->nShuttleDirection = nDirection;
    p->nMode = ModeShuttle;
    p->StartPlayer(pShuttle);
    emit StateChanged();
}

void LTransport::EndShuttle()
{
    if (p->nMode != ModeShuttle)
        return;
    if (LSettings::GetBool(kSettings, "ReduceVolWhenRewind", false))
        SetVolume(LSettings::GetInt(kSettings, "PlayVolume", 0));
    if (p->pShuttle && p->pWindow)
        p->pWindow->SetCursorPosition(p->pShuttle->GetInputPosition());
    p->nMode = ModeIdle;
    p->player.Stop();
    p->pShuttle = nullptr;
    const Resume nResume = p->nResume;
    p->nResume = ResumeNothing;
    if (nResume == ResumePlay)
        Play(true);
    else if (nResume == ResumeScrub)
        Scrub();
    emit StateChanged();
}

void LTransport::Record()
{
    if (p->nMode == ModeRecording)
        return;
    Stop();
    LEdFileWindow* pWindow = p->frame.GetCurrentFileWindow();
    if (!pWindow) {
        int32_t nRate = 44100;
        int nChans = 2;
        if (!NewWavDlg::ChooseFormat(p->frame.GetWidget(), nRate, nChans))
            return;
        auto pFile = std::make_unique<LEdFile>();
        pFile->GetDocument().SetFormat(nRate, static_cast<uint8_t>(nChans));
        pWindow = p->frame.AddFileToList(std::move(pFile), std::string(), p->frame.NextUntitledName());
        if (!pWindow)
            return;
    }
    LEdFile& file = pWindow->GetFile();
    const LCutListAudio& doc = file.GetDocument();
    p->bRecordOver = file.GetSelStart() < file.GetSelEnd();
    p->sRecordAt = p->bRecordOver ? file.GetSelStart() : file.GetCursor();
    p->pRecordDoc = new LCutListAudio(doc.GetSampleRate(), doc.GetChannels());
    p->pWriter = new LSNKSegmentWriter(p->pRecordDoc.Get(), doc.GetSampleRate(), doc.GetChannels());
    p->pWindow = pWindow;
    p->nMode = ModeRecording;
    if (!p->StartRecorder()) {
        p->nMode = ModeIdle;
        p->pWriter.Reset();
        p->pRecordDoc.Reset();
        LUiPrompts::Get().Inform(p->frame.GetWidget(), "Sonitra", kRecorderDeviceText, LUiPrompts::IconInformation);
    }
    emit StateChanged();
}

void LTransport::SetPlaySpeed(int nSpeed)
{
    LSettings::SetInt(kSettings, "PlaySpeed", std::clamp(nSpeed, 0, 2));
}

int LTransport::GetPlaySpeed() const
{
    return std::clamp(LSettings::GetInt(kSettings, "PlaySpeed", 1), 0, 2);
}

void LTransport::SetVolume(int nDb)
{
    nDb = std::clamp(nDb, -127, 127);
    LSettings::SetInt(kSettings, "PlayVolume", nDb);
    LSoundPlayer::SetDeviceVolume(p->Device(), nDb);
}

bool LTransport::IsPlaying() const
{
    return p->nMode == ModePlaying || p->nMode == ModeShuttle;
}

bool LTransport::IsRecording() const
{
    return p->nMode == ModeRecording;
}

bool LTransport::IsShuttling() const
{
    return p->nMode == ModeShuttle;
}

LEdFileWindow* LTransport::GetActiveWindow() const
{
    return p->nMode == ModeIdle ? nullptr : p->pWindow.data();
}

void LTransport::ForgetWindow(LEdFileWindow* pWindow)
{
    if (p->pWindow != pWindow)
        return;
    if (p->nMode == ModeRecording) {
        p->recorder.Stop();
        p->pWriter.Reset();
        p->pRecordDoc.Reset();
    }
    p->nMode = ModeIdle;
    p->player.Stop();
    p->pShuttle = nullptr;
    p->pWindow = nullptr;
    emit StateChanged();
}
