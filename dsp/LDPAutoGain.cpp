#include "dsp/LDPAutoGain.h"

#include "core/LFile.h"
#include "dsp/LDPSRCAutoGain.h"

LDPAutoGain::Plan::~Plan()
{
    if (!szPath.empty())
        LFile::Delete(szPath);
}

LDPAutoGain::LDPAutoGain(LSoundSourceBase* pIn, const std::string& szFolder, int32_t nTarget, int32_t nMaxGain)
    : pInput(pIn), szTempFolder(szFolder), nTargetDb(nTarget), nMaxGainDb(nMaxGain)
{
}

LDPAutoGain::~LDPAutoGain() = default;

int32_t LDPAutoGain::Analyse(LProgressDialog* pDlg)
{
    return 2;
}

LSoundSourcePtr LDPAutoGain::CreateSource()
{
    if (!pPlan)
        return LSoundSourcePtr(new LSRCSilence);
    return LSoundSourcePtr(new LDPSRCAutoGain(pPlan));
}
