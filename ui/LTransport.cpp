#include "ui/LTransport.h"

#include "core/LEdFile.h"
#include "core/LSettings.h"
#include "ui/LEdFileWindow.h"
#include "ui/MainDialog.h"

struct LTransport::Impl
{
    explicit Impl(MainDialog& frame) : frame(frame) {}
    MainDialog& frame;
};

LTransport::LTransport(MainDialog& frame) : p(std::make_unique<Impl>(frame)) {}

LTransport::~LTransport() = default;

bool LTransport::IsAvailable()
{
    return false;
}

bool LTransport::Play(bool)
{
    return false;
}

void LTransport::Stop() {}

void LTransport::GoToStart()
{
    if (LEdFileWindow* pWindow = p->frame.GetCurrentFileWindow())
        pWindow->SetCursorPosition(0);
}

void LTransport::GoToEnd()
{
    if (LEdFileWindow* pWindow = p->frame.GetCurrentFileWindow())
        pWindow->SetCursorPosition(pWindow->GetFile().GetDocument().GetLength());
}

void LTransport::Scrub() {}
void LTransport::StartShuttle(int) {}
void LTransport::EndShuttle() {}
void LTransport::Record() {}

void LTransport::SetPlaySpeed(int nSpeed)
{
    LSettings::SetInt("Settings", "PlaySpeed", nSpeed);
}

int LTransport::GetPlaySpeed() const
{
    return LSettings::GetInt("Settings", "PlaySpeed", 1);
}

void LTransport::SetVolume(int nDb)
{
    LSettings::SetInt("Settings", "PlayVolume", nDb);
}

bool LTransport::IsPlaying() const
{
    return false;
}

bool LTransport::IsRecording() const
{
    return false;
}

bool LTransport::IsShuttling() const
{
    return false;
}

LEdFileWindow* LTransport::GetActiveWindow() const
{
    return nullptr;
}

void LTransport::ForgetWindow(LEdFileWindow*) {}
