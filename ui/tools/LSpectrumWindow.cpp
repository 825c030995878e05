#include "ui/tools/LSpectrumWindow.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>

#include "core/LEdFile.h"
#include "core/LSettings.h"
#include "core/LSoundTime.h"
#include "ui/LEdFileWindow.h"
#include "ui/LTransport.h"
#include "ui/MainDialog.h"
#include "ui/tools/LFrequencyAxis.h"

namespace {
constexpr const char* kSection = "StoredValues";
constexpr double kLowHz = 10.0;
constexpr double kFloorDb = -120.0;
// How often the window looks whether what it follows has moved.
constexpr int kFollowMs = 100;
} // namespace

// The drawing: the spectrum, its axes and grid; tells the window what lies under the mouse.
class LSpectrumPlot : public QWidget
{
public:
    explicit LSpectrumPlot(QWidget* pParent) : QWidget(pParent)
    {
        setMouseTracking(true);
        setMinimumSize(360, 220);
        setObjectName("spectrumPlot");
    }
    void SetSpectrum(const LSpectrum* p)
    {
        pSpectrum = p;
        update();
    }
    // The frequency at a column and the column of a frequency, on the log axis.
    double HzAt(double x) const
    {
        const QRectF r = PlotRect();
        return kLowHz * std::pow(TopHz() / kLowHz, std::clamp((x - r.left()) / r.width(), 0.0, 1.0));
    }
    double XOf(double fHz) const
    {
        const QRectF r = PlotRect();
        return r.left() + r.width() * std::log(std::max(fHz, kLowHz) / kLowHz) / std::log(TopHz() / kLowHz);
    }
    double YOf(double fDb) const
    {
        const QRectF r = PlotRect();
        return r.top() + r.height() * (0.0 - std::clamp(fDb, kFloorDb, 0.0)) / (0.0 - kFloorDb);
    }
    double fMouseHz = -1;
    std::function<void()> fnMouseMoved;
    // The frequency ticks for the plot's present width.
    std::vector<LAxisTick> GetTicks() const { return LFrequencyAxis::Ticks(PlotRect(), kLowHz, TopHz(), fontMetrics()); }

protected:
    void paintEvent(QPaintEvent*) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override
    {
        const QRectF r = PlotRect();
        const double x = pEvent->position().x();
        fMouseHz = x >= r.left() && x <= r.right() ? HzAt(x) : -1;
        if (fnMouseMoved)
            fnMouseMoved();
    }
    void leaveEvent(QEvent*) override
    {
        fMouseHz = -1;
        if (fnMouseMoved)
            fnMouseMoved();
    }

private:
    double TopHz() const
    {
        return pSpectrum && pSpectrum->GetSampleRate() > 0 ? pSpectrum->GetSampleRate() / 2.0 : 22050.0;
    }
    QRectF PlotRect() const { return QRectF(48, 8, std::max(10, width() - 58), std::max(10, height() - 32)); }
    const LSpectrum* pSpectrum = nullptr;
};

void LSpectrumPlot::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), palette().base());
    const QRectF r = PlotRect();
    p.setPen(QPen(palette().mid().color(), 0, Qt::DotLine));
    for (double fDb = 0; fDb >= kFloorDb; fDb -= 20) {
        p.drawLine(QPointF(r.left(), YOf(fDb)), QPointF(r.right(), YOf(fDb)));
        p.drawText(QRectF(0, YOf(fDb) - 8, r.left() - 4, 16), Qt::AlignRight | Qt::AlignVCenter,
                   QString::number(fDb, 'f', 0));
    }
    for (const LAxisTick& t : GetTicks()) {
        p.drawLine(QPointF(t.x, r.top()), QPointF(t.x, r.bottom()));
        if (!t.szLabel.isEmpty())
            p.drawText(t.rcLabel, Qt::AlignHCenter | Qt::AlignTop, t.szLabel);
    }
    p.setPen(palette().text().color());
    p.drawRect(r);
    if (!pSpectrum || pSpectrum->GetDb().size() < 2)
        return;
    // Each column shows the loudest bin that falls in it, so narrow peaks never vanish.
    const auto& vDb = pSpectrum->GetDb();
    QPainterPath path;
    bool bStarted = false;
    size_t k = 1;
    for (int x = static_cast<int>(r.left()); x <= static_cast<int>(r.right()); ++x) {
        const double fHi = HzAt(x + 1);
        double fDb = -1e9;
        while (k < vDb.size() && pSpectrum->BinHz(static_cast<int32_t>(k)) < fHi) {
            if (pSpectrum->BinHz(static_cast<int32_t>(k)) >= HzAt(x))
                fDb = std::max(fDb, vDb[k]);
            ++k;
        }
        if (fDb < -1e8)
            fDb = pSpectrum->DbAt(HzAt(x + 0.5));
        const QPointF pt(x, YOf(fDb));
        if (bStarted)
            path.lineTo(pt);
        else
            path.moveTo(pt);
        bStarted = true;
    }
    p.setPen(QPen(QColor(0, 110, 200), 1.2));
    p.drawPath(path);
    if (fMouseHz > 0) {
        p.setPen(QPen(palette().highlight().color(), 0, Qt::DashLine));
        p.drawLine(QPointF(XOf(fMouseHz), r.top()), QPointF(XOf(fMouseHz), r.bottom()));
    }
}

