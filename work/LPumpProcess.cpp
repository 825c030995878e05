#include "work/LPumpProcess.h"

#include "core/LPRSourceToSink.h"

LPumpProcess::LPumpProcess(const std::string& szTitle, LSoundSourceBase* pSrc, LSoundSinkBase* pSnk)
    : LProgressDialog(szTitle), szPumpTitle(szTitle), pSource(pSrc), pSink(pSnk)
{
}

int32_t LPumpProcess::Process()
{
    return LPRSourceToSink::Pump(*this, szPumpTitle, pSource.Get(), pSink.Get());
}
