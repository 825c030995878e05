#include "ui/LEdFileWindow.h"

#include <QCheckBox>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QMainWindow>
#include <QResizeEvent>
#include <QRadioButton>
#include <QScrollBar>
#include <QStatusBar>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

#include "core/LEdFile.h"
#include "core/LSettings.h"
#include "dsp/LSpectroSettings.h"
#include "ui/LEdWaveWindow.h"
#include "ui/LWaveContentOf.h"

namespace {
constexpr int kAutoScrollMs = 60;
constexpr int kMargin = 2;
constexpr int kSpacing = 2;
constexpr int kOverviewHeight = 56;
constexpr int kMinOverviewHeight = 16;
} // namespace

LEdFileWindow::LEdFileWindow(std::unique_ptr<LEdFile> pNewFile, const std::string& szPath, const std::string& szName,
                             QWidget* pParent)
    : QWidget(pParent), pFile(std::move(pNewFile)), szPath(szPath), szName(szName)
{
    setObjectName("LEdFileWindow");
    setAttribute(Qt::WA_DeleteOnClose, false);
    MakeWaveViews();
    MakeControlRow();
    ConnectControls();
    const int32_t sLength = pFile->GetDocument().GetLength();
    if (pFile->GetViewEnd() <= pFile->GetViewStart())
        pFile->SetView(0, sLength);
    pOverview->Start();
    pDetail->Start();
    Refresh();
}

void LEdFileWindow::MakeWaveViews()
{
    pOverview = new LEdWaveWindow(this, IdOverview);
    pDetail = new LEdWaveWindow(this, IdDetail);
    // Sized by LayoutChildren alone, down to nothing: a minimum would push them over the controls.
    pOverview->setMinimumSize(0, 0);
    pDetail->setMinimumSize(0, 0);
    pScroll = new QScrollBar(Qt::Horizontal, this);
    pScroll->setObjectName("scroll");
    pScroll->setRange(0, LEdViewMath::kScrollRange);
    pScroll->setPageStep(10);
}

void LEdFileWindow::MakeControlRow()
{
    pControlRow = new QWidget(this);
    pControlRow->setObjectName("ControlRow");
    pVZoom = new QCheckBox(tr("Vertical Zoom"), pControlRow);
    pVZoom->setObjectName("check87");
    pPosNeg = new QRadioButton(tr("+ /-"), pControlRow);
    pPosNeg->setObjectName("radio88");
    pPosNeg->setChecked(true);
    pLeftRight = new QRadioButton(tr("L / R"), pControlRow);
    pLeftRight->setObjectName("radio89");
    MakeSpectrogramToggle();

    auto* pButtons = new QHBoxLayout(pControlRow);
    pButtons->setContentsMargins(0, 0, 0, 0);
    pButtons->addWidget(pVZoom);
    pButtons->addSpacing(12);
    pButtons->addWidget(pPosNeg);
    pButtons->addWidget(pLeftRight);
    pButtons->addSpacing(12);
    pButtons->addWidget(pSpectro);
    pButtons->addStretch();
    AddZoomButtons(pButtons);
}

void LEdFileWindow::AddZoomButtons(QHBoxLayout* pButtons)
{
    struct ZoomButton
    {
        const char* szText;
        const char* szTip;
        void (LEdFileWindow::*pfn)();
    };
    const ZoomButton zooms[] = {
        {"Zoom In", "Zoom In (Ctrl+Plus)", &LEdFileWindow::ZoomIn},
        {"Zoom Out", "Zoom Out (Ctrl+Minus)", &LEdFileWindow::ZoomOut},
        {"Selection", "Zoom To Selection (Ctrl+Shift+S)", &LEdFileWindow::ZoomToSelection},
        {"Full", "Zoom Full (Ctrl+Shift+F)", &LEdFileWindow::ZoomFull},
    };
    for (const ZoomButton& z : zooms) {
        auto* pButton = new QToolButton(pControlRow);
        pButton->setText(tr(z.szText));
        pButton->setToolTip(tr(z.szTip));
        pButton->setFocusPolicy(Qt::NoFocus);
        auto pfn = z.pfn;
        connect(pButton, &QToolButton::clicked, this, [this, pfn] { (this->*pfn)(); });
        pButtons->addWidget(pButton);
    }
}

