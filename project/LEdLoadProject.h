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

    // The segments are looked for in szDataFolder, by default the project's own data folder.
    explicit LEdLoadProject(const std::string& szPath, const std::string& szDataFolder = std::string());
    // 0 done; 2 when the file cannot be opened, has another version (nothing is loaded) or is
    // damaged (what came before the damage is kept in GetProject()).
    int32_t Process() override;

    LEdProject& GetProject() { return project; }
    bool IsVersionError() const { return bVersionError; }
    bool IsOpenError() const { return bOpenError; }
    const std::string& GetError() const { return szError; }
    // The store that now holds the project's segments; the editor keeps it while the project is open.
    std::unique_ptr<LProjectSegments> TakeSegments() { return std::move(pSegments); }

private:
    static void OnStage(void* pThis, LEdProject::Stage stage);

    std::string szPath;
    LEdProject project;
    std::unique_ptr<LProjectSegments> pSegments;
    bool bVersionError = false;
    bool bOpenError = false;
    std::string szError;
};
