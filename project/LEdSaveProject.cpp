#include "project/LEdSaveProject.h"

#include "core/LTrace.h"
#include "core/LAtomicFile.h"
#include "project/LBytes.h"
#include "project/LProjectSegments.h"

LEdSaveProject::LEdSaveProject(const std::string& szNewPath, const LEdProject& proj, LProjectSegments* pSegs)
    : LProgressDialog("Saving project"), szPath(szNewPath), project(proj), pSegments(pSegs)
{
    // The file names its audio folder, so the pair opens wherever it is moved or renamed to.
    project.szAudioFolder = pSegments ? pSegments->NameBeside(szPath) : std::string();
}

void LEdSaveProject::OnStage(void* pThis, LEdProject::Stage stage)
{
    auto* p = static_cast<LEdSaveProject*>(pThis);
    static const char* const kTexts[] = {"Saving files...", "Saving bookmarks...", "Saving regions..."};
    p->SetText(kTexts[stage], 1);
}

int32_t LEdSaveProject::Process()
{
    SetText("Saving project", 0);
    if (!project.FitsCounts()) {
        szError = kTooManyMessage;
        LTRACE("LEdSaveProject::Process %s", szError.c_str());
        return ResultError;
    }
    if (pSegments)
        pSegments->BeginSave();
    LByteWriter out;
    auto mapRef = [this](uint16_t nTankRef, uint16_t& nStored) {
        if (IsCancelled()) {
            bCancelled = true;
            return false;
        }
        if (!pSegments) {
            nStored = nTankRef;
            return true;
        }
        return pSegments->Keep(nTankRef, nStored);
    };
    if (!project.Write(out, mapRef, &LEdSaveProject::OnStage, this)) {
        if (pSegments)
            pSegments->EndSave(false);
        if (bCancelled)
            return ResultCancelled;
        szError = "The audio of the project could not be placed in " +
                  (pSegments ? pSegments->GetFolder() : std::string("its folder")) + ".";
        LTRACE("LEdSaveProject::Process %s", szError.c_str());
        return ResultError;
    }
    if (!LAtomicFile::Write(szPath, out.Bytes())) {
        if (pSegments)
            pSegments->EndSave(false);
        szError = "The project file could not be written.";
        LTRACE("LEdSaveProject::Process cannot write %s", szPath.c_str());
        return ResultError;
    }
    if (pSegments)
        pSegments->EndSave(true);
    SetProgress(1.0);
    return ResultDone;
}