void LEdFileWindow::ConnectControls()
{
    pAutoScrollTimer = new QTimer(this);
    pAutoScrollTimer->setInterval(kAutoScrollMs);
    connect(pAutoScrollTimer, &QTimer::timeout, this, &LEdFileWindow::OnAutoScroll);
    connect(pDetail, &LEdWaveWindow::Notify, this, &LEdFileWindow::OnDetailNotify);
    connect(pOverview, &LEdWaveWindow::Notify, this, &LEdFileWindow::OnOverviewNotify);
    connect(pScroll, &QScrollBar::actionTriggered, this, &LEdFileWindow::OnScrollAction);
    connect(pVZoom, &QCheckBox::clicked, this, [this] { ToggleVerticalZoom(); });
    connect(pPosNeg, &QRadioButton::clicked, this, [this] { SetDisplayMode(0); });
    connect(pLeftRight, &QRadioButton::clicked, this, [this] { SetDisplayMode(1); });
    connect(pDetail, &LEdWaveWindow::Pointed, this, &LEdFileWindow::OnPointed);
    connect(pOverview, &LEdWaveWindow::Pointed, this, &LEdFileWindow::OnPointed);
}

void LEdFileWindow::MakeSpectrogramToggle()
{
    pSpectro = new QToolButton(pControlRow);
    pSpectro->setObjectName("spectrogram");
    pSpectro->setText(tr("Spectrogram"));
    pSpectro->setToolTip(tr("Spectrogram View (Ctrl+Shift+G)"));
    pSpectro->setCheckable(true);
    pSpectro->setFocusPolicy(Qt::NoFocus);
    bSpectro = LSettings::GetBool("Settings", "SpectrogramView", false);
    pSpectro->setChecked(bSpectro);
    connect(pSpectro, &QToolButton::clicked, this, [this] { ToggleSpectrogram(); });
}

QSize LEdFileWindow::sizeHint() const
{
    return {std::max(480, pControlRow->sizeHint().width() + 2 * kMargin),
            kMargin * 2 + kOverviewHeight + 160 + pScroll->sizeHint().height() + pControlRow->sizeHint().height() +
                3 * kSpacing};
}

QSize LEdFileWindow::minimumSizeHint() const
{
    return {160, kMargin * 2 + 40 + pScroll->sizeHint().height() + pControlRow->sizeHint().height() + 3 * kSpacing};
}

void LEdFileWindow::resizeEvent(QResizeEvent*)
{
    LayoutChildren();
}

void LEdFileWindow::LayoutChildren()
{
    // Bottom up: the control row and the scroll bar keep their heights; the displays share
    // what is left and vanish when nothing is, so nothing is ever drawn over a display.
    const QRect r = rect().adjusted(kMargin, kMargin, -kMargin, -kMargin);
    const int nRow = pControlRow->sizeHint().height();
    const int nBar = pScroll->sizeHint().height();
    const int yRow = r.bottom() + 1 - nRow;
    const int yBar = yRow - kSpacing - nBar;
    pControlRow->setGeometry(r.left(), yRow, r.width(), nRow);
    pScroll->setGeometry(r.left(), yBar, r.width(), nBar);
    const int nWaves = std::max(yBar - kSpacing - r.top(), 0);
    // The overview gives way first: a sliver of it shows nothing.
    const int nOverview = nWaves >= 3 * kMinOverviewHeight ? std::min(kOverviewHeight, nWaves / 3) : 0;
    const int nDetail = std::max(nWaves - nOverview - kSpacing, 0);
    pOverview->setGeometry(r.left(), r.top(), r.width(), nOverview);
    pDetail->setGeometry(r.left(), r.top() + nOverview + kSpacing, r.width(), nDetail);
    pOverview->setVisible(nOverview > 0);
    pDetail->setVisible(nDetail > 0);
}

