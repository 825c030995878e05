// sonitra-cli edit [--trace-cuts] IN OUT OP...
#include <cctype>
#include <cerrno>
#include <cinttypes>
#include <climits>
#include <cstdio>
#include <cstdlib>

#include "cli/LCliOpen.h"
#include "cli/LCliVerb.h"
#include "work/LCutListAudioLoadSource.h"
#include "core/LEdCommands.h"
#include "core/LEdFile.h"
#include "core/LSoundTime.h"
#include "formats/LAudioFile.h"
#include "work/LProgressDialog.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli edit [--trace-cuts] IN OUT OP...\n"
    "\n"
    "Loads IN, applies the operations in order and saves the result as OUT.\n"
    "A position P, S or E is a frame number (44100) or a time (1.5s, 250ms, 0:01.500); it may lie\n"
    "before 0 or past the end: ranges are then clipped, or padded with silence.\n"
    "\n"
    "  delete=S,E            remove frames S to E (E excluded)\n"
    "  crop=S,E              keep only S to E (trim)\n"
    "  crop-start=P          remove everything before P\n"
    "  crop-end=P            remove everything from P on\n"
    "  copy=S,E              copy S to E to the clipboard\n"
    "  cut=S,E               copy S to E to the clipboard, then remove it\n"
    "  paste=P               insert the clipboard at P\n"
    "  silence=S,E           turn S to E into silence\n"
    "  insert-silence=P,N    insert N frames (or a time) of silence at P\n"
    "  repeat=S,E,TIMES      insert S to E at S, TIMES times more\n"
    "  amplify=S,E,PERCENT   scale S to E (100 keeps it, 0 silences)\n"
    "  undo                  take back the last operation (up to eight)\n"
    "\n"
    "  --trace-cuts          print the cut list after each operation, one cut a line:\n"
    "                        ref=N offset=N length=N gain=N (ref 65535 is silence)\n"
    "\n"
    "Every operation but copy can be undone. OUT is written only when every operation is valid.\n"
    "Exit status: 0 done, 1 cancelled, 2 error, 64 wrong usage.";

enum class OpKind { Delete, Crop, CropStart, CropEnd, Copy, Cut, Paste, Silence, InsertSilence, Repeat, Amplify, Undo };

struct OpShape
{
    const char* szName;
    OpKind kind;
    int nPositions; // leading positions or lengths
    bool bCount;    // a trailing plain count (times, percent)
    const char* szLabel;
};

const OpShape kOps[] = {
    {"delete", OpKind::Delete, 2, false, "Delete"},
    {"crop", OpKind::Crop, 2, false, "Trim"},
    {"crop-start", OpKind::CropStart, 1, false, "Trim Start"},
    {"crop-end", OpKind::CropEnd, 1, false, "Trim End"},
    {"copy", OpKind::Copy, 2, false, ""},
    {"cut", OpKind::Cut, 2, false, "Cut"},
    {"paste", OpKind::Paste, 1, false, "Paste"},
    {"silence", OpKind::Silence, 2, false, "Edit Silence"},
    {"insert-silence", OpKind::InsertSilence, 2, false, "Insert Silence At Current Position"},
    {"repeat", OpKind::Repeat, 2, true, "Repeat Loop"},
    {"amplify", OpKind::Amplify, 2, true, "Amplify"},
    {"undo", OpKind::Undo, 0, false, ""},
};

constexpr int32_t kMaxRepeat = 10000;

// A frame number, or a time turned into frames once the rate is known.
struct Position
{
    bool bTime = false;
    int64_t nFrames = 0;
    int32_t nMs = 0;

    bool Resolve(int32_t nRate, int32_t& sOut) const
    {
        int64_t n = nFrames;
        if (bTime)
            n = LEdCommands::FramesOfMs(nMs, nRate);
        if (n < INT32_MIN || n > INT32_MAX)
            return false;
        sOut = static_cast<int32_t>(n);
        return true;
    }
};

struct Op
{
    std::string szText;
    const OpShape* pShape = nullptr;
    Position vPos[2];
    int32_t nCount = 0;
    int32_t s[2] = {0, 0}; // the positions in frames
};

bool ParseInteger(const std::string& szText, int64_t nMin, int64_t nMax, int64_t& nOut)
{
    if (szText.empty())
        return false;
    char* pEnd = nullptr;
    errno = 0;
    const long long n = std::strtoll(szText.c_str(), &pEnd, 10);
    if (errno != 0 || *pEnd != '\0' || n < nMin || n > nMax || std::isspace(static_cast<unsigned char>(szText[0])))
        return false;
    nOut = n;
    return true;
}

