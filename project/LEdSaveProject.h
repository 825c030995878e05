// Saving a project, as a process behind the progress dialog ("Saving project"). The new file is
// written beside the old one and then takes its name, so a failed or cancelled save leaves the
// old project as it was. A project of more records than its count bytes hold is refused.
#pragma once

#include <string>

#include "project/LEdProject.h"
#include "work/LProgressDialog.h"

class LProjectSegments;

class LEdSaveProject : public LProgressDialog
{
public:
    static constexpr const char* kTooManyMessage =
        "A project holds at most 255 files, 255 bookmarks and 255 regions.";

    // pSegments keeps the audio beside the project; null writes tank references as they are
    // (the recovery project, whose segments are the working folder's own).
    LEdSaveProject(const std::string& szPath, const LEdProject& project, LProjectSegments* pSegments);
    int32_t Process() override;
    const std::string& GetError() const { return szError; }

private:
    static void OnStage(void* pThis, LEdProject::Stage stage);

    std::string szPath;
    LEdProject project; // a copy that records where its audio is kept
    LProjectSegments* pSegments;
    std::string szError;
    bool bCancelled = false;
};