LEdFileWindow::~LEdFileWindow()
{
    // The workers read the document's sources: stop them before the file goes.
    pDetail->Stop();
    pOverview->Stop();
}

void LEdFileWindow::SetPath(const std::string& szNewPath)
{
    szPath = szNewPath;
    szName = szNewPath.substr(szNewPath.find_last_of('/') + 1);
    setWindowTitle(Caption());
}

void LEdFileWindow::SetIdentity(const std::string& szNewPath, const std::string& szNewName)
{
    szPath = szNewPath;
    szName = szNewName;
    setWindowTitle(Caption());
}

QString LEdFileWindow::Caption() const
{
    QString s = QString::fromStdString(szName);
    if (pFile->IsModified())
        s += " *";
    return s;
}

void LEdFileWindow::Refresh()
{
    LCutListAudio& doc = pFile->GetDocument();
    const int32_t sLength = doc.GetLength();
    const LViewRange view =
        LEdViewMath::AfterEdit({pFile->GetViewStart(), pFile->GetViewEnd()}, sLength, doc.GetSampleRate());
    pFile->SetView(view.sStart, view.sEnd);
    const LSpectroSettings spectroSettings = LSpectroSettings::Load();
    for (LEdWaveWindow* p : {pOverview, pDetail}) {
        p->SetSpectroSettings(spectroSettings);
        p->SetSpectrogram(bSpectro);
    }
    pOverview->SetContent(LWaveContentOf(doc));
    pOverview->SetDisplayMode(nDisplayMode);
    pOverview->SetView(0, sLength > 0 ? sLength : doc.GetSampleRate());
    pDetail->SetContent(LWaveContentOf(doc));
    pDetail->SetVerticalZoom(bVZoom);
    pDetail->SetDisplayMode(nDisplayMode);
    pDetail->SetView(view.sStart, view.Length());
    const bool bStereo = doc.GetChannels() == 2;
    pPosNeg->setEnabled(bStereo);
    pLeftRight->setEnabled(bStereo);
    PushSelectionAndCursor();
    UpdateThumb();
    setWindowTitle(Caption());
}

void LEdFileWindow::ApplyViewToFile(const LViewRange& view)
{
    pFile->SetView(view.sStart, view.sEnd);
    pDetail->SetView(view.sStart, view.Length());
    pOverview->SetCursor(view.sStart, view.Length());
}

void LEdFileWindow::SetView(int64_t sStart, int64_t sEnd)
{
    ApplyViewToFile(LEdViewMath::ClampView(sStart, sEnd, pFile->GetDocument().GetLength()));
}

void LEdFileWindow::ZoomIn()
{
    const LViewRange view{pFile->GetViewStart(), pFile->GetViewEnd()};
    ApplyViewToFile(LEdViewMath::ZoomIn(view, pFile->GetCursor(), pFile->GetDocument().GetLength()));
}

void LEdFileWindow::ZoomOut()
{
    const LViewRange view{pFile->GetViewStart(), pFile->GetViewEnd()};
    ApplyViewToFile(LEdViewMath::ZoomOut(view, pFile->GetDocument().GetLength()));
}

void LEdFileWindow::ZoomToSelection()
{
    LViewRange view;
    if (LEdViewMath::ZoomToSelection(pFile->GetSelStart(), pFile->GetSelEnd(), pFile->GetDocument().GetLength(), view))
        ApplyViewToFile(view);
}

void LEdFileWindow::ZoomFull()
{
    ApplyViewToFile(LEdViewMath::ZoomFull(pFile->GetDocument().GetLength()));
}