LSpectrumWindow::LSpectrumWindow(MainDialog& frame) : QWidget(&frame, Qt::Tool), frame(frame), nSize(StoredSize())
{
    setWindowTitle(tr("Frequency Analysis (FFT)"));
    setObjectName("LSpectrumWindow");
    setAttribute(Qt::WA_DeleteOnClose, false);
    pPlot = new LSpectrumPlot(this);
    pSizes = new QComboBox(this);
    pSizes->setObjectName("size");
    for (int32_t n = LSpectrum::kMinSize; n <= LSpectrum::kMaxSize; n *= 2)
        pSizes->addItem(QString::number(n), n);
    pSizes->setCurrentIndex(pSizes->findData(nSize));
    pReadout = new QLabel(this);
    pReadout->setObjectName("readout");
    pReadout->setMinimumWidth(180);
    pRange = new QLabel(this);
    auto* pBar = new QHBoxLayout;
    pBar->addWidget(new QLabel(tr("FFT size:"), this));
    pBar->addWidget(pSizes);
    pBar->addWidget(pRange, 1);
    pBar->addWidget(pReadout);
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(pPlot, 1);
    pLayout->addLayout(pBar);
    resize(640, 360);

    connect(pSizes, &QComboBox::currentIndexChanged, this, [this](int i) { SetSize(pSizes->itemData(i).toInt()); });
    pPlot->fnMouseMoved = [this] {
        pReadout->setText(GetReadout());
        pPlot->update();
    };
    connect(&frame.GetTransport(), &LTransport::PositionChanged, this, &LSpectrumWindow::OnPlayPosition);
    connect(&frame, &MainDialog::CurrentFileChanged, this, &LSpectrumWindow::Follow);
    pTimer = new QTimer(this);
    connect(pTimer, &QTimer::timeout, this, &LSpectrumWindow::Follow);
    pTimer->start(kFollowMs);
}

int32_t LSpectrumWindow::StoredSize()
{
    const int32_t n = LSettings::GetInt(kSection, kSizeKey, kDefaultSize);
    return LSpectrum::IsValidSize(n) ? n : kDefaultSize;
}

void LSpectrumWindow::SetSize(int32_t nNew)
{
    if (!LSpectrum::IsValidSize(nNew) || nNew == nSize)
        return;
    nSize = nNew;
    LSettings::SetInt(kSection, kSizeKey, nSize);
    pSizes->setCurrentIndex(pSizes->findData(nSize));
    szLastKey.clear();
    Follow();
}

void LSpectrumWindow::OnPlayPosition(int32_t sPosition)
{
    sPlayPosition = sPosition;
}

void LSpectrumWindow::Follow()
{
    if (!isVisible())
        return;
    LEdFileWindow* pWindow = frame.GetCurrentFileWindow();
    std::string szKey;
    if (pWindow) {
        LEdFile& file = pWindow->GetFile();
        const bool bPlaying = frame.GetTransport().IsPlaying() && frame.GetTransport().GetActiveWindow() == pWindow;
        char sz[160];
        std::snprintf(sz, sizeof sz, "%p %d %d %d %d %d ", static_cast<void*>(pWindow), file.GetSelStart(),
                      file.GetSelEnd(), bPlaying ? sPlayPosition : file.GetCursor(), file.GetDocument().GetLength(),
                      nSize);
        szKey = sz + std::to_string(file.GetChangeSerial());
    }
    if (szKey != szLastKey)
        Analyse(szKey);
}

void LSpectrumWindow::Analyse(const std::string& szKey)
{
    szLastKey = szKey;
    LEdFileWindow* pWindow = frame.GetCurrentFileWindow();
    spectrum = LSpectrum();
    sStart = sEnd = 0;
    if (pWindow) {
        LEdFile& file = pWindow->GetFile();
        LCutListAudio& doc = file.GetDocument();
        if (file.GetSelStart() < file.GetSelEnd()) {
            sStart = file.GetSelStart();
            sEnd = file.GetSelEnd();
        } else {
            const bool bPlaying = frame.GetTransport().IsPlaying() && frame.GetTransport().GetActiveWindow() == pWindow;
            const int32_t sAt = bPlaying && sPlayPosition >= 0 ? sPlayPosition : file.GetCursor();
            sStart = std::clamp(sAt - nSize / 2, 0, std::max(0, doc.GetLength() - nSize));
            sEnd = std::min(doc.GetLength(), sStart + nSize);
        }
        if (sEnd > sStart) {
            LSoundSourcePtr pSource = doc.OpenSource();
            spectrum.Analyze(*pSource, sStart, sEnd, nSize);
        }
        LSoundTime a, b;
        a.SetSamples(sStart, doc.GetSampleRate());
        b.SetSamples(sEnd, doc.GetSampleRate());
        pRange->setText(QString("%1 - %2").arg(QString::fromStdString(a.FormatMilliseconds()),
                                               QString::fromStdString(b.FormatMilliseconds())));
    } else {
        pRange->setText(tr("No file open"));
    }
    pPlot->SetSpectrum(&spectrum);
    pReadout->setText(GetReadout());
}

std::vector<LAxisTick> LSpectrumWindow::GetFrequencyTicks() const
{
    return pPlot->GetTicks();
}

QRect LSpectrumWindow::GetPlotRect() const
{
    return pPlot->geometry();
}

QString LSpectrumWindow::GetReadout() const
{
    if (pPlot->fMouseHz <= 0 || spectrum.GetDb().empty())
        return QString();
    return QString("%1 Hz, %2 dB").arg(pPlot->fMouseHz, 0, 'f', 1).arg(spectrum.DbAt(pPlot->fMouseHz), 0, 'f', 1);
}