bool ParsePosition(const std::string& szText, Position& pos)
{
    if (ParseInteger(szText, INT32_MIN, INT32_MAX, pos.nFrames))
        return true;
    LSoundTime time;
    if (!LSoundTime::Parse(szText, time))
        return false;
    pos.bTime = true;
    pos.nMs = time.GetMilliseconds();
    return true;
}

std::vector<std::string> SplitCommas(const std::string& szText)
{
    std::vector<std::string> v(1);
    for (char c : szText) {
        if (c == ',')
            v.emplace_back();
        else
            v.back() += c;
    }
    return v;
}

bool Refuse(const std::string& szOp, const std::string& szWhy)
{
    LCliError("edit: operation '" + szOp + "': " + szWhy + " (try sonitra-cli edit --help)");
    return false;
}

bool ParseCount(const Op& op, const std::string& szText, int32_t& nOut)
{
    const bool bRepeat = op.pShape->kind == OpKind::Repeat;
    int64_t n = 0;
    if (!ParseInteger(szText, 0, bRepeat ? kMaxRepeat : INT32_MAX, n))
        return Refuse(op.szText, bRepeat ? "TIMES must be a whole number from 0 to 10000"
                                         : "PERCENT must be a whole number of 0 or more");
    nOut = static_cast<int32_t>(n);
    return true;
}

bool ParseOp(const std::string& szText, Op& op)
{
    op.szText = szText;
    const size_t nEq = szText.find('=');
    const std::string szName = szText.substr(0, nEq);
    for (const OpShape& shape : kOps)
        if (szName == shape.szName)
            op.pShape = &shape;
    if (!op.pShape)
        return Refuse(szText, "unknown operation");
    const int nArgs = op.pShape->nPositions + (op.pShape->bCount ? 1 : 0);
    if (nArgs == 0)
        return nEq == std::string::npos || Refuse(szText, "takes no arguments");
    const std::vector<std::string> vArgs =
        nEq == std::string::npos ? std::vector<std::string>() : SplitCommas(szText.substr(nEq + 1));
    if (static_cast<int>(vArgs.size()) != nArgs)
        return Refuse(szText, "expects " + std::to_string(nArgs) + " comma-separated values");
    for (int i = 0; i < op.pShape->nPositions; ++i)
        if (!ParsePosition(vArgs[i], op.vPos[i]))
            return Refuse(szText, "'" + vArgs[i] + "' is neither a frame number nor a time");
    return !op.pShape->bCount || ParseCount(op, vArgs.back(), op.nCount);
}

struct Options
{
    std::string szIn;
    std::string szOut;
    bool bTraceCuts = false;
    std::vector<Op> vOps;
};

bool ParseArgs(const std::vector<std::string>& vArgs, Options& opt)
{
    std::vector<std::string> vRest;
    for (const std::string& sz : vArgs) {
        if (sz == "--trace-cuts")
            opt.bTraceCuts = true;
        else if (sz.size() > 2 && sz.compare(0, 2, "--") == 0)
            return Refuse(sz, "unknown option");
        else
            vRest.push_back(sz);
    }
    if (vRest.size() < 2) {
        LCliError("edit: needs an input and an output file (try sonitra-cli edit --help)");
        return false;
    }
    opt.szIn = vRest[0];
    opt.szOut = vRest[1];
    for (size_t i = 2; i < vRest.size(); ++i) {
        opt.vOps.emplace_back();
        if (!ParseOp(vRest[i], opt.vOps.back()))
            return false;
    }
    return true;
}

void TraceCuts(const std::string& szAfter, const LCutListAudio& doc)
{
    std::printf("== %s\n", szAfter.c_str());
    doc.GetCuts().ForEach([](const LAudioCut& cut) {
        std::printf("ref=%u offset=%" PRId32 " length=%" PRId32 " gain=%" PRId32 "\n", cut.nRef, cut.sOffset, cut.sLength,
                    cut.nGain);
    });
}