void LEdFileWindow::ToggleVerticalZoom()
{
    bVZoom = !bVZoom;
    pVZoom->setChecked(bVZoom);
    Refresh();
    emit DisplayOptionsChanged();
}

void LEdFileWindow::SetDisplayMode(uint8_t nMode)
{
    nDisplayMode = nMode ? 1 : 0;
    pPosNeg->setChecked(nDisplayMode == 0);
    pLeftRight->setChecked(nDisplayMode == 1);
    Refresh();
    emit DisplayOptionsChanged();
}

void LEdFileWindow::ToggleSpectrogram()
{
    SetSpectrogram(!bSpectro);
}

void LEdFileWindow::SetSpectrogram(bool bOn)
{
    bSpectro = bOn;
    pSpectro->setChecked(bSpectro);
    Refresh();
    emit DisplayOptionsChanged();
}

void LEdFileWindow::OnPointed(const QString& szWhat)
{
    // The frame's status bar, when the window sits in one.
    if (auto* pMain = qobject_cast<QMainWindow*>(window()); pMain && !szWhat.isEmpty())
        pMain->statusBar()->showMessage(szWhat, 10000);
}

void LEdFileWindow::SetCursorPosition(int32_t sPosition)
{
    const int32_t sLength = pFile->GetDocument().GetLength();
    sPosition = std::clamp(sPosition, 0, std::max(sLength, 0));
    pFile->SetCursor(sPosition);
    const int32_t sViewLength = pFile->GetViewEnd() - pFile->GetViewStart();
    if (sPosition < pFile->GetViewStart() || sPosition >= pFile->GetViewEnd())
        ScrollViewTo(sPosition - sViewLength / 2);
    PushSelectionAndCursor();
    UpdateThumb();
}

void LEdFileWindow::SetSelection(int32_t sStart, int32_t sEnd)
{
    pFile->SetSelection(sStart, sEnd);
    PushSelectionAndCursor();
    emit SelectionChanged();
}

void LEdFileWindow::SetMarks(const std::vector<LWaveMark>& vMarks)
{
    pDetail->SetMarks(vMarks);
    pOverview->SetMarks(vMarks);
}

void LEdFileWindow::ScrollViewTo(int32_t sStart)
{
    const int32_t sLength = pFile->GetDocument().GetLength();
    const int32_t sViewLength = pFile->GetViewEnd() - pFile->GetViewStart();
    sStart = std::clamp(sStart, 0, std::max(sLength - sViewLength, 0));
    ApplyViewToFile({sStart, sStart + sViewLength});
}

void LEdFileWindow::PushSelectionAndCursor()
{
    for (LEdWaveWindow* p : {pDetail, pOverview}) {
        p->SetSelectionStart(pFile->GetSelStart());
        p->SetSelectionEnd(pFile->GetSelEnd());
    }
    pDetail->SetCursor(pFile->GetCursor());
    pOverview->SetCursor(pFile->GetViewStart(), pFile->GetViewEnd() - pFile->GetViewStart());
}

void LEdFileWindow::UpdateThumb()
{
    pScroll->setValue(LEdViewMath::ThumbOf(pFile->GetCursor(), pFile->GetDocument().GetLength()));
}

