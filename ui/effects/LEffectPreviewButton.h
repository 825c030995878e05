// The Preview button of an effect's dialog: plays the range the effect is about to run on
// through the effect with the values the dialog shows, goes on from the same place when a value
// changes, and stops on a second press, on Space, or when the dialog closes. Space anywhere in
// the dialog starts and stops it. The document is never touched.
//
// The main window says what a dialog would preview by keeping a Target alive while it asks for
// an effect's settings; a dialog shown without one (a batch command's settings) gets no button.
#pragma once

#include <QPushButton>

#include <functional>
#include <memory>

#include "core/LCutListAudio.h"
#include "devices/LSoundPlayerNotify.h"
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LEffectCatalog.h"

class LEffectPreview;
class QDialog;
class QDialogButtonBox;

class LEffectPreviewButton : public QPushButton, private LSoundPlayerNotify
{
    Q_OBJECT
public:
    // The range an effect is about to run on, with what its dialog does not show (a clip to
    // mix). One at a time.
    class Target
    {
    public:
        // args is read when a dialog opens: a clip chosen after this is seen.
        Target(const LCutListAudio& doc, int32_t sStart, int32_t sEnd, const LEffectArgs& args);
        ~Target();
        Target(const Target&) = delete;
        Target& operator=(const Target&) = delete;
        // Run before a preview starts (the main window stops its own playback).
        std::function<void()> fnBeforePlay;

    private:
        friend class LEffectPreviewButton;
        const LCutListAudio& doc;
        int32_t sStart;
        int32_t sEnd;
        const LEffectArgs& args;
    };

    // The dialog's values over the target's; false while one of them is not acceptable.
    using ValuesFn = std::function<bool(LEffectArgs&)>;

    // How much of a longer range a preview plays: "EffectPreviewSeconds" in "Settings".
    static constexpr int kDefaultSeconds = 5;
    static constexpr int kMinSeconds = 1;
    static constexpr int kMaxSeconds = 60;
    static int ConfiguredSeconds();

    // Adds the button to the dialog's button box when a target is set; null otherwise.
    static LEffectPreviewButton* AddTo(QDialog* pDialog, QDialogButtonBox* pButtons, const LEffectInfo& info,
                                       ValuesFn fnValues);
    ~LEffectPreviewButton() override;

    // True once a start asked for has run and until the preview ends.
    bool IsPreviewing() const;
    LEffectPreview& GetPreview() { return *pPreview; }

public slots:
    void Toggle();
    void StopPreview();
    // A value of the dialog changed: a running preview takes it at once.
    void ValuesChanged();

protected:
    bool eventFilter(QObject* pObject, QEvent* pEvent) override;

private:
    LEffectPreviewButton(QDialog* pDialog, const LEffectInfo& info, ValuesFn fnValues);
    void StartQueued();
    void WatchFields();
    bool Values(LEffectArgs& args) const;
    void ShowState();

    void PlayerPlaying(uint32_t) override { ShowState(); }
    void PlayerStopped(uint32_t) override { ShowState(); }

    QDialog* pDialog;
    const LEffectInfo& info;
    ValuesFn fnValues;
    LEffectArgs baseArgs; // the target's, under the dialog's values
    std::unique_ptr<LEffectPreview> pPreview;
    std::function<void()> fnBeforePlay;
    bool bStartQueued = false;
    bool bUpdateQueued = false;
};
