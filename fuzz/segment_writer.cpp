// The segment writer under any blocking of any samples: the .aud file holds exactly the samples
// and the .grf overview matches a direct computation from them.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "core/LAudioCutTank.h"
#include "core/LCutListAudio.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LSettings.h"

namespace {

std::vector<uint8_t> Slurp(const std::string& szPath)
{
    std::ifstream in(szPath, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::vector<uint8_t> DirectOverview(const std::vector<int32_t>& v, int nChans)
{
    std::vector<uint8_t> vOut;
    const size_t nFrames = v.size() / nChans;
    for (size_t f0 = 0; f0 < nFrames; f0 += 256)
        for (int ch = 0; ch < nChans; ++ch) {
            int64_t nMax = 0, nMin = 0;
            for (size_t f = f0; f < std::min(nFrames, f0 + 256); ++f) {
                nMax = std::max<int64_t>(nMax, v[f * nChans + ch]);
                nMin = std::min<int64_t>(nMin, v[f * nChans + ch]);
            }
            vOut.push_back(static_cast<uint8_t>(std::min<int64_t>(nMax >> 11, 255)));
            vOut.push_back(static_cast<uint8_t>(std::min<int64_t>((-nMin) >> 11, 255)));
        }
    return vOut;
}

void Check(bool b)
{
    if (!b)
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    static bool bFolderSet = [] {
        LSettings::SetString("Folders", "WorkingFolder",
                             (std::filesystem::temp_directory_path() / "sonitra-fuzz").string());
        return true;
    }();
    (void)bFolderSet;
    if (nSize < 1)
        return 0;
    const int nChans = 1 + pData[0] % 3;
    // Then blocks: one byte of length (frames), followed by that many frames of samples.
    std::vector<int32_t> vAll;
    LCutListAudioPtr pDoc(new LCutListAudio);
    {
        LSoundSinkPtr pWriter(new LSNKSegmentWriter(pDoc.Get(), 8000, static_cast<uint8_t>(nChans)));
        size_t i = 1;
        while (i < nSize) {
            const size_t nWanted = pData[i++] * 3u;
            const size_t nFrames = std::min(nWanted, (nSize - i) / (4u * nChans));
            std::vector<int32_t> vBlock(nFrames * nChans);
            std::memcpy(vBlock.data(), pData + i, vBlock.size() * 4);
            i += vBlock.size() * 4;
            pWriter->Write(vBlock.data(), static_cast<int32_t>(nFrames));
            vAll.insert(vAll.end(), vBlock.begin(), vBlock.end());
            if (nFrames < nWanted)
                break;
        }
    }
    LAudioCutTank& tank = LAudioCutTank::Instance();
    Check(pDoc->GetLength() == static_cast<int32_t>(vAll.size() / nChans));
    if (!vAll.empty()) {
        const uint16_t nRef = pDoc->GetCuts().First()->nRef;
        const std::vector<uint8_t> vAud = Slurp(tank.GetAudFilePath(nRef));
        Check(vAud.size() == vAll.size() * 4 && std::memcmp(vAud.data(), vAll.data(), vAud.size()) == 0);
        Check(Slurp(tank.GetGrfFilePath(nRef)) == DirectOverview(vAll, nChans));
    }
    pDoc.Reset();
    Check(tank.CountUsedRefs() == 0);
    return 0;
}
