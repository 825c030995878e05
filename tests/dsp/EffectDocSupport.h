// Document fixtures of the effect process tests: the tank in a private folder, documents built
// from samples, and a progress host that cancels on cue.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/DocSupport.h"
#include "work/LProgressDialog.h"

namespace efftest {

class EffectDocTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        testsupport::UsePrivateTankFolder();
        nRefsBefore = LAudioCutTank::Instance().CountUsedRefs();
    }
    void TearDown() override
    {
        EXPECT_EQ(LAudioCutTank::Instance().CountUsedRefs(), nRefsBefore) << "a segment reference leaked";
    }
    int32_t nRefsBefore = 0;
};

using testsupport::DescribeCuts;
using testsupport::MakeDoc;
using testsupport::ReadDoc;

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
