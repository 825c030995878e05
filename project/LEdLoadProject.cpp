#include "project/LEdLoadProject.h"

#include "core/LFile.h"
#include "core/LTrace.h"
#include "project/LBytes.h"

LEdLoadProject::LEdLoadProject(const std::string& szNewPath, const std::string& szDataFolder)
    : LProgressDialog("Loading Project"), szPath(szNewPath),
      pSegments(std::make_unique<LProjectSegments>(szDataFolder.empty() ? LProjectSegments::FolderFor(szNewPath)
                                                                        : szDataFolder))
{
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
    LProjectSegments* pSegs = pSegments.get();
    auto mapRef = [pSegs](uint16_t nStored) { return pSegs->Restore(nStored); };
    switch (project.Read(in, mapRef, &szError, &LEdLoadProject::OnStage, this)) {
    case LEdProject::ReadDone: SetProgress(1.0); return ResultDone;
    case LEdProject::ReadBadVersion:
        bVersionError = true;
        szError = kVersionMessage;
        return ResultError;
    case LEdProject::ReadDamaged:
    default: return ResultError;
    }
}
