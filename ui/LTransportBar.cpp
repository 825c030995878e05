#include "ui/LTransportBar.h"

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QSlider>
#include <QToolButton>

#include "ui/LCommandIds.h"

namespace {
// The transport pictures, drawn rather than loaded so that they scale with the screen.
QIcon TransportIcon(const QString& szBitmap)
{
    constexpr int kSize = 22;
    QPixmap pix(kSize, kSize);
    pix.fill(Qt::transparent);
    QPainter p(&pix);
    p.setRenderHint(QPainter::Antialiasing);
    const bool bActive = szBitmap.contains("Active");
    QColor ink = bActive ? QColor(0x1E, 0xA0, 0x4A) : QColor(0x30, 0x30, 0x30);
    if (szBitmap.startsWith("Record"))
        ink = QColor(0xD0, 0x20, 0x20);
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    auto triangle = [&](double x0, double x1, bool bRight) {
        QPainterPath path;
        if (bRight) {
            path.moveTo(x0, 5);
            path.lineTo(x1, 11);
            path.lineTo(x0, 17);
        } else {
            path.moveTo(x1, 5);
            path.lineTo(x0, 11);
            path.lineTo(x1, 17);
        }
        path.closeSubpath();
        p.drawPath(path);
    };
    if (szBitmap.startsWith("Play")) {
        triangle(6, 17, true);
    } else if (szBitmap.startsWith("Scrub")) {
        triangle(3, 10, true);
        p.drawRect(12, 5, 2, 12);
        p.drawRect(16, 5, 2, 12);
    } else if (szBitmap.startsWith("Stop")) {
        p.drawRect(6, 6, 10, 10);
    } else if (szBitmap.startsWith("Start")) {
        p.drawRect(4, 5, 2, 12);
        triangle(7, 17, false);
    } else if (szBitmap.startsWith("Rewind")) {
        triangle(2, 11, false);
        triangle(11, 20, false);
    } else if (szBitmap.startsWith("Forward")) {
        triangle(2, 11, true);
        triangle(11, 20, true);
    } else if (szBitmap.startsWith("End")) {
        triangle(5, 15, true);
        p.drawRect(16, 5, 2, 12);
    } else if (szBitmap.startsWith("Record")) {
        p.drawEllipse(QPointF(11, 11), 6, 6);
    }
    return QIcon(pix);
}
} // namespace

LTransportBar::LTransportBar(QWidget* pParent) : QToolBar(tr("Transport"), pParent)
{
    setObjectName("TransportBar");
    pPlay = AddButton(CmPlayId, "PlayBitmap", "Play (F9)");
    AddButton(CmScrubId, "ScrubBitmap", "Scrub (Space)");
    pStop = AddButton(CmStopId, "StopBitmap", "Stop (Esc)");
    AddButton(CmGoToStartId, "StartBitmap", "Go to Start (Home)");
    AddButton(CmRewindId, "RewindBitmap", "Rewind (<-)");
    AddButton(CmFastForwardId, "ForwardBitmap", "Forward (->)");
    AddButton(CmGoToEndId, "EndBitmap", "Go to End (End)");
    AddButton(CmRecordId, "RecordBitmap", "Record (F8)");
    addSeparator();
    auto* pLabel = new QLabel(tr(" Volume "), this);
    addWidget(pLabel);
    pVolume = new QSlider(Qt::Horizontal, this);
    pVolume->setObjectName("PlayVolume");
    pVolume->setRange(kMinVolume, kMaxVolume);
    pVolume->setFixedWidth(110);
    pVolume->setToolTip(tr("Play volume (dB)"));
    pVolume->setFocusPolicy(Qt::NoFocus);
    addWidget(pVolume);
    connect(pVolume, &QSlider::valueChanged, this, &LTransportBar::VolumeChanged);
}

QToolButton* LTransportBar::AddButton(int nId, const char* szBitmap, const char* szTip)
{
    auto* pButton = new QToolButton(this);
    pButton->setObjectName(szBitmap);
    pButton->setIcon(TransportIcon(szBitmap));
    pButton->setToolTip(QString::fromUtf8(szTip));
    pButton->setFocusPolicy(Qt::NoFocus);
    pButton->setProperty("commandId", nId);
    addWidget(pButton);
    if (nId == CmRewindId || nId == CmFastForwardId) {
        connect(pButton, &QToolButton::pressed, this, [this, nId] { emit ShuttlePressed(nId); });
        connect(pButton, &QToolButton::released, this, [this, nId] { emit ShuttleReleased(nId); });
    } else {
        connect(pButton, &QToolButton::clicked, this, [this, nId] { emit Command(nId); });
    }
    return pButton;
}

QToolButton* LTransportBar::GetButton(int nId) const
{
    for (QToolButton* p : findChildren<QToolButton*>())
        if (p->property("commandId").toInt() == nId)
            return p;
    return nullptr;
}

void LTransportBar::SetPlaying(bool bNowPlaying)
{
    if (bNowPlaying == bPlaying)
        return;
    bPlaying = bNowPlaying;
    pPlay->setIcon(TransportIcon(bPlaying ? "PlayActiveBitmap" : "PlayBitmap"));
    pStop->setIcon(TransportIcon(bPlaying ? "StopActiveBitmap" : "StopBitmap"));
}

void LTransportBar::SetVolume(int nDb)
{
    QSignalBlocker block(pVolume);
    pVolume->setValue(nDb);
}
