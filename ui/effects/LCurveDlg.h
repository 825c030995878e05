// The equalizer's and the envelope's dialog: the curve editor over the stored curve, with a
// button back to the flat curve. OK keeps the curve in its file for next time.
#pragma once

#include <QDialog>

#include "dsp/LPointList.h"

class LBrainWaveWindow;

class LCurveDlg : public QDialog
{
    Q_OBJECT
public:
    enum Curve
    {
        Equalizer,
        Envelope,
    };

    LCurveDlg(QWidget* pParent, Curve curve);
    LBrainWaveWindow* GetEditor() const { return pEditor; }
    const LPointList& GetPoints() const;

    // Shows the dialog; true with the accepted curve in *pList.
    static bool Edit(QWidget* pParent, Curve curve, LPointList* pList);

public slots:
    // OK: checks the values and keeps them; a refused value keeps the dialog open.
    void accept() override;

private:
    Curve curve;
    LBrainWaveWindow* pEditor;
};
