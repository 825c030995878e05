// The compact disc commands: loading audio tracks (from a drive or a disc image) and copying
// files to a CD or a disc image.
#pragma once

#include <string>
#include <vector>

#include "ui/LFrame.h"

struct LCdCopyChoice;
struct LCdSourceItem;

class LCdCommands : public LCommandController
{
public:
    explicit LCdCommands(LFrame& frame) : frame(frame) {}
    bool Command(int nId) override;

    // Offers the tracks of the drive, or of the disc image at szImage, and loads those chosen.
    void LoadCd(const std::string& szImage = std::string());

private:
    void CmCopyToCd();
    bool CopyToCdSources(const LCdCopyChoice& choice, std::vector<LCdSourceItem>& vItems);

    LFrame& frame;
};
