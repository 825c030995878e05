// sonitra-cli convert IN OUT [--rate N] [--channels 1|2] [--bits 8|16] [--format FORMAT:ENCODING]
#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "cli/LCliOpen.h"
#include "cli/LCliVerb.h"
#include "core/LSRCLimitLength.h"
#include "formats/LAudioFile.h"
#include "formats/LAudioFormat.h"
#include "work/LProgressDialog.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli convert IN OUT [--rate N] [--channels 1|2] [--bits 8|16] [--format FORMAT:ENCODING]\n"
    "\n"
    "Reads IN and writes OUT in the format its extension names (.wav). Without options OUT\n"
    "keeps the rate, channels and encoding of IN where its format has them (24-bit stays\n"
    "24-bit); where it has not, OUT is 16-bit PCM and a note says so. A file whose header\n"
    "claims more frames than it holds is converted as far as it goes, with a warning.\n"
    "\n"
    "  --rate N         sample rate of OUT in Hz (1 to 196000)\n"
    "  --channels 1|2   1 mixes the two channels of a stereo file, 2 doubles a mono one\n"
    "  --bits 8|16      bits per sample of OUT\n"
    "  --format wav:E   the encoding of OUT: pcm8, pcm16, pcm24, pcm32, float, float64, alaw,\n"
    "                   ulaw, ima, msadpcm or gsm (each where a codec for it is built in);\n"
    "                   a format that holds only some rates or channels gets the nearest\n"
    "\n"
    "OUT is written beside its final name and renamed when complete, so an existing OUT is\n"
    "left intact if the conversion fails or is cancelled (Ctrl+C).\n"
    "Exit status: 0 done, 1 cancelled, 2 error, 64 wrong usage.";

struct Options
{
    std::string szIn;
    std::string szOut;
    int nRate = 0; // 0: as the input
    int nChans = 0;
    int nBits = 0;
    std::string szFormat;   // "WAV", from --format
    std::string szEncoding; // "ima"
};

bool ParseNumber(const std::string& szText, int nMin, int nMax, int& nValue)
{
    char* pEnd = nullptr;
    const long n = std::strtol(szText.c_str(), &pEnd, 10);
    if (szText.empty() || *pEnd != '\0' || n < nMin || n > nMax)
        return false;
    nValue = static_cast<int>(n);
    return true;
}

bool UsageError(const std::string& szText)
{
    LCliError("convert: " + szText + " (try sonitra-cli convert --help)");
    return false;
}

