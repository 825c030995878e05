// Reads every track of a disc image into documents (one per track, as Load Audio CD Track(s)
// does) in a read mode and prints the wall time; bench/cd_read.sh runs it beside cd-paranoia.
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "cd/LCdDevice.h"
#include "work/LCutListAudioLoadSource.h"
#include "core/LSettings.h"

int main(int argc, char** argv)
{
    LCdReadMode mode = LCdReadMode::Verified;
    if (argc != 4 || !LCd::ParseReadMode(argv[2], mode)) {
        std::fprintf(stderr, "usage: bench_cd_read IMAGE.cue fast|verified|paranoid WORK-FOLDER\n");
        return 64;
    }
    LSettings::SetString("Folders", "WorkingFolder", argv[3]);
    const auto t0 = std::chrono::steady_clock::now();
    std::shared_ptr<LCdDisc> pDisc = LCdDisc::Open(argv[1]);
    if (pDisc->IsError()) {
        std::fprintf(stderr, "bench_cd_read: %s\n", pDisc->GetError().c_str());
        return 2;
    }
    int64_t nFrames = 0;
    // WORK-FOLDER "-": the tracks are read and dropped, to see what the reading alone costs.
    const bool bReadOnly = std::string(argv[3]) == "-";
    std::vector<int32_t> vBlock(8192 * 2);
    for (const LCdTrackInfo& t : pDisc->GetToc().vTracks) {
        if (bReadOnly) {
            LSoundSourcePtr pTrack = pDisc->OpenTrack(t.nNumber, mode);
            for (int32_t s = 0; s < pTrack->GetLength(); s += 8192)
                pTrack->Read(vBlock.data(), 8192);
            nFrames += pTrack->GetLength();
            continue;
        }
        LCutListAudioPtr pDoc(new LCutListAudio);
        LSoundSourcePtr pTrack = pDisc->OpenTrack(t.nNumber, mode);
        LCutListAudioLoadSource load("Reading", pDoc.Get(), pTrack.Get());
        if (load.Run() != LProgressDialog::ResultDone)
            return 2;
        nFrames += pDoc->GetLength();
    }
    const std::chrono::duration<double> d = std::chrono::steady_clock::now() - t0;
    const LCdReadCounts counts = pDisc->GetCounts();
    std::printf("%.4f %lld %u %u\n", d.count(), static_cast<long long>(nFrames), counts.nCorrected, counts.nUncorrectable);
    return 0;
}
