#include "ui/LWaveContentOf.h"

#include "core/LAudioCutTank.h"
#include "core/LCutListAudio.h"

std::shared_ptr<LWaveContent> LWaveContentOf(const LCutListAudio& doc)
{
    auto pContent = std::make_shared<LWaveContent>();
    pContent->pSource = doc.OpenSource();
    pContent->pDoc = LCutListAudioPtr(new LCutListAudio(doc));
    pContent->vCuts.reserve(doc.GetCutCount());
    doc.GetCuts().ForEach([&](const LAudioCut& cut) {
        pContent->vCuts.push_back({cut.nRef, cut.sLength, cut.nGain, cut.sOffset});
    });
    pContent->fnGrfPath = [](uint16_t nRef) { return LAudioCutTank::Instance().GetGrfFilePath(nRef); };
    pContent->nChans = doc.GetChannels();
    pContent->sLength = doc.GetLength();
    return pContent;
}
