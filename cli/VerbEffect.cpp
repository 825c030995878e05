// sonitra-cli effect IN OUT NAME [PARAM=VALUE ...] [--range S,E]
#include <cerrno>
#include <climits>
#include <cstdlib>

#include "cli/LCliOpen.h"
#include "cli/LCliVerb.h"
#include "core/LCutListAudio.h"
#include "work/LCutListAudioLoadSource.h"
#include "dsp/CompressorRatioList.h"
#include "dsp/effects/LCurveFile.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LStoredValues.h"
#include "formats/LAudioFile.h"
#include "lists/LEffectFileStream.h"
#include "work/LProgressDialog.h"

namespace {

const char kUsageHead[] =
    "usage: sonitra-cli effect IN OUT NAME [PARAM=VALUE ...] [--range S,E]\n"
    "\n"
    "Applies the effect NAME to IN and writes the result to OUT (in the format its extension\n"
    "names). NAME is one of (with its parameters):\n";

const char kUsageTail[] =
    "\n"
    "Parameters are the editor's stored-value names, e.g. echo EchoTime=800 EchoGain=50 or\n"
    "high-pass-filter LowCutFreq=250; a parameter not given takes its stored value or default,\n"
    "and a value the editor's dialog would refuse is refused with the same message.\n"
    "  File=PATH             the clip of paste-mix and mix-file\n"
    "  Curve=PATH            an equalizer or envelope curve file (default: the stored curve)\n"
    "  Points=X:Y,X:Y,...    the curve given inline (equalizer: Hz:dB; envelope: 0-1000:percent)\n"
    "  CompressorRatio       also takes its label: 1:1, 3:2, 2:1, 3:1, 4:1, 5:1, Limit\n"
    "\n"
    "  --range S,E   the frames [S, E) to work on (default: the whole file)\n"
    "\n"
    "OUT is written beside its final name and renamed when complete; nothing is written when\n"
    "the effect fails or is cancelled (Ctrl+C).\n"
    "Exit status: 0 done, 1 cancelled, 2 error, 64 wrong usage or a refused value.";

// One line per effect of the catalog: "  echo  EchoTime=10..2999 ms (800), EchoGain=0..99 % (50)".
std::string EffectLine(const LEffectInfo& info)
{
    std::string sz = std::string("  ") + info.szCliName;
    const char* szSep = "  ";
    for (const LEffectParam& param : info.vParams) {
        sz += szSep + std::string(param.szKey) + "=" + std::to_string(param.nLowest) + ".." +
              std::to_string(param.nHighest);
        if (*param.szUnit)
            sz += std::string(" ") + param.szUnit;
        sz += " (" + std::to_string(param.nDefault) + ")";
        szSep = ", ";
    }
    return sz + "\n";
}

const std::string& Usage()
{
    static const std::string sz = [] {
        std::string szText = kUsageHead;
        for (const LEffectInfo* p : LEffectCatalog::All())
            if (LEffectRunner::IsAvailable(*p))
                szText += EffectLine(*p);
        return szText + kUsageTail;
    }();
    return sz;
}

struct Request
{
    std::string szIn;
    std::string szOut;
    const LEffectInfo* pInfo = nullptr;
    LEffectArgs args;
    std::string szClipPath;
    bool bRange = false;
    int32_t sStart = 0;
    int32_t sEnd = 0;
};

bool UsageError(const std::string& szText)
{
    LCliError("effect: " + szText + " (try sonitra-cli effect --help)");
    return false;
}

bool ParseInt(const std::string& szText, int32_t& nValue)
{
    errno = 0;
    char* pEnd = nullptr;
    const long long n = std::strtoll(szText.c_str(), &pEnd, 10);
    if (szText.empty() || *pEnd != '\0' || errno != 0 || n < INT32_MIN || n > INT32_MAX)
        return false;
    nValue = static_cast<int32_t>(n);
    return true;
}

bool ParseRange(const std::string& szText, Request& req)
{
    const size_t nComma = szText.find(',');
    if (nComma == std::string::npos || !ParseInt(szText.substr(0, nComma), req.sStart) ||
        !ParseInt(szText.substr(nComma + 1), req.sEnd) || req.sStart < 0 || req.sEnd < req.sStart)
        return UsageError("--range takes two frame numbers S,E with 0 <= S <= E");
    req.bRange = true;
    return true;
}

bool ParsePoints(const std::string& szText, LPointList& list)
{
    list = LPointList();
    size_t nPos = 0;
    while (nPos <= szText.size()) {
        size_t nComma = szText.find(',', nPos);
        if (nComma == std::string::npos)
            nComma = szText.size();
        const std::string szPoint = szText.substr(nPos, nComma - nPos);
        const size_t nColon = szPoint.find(':');
        int32_t x = 0, y = 0;
        if (nColon == std::string::npos || !ParseInt(szPoint.substr(0, nColon), x) ||
            !ParseInt(szPoint.substr(nColon + 1), y) || !list.Add(x, y))
            return UsageError("Points takes X:Y pairs with X ascending, at most " + std::to_string(POINTLISTMAX - 1));
        nPos = nComma + 1;
    }
    return true;
}

bool IsCurveEffect(const LEffectInfo& info)
{
    return info.curve != LEffectInfo::NoCurve;
}

bool IsMixEffect(const LEffectInfo& info)
{
    return info.bTakesClip;
}

bool TakesKey(const LEffectInfo& info, const std::string& szKey)
{
    return LEffectCatalog::ParamOf(info, szKey) != nullptr;
}

// A ratio may be given by its label as well as by its index.
bool ParseRatio(const std::string& szText, int32_t& nValue)
{
    for (int32_t i = 0; i < kCompressorRatioCount; ++i) {
        if (szText == CompressorRatioList[i].szLabel) {
            nValue = i;
            return true;
        }
    }
    return ParseInt(szText, nValue);
}

bool TakeParameter(const std::string& szArg, Request& req)
{
    const size_t nEq = szArg.find('=');
    const std::string szKey = szArg.substr(0, nEq);
    const std::string szValue = szArg.substr(nEq + 1);
    const LEffectInfo& info = *req.pInfo;
    if (szKey == "File" && IsMixEffect(info)) {
        req.szClipPath = szValue;
        return true;
    }
    if (szKey == "Curve" && IsCurveEffect(info)) {
        LPointList list;
        if (!LCurveFile::Load(szValue, list)) {
            LCliError(szValue + ": not a readable curve file");
            return false;
        }
        req.args.curve = list;
        return true;
    }
    if (szKey == "Points" && IsCurveEffect(info)) {
        LPointList list;
        if (!ParsePoints(szValue, list))
            return false;
        req.args.curve = list;
        return true;
    }
    if (!TakesKey(info, szKey))
        return UsageError(LEffectCatalog::CliName(info) + " has no parameter '" + szKey + "'");
    int32_t nValue = 0;
    const bool bParsed = szKey == "CompressorRatio" ? ParseRatio(szValue, nValue) : ParseInt(szValue, nValue);
    if (!bParsed)
        return UsageError(szKey + " takes a whole number, not '" + szValue + "'");
    req.args.mapValues[szKey] = nValue;
    return true;
}

bool ParseArgs(const std::vector<std::string>& vArgs, Request& req)
{
    std::vector<std::string> vPositional;
    std::vector<std::string> vParams;
    for (size_t i = 0; i < vArgs.size(); ++i) {
        const std::string& sz = vArgs[i];
        if (sz == "--range" || sz.rfind("--range=", 0) == 0) {
            std::string szValue = sz.size() > 7 ? sz.substr(8) : (i + 1 < vArgs.size() ? vArgs[++i] : "");
            if (!ParseRange(szValue, req))
                return false;
        } else if (sz.size() > 1 && sz[0] == '-') {
            return UsageError("unknown option '" + sz + "'");
        } else if (vPositional.size() == 3 && sz.find('=') != std::string::npos) {
            vParams.push_back(sz);
        } else {
            vPositional.push_back(sz);
        }
    }
    if (vPositional.size() != 3)
        return UsageError("needs an input file, an output file and an effect name");
    req.szIn = vPositional[0];
    req.szOut = vPositional[1];
    req.pInfo = LEffectCatalog::ByCliName(vPositional[2]);
    if (!req.pInfo || !LEffectRunner::IsAvailable(*req.pInfo))
        return UsageError("unknown effect '" + vPositional[2] + "'");
    for (const std::string& sz : vParams)
        if (!TakeParameter(sz, req))
            return false;
    if (IsMixEffect(*req.pInfo) && req.szClipPath.empty())
        return UsageError(LEffectCatalog::CliName(*req.pInfo) + " needs File=PATH");
    return true;
}

// Load, apply and save as one process, so Ctrl+C cancels whichever step is running.
class LPREffectFile : public LProgressDialog
{
public:
    LPREffectFile(Request& req, LSoundSourceBase* pSrc, const LAudioEncoding& encoding)
        : LProgressDialog(req.pInfo->szCaption), req(req), pSource(pSrc), encoding(encoding)
    {
    }

