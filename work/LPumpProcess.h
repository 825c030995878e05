// The pump as a process of its own: one source into one sink behind its own progress dialog.
#pragma once

#include <string>

#include "core/LSoundSinkBase.h"
#include "core/LSoundSourceBase.h"
#include "work/LProgressDialog.h"

class LPumpProcess : public LProgressDialog
{
public:
    LPumpProcess(const std::string& szTitle, LSoundSourceBase* pSource, LSoundSinkBase* pSink);
    int32_t Process() override;

private:
    std::string szPumpTitle;
    LSoundSourcePtr pSource;
    LSoundSinkPtr pSink;
};
