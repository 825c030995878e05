// Feeds arbitrary bytes to what the CD code reads from outside: a CDDB server's answers (the
// first byte 0), a cue sheet (1) or a cdrdao .toc file (2), each over a small audio file.
#include <sys/stat.h>

#include <string>
#include <vector>

#include "cd/LCdDevice.h"
#include "cd/LCdTocPaths.h"
#include "cd/LCddbAnswer.h"
#include "fuzz/LFuzzSource.h"

namespace {

std::vector<std::string> Lines(const uint8_t* p, size_t n)
{
    std::vector<std::string> v(1);
    for (size_t i = 0; i < n; ++i) {
        if (p[i] == '\n')
            v.emplace_back();
        else if (p[i] != '\r')
            v.back() += static_cast<char>(p[i]);
    }
    return v;
}

void Answers(const uint8_t* p, size_t n)
{
    const std::vector<std::string> vLines = Lines(p, n);
    std::vector<LCddbMatch> vMatches;
    std::string szError, szWarning;
    LCddbAnswer::ParseQuery(vLines, vMatches, szError);
    for (const LCddbMatch& m : vMatches)
        if (m.szDiscId.size() != 8 || !LCddbAnswer::IsUtf8(m.szTitle))
            std::abort();
    LCddbEntry entry;
    if (LCddbAnswer::ParseEntry(vLines, n % 100, entry, szError, szWarning)) {
        if (entry.vTitles.size() != n % 100)
            std::abort();
        for (const std::string& sz : entry.vTitles)
            if (sz.size() > LCddbAnswer::kMaxTitle || !LCddbAnswer::IsUtf8(sz))
                std::abort();
    }
}

// The folder holding the sheet and the audio it may name ("f.bin": 20 sectors of a ramp).
std::string Folder()
{
    static std::string szFolder;
    if (szFolder.empty()) {
        const std::string szBin = fuzzsupport::FuzzPath("cd", ".bin");
        szFolder = szBin.substr(0, szBin.rfind('/')) + "/sonitra-fuzz-cd-" + std::to_string(getpid());
        mkdir(szFolder.c_str(), 0700);
        std::vector<uint8_t> v(20 * 2352);
        for (size_t i = 0; i < v.size(); ++i)
            v[i] = static_cast<uint8_t>(i * 31);
        fuzzsupport::WriteInput((szFolder + "/f.bin").c_str(), v.data(), v.size());
    }
    return szFolder;
}

void Image(const uint8_t* p, size_t n, const char* szExt)
{
    const std::string szPath = Folder() + "/disc" + szExt;
    if (!fuzzsupport::WriteInput(szPath.c_str(), p, n))
        return;
    std::shared_ptr<LCdDisc> pDisc = LCdDisc::Open(szPath);
    if (pDisc->IsError())
        return;
    std::vector<int32_t> vBuffer(600 * 2);
    for (const LCdTrackInfo& t : pDisc->GetToc().vTracks) {
        if (t.nSectors < 0 || t.lsnStart > pDisc->GetToc().lsnLeadOut)
            std::abort();
        LSoundSourcePtr pTrack = pDisc->OpenTrack(t.nNumber, LCdReadMode::Fast);
        pTrack->Read(vBuffer.data(), 600);
        pTrack->SetPosition(pTrack->GetLength() - 1);
        pTrack->Read(vBuffer.data(), 600);
    }
}

} // namespace

// libcdio's image parsers leak what they allocated when a sheet is refused half-way; those are
// the library's, not ours, and are left out of the leak check.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libcdio.so\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    if (nSize == 0 || nSize > 65536)
        return 0;
    switch (pData[0] % 3) {
    case 0:
        Answers(pData + 1, nSize - 1);
        break;
    case 1:
        Image(pData + 1, nSize - 1, ".cue");
        break;
    default:
        LCdTocPaths::Resolve(std::string(reinterpret_cast<const char*>(pData + 1), nSize - 1), "/x");
        Image(pData + 1, nSize - 1, ".toc");
        break;
    }
    return 0;
}