    int32_t Process() override
    {
        LCutListAudioPtr pDoc(new LCutListAudio(pSource->GetSampleRate(), pSource->GetChannels()));
        LCutListAudioLoadSource load("Loading file " + req.szIn, pDoc.Get(), pSource.Get());
        int32_t nResult = load.RunInside(*this);
        if (nResult != ResultDone)
            return Fail(nResult, "cannot load " + req.szIn);
        const int32_t sLength = pDoc->GetLength();
        const int32_t sStart = req.bRange ? std::min(req.sStart, sLength) : 0;
        const int32_t sEnd = req.bRange ? std::min(req.sEnd, sLength) : sLength;
        nResult = LEffectRunner::Apply(*this, *req.pInfo, pDoc.Get(), sStart, sEnd, req.args);
        if (nResult != ResultDone)
            return Fail(nResult, LEffectCatalog::CliName(*req.pInfo) + " failed");
        LSoundSourcePtr pOut = pDoc->OpenSource();
        nResult = LAudioFile::Save(*this, "Saving...", pOut.Get(), req.szOut, pDoc->GetSampleRate(),
                                   pDoc->GetChannels(), encoding, &szError);
        return nResult;
    }

    std::string szError;

private:
    int32_t Fail(int32_t nResult, const std::string& szText)
    {
        if (nResult != ResultCancelled)
            szError = szText;
        return nResult;
    }

