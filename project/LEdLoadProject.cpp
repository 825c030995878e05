#include "project/LEdLoadProject.h"

#include <filesystem>

#include "core/LFile.h"
#include "core/LTrace.h"
#include "project/LBytes.h"

LEdLoadProject::LEdLoadProject(const std::string& szNewPath, const std::string& szDataFolder)
    : LProgressDialog("Loading Project"), szPath(szNewPath), szGivenFolder(szDataFolder)
{
}

LProjectSegments& LEdLoadProject::Segments()
{
    // Decided when the first cut list needs it: by then the first file entry has said where
    // the audio is, if the file says it at all.
    if (!pSegments) {
        std::string szFolder = szGivenFolder;
        if (szFolder.empty() && !project.szAudioFolder.empty())
            szFolder = (std::filesystem::path(szPath).parent_path() / project.szAudioFolder).string() + "/";
        if (szFolder.empty())
            szFolder = LProjectSegments::FolderFor(szPath);
        pSegments = std::make_unique<LProjectSegments>(szFolder);
    }
    return *pSegments;
}

std::unique_ptr<LProjectSegments> LEdLoadProject::TakeSegments()
{
    Segments();
    return std::move(pSegments);
}

void LEdLoadProject::OnStage(void* pThis, LEdProject::Stage stage)
{
    auto* p = static_cast<LEdLoadProject*>(pThis);
    static const char* const kTexts[] = {"Loading files...", "Loading bookmark...", "Loading region..."};
    p->SetText(kTexts[stage], 1);
    p->SetProgress((stage + 1) / 4.0);
}

int32_t LEdLoadProject::Process()
{
    SetText("Loading Project", 0);
    LFile file;
    if (!file.Open(szPath, LFile::ReadExisting)) {
        LTRACE("LEdLoadProject::Process cannot open %s", szPath.c_str());
        bOpenError = true;
        szError = "The project file could not be opened.";
        return ResultError;
    }
    LByteReader in(file);
    auto mapRef = [this](uint16_t nStored) { return Segments().Restore(nStored); };
    switch (project.Read(in, mapRef, &szError, &LEdLoadProject::OnStage, this)) {
    case LEdProject::ReadDone:
        // Silence in place of lost audio would look like a project that opened whole.
        if (Segments().HasMissing()) {
            bMissingAudio = true;
            szError = Segments().DescribeMissing();
            LTRACE("LEdLoadProject::Process %s: %s", szPath.c_str(), szError.c_str());
            return ResultError;
        }
        SetProgress(1.0);
        return ResultDone;
    case LEdProject::ReadBadVersion:
        bVersionError = true;
        szError = kVersionMessage;
        return ResultError;
    case LEdProject::ReadDamaged:
    default: return ResultError;
    }
}
