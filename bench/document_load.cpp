// Loads an audio file into a new document (decoding into a tank segment with its overview) and
// prints the wall time; bench/document_load.sh runs it beside sox writing the same samples raw.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

#include "core/LAudioCutTank.h"
#include "work/LCutListAudioLoadSource.h"
#include "core/LSettings.h"
#include "formats/LAudioFile.h"

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_document_load IN.wav WORK-FOLDER\n");
        return 64;
    }
    LSettings::SetString("Folders", "WorkingFolder", argv[2]);
    LCutListAudioPtr pDoc(new LCutListAudio);
    const auto t0 = std::chrono::steady_clock::now();
    std::string szError;
    LSoundSourcePtr pSource = LAudioFile::OpenSource(argv[1], &szError);
    if (pSource->IsError()) {
        std::fprintf(stderr, "bench_document_load: %s: %s\n", argv[1], szError.c_str());
        return 2;
    }
    LCutListAudioLoadSource load("Loading", pDoc.Get(), pSource.Get());
    const int32_t nResult = load.Run();
    const std::chrono::duration<double> d = std::chrono::steady_clock::now() - t0;
    std::printf("%.4f %d\n", d.count(), pDoc->GetLength());
    return nResult;
}