    Request& req;
    LSoundSourcePtr pSource;
    LAudioEncoding encoding;
};

int RunEffect(const std::vector<std::string>& vArgs)
{
    Request req;
    if (!ParseArgs(vArgs, req))
        return CliUsage;
    std::string szMessage;
    if (!req.args.Validate(*req.pInfo, &szMessage)) {
        LCliError(szMessage);
        return CliUsage;
    }
    LAudioFileDetails details;
    LSoundSourcePtr pSource = LCliOpenSound(req.szIn, &details);
    if (!pSource)
        return CliError;
    if (!req.szClipPath.empty()) {
        req.args.pClip = LCliOpenSound(req.szClipPath);
        if (!req.args.pClip)
            return CliError;
    }
    int32_t nResult = LProgressDialog::ResultError;
    std::string szFailure;
    const std::vector<LEffectStep> vSteps{LEffectStep{req.pInfo, req.args}};
    if (!req.bRange && LEffectFileStream::CanStream(vSteps, *pSource, details)) {
        // From file to file in one pass: no document to load.
        pSource.Reset();
        LEffectFileStream proc(req.pInfo->szCaption, req.szIn, vSteps, req.szOut, details.encoding);
        nResult = proc.Run();
        szFailure = proc.GetError();
    } else {
        LPREffectFile proc(req, pSource.Get(), details.encoding);
        nResult = proc.Run();
        szFailure = proc.szError;
    }
    if (nResult == LProgressDialog::ResultCancelled) {
        LCliError("effect: cancelled; " + req.szOut + " was not written");
        return CliCancelled;
    }
    if (nResult != LProgressDialog::ResultDone) {
        LCliError(req.szOut + ": " + (szFailure.empty() ? std::string("the effect failed") : szFailure));
        return CliError;
    }
    return CliDone;
}

} // namespace

static LCliVerb verbEffect("effect", "apply an effect to an audio file", Usage().c_str(), RunEffect);
