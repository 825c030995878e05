// An edit and its undo on a 10-hour stereo document against the same on a 10-second one: a cut
// list rearranges references, so the two should cost the same. The long document's segments are
// written sparse (a little audio at each end of each), so the benchmark needs no 13 GB of disk.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <time.h>
#include <vector>

#include "core/LAudioCutTank.h"
#include "core/LEdFile.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LSettings.h"

namespace {

constexpr int32_t kRate = 44100;
constexpr uint8_t kChans = 2;
constexpr int kSegments = 4;

// One segment of nFrames frames, with audio only in its first and last block.
LCutListAudioPtr SparseSegment(int32_t nFrames)
{
    constexpr int32_t kBlock = 8192;
    std::vector<int32_t> v(static_cast<size_t>(kBlock) * kChans);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = static_cast<int32_t>(100000 * std::sin(static_cast<double>(i) * 0.01));
    LCutListAudioPtr pDoc(new LCutListAudio);
    LSNKSegmentWriter* pWriter = new LSNKSegmentWriter(pDoc.Get(), kRate, kChans);
    LSoundSinkPtr pHold(pWriter);
    pWriter->Write(v.data(), kBlock);
    pWriter->SetPosition(nFrames - kBlock);
    pWriter->Write(v.data(), kBlock);
    return pDoc;
}

void Build(LEdFile& file, int64_t nFrames)
{
    LCutListAudio& doc = file.GetDocument();
    doc.SetFormat(kRate, kChans);
    for (int i = 0; i < kSegments; ++i)
        doc.Insert(doc.GetLength(), *SparseSegment(static_cast<int32_t>(nFrames / kSegments)));
}

// The thread's processor time: other programs on a busy machine do not count against it.
double CpuSeconds()
{
    timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

// One round of the editor's commands, each bracketed and then undone; returns seconds per
// operation (an edit with its undo counts as one).
double Round(LEdFile& file, LCutListAudio& clip, int nRepeats)
{
    LCutListAudio& doc = file.GetDocument();
    const int32_t n = doc.GetLength();
    const int32_t a = n / 3, b = n / 3 + n / 5, p = n / 2 + 12345;
    const double t0 = CpuSeconds();
    for (int i = 0; i < nRepeats; ++i) {
        file.StartModify("Delete");
        doc.EfDelete(a, b);
        file.Undo();
        file.StartModify("Cut");
        doc.Cut(a, b, clip);
        file.StartModify("Paste");
        doc.Insert(p, clip);
        file.Undo();
        file.Undo();
        file.StartModify("Insert Silence At Current Position");
        doc.InsertSilence(p, kRate);
        file.Undo();
        file.StartModify("Amplify");
        doc.EfAmplify(a, b, 150);
        file.Undo();
        file.StartModify("Repeat Loop");
        doc.Repeat(a, a + kRate, 2);
        file.Undo();
        file.StartModify("Trim");
        doc.CropEnd(b);
        doc.CropStart(a);
        file.Undo();
    }
    return (CpuSeconds() - t0) / (nRepeats * 7.0);
}

// Rounds alternate between the two documents, so that a busy moment of the machine falls on
// both alike; the best round of each counts.
void Best(LEdFile& shortFile, LEdFile& longFile, double& fShort, double& fLong)
{
    LCutListAudio clip;
    Round(shortFile, clip, 3000); // warm up
    fShort = fLong = 1e9;
    for (int i = 0; i < 21; ++i) {
        fShort = std::min(fShort, Round(shortFile, clip, 4000));
        fLong = std::min(fLong, Round(longFile, clip, 4000));
    }
}

} // namespace

int main()
{
    const std::string szFolder = (std::filesystem::temp_directory_path() / "sonitra-bench-edit").string();
    LSettings::SetString("Folders", "WorkingFolder", szFolder);
    double fShort, fLong;
    {
        LEdFile shortFile, longFile;
        Build(shortFile, static_cast<int64_t>(kRate) * 10);
        Build(longFile, static_cast<int64_t>(kRate) * 36000);
        Best(shortFile, longFile, fShort, fLong);
        std::printf("document_edit: %d-cut stereo documents, processor time of an edit and its undo\n", kSegments);
        std::printf("  10 seconds (%d frames): %.2f us\n", shortFile.GetDocument().GetLength(), fShort * 1e6);
        std::printf("  10 hours (%d frames):   %.2f us\n", longFile.GetDocument().GetLength(), fLong * 1e6);
    }
    const bool bClean = LAudioCutTank::Instance().CountUsedRefs() == 0;
    std::printf("  ratio 10 h / 10 s: %.2f (goal <= 1.5)%s\n", fLong / fShort, bClean ? "" : "  [references leaked]");
    return fLong / fShort <= 1.5 && bClean ? 0 : 1;
}
