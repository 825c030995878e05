// Feeds arbitrary bytes to the project reader, with segments looked for in a folder that does
// not exist (so every reference reads as silence), then writes what it accepted and reads that back.
#include <cstddef>
#include <cstdint>

#include "project/LBytes.h"
#include "project/LEdProject.h"
#include "project/LProjectSegments.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    LProjectSegments segments("/nonexistent/sonitra-fuzz/");
    auto mapIn = [&segments](uint16_t n) { return segments.Restore(n); };
    LEdProject project;
    LByteReader in(pData, nSize);
    project.Read(in, mapIn);
    for (const LEdProjectFile& f : project.vFiles)
        (void)f.pDoc->GetLength();
    for (const LEdRegion& r : project.vRegions)
        (void)r.Describe();
    LByteWriter out;
    auto mapOut = [](uint16_t nTank, uint16_t& nStored) {
        nStored = nTank;
        return true;
    };
    if (project.Write(out, mapOut)) {
        LEdProject again;
        LByteReader in2(out.Bytes().data(), out.Size());
        again.Read(in2, mapIn);
    }
    return 0;
}
