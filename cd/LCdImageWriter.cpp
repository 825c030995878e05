#include "cd/LCdImageWriter.h"

#include <cstdio>
#include <filesystem>

#include "cd/LCdToc.h"
#include "cd/LSNKCdAudio.h"
#include "core/LPRSourceToSink.h"
#include "core/LTrace.h"
#include "work/LProgressDialog.h"

namespace {

// Cue sheets have no escape for quotes inside a quoted text; line breaks would end the command.
std::string CueText(const std::string& sz)
{
    std::string szOut;
    for (char c : sz) {
        if (c == '"')
            szOut += '\'';
        else if (static_cast<unsigned char>(c) >= 0x20)
            szOut += c;
    }
    return szOut;
}

bool Fail(std::string* pszError, const std::string& szText)
{
    if (pszError)
        *pszError = szText;
    return false;
}

} // namespace

LCdImageWriter::LCdImageWriter(std::vector<LCdSourceItem> v, const std::string& szAlbum, const std::string& szPerformer,
                               int32_t nGap)
    : vItems(std::move(v)), nGapSectors(nGap < 0 ? 0 : nGap)
{
    layout.szAlbum = szAlbum;
    layout.szPerformer = szPerformer;
}

LCdLayout LCdImageWriter::Plan() const
{
    LCdLayout plan;
    plan.szAlbum = layout.szAlbum;
    plan.szPerformer = layout.szPerformer;
    int32_t lsn = 0;
    for (size_t i = 0; i < vItems.size(); ++i) {
        LCdLayoutTrack t;
        t.szTitle = vItems[i].szTitle;
        t.szPerformer = vItems[i].szPerformer;
        t.lsnGap = lsn;
        lsn += i == 0 ? 0 : nGapSectors;
        t.lsnStart = lsn;
        t.nSectors = LCdLayout::SectorsFor(vItems[i].pSource->GetLength(), vItems[i].pSource->GetSampleRate());
        lsn += t.nSectors;
        plan.vTracks.push_back(t);
    }
    return plan;
}

std::string LCdImageWriter::CueSheet(const LCdLayout& lay, const std::string& szBinName)
{
    std::string sz;
    if (!lay.szPerformer.empty())
        sz += "PERFORMER \"" + CueText(lay.szPerformer) + "\"\n";
    if (!lay.szAlbum.empty())
        sz += "TITLE \"" + CueText(lay.szAlbum) + "\"\n";
    sz += "FILE \"" + CueText(szBinName) + "\" BINARY\n";
    char szNumber[8];
    for (size_t i = 0; i < lay.vTracks.size(); ++i) {
        const LCdLayoutTrack& t = lay.vTracks[i];
        std::snprintf(szNumber, sizeof szNumber, "%02d", static_cast<int>(i + 1));
        sz += std::string("  TRACK ") + szNumber + " AUDIO\n";
        if (!t.szTitle.empty())
            sz += "    TITLE \"" + CueText(t.szTitle) + "\"\n";
        if (!t.szPerformer.empty())
            sz += "    PERFORMER \"" + CueText(t.szPerformer) + "\"\n";
        if (t.lsnGap < t.lsnStart)
            sz += "    INDEX 00 " + LCd::FormatMsf(t.lsnGap) + "\n";
        sz += "    INDEX 01 " + LCd::FormatMsf(t.lsnStart) + "\n";
    }
    return sz;
}

int32_t LCdImageWriter::WriteBin(LProgressDialog& dlg, const std::string& szPath, std::string* pszError)
{
    std::FILE* pFile = std::fopen(szPath.c_str(), "wb");
    if (!pFile) {
        Fail(pszError, "Cannot create " + szPath.substr(0, szPath.size() - 5)); // without ".part"
        return LProgressDialog::ResultError;
    }
    layout.vTracks.clear();
    int32_t lsn = 0;
    int32_t nResult = LProgressDialog::ResultDone;
    for (size_t i = 0; i < vItems.size() && nResult == LProgressDialog::ResultDone; ++i) {
        LCdLayoutTrack t;
        t.szTitle = vItems[i].szTitle;
        t.szPerformer = vItems[i].szPerformer;
        t.lsnGap = lsn;
        const int32_t nGap = i == 0 ? 0 : nGapSectors;
        if (!LSNKCdAudio::WriteSilence(pFile, nGap)) {
            nResult = LProgressDialog::ResultError;
            break;
        }
        lsn += nGap;
        t.lsnStart = lsn;
        LSoundSinkPtr pSink(new LSNKCdAudio(pFile));
        auto* pCd = static_cast<LSNKCdAudio*>(pSink.Get());
        const std::string szTitle = "Writing track " + std::to_string(i + 1) + " of " + std::to_string(vItems.size());
        nResult = LPRSourceToSink::Pump(dlg, szTitle, vItems[i].pSource.Get(), pCd);
        if (nResult == LProgressDialog::ResultDone && (!pCd->PadToSector() || !pCd->Complete()))
            nResult = LProgressDialog::ResultError;
        t.nSectors = static_cast<int32_t>(pCd->FramesWritten() / LCd::kFramesPerSector);
        lsn += t.nSectors;
        layout.vTracks.push_back(t);
    }
    const bool bClosed = std::fclose(pFile) == 0;
    if (nResult == LProgressDialog::ResultDone && !bClosed)
        nResult = LProgressDialog::ResultError;
    if (nResult == LProgressDialog::ResultError && pszError && pszError->empty())
        *pszError = "Cannot write the disc image " + szPath + " (a source failed or the disk is full)";
    return nResult;
}

int32_t LCdImageWriter::Write(LProgressDialog& dlg, const std::string& szCuePath, std::string* pszError)
{
    namespace fs = std::filesystem;
    if (vItems.empty()) {
        Fail(pszError, "No tracks to write");
        return LProgressDialog::ResultError;
    }
    const fs::path cuePath(szCuePath);
    const fs::path binPath = fs::path(cuePath).replace_extension(".bin");
    const std::string szBinPart = binPath.string() + ".part";
    const std::string szCuePart = szCuePath + ".part";
    int32_t nResult = WriteBin(dlg, szBinPart, pszError);
    if (nResult == LProgressDialog::ResultDone) {
        const std::string szCue = CueSheet(layout, binPath.filename().string());
        std::FILE* pCue = std::fopen(szCuePart.c_str(), "wb");
        const bool bWritten = pCue && std::fwrite(szCue.data(), 1, szCue.size(), pCue) == szCue.size();
        const bool bClosed = pCue && std::fclose(pCue) == 0;
        if (!bWritten || !bClosed) {
            Fail(pszError, "Cannot write the cue sheet " + szCuePath);
            nResult = LProgressDialog::ResultError;
        }
    }
    std::error_code ec;
    if (nResult == LProgressDialog::ResultDone) {
        fs::rename(szBinPart, binPath, ec);
        if (!ec)
            fs::rename(szCuePart, cuePath, ec);
        if (ec) {
            Fail(pszError, "Cannot rename the disc image into place: " + ec.message());
            nResult = LProgressDialog::ResultError;
        }
    }
    if (nResult != LProgressDialog::ResultDone) {
        LTRACE("LCdImageWriter::Write failed or cancelled (%d)", nResult);
        fs::remove(szBinPart, ec);
        fs::remove(szCuePart, ec);
    }
    return nResult;
}
