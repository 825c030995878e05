// What a long piece of stream work sees of the progress display: two text lines, a fraction
// done, and whether the user has asked it to stop. The process layer implements it with its
// progress dialog; the stream layer only reports through it.
#pragma once

#include <cstdint>
#include <string>

class LProgressReport
{
public:
    enum Result
    {
        ResultDone = 0,
        ResultCancelled = 1,
        ResultError = 2,
    };

    // Line 0 names the operation, line 1 says how it goes; other lines are ignored.
    virtual void SetText(const std::string& szText, int nLine) = 0;
    virtual void SetProgress(double fFraction) = 0;
    // Keeps the display alive; true once the user has cancelled.
    virtual bool IsCancelled() = 0;

protected:
    ~LProgressReport() = default;
};
