// The process that loads a source into a document: a segment writer at the source's rate and
// channel count, fed by the pump. However the pump ends (done, cancelled, failed), the writer
// finishes and the document holds what was read up to then.
#pragma once

#include <string>

#include "core/LCutListAudio.h"
#include "core/LSoundSourceBase.h"
#include "work/LProgressDialog.h"

class LCutListAudioLoadSource : public LProgressDialog
{
public:
    // The document must live on the heap (held by a counted pointer).
    LCutListAudioLoadSource(const std::string& szTitle, LCutListAudio* pDoc, LSoundSourceBase* pSource);

    // 0 done, 1 cancelled, 2 error (a latched source, or a segment that could not be written whole).
    int32_t Process() override;

private:
    std::string szLoadTitle;
    LCutListAudioPtr pDoc;
    LSoundSourcePtr pSource;
};
