// Loading a project, as a process behind the progress dialog ("Loading Project"). The documents
// come back over fresh tank references: each segment kept with the project is linked (or
// copied) into the working folder once, whatever numbers the tank is using now.
#pragma once

#include <memory>
#include <string>

#include "project/LEdProject.h"
#include "project/LProjectSegments.h"
#include "work/LProgressDialog.h"

class LEdLoadProject : public LProgressDialog
{
public:
    static constexpr const char* kVersionMessage =
        "This file does not have the same version with the current Sonitra version or it is corrupted.";

    // The segments are looked for in szDataFolder, by default the folder the project file names
    // (or, for a file that names none, "<its name>_audio" beside it).
    explicit LEdLoadProject(const std::string& szPath, const std::string& szDataFolder = std::string());
    // 0 done; 2 when the file cannot be opened, has another version (nothing is loaded), is
    // damaged (what came before the damage is kept in GetProject()) or names audio that is not
    // there (GetError() says what; the project holds silence in its place).
    int32_t Process() override;

    LEdProject& GetProject() { return project; }
    bool IsVersionError() const { return bVersionError; }
    bool IsOpenError() const { return bOpenError; }
    bool IsMissingAudio() const { return bMissingAudio; }
    const std::string& GetError() const { return szError; }
    // The store that now holds the project's segments; the editor keeps it while the project is open.
    std::unique_ptr<LProjectSegments> TakeSegments();

private:
    static void OnStage(void* pThis, LEdProject::Stage stage);
    LProjectSegments& Segments();

    std::string szPath;
    std::string szGivenFolder;
    LEdProject project;
    std::unique_ptr<LProjectSegments> pSegments;
    bool bVersionError = false;
    bool bOpenError = false;
    bool bMissingAudio = false;
    std::string szError;
};
