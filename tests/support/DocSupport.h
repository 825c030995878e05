// Documents in tests: the cut tank in a private folder, documents built from samples, and what
// they hold read back.
#pragma once

#include <string>
#include <vector>

#include "core/LAudioCutTank.h"
#include "core/LCutListAudio.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LSettings.h"
#include "support/TestSupport.h"

namespace testsupport {

// Points the tank at a folder of this test program's own; must come before the tank's first
// use. The folder lives until the program ends.
inline void UsePrivateTankFolder()
{
    static TempDir* pDir = [] {
        auto* p = new TempDir;
        LSettings::SetString("Folders", "WorkingFolder", p->Path());
        return p;
    }();
    (void)pDir;
}

// A heap document holding one new segment with these samples.
inline LCutListAudioPtr MakeDoc(const std::vector<int32_t>& vSamples, uint8_t nChans, int32_t nRate = 44100)
{
    LCutListAudioPtr pDoc(new LCutListAudio(nRate, nChans));
    LSoundSinkPtr pWriter(new LSNKSegmentWriter(pDoc.Get(), nRate, nChans));
    pWriter->Write(vSamples.data(), static_cast<int32_t>(vSamples.size() / nChans));
    return pDoc;
}

// The whole document read through its source in one go.
inline std::vector<int32_t> ReadDoc(const LCutListAudio& doc)
{
    LSoundSourcePtr pSrc = doc.OpenSource();
    std::vector<int32_t> v(static_cast<size_t>(pSrc->GetLength()) * doc.GetChannels());
    pSrc->Read(v.data(), pSrc->GetLength());
    return v;
}

// "ref/offset/length/gain" per cut, space separated.
inline std::string DescribeCuts(const LCutListAudio& doc)
{
    std::string sz;
    doc.GetCuts().ForEach([&](const LAudioCut& c) {
        sz += (sz.empty() ? "" : " ") + std::to_string(c.nRef) + "/" + std::to_string(c.sOffset) + "/" +
              std::to_string(c.sLength) + "/" + std::to_string(c.nGain);
    });
    return sz;
}

} // namespace testsupport
