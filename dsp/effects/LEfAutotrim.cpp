#include "dsp/effects/LEfAutotrim.h"

#include <algorithm>

#include "core/LAudioCutTank.h"
#include "core/LFile.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LStoredValues.h"
#include "dsp/LDecibelTable.h"

namespace {
// Reads the overview records of one cut into the table at its block position, scaled by its gain.
void ReadCutOverview(const LAudioCut& cut, int64_t sAt, size_t nC, size_t nBlocks, std::vector<uint8_t>& vTable)
{
    const size_t nFirst = static_cast<size_t>(sAt / LEfAutotrim::kBlockFrames);
    if (nFirst >= nBlocks)
        return;
    const size_t nCount = std::min<size_t>((static_cast<size_t>(cut.sLength) + 255) / 256, nBlocks - nFirst);
    LFile file;
    if (!file.Open(LAudioCutTank::Instance().GetGrfFilePath(cut.nRef), LFile::ReadExisting))
        return;
    file.Seek(static_cast<int64_t>(cut.sOffset / LEfAutotrim::kBlockFrames) * static_cast<int64_t>(nC) * 2);
    uint8_t* pDest = vTable.data() + nFirst * nC * 2;
    const int64_t nRead = std::max<int64_t>(file.Read(pDest, static_cast<int64_t>(nCount * nC * 2)), 0);
    const int32_t nFactor = cut.nGain >> 16; // 8 fractional bits
    for (int64_t i = 0; i < nRead; ++i)
        pDest[i] = static_cast<uint8_t>(std::min<int64_t>((static_cast<int64_t>(pDest[i]) * nFactor) >> 8, 255));
}

bool Quiet(const std::vector<uint8_t>& v, size_t nEntry, int64_t nThreshold)
{
    return v[2 * nEntry] <= nThreshold && v[2 * nEntry + 1] <= nThreshold;
}
} // namespace

std::vector<uint8_t> LEfAutotrim::BuildTable(LProgressDialog& dlg, const LCutListAudio& doc, bool* pbCancelled)
{
    *pbCancelled = false;
    const size_t nC = std::max<size_t>(doc.GetChannels(), 1);
    const size_t nBlocks = static_cast<size_t>(doc.GetLength()) / kBlockFrames + 1;
    std::vector<uint8_t> vTable(nBlocks * nC * 2, 0);
    const double fCuts = std::max<double>(static_cast<double>(doc.GetCutCount()), 1.0);
    int64_t sAt = 0;
    size_t nDone = 0;
    doc.GetCuts().ForEach([&](const LAudioCut& cut) {
        if (*pbCancelled)
            return;
        if (!cut.IsSilent())
            ReadCutOverview(cut, sAt, nC, nBlocks, vTable);
        sAt += cut.sLength;
        dlg.SetProgress(static_cast<double>(++nDone) / fCuts);
        *pbCancelled = dlg.IsCancelled();
    });
    if (*pbCancelled)
        return {};
    return vTable;
}

void LEfAutotrim::FindBounds(const std::vector<uint8_t>& vTable, int32_t nChans, int32_t nThresholdDb, int32_t nLength,
                             int32_t* psStart, int32_t* psEnd)
{
    *psStart = 0;
    *psEnd = nLength;
    const size_t nC = std::max(nChans, 1);
    const size_t nEntries = vTable.size() / 2;
    const int64_t nReference = vTable.empty() ? 0 : *std::max_element(vTable.begin(), vTable.end());
    const int64_t nThreshold = (nReference * LDecibelTable::Factor(std::clamp(nThresholdDb, -127, 127))) >> 24;
    // The first block is never looked at going forward, nor the last going backward.
    for (size_t i = nC; i < nEntries; ++i) {
        if (!Quiet(vTable, i, nThreshold)) {
            *psStart = static_cast<int32_t>((i / nC - 1) * kBlockFrames);
            break;
        }
    }
    if (nEntries < 2 * nC)
        return;
    for (size_t i = nEntries - 2 * nC + 1; i-- > 0;) {
        if (!Quiet(vTable, i, nThreshold)) {
            *psEnd = static_cast<int32_t>((i / nC + 1) * kBlockFrames);
            break;
        }
    }
}

int32_t LEfAutotrim::Run(LProgressDialog& dlg, LCutListAudio& doc, int32_t nThresholdDb)
{
    dlg.SetText("AutoTrim", 0);
    dlg.SetText("Please wait...", 1);
    dlg.SetProgress(0);
    bool bCancelled = false;
    const std::vector<uint8_t> vTable = BuildTable(dlg, doc, &bCancelled);
    if (bCancelled)
        return LProgressDialog::ResultCancelled;
    const int32_t nLength = doc.GetLength();
    int32_t sStart = 0;
    int32_t sEnd = nLength;
    FindBounds(vTable, doc.GetChannels(), nThresholdDb, nLength, &sStart, &sEnd);
    LTRACE("EfAutotrim keeps %d..%d of %d", sStart, sEnd, nLength);
    // Loud audio only in the blocks the scans pass over would cross the bounds; keep it all then.
    if (sStart >= sEnd)
        return LProgressDialog::ResultDone;
    if (sEnd < nLength)
        doc.EfDelete(sEnd, nLength);
    if (sStart > 0)
        doc.EfDelete(0, sStart);
    return LProgressDialog::ResultDone;
}

namespace {
int32_t AutoTrim(LProgressDialog& dlg, const LEffectInfo&, LCutListAudio& doc, int32_t, int32_t, const LEffectArgs&)
{
    return LEfAutotrim::Run(dlg, doc, LStoredValues::AutoTrimThreshold());
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfAutoTrim) = {
    .nCommandId = 2013, .szCliName = "auto-trim", .szMenuText = "Auto Trim", .szMenu = "Edit", .nMenuGroup = 0,
    .szHint = "Deletes silence from the start and end.", .szUndoLabel = "Auto Trim", .szCaption = "AutoTrim",
    .range = LEffectInfo::WholeFile, .pfnApply = AutoTrim,
};
