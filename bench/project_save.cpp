// Saving a project that holds a 2-hour stereo document: the first save places its segments
// beside the project, and every later save places only what is new, so saving again after an
// edit should take a few milliseconds however long the audio is. The document's segments are
// written sparse (audio only in their first and last blocks), so no 2.5 GB of disk is needed.
// Usage: bench_project_save FOLDER  (the project and the working folder go there)
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "core/LAudioCutTank.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LSettings.h"
#include "project/LEdSaveProject.h"
#include "project/LProjectSegments.h"

namespace {

constexpr int32_t kRate = 44100;
constexpr uint8_t kChans = 2;

LCutListAudioPtr SparseSegment(int32_t nFrames)
{
    constexpr int32_t kBlock = 8192;
    std::vector<int32_t> v(static_cast<size_t>(kBlock) * kChans);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = static_cast<int32_t>(100000 * std::sin(static_cast<double>(i) * 0.01));
    LCutListAudioPtr pDoc(new LCutListAudio);
    auto* pWriter = new LSNKSegmentWriter(pDoc.Get(), kRate, kChans);
    LSoundSinkPtr pHold(pWriter);
    pWriter->Write(v.data(), kBlock);
    pWriter->SetPosition(nFrames - kBlock);
    pWriter->Write(v.data(), kBlock);
    return pDoc;
}

double SaveSeconds(const std::string& szPath, const LEdProject& project, LProjectSegments& segments, int32_t& nPlaced)
{
    const auto t0 = std::chrono::steady_clock::now();
    LEdSaveProject save(szPath, project, &segments);
    if (save.Run() != 0) {
        std::fprintf(stderr, "save failed: %s\n", save.GetError().c_str());
        return -1;
    }
    nPlaced = segments.GetLinked() + segments.GetCopied();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench_project_save FOLDER\n");
        return 64;
    }
    const std::string szFolder = argv[1];
    LSettings::SetString("Folders", "WorkingFolder", szFolder + "/work");
    // Two hours in four segments (a segment holds at most 2^31 bytes of frames).
    const int32_t nQuarter = 30 * 60 * kRate;
    LEdProject project;
    LEdProjectFile f;
    f.pDoc = new LCutListAudio(kRate, kChans);
    for (int i = 0; i < 4; ++i)
        f.pDoc->Insert(f.pDoc->GetLength(), *SparseSegment(nQuarter));
    f.entry.SetPath(szFolder + "/long.wav");
    f.entry.nSampleRate = kRate;
    f.entry.nChans = kChans;
    project.vFiles.push_back(f);

    const std::string szProject = szFolder + "/long.snp";
    LProjectSegments segments(LProjectSegments::FolderFor(szProject));
    int32_t nFirst = 0, nSecond = 0;
    const double fFirst = SaveSeconds(szProject, project, segments, nFirst);
    // An edit: a cut and one new stretch of audio, as an effect would leave it.
    f.pDoc->EfDelete(kRate * 600, kRate * 660);
    f.pDoc->Insert(kRate * 60, *SparseSegment(kRate * 5));
    const double fSecond = SaveSeconds(szProject, project, segments, nSecond);
    if (fFirst < 0 || fSecond < 0)
        return 2;
    std::printf("2-hour stereo document (%.2f GB of audio): first save %.3f s (%d segments placed), "
                "save after an edit %.4f s (%d placed, %d copied)\n",
                f.pDoc->GetLength() * 8.0 / 1e9, fFirst, nFirst, fSecond, nSecond, segments.GetCopied());
    std::printf("SECOND_SAVE_S=%.6f\n", fSecond);
    return 0;
}
