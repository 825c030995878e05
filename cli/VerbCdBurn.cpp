// sonitra-cli cd burn: files onto an audio CD, or into a disc image.
#include <cstdio>
#include <filesystem>
#include <unistd.h>

#include "cli/LCliArgs.h"
#include "cli/LCliCd.h"
#include "cli/LCliOpen.h"
#include "cli/LCliVerb.h"
#include "cd/LCdImageWriter.h"
#include "formats/LAudioFile.h"
#include "work/LProgressDialog.h"

namespace {

struct BurnOptions
{
    std::string szImage; // write this image instead of burning
    int32_t nGapMs = 2000;
    int32_t nSpeed = 0;
    int32_t nDiscMinutes = 80;
    std::string szAlbum;
};

bool TakeBurnOption(const std::string& szName, const std::string& szValue, bool& bTaken, BurnOptions& opt)
{
    bTaken = true;
    bool bOk = true;
    if (szName == "--gap")
        bOk = LCliParseTime(szValue, opt.nGapMs);
    else if (szName == "--speed")
        bOk = LCliParseInt(szValue, 0, 100, opt.nSpeed);
    else if (szName == "--disc-minutes")
        bOk = (szValue == "74" || szValue == "80") && LCliParseInt(szValue, 74, 80, opt.nDiscMinutes);
    else if (szName == "--album")
        opt.szAlbum = szValue;
    else
        bTaken = false;
    if (!bOk)
        LCliError("cd burn: bad value for " + szName + " (try sonitra-cli cd --help)");
    return bTaken && bOk;
}

class ImageBody : public LProgressDialog
{
public:
    ImageBody(LCdImageWriter& w, const std::string& szCue) : LProgressDialog("Writing the disc image"), writer(w), szCue(szCue) {}
    int32_t Process() override { return writer.Write(*this, szCue, &szError); }
    std::string szError;

private:
    LCdImageWriter& writer;
    std::string szCue;
};

class BurnBody : public LProgressDialog
{
public:
    BurnBody(const LCdBurnOptions& o, const LCdLayout& l, const std::string& szBin)
        : LProgressDialog("Writing the CD"), options(o), layout(l), szBin(szBin)
    {
    }
    int32_t Process() override { return LCdDisc::Burn(*this, options, layout, szBin, &szError); }
    std::string szError;

private:
    LCdBurnOptions options;
    LCdLayout layout;
    std::string szBin;
};

int Finish(int32_t nResult, const std::string& szError)
{
    if (nResult == LProgressDialog::ResultCancelled) {
        LCliError("cd burn: cancelled");
        return CliCancelled;
    }
    if (nResult != LProgressDialog::ResultDone) {
        LCliError("cd burn: " + szError);
        return CliError;
    }
    return CliDone;
}

// Writes the image (to the named place, or beside the burn in a temporary folder) and burns it.
int WriteAndBurn(LCdImageWriter& writer, const std::string& szDevice, bool bSimulate, const BurnOptions& opt)
{
    const bool bBurn = opt.szImage.empty();
    std::filesystem::path tempDir;
    std::string szCue = opt.szImage;
    if (bBurn) {
        std::error_code ec;
        tempDir = std::filesystem::temp_directory_path(ec) / ("sonitra-burn-" + std::to_string(getpid()));
        std::filesystem::create_directories(tempDir, ec);
        szCue = (tempDir / "disc.cue").string();
    }
    ImageBody image(writer, szCue);
    int nExit = Finish(image.Run(), image.szError);
    if (nExit == CliDone && bBurn) {
        LCdBurnOptions burn{szDevice, bSimulate, opt.nSpeed};
        BurnBody body(burn, writer.GetLayout(), (tempDir / "disc.bin").string());
        nExit = Finish(body.Run(), body.szError);
    } else if (nExit == CliDone) {
        std::printf("%s\n", opt.szImage.c_str());
    }
    if (bBurn) {
        std::error_code ec;
        std::filesystem::remove_all(tempDir, ec);
    }
    return nExit;
}

} // namespace

int LCliCdBurn(const std::vector<std::string>& vArgs)
{
    LCliCdSource src;
    BurnOptions opt;
    std::vector<std::string> vFlags, vFiles;
    auto take = [&](const std::string& n, const std::string& v, bool& bTaken) { return TakeBurnOption(n, v, bTaken, opt); };
    if (!LCliCdReadArgs("burn", vArgs, src, {"--simulate"}, vFlags, take, vFiles))
        return CliUsage;
    opt.szImage = src.szImage;
    if (vFiles.empty()) {
        LCliError("cd burn: no files given (try sonitra-cli cd --help)");
        return CliUsage;
    }
    std::string szError;
    if (opt.szImage.empty() && !LCdDisc::FindWriter(src.szDevice, &szError)) {
        LCliError("cd burn: " + szError + (src.szDevice.empty() ? "" : " at " + src.szDevice) +
                  " (write a disc image with --image OUT.cue instead)");
        return CliError;
    }
    std::vector<LCdSourceItem> vItems;
    for (const std::string& szFile : vFiles) {
        LSoundSourcePtr pSource = LCliOpenSound(szFile, nullptr, "cd burn");
        if (!pSource)
            return CliError;
        vItems.push_back({pSource, std::filesystem::path(szFile).stem().string(), ""});
    }
    LCdImageWriter writer(vItems, opt.szAlbum, "", static_cast<int32_t>(static_cast<int64_t>(opt.nGapMs) * 75 / 1000));
    const std::string szFit = LCdLayout::FitMessage(writer.Plan().TotalSectors(), opt.nDiscMinutes);
    if (!szFit.empty()) {
        LCliError("cd burn: " + szFit);
        return CliError;
    }
    return WriteAndBurn(writer, src.szDevice, !vFlags.empty(), opt);
}
