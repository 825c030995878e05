// Document fixtures of the effect process tests: the tank in a private folder, documents built
// from samples, and a progress host that cancels on cue.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/LAudioCutTank.h"
#include "core/LCutListAudio.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LSettings.h"
#include "support/TestSupport.h"
#include "work/LProgressDialog.h"

namespace efftest {

class EffectDocTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // Chosen once, before the tank's first use.
        static testsupport::TempDir* pDir = [] {
            auto* p = new testsupport::TempDir;
            LSettings::SetString("Folders", "WorkingFolder", p->Path());
            return p;
        }();
        (void)pDir;
        nRefsBefore = LAudioCutTank::Instance().CountUsedRefs();
    }
    void TearDown() override
    {
        EXPECT_EQ(LAudioCutTank::Instance().CountUsedRefs(), nRefsBefore) << "a segment reference leaked";
    }
    int32_t nRefsBefore = 0;
};

inline LCutListAudioPtr MakeDoc(const std::vector<int32_t>& vSamples, uint8_t nChans, int32_t nRate = 44100)
{
    LCutListAudioPtr pDoc(new LCutListAudio(nRate, nChans));
    LSoundSinkPtr pWriter(new LSNKSegmentWriter(pDoc.Get(), nRate, nChans));
    pWriter->Write(vSamples.data(), static_cast<int32_t>(vSamples.size() / nChans));
    return pDoc;
}

inline std::vector<int32_t> ReadDoc(const LCutListAudio& doc)
{
    LSoundSourcePtr pSrc = doc.OpenSource();
    std::vector<int32_t> v(static_cast<size_t>(pSrc->GetLength()) * doc.GetChannels());
    pSrc->Read(v.data(), pSrc->GetLength());
    return v;
}

inline std::string DescribeCuts(const LCutListAudio& doc)
{
    std::string sz;
    doc.GetCuts().ForEach([&](const LAudioCut& c) {
        sz += (sz.empty() ? "" : " ") + std::to_string(c.nRef) + "/" + std::to_string(c.sOffset) + "/" +
              std::to_string(c.sLength) + "/" + std::to_string(c.nGain);
    });
    return sz;
}

// What the dialogs of a factory were shown; it outlives the dialogs.
struct ShownText
{
    std::string aszLines[2];
    std::string szError;
};

// Cancels at the nth look at the queue (0: never).
class CancellingHost : public LProgressHost
{
public:
    CancellingHost(int nCancelAt, ShownText& shown) : nCancelAt(nCancelAt), shown(shown) {}
    bool Open(const std::string&) override { return true; }
    void Close() override {}
    void SetText(int nLine, const std::string& sz) override { shown.aszLines[nLine & 1] = sz; }
    void SetProgress(int) override {}
    bool Pump() override { return nCancelAt == 0 || ++nPumps < nCancelAt; }
    bool WaitForInput(int) override { return Pump(); }
    void ShowError(const std::string& sz) override { shown.szError = sz; }

private:
    int nCancelAt;
    int nPumps = 0;
    ShownText& shown;
};

class CancellingFactory : public LProgressHostFactory
{
public:
    explicit CancellingFactory(int nCancelAt) : nCancelAt(nCancelAt) {}
    std::unique_ptr<LProgressHost> Create() override { return std::make_unique<CancellingHost>(nCancelAt, shown); }
    int nCancelAt;
    ShownText shown;
};

// A dialog for running bodies directly.
class BodyDialog : public LProgressDialog
{
public:
    BodyDialog() : LProgressDialog("test") {}
    int32_t Process() override { return 0; }
};

} // namespace efftest
