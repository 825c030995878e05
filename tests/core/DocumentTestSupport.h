// Shared by the document tests: a fixture that points the tank at a private folder and checks,
// after every test, that no reference is left counted and no segment file is left behind.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/LAudioCutTank.h"
#include "core/LCutListAudio.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LSettings.h"
#include "support/TestSupport.h"

namespace doctest {

inline int CountSegmentFiles()
{
    int n = 0;
    std::error_code ec;
    for (std::filesystem::directory_iterator it(LAudioCutTank::Instance().GetWorkingFolder(), ec), end;
         !ec && it != end; it.increment(ec)) {
        const std::string szExt = it->path().extension().string();
        n += szExt == ".aud" || szExt == ".grf";
    }
    return n;
}

class DocumentTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // Chosen once, before the tank's first use; the folder lives until the program ends.
        static testsupport::TempDir* pDir = [] {
            auto* p = new testsupport::TempDir;
            LSettings::SetString("Folders", "WorkingFolder", p->Path());
            return p;
        }();
        (void)pDir;
        ASSERT_EQ(LAudioCutTank::Instance().CountUsedRefs(), 0);
    }
    void TearDown() override
    {
        EXPECT_EQ(LAudioCutTank::Instance().CountUsedRefs(), 0) << "a segment reference leaked";
        EXPECT_EQ(CountSegmentFiles(), 0) << "a segment file was left behind";
    }
};

// A heap document holding one new segment with these samples.
inline LCutListAudioPtr MakeDoc(const std::vector<int32_t>& vSamples, uint8_t nChans, int32_t nRate = 44100)
{
    LCutListAudioPtr pDoc(new LCutListAudio);
    LSoundSinkPtr pWriter(new LSNKSegmentWriter(pDoc.Get(), nRate, nChans));
    pWriter->Write(vSamples.data(), static_cast<int32_t>(vSamples.size() / nChans));
    return pDoc;
}

// The whole document read through its source in one go.
inline std::vector<int32_t> ReadAll(const LCutListAudio& doc)
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

inline std::vector<int32_t> Ramp(int nSamples, int32_t nFirst = 1, int32_t nStep = 1)
{
    std::vector<int32_t> v(nSamples);
    for (int i = 0; i < nSamples; ++i)
        v[i] = nFirst + i * nStep;
    return v;
}

} // namespace doctest
