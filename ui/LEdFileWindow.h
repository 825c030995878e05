// The window of one open file: an overview strip that always shows the whole file, the detail
// view of the current view range, the vertical-zoom check box, the "+ /-" and "L / R" buttons,
// the zoom buttons and the scroll bar. It owns the file (document, selection, undo ring).
#pragma once

#include <QWidget>

#include <memory>
#include <string>
#include <vector>

#include "formats/LAudioFile.h"
#include "ui/LEdViewMath.h"
#include "ui/LWaveMarks.h"

class LEdFile;
class LEdWaveWindow;
class QCheckBox;
class QHBoxLayout;
class QRadioButton;
class QScrollBar;
class QTimer;
class QToolButton;

class LEdFileWindow : public QWidget
{
    Q_OBJECT
public:
    enum ControlId
    {
        IdVerticalZoom = 87,
        IdPosNeg = 88,
        IdLeftRight = 89,
        IdDetail = 90,
        IdOverview = 91,
    };

    LEdFileWindow(std::unique_ptr<LEdFile> pFile, const std::string& szPath, const std::string& szName,
                  QWidget* pParent = nullptr);
    ~LEdFileWindow() override;

    LEdFile& GetFile() { return *pFile; }
    const std::string& GetPath() const { return szPath; }
    const std::string& GetName() const { return szName; }
    // What bookmarks and regions call the file: its path, or its name while it has none.
    const std::string& GetKey() const { return szPath.empty() ? szName : szPath; }
    void SetPath(const std::string& szNewPath);
    void SetIdentity(const std::string& szNewPath, const std::string& szNewName);
    // The encoding to save with (the one the file was read in; the format's default for new files).
    const LAudioEncoding& GetSaveEncoding() const { return saveEncoding; }
    void SetSaveEncoding(const LAudioEncoding& encoding) { saveEncoding = encoding; }
    // The caption: the name, with a star while modified.
    QString Caption() const;

    // After any edit: both displays get the document again; the view is kept valid.
    void Refresh();
    void SetView(int64_t sStart, int64_t sEnd);
    void ZoomIn();
    void ZoomOut();
    void ZoomToSelection();
    void ZoomFull();
    void ToggleVerticalZoom();
    void SetDisplayMode(uint8_t nMode);
    // Both displays as spectrograms or as waveforms; new windows follow "SpectrogramView".
    void ToggleSpectrogram();
    void SetSpectrogram(bool bOn);
    bool IsSpectrogram() const { return bSpectro; }
    bool IsVerticalZoom() const { return bVZoom; }
    uint8_t GetDisplayMode() const { return nDisplayMode; }

    // Moves the cursor (clearing no selection) and scrolls the detail view to show it.
    void SetCursorPosition(int32_t sPosition);
    void SetSelection(int32_t sStart, int32_t sEnd);
    // The file's bookmarks and regions, for both displays.
    void SetMarks(const std::vector<LWaveMark>& vMarks);
    // Makes the view start at the position, keeping its length (a scroll of the detail view).
    void ScrollViewTo(int32_t sStart);
    void ApplyScrollAction(LEdViewMath::ScrollAction action, int nThumb);

    LEdWaveWindow* GetDetail() const { return pDetail; }
    LEdWaveWindow* GetOverview() const { return pOverview; }
    QScrollBar* GetScrollBar() const { return pScroll; }
    // The row of the vertical-zoom box, the display-mode buttons and the zoom buttons.
    QWidget* GetControlRow() const { return pControlRow; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int32_t GetScrollTarget() const { return sScrollTarget; }

signals:
    void DisplayOptionsChanged();
    void ScrollRequested(int32_t sTarget);
    void SelectionChanged();
    void ContextMenuRequested(const QPoint& ptGlobal);

protected:
    void contextMenuEvent(QContextMenuEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    void OnDetailNotify(int nCode);
    void OnOverviewNotify(int nCode);
    void OnAutoScroll();
    void OnPointed(const QString& szWhat);
    void MakeWaveViews();
    void MakeControlRow();
    void MakeSpectrogramToggle();
    void AddZoomButtons(QHBoxLayout* pButtons);
    void ConnectControls();
    void OnScrollAction(int nAction);
    void PushSelectionAndCursor();
    void UpdateThumb();
    void ApplyViewToFile(const LViewRange& view);
    void LayoutChildren();

    std::unique_ptr<LEdFile> pFile;
    std::string szPath;
    std::string szName;
    LAudioEncoding saveEncoding;
    bool bVZoom = false;
    bool bSpectro = false;
    uint8_t nDisplayMode = 0;
    int32_t sScrollTarget = 0;
    int nAutoScroll = 0; // +1 right, -1 left
    LEdWaveWindow* pOverview = nullptr;
    LEdWaveWindow* pDetail = nullptr;
    QCheckBox* pVZoom = nullptr;
    QRadioButton* pPosNeg = nullptr;
    QRadioButton* pLeftRight = nullptr;
    QToolButton* pSpectro = nullptr;
    QScrollBar* pScroll = nullptr;
    QWidget* pControlRow = nullptr;
    QTimer* pAutoScrollTimer = nullptr;
};
