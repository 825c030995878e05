#include "ui/effects/LEffectPreviewButton.h"

#include <algorithm>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimer>

#include "core/LSettings.h"
#include "core/LTrace.h"
#include "devices/LEffectPreview.h"
#include "ui/LUiPrompts.h"

namespace {
const LEffectPreviewButton::Target* g_pTarget = nullptr;

const char* const kPreviewText = "Preview";
const char* const kStopText = "Stop";
// The transport's own words when the player cannot open its device.
const char* const kPlayerDeviceText =
    "Please check that you have selected the correct sound player device using Settings. Open Settings using "
    "File->Settings";

bool IsPlainSpace(const QEvent* pEvent)
{
    const auto* pKey = static_cast<const QKeyEvent*>(pEvent);
    return pKey->key() == Qt::Key_Space && (pKey->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}
} // namespace

LEffectPreviewButton::Target::Target(const LCutListAudio& d, int32_t s, int32_t e, const LEffectArgs& a)
    : doc(d), sStart(s), sEnd(e), args(a)
{
    g_pTarget = this;
}

LEffectPreviewButton::Target::~Target()
{
    if (g_pTarget == this)
        g_pTarget = nullptr;
}

int LEffectPreviewButton::ConfiguredSeconds()
{
    return std::clamp(LSettings::GetInt("Settings", "EffectPreviewSeconds", kDefaultSeconds), kMinSeconds, kMaxSeconds);
}

LEffectPreviewButton* LEffectPreviewButton::AddTo(QDialog* pDialog, QDialogButtonBox* pButtons,
                                                  const LEffectInfo& info, ValuesFn fnValues)
{
    if (!g_pTarget)
        return nullptr;
    auto* pButton = new LEffectPreviewButton(pDialog, info, std::move(fnValues));
    pButtons->addButton(pButton, QDialogButtonBox::ActionRole);
    pButton->WatchFields();
    return pButton;
}

LEffectPreviewButton::LEffectPreviewButton(QDialog* pDlg, const LEffectInfo& i, ValuesFn fn)
    : QPushButton(kPreviewText, pDlg), pDialog(pDlg), info(i), fnValues(std::move(fn)),
      baseArgs(g_pTarget->args), pPreview(std::make_unique<LEffectPreview>()), fnBeforePlay(g_pTarget->fnBeforePlay)
{
    setObjectName("preview");
    setAutoDefault(false);
    pPreview->SetRange(g_pTarget->doc, g_pTarget->sStart, g_pTarget->sEnd, ConfiguredSeconds() * 1000);
    pPreview->SetNotify(this, 0);
    connect(this, &QPushButton::clicked, this, &LEffectPreviewButton::Toggle);
    connect(pDialog, &QDialog::finished, this, &LEffectPreviewButton::StopPreview);
    qApp->installEventFilter(this);
}

LEffectPreviewButton::~LEffectPreviewButton()
{
    pPreview->SetNotify(nullptr, 0);
}

// Every field the dialog has now: an edit, a choice or a check changes the values.
void LEffectPreviewButton::WatchFields()
{
    for (QLineEdit* p : pDialog->findChildren<QLineEdit*>())
        connect(p, &QLineEdit::textChanged, this, &LEffectPreviewButton::ValuesChanged);
    for (QComboBox* p : pDialog->findChildren<QComboBox*>())
        connect(p, &QComboBox::currentIndexChanged, this, &LEffectPreviewButton::ValuesChanged);
    for (QAbstractButton* p : pDialog->findChildren<QAbstractButton*>())
        if (p->isCheckable())
            connect(p, &QAbstractButton::toggled, this, &LEffectPreviewButton::ValuesChanged);
}

bool LEffectPreviewButton::Values(LEffectArgs& args) const
{
    args = baseArgs;
    return fnValues(args);
}

bool LEffectPreviewButton::IsPreviewing() const
{
    return pPreview->IsPlaying();
}

void LEffectPreviewButton::ShowState()
{
    setText(IsPreviewing() ? kStopText : kPreviewText);
}

// Starting may render the effect, a process: it runs from the event loop, never inside the
// click or key that asked for it.
void LEffectPreviewButton::Toggle()
{
    if (IsPreviewing() || bStartQueued) {
        bStartQueued = false;
        StopPreview();
        return;
    }
    bStartQueued = true;
    QTimer::singleShot(0, this, &LEffectPreviewButton::StartQueued);
}

void LEffectPreviewButton::StartQueued()
{
    if (!bStartQueued)
        return;
    bStartQueued = false;
    LEffectArgs args;
    if (!Values(args)) {
        LTRACE("LEffectPreviewButton::StartQueued values not acceptable");
        return;
    }
    if (fnBeforePlay)
        fnBeforePlay();
    pPreview->SetDevice(LSettings::GetInt("Settings", "SoundOutDevice", 0));
    const bool bStarted = pPreview->Start(info, args);
    ShowState();
    if (!bStarted && pPreview->IsDeviceFailed())
        LUiPrompts::Get().Inform(pDialog, "Sonitra", kPlayerDeviceText, LUiPrompts::IconInformation);
}

void LEffectPreviewButton::StopPreview()
{
    bStartQueued = false;
    pPreview->Stop();
    ShowState();
}

// Changes that come together (a choice that clears another) make one restart.
void LEffectPreviewButton::ValuesChanged()
{
    if (bUpdateQueued || !IsPreviewing())
        return;
    bUpdateQueued = true;
    QTimer::singleShot(0, this, [this] {
        bUpdateQueued = false;
        LEffectArgs args;
        if (IsPreviewing() && Values(args))
            pPreview->Update(args);
        ShowState();
    });
}

// Space in any part of the dialog is the button's, even in a field that would take it.
bool LEffectPreviewButton::eventFilter(QObject* pObject, QEvent* pEvent)
{
    const QEvent::Type t = pEvent->type();
    if (t != QEvent::KeyPress && t != QEvent::KeyRelease && t != QEvent::ShortcutOverride)
        return false;
    auto* pWidget = qobject_cast<QWidget*>(pObject);
    if (!pWidget || pWidget->window() != pDialog || !pDialog->isVisible() || !IsPlainSpace(pEvent))
        return false;
    if (t == QEvent::ShortcutOverride) {
        pEvent->accept(); // a key event, not a shortcut, so that the press arrives here
        return true;
    }
    if (t == QEvent::KeyPress && !static_cast<QKeyEvent*>(pEvent)->isAutoRepeat())
        Toggle();
    return true;
}