std::string Upper(std::string sz)
{
    std::transform(sz.begin(), sz.end(), sz.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return sz;
}

// "wav:ima": a format that can be written and one of its encodings.
bool TakeFormat(const std::string& szValue, Options& opt)
{
    const size_t nColon = szValue.find(':');
    const LAudioFormat* pFormat = LAudioFormat::ByName(Upper(szValue.substr(0, nColon)));
    if (nColon == std::string::npos || !pFormat || !pFormat->CanWrite())
        return UsageError("--format takes FORMAT:ENCODING, e.g. wav:ima");
    const std::string szEncoding = szValue.substr(nColon + 1);
    const std::vector<std::string> vKnown = pFormat->GetEncodings();
    if (std::find(vKnown.begin(), vKnown.end(), szEncoding) == vKnown.end()) {
        std::string szList;
        for (const std::string& sz : vKnown)
            szList += (szList.empty() ? "" : ", ") + sz;
        return UsageError(std::string(pFormat->GetName()) + " has no encoding '" + szEncoding + "' (known: " + szList + ")");
    }
    opt.szFormat = pFormat->GetName();
    opt.szEncoding = szEncoding;
    return true;
}

// Takes "--name VALUE" or "--name=VALUE" at vArgs[i].
bool TakeOption(const std::vector<std::string>& vArgs, size_t& i, Options& opt)
{
    std::string szName = vArgs[i];
    std::string szValue;
    const size_t nEq = szName.find('=');
    if (nEq != std::string::npos) {
        szValue = szName.substr(nEq + 1);
        szName.resize(nEq);
    } else if (i + 1 < vArgs.size()) {
        szValue = vArgs[++i];
    } else {
        return UsageError(szName + " needs a value");
    }
    if (szName == "--rate")
        return ParseNumber(szValue, 1, 196000, opt.nRate) || UsageError("--rate takes 1 to 196000 Hz");
    if (szName == "--channels")
        return ParseNumber(szValue, 1, 2, opt.nChans) || UsageError("--channels takes 1 or 2");
    if (szName == "--bits")
        return (ParseNumber(szValue, 8, 16, opt.nBits) && (opt.nBits == 8 || opt.nBits == 16)) ||
               UsageError("--bits takes 8 or 16");
    if (szName == "--format")
        return TakeFormat(szValue, opt);
    return UsageError("unknown option '" + szName + "'");
}

bool ParseArgs(const std::vector<std::string>& vArgs, Options& opt)
{
    std::vector<std::string> vFiles;
    for (size_t i = 0; i < vArgs.size(); ++i) {
        if (vArgs[i].size() > 1 && vArgs[i][0] == '-') {
            if (!TakeOption(vArgs, i, opt))
                return false;
        } else {
            vFiles.push_back(vArgs[i]);
        }
    }
    if (vFiles.size() != 2)
        return UsageError("needs exactly one input and one output file");
    opt.szIn = vFiles[0];
    opt.szOut = vFiles[1];
    if (opt.nBits && !opt.szEncoding.empty())
        return UsageError("--bits and --format cannot be given together");
    const LAudioFormat* pOutFormat = LAudioFormat::ByExtension(opt.szOut);
    if (!opt.szFormat.empty() && pOutFormat && opt.szFormat != pOutFormat->GetName())
        return UsageError("--format names " + opt.szFormat + " but " + opt.szOut + " is a " + pOutFormat->GetName() +
                          " file");
    return true;
}

class LPRConvert : public LProgressDialog
{
public:
    LPRConvert(const Options& opt, LSoundSourceBase* pSrc, const LAudioEncoding& encoding)
        : LProgressDialog("Converting " + opt.szIn), opt(opt), pSource(pSrc), encoding(encoding)
    {
    }

    int32_t Process() override
    {
        const int32_t nRate = opt.nRate ? opt.nRate : pSource->GetSampleRate();
        const uint8_t nChans = opt.nChans ? static_cast<uint8_t>(opt.nChans) : pSource->GetChannels();
        return LAudioFile::Save(*this, GetTitle(), pSource.Get(), opt.szOut, nRate, nChans, encoding, &szError);
    }

    std::string szError;

private:
    const Options& opt;
    LSoundSourcePtr pSource;
    LAudioEncoding encoding;
};

// A header may claim more than the file holds: only what is there is converted, and the user
// hears of the rest (it would read as silence, gigabytes of it for a damaged size field).
LSoundSourcePtr WhatTheFileHolds(const Options& opt, LSoundSourceBase* pSource)
{
    const int32_t sClaimed = pSource->GetLength();
    const int32_t sHeld = pSource->GetLengthInFile();
    if (sHeld < 0 || sHeld >= sClaimed)
        return LSoundSourcePtr(pSource);
    LCliError("convert: " + opt.szIn + ": the header claims " + std::to_string(sClaimed) +
              " frames but the file holds only " + std::to_string(sHeld) + "; converting those");
    return LSoundSourcePtr(new LSRCLimitLength(pSource, sHeld));
}

// With no encoding asked for, the input's is kept where the output's format has it; where it has
// not, the format's default is written, and when that is 16-bit PCM of a wider or coded input the
// user is told.
void NoteEncoding(const Options& opt, const LAudioFileDetails& details, const LAudioEncoding& encoding)
{
    const LAudioFormat* pFormat = LAudioFormat::ByExtension(opt.szOut);
    if (!pFormat || !pFormat->CanWrite() || pFormat->GetEncodings().front() != "pcm16")
        return;
    const std::string& szIn = details.encoding.szName;
    if (szIn.empty() || szIn == "pcm16" || szIn == "pcm8" || !LAudioFile::EncodingFor(*pFormat, encoding).szName.empty())
        return;
    LCliError("convert: " + opt.szOut + ": " + pFormat->GetName() + " files here cannot hold " + details.szEncoding +
              "; writing 16-bit PCM");
}

int RunConvert(const std::vector<std::string>& vArgs)
{
    Options opt;
    if (!ParseArgs(vArgs, opt))
        return CliUsage;
    LAudioFileDetails details;
    LSoundSourcePtr pSource = LCliOpenSound(opt.szIn, &details);
    if (!pSource)
        return CliError;
    // The output keeps the input's encoding where its format has it, unless asked otherwise.
    LAudioEncoding encoding = details.encoding;
    // A format record read from IN holds its rate and channels; asked for others, only its kind stays.
    if (opt.nRate || opt.nChans)
        encoding.vRecord.clear();
    if (opt.nBits)
        encoding = LAudioEncoding::Named(opt.nBits == 8 ? "pcm8" : "pcm16");
    if (!opt.szEncoding.empty())
        encoding = LAudioEncoding::Named(opt.szEncoding);
    if (!opt.nBits && opt.szEncoding.empty())
        NoteEncoding(opt, details, encoding);
    pSource = WhatTheFileHolds(opt, pSource.Get());
    LPRConvert convert(opt, pSource.Get(), encoding);
    const int32_t nResult = convert.Run();
    if (nResult == LProgressDialog::ResultCancelled) {
        LCliError("convert: cancelled; " + opt.szOut + " was not written");
        return CliCancelled;
    }
    if (nResult != LProgressDialog::ResultDone) {
        LCliError(opt.szOut + ": " + convert.szError);
        return CliError;
    }
    return CliDone;
}

} // namespace

static LCliVerb verbConvert("convert", "convert an audio file to another format, rate, channels or bits", kUsage,
                            RunConvert);
