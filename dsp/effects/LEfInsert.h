// Inserts a source (a file, the clipboard) into a document at a position, converted to the
// document's rate and channels on the way in.
#pragma once

#include "core/LCutListAudio.h"
#include "core/LSoundSourceBase.h"
#include "work/LProgressDialog.h"

class LEfInsert
{
public:
    // 0 done, 1 cancelled (nothing inserted), 2 error.
    static int32_t Run(LProgressDialog& dlg, const std::string& szCaption, LCutListAudio& doc, int32_t sPosition,
                       LSoundSourceBase* pSource);
};