void LEdFileWindow::OnDetailNotify(int nCode)
{
    const int32_t sLength = pFile->GetDocument().GetLength();
    switch (nCode) {
    case LEdWaveWindow::NotifySelecting:
        pFile->SetSelection(std::clamp(pDetail->GetSelectionStart(), 0, sLength),
                            std::clamp(pDetail->GetSelectionEnd(), 0, sLength));
        pOverview->SetSelectionStart(pFile->GetSelStart());
        pOverview->SetSelectionEnd(pFile->GetSelEnd());
        emit SelectionChanged();
        break;
    case LEdWaveWindow::NotifyButtonUp:
        pAutoScrollTimer->stop();
        pFile->SetSelection(std::clamp(pDetail->GetSelectionStart(), 0, sLength),
                            std::clamp(pDetail->GetSelectionEnd(), 0, sLength));
        pFile->SetCursor(std::clamp(pDetail->GetCursor(), 0, sLength));
        PushSelectionAndCursor();
        UpdateThumb();
        emit SelectionChanged();
        break;
    case LEdWaveWindow::NotifyBeyondRight:
        nAutoScroll = 1;
        pAutoScrollTimer->start();
        break;
    case LEdWaveWindow::NotifyBeyondLeft:
        nAutoScroll = -1;
        pAutoScrollTimer->start();
        break;
    case LEdWaveWindow::NotifyBackFromRight:
    case LEdWaveWindow::NotifyBackFromLeft:
        nAutoScroll = 0;
        pAutoScrollTimer->stop();
        break;
    default:
        break;
    }
}

void LEdFileWindow::OnOverviewNotify(int nCode)
{
    if (nCode != LEdWaveWindow::NotifyButtonUp && nCode != LEdWaveWindow::NotifySelecting)
        return;
    const int32_t sLength = pFile->GetDocument().GetLength();
    const int32_t sStart = std::clamp(pOverview->GetSelectionStart(), 0, sLength);
    const int32_t sEnd = std::clamp(pOverview->GetSelectionEnd(), 0, sLength);
    pFile->SetSelection(sStart, sEnd);
    if (nCode == LEdWaveWindow::NotifyButtonUp)
        SetCursorPosition(std::clamp(pOverview->GetCursor(), 0, sLength));
    else
        PushSelectionAndCursor();
    emit SelectionChanged();
}

void LEdFileWindow::OnAutoScroll()
{
    // The detail window moved the dragged edge with the last scroll; take it over first.
    const int32_t sLength = pFile->GetDocument().GetLength();
    pFile->SetSelection(std::clamp(pDetail->GetSelectionStart(), 0, sLength),
                        std::clamp(pDetail->GetSelectionEnd(), 0, sLength));
    const int32_t sViewLength = pFile->GetViewEnd() - pFile->GetViewStart();
    const int32_t nStep = std::max(sViewLength / 10, 1);
    ScrollViewTo(pFile->GetViewStart() + nAutoScroll * nStep);
    pOverview->SetSelectionStart(pFile->GetSelStart());
    pOverview->SetSelectionEnd(pFile->GetSelEnd());
    emit SelectionChanged();
}

void LEdFileWindow::OnScrollAction(int nAction)
{
    using namespace LEdViewMath;
    ScrollAction action = ScrollOther;
    switch (nAction) {
    case QAbstractSlider::SliderSingleStepSub: action = ScrollLineLeft; break;
    case QAbstractSlider::SliderSingleStepAdd: action = ScrollLineRight; break;
    case QAbstractSlider::SliderPageStepSub: action = ScrollPageLeft; break;
    case QAbstractSlider::SliderPageStepAdd: action = ScrollPageRight; break;
    case QAbstractSlider::SliderMove: action = ScrollThumbTrack; break;
    default: break;
    }
    ApplyScrollAction(action, pScroll->sliderPosition());
    // The bar shows the cursor, not its own arithmetic: put the thumb back once it has moved.
    if (action != ScrollThumbTrack)
        QTimer::singleShot(0, this, [this] { UpdateThumb(); });
}

void LEdFileWindow::ApplyScrollAction(LEdViewMath::ScrollAction action, int nThumb)
{
    const LCutListAudio& doc = pFile->GetDocument();
    int32_t sTarget = 0;
    if (!LEdViewMath::ScrollTarget(action, nThumb, pFile->GetCursor(), doc.GetSampleRate(), doc.GetLength(), sTarget))
        return;
    sScrollTarget = sTarget;
    emit ScrollRequested(sTarget);
}

void LEdFileWindow::contextMenuEvent(QContextMenuEvent* pEvent)
{
    emit ContextMenuRequested(pEvent->globalPos());
}