void Apply(const Op& op, LEdFile& file, LCutListAudio& clip)
{
    LCutListAudio& doc = file.GetDocument();
    const OpKind kind = op.pShape->kind;
    if (kind == OpKind::Undo) {
        file.Undo();
        return;
    }
    if (kind != OpKind::Copy)
        file.StartModify(op.pShape->szLabel); // taken before the change, even one that changes nothing
    const int32_t a = op.s[0], b = op.s[1];
    // The same engine commands as the editor's menus, so both give the same samples.
    switch (kind) {
    case OpKind::Delete: LEdCommands::Delete(doc, a, b); break;
    case OpKind::Crop: LEdCommands::Trim(doc, a, b); break;
    case OpKind::CropStart: LEdCommands::TrimStart(doc, a); break;
    case OpKind::CropEnd: LEdCommands::TrimEnd(doc, a); break;
    case OpKind::Copy: LEdCommands::Copy(doc, a, b, clip); break;
    case OpKind::Cut: LEdCommands::Cut(doc, a, b, clip); break;
    case OpKind::Paste: LEdCommands::Paste(doc, a, a, clip); break;
    case OpKind::Silence: LEdCommands::Silence(doc, a, b); break;
    case OpKind::InsertSilence: LEdCommands::InsertSilenceFrames(doc, a, b); break;
    case OpKind::Repeat: LEdCommands::Repeat(doc, a, b, op.nCount); break;
    case OpKind::Amplify: LEdCommands::Amplify(doc, a, b, op.nCount); break;
    case OpKind::Undo: break;
    }
    file.EndModify(a, 0);
}

class LPRSaveEdit : public LProgressDialog
{
public:
    LPRSaveEdit(const std::string& szPath, const LCutListAudio& doc, const LAudioEncoding& encoding)
        : LProgressDialog("Saving " + szPath), szPath(szPath), doc(doc), encoding(encoding)
    {
    }
    int32_t Process() override
    {
        LSoundSourcePtr pSource = doc.OpenSource();
        return LAudioFile::Save(*this, GetTitle(), pSource.Get(), szPath, doc.GetSampleRate(), doc.GetChannels(),
                                encoding, &szError);
    }
    std::string szError;

private:
    std::string szPath;
    const LCutListAudio& doc;
    LAudioEncoding encoding;
};

int ReportResult(int32_t nResult, const std::string& szWhat, const std::string& szError)
{
    if (nResult == LProgressDialog::ResultCancelled) {
        LCliError("edit: cancelled while " + szWhat + "; nothing was written");
        return CliCancelled;
    }
    if (nResult != LProgressDialog::ResultDone) {
        LCliError("edit: failed while " + szWhat + (szError.empty() ? "" : ": " + szError));
        return CliError;
    }
    return CliDone;
}

int Load(const Options& opt, LEdFile& file, LAudioEncoding& encoding)
{
    LAudioFileDetails details;
    LSoundSourcePtr pSource = LCliOpenSound(opt.szIn, &details);
    if (!pSource)
        return CliError;
    encoding = details.encoding;
    LCutListAudioLoadSource load("Loading " + opt.szIn, file.GetDocumentPtr().Get(), pSource.Get());
    return ReportResult(load.Run(), "loading " + opt.szIn, "");
}

bool ResolvePositions(std::vector<Op>& vOps, int32_t nRate)
{
    for (Op& op : vOps)
        for (int i = 0; i < op.pShape->nPositions; ++i)
            if (!op.vPos[i].Resolve(nRate, op.s[i]))
                return Refuse(op.szText, "a position lies beyond 2^31 frames");
    return true;
}

int RunEdit(const std::vector<std::string>& vArgs)
{
    Options opt;
    if (!ParseArgs(vArgs, opt))
        return CliUsage;
    LEdFile file;
    LAudioEncoding encoding;
    if (const int nLoad = Load(opt, file, encoding); nLoad != CliDone)
        return nLoad;
    if (!ResolvePositions(opt.vOps, file.GetDocument().GetSampleRate()))
        return CliUsage;
    if (opt.bTraceCuts)
        TraceCuts("load " + opt.szIn, file.GetDocument());
    LCutListAudio clip;
    for (const Op& op : opt.vOps) {
        Apply(op, file, clip);
        if (opt.bTraceCuts)
            TraceCuts(op.szText, file.GetDocument());
    }
    std::fflush(stdout);
    LPRSaveEdit save(opt.szOut, file.GetDocument(), encoding);
    return ReportResult(save.Run(), "saving " + opt.szOut, save.szError);
}

} // namespace

static LCliVerb verbEdit("edit", "load a file, cut, paste, trim, repeat or amplify ranges, and save it", kUsage,
                         RunEdit);
