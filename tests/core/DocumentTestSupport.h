// Shared by the document tests: a fixture that points the tank at a private folder and checks,
// after every test, that no reference is left counted and no segment file is left behind.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/DocSupport.h"

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
        testsupport::UsePrivateTankFolder();
        ASSERT_EQ(LAudioCutTank::Instance().CountUsedRefs(), 0);
    }
    void TearDown() override
    {
        EXPECT_EQ(LAudioCutTank::Instance().CountUsedRefs(), 0) << "a segment reference leaked";
        EXPECT_EQ(CountSegmentFiles(), 0) << "a segment file was left behind";
    }
};

using testsupport::DescribeCuts;
using testsupport::MakeDoc;
using testsupport::ReadDoc;

inline std::vector<int32_t> Ramp(int nSamples, int32_t nFirst = 1, int32_t nStep = 1)
{
    std::vector<int32_t> v(nSamples);
    for (int i = 0; i < nSamples; ++i)
        v[i] = nFirst + i * nStep;
    return v;
}

} // namespace doctest
