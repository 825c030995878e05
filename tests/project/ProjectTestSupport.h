// Shared by the project tests: the tank in a private folder, documents from samples, projects
// saved and loaded through the processes, and a check that nothing stays counted afterwards.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "project/LEdLoadProject.h"
#include "project/LEdSaveProject.h"
#include "project/LProjectSegments.h"
#include "support/DocSupport.h"

namespace projtest {

using testsupport::MakeDoc;
using testsupport::ReadDoc;
using testsupport::TempDir;

inline std::vector<int32_t> Ramp(int nSamples, int32_t nFirst = 1)
{
    std::vector<int32_t> v(nSamples);
    for (int i = 0; i < nSamples; ++i)
        v[i] = (nFirst + i) * 16;
    return v;
}

inline LEdProjectFile FileOf(const std::string& szPath, const LCutListAudioPtr& pDoc)
{
    LEdProjectFile f;
    f.entry.SetPath(szPath);
    f.entry.SetName(szPath.substr(szPath.find_last_of('/') + 1));
    f.entry.nSampleRate = pDoc->GetSampleRate();
    f.entry.nChans = pDoc->GetChannels();
    f.entry.sViewEnd = pDoc->GetLength();
    f.pDoc = pDoc;
    return f;
}

class ProjectTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        testsupport::UsePrivateTankFolder();
        ASSERT_EQ(LAudioCutTank::Instance().CountUsedRefs(), 0);
    }
    void TearDown() override
    {
        EXPECT_EQ(LAudioCutTank::Instance().CountUsedRefs(), 0) << "a segment reference leaked";
    }

    // Saves through the process with a store over a new folder of the project's own, made when
    // needed (as the editor and the command line do for a project saved anew).
    int32_t Save(const std::string& szPath, const LEdProject& project, std::unique_ptr<LProjectSegments>& pSegs)
    {
        if (!pSegs)
            pSegs = std::make_unique<LProjectSegments>(LProjectSegments::NewFolderFor(szPath));
        LEdSaveProject save(szPath, project, pSegs.get());
        return save.Run();
    }

    TempDir dir;
};

} // namespace projtest
