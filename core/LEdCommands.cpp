#include "core/LEdCommands.h"

#include <algorithm>

int32_t LEdCommands::FramesOfMs(int32_t nMs, int32_t nRate)
{
    const int64_t n = static_cast<int64_t>(nMs / 1000) * nRate + (static_cast<int64_t>(nMs % 1000) * nRate) / 1000;
    return static_cast<int32_t>(std::clamp<int64_t>(n, INT32_MIN, INT32_MAX));
}

LEdRange LEdCommands::Delete(LCutListAudio& doc, int32_t sStart, int32_t sEnd)
{
    doc.EfDelete(sStart, sEnd);
    return {sStart, sStart};
}

LEdRange LEdCommands::Trim(LCutListAudio& doc, int32_t sStart, int32_t sEnd)
{
    doc.CropEnd(sEnd);
    doc.CropStart(sStart);
    return {0, 0};
}

LEdRange LEdCommands::TrimStart(LCutListAudio& doc, int32_t sAt)
{
    doc.CropStart(sAt);
    return {0, 0};
}

LEdRange LEdCommands::TrimEnd(LCutListAudio& doc, int32_t sAt)
{
    doc.CropEnd(sAt);
    return {0, 0};
}

void LEdCommands::Copy(const LCutListAudio& doc, int32_t sStart, int32_t sEnd, LCutListAudio& clip)
{
    doc.EfCopy(sStart, sEnd, clip);
}

LEdRange LEdCommands::Cut(LCutListAudio& doc, int32_t sStart, int32_t sEnd, LCutListAudio& clip)
{
    doc.Cut(sStart, sEnd, clip);
    return {sStart, sStart};
}

LEdRange LEdCommands::Paste(LCutListAudio& doc, int32_t sStart, int32_t sEnd, const LCutListAudio& clip)
{
    if (sEnd > sStart)
        doc.Replace(sStart, sEnd, clip);
    else
        doc.Insert(sStart, clip);
    return {sStart, static_cast<int32_t>(std::min<int64_t>(int64_t{sStart} + clip.GetLength(), INT32_MAX))};
}

LEdRange LEdCommands::Silence(LCutListAudio& doc, int32_t sStart, int32_t sEnd)
{
    if (sEnd <= sStart)
        return {sStart, sEnd};
    doc.EfDelete(sStart, sEnd);
    doc.InsertSilence(sStart, sEnd - sStart);
    return {sStart, sEnd};
}

LEdRange LEdCommands::InsertSilenceFrames(LCutListAudio& doc, int32_t sAt, int32_t nFrames)
{
    doc.InsertSilence(sAt, nFrames);
    return {sAt, static_cast<int32_t>(std::min<int64_t>(int64_t{sAt} + std::max(nFrames, 0), INT32_MAX))};
}

LEdRange LEdCommands::InsertSilence(LCutListAudio& doc, int32_t sAt, int32_t nMs)
{
    return InsertSilenceFrames(doc, sAt, FramesOfMs(nMs, doc.GetSampleRate()));
}

LEdRange LEdCommands::Repeat(LCutListAudio& doc, int32_t sStart, int32_t sEnd, int32_t nTimes)
{
    if (sEnd > sStart && nTimes > 0)
        doc.Repeat(sStart, sEnd, nTimes);
    return {sStart, sEnd};
}

LEdRange LEdCommands::Amplify(LCutListAudio& doc, int32_t sStart, int32_t sEnd, int32_t nPercent)
{
    doc.EfAmplify(sStart, sEnd, nPercent);
    return {sStart, sEnd};
}
