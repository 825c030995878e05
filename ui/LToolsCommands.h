// The Tools menu's generators and the batch converter: the tone generator and text to speech
// make new audio (a new file, or an insertion into the current one); the batch converter runs
// a script over files. The dialogs open from the event loop, never from inside the menu's
// signal, since their own loops may outlive the sender.
#pragma once

#include <string>

#include "ui/LFrame.h"

class LEditCommands;
class LSoundSourceBase;

class LToolsCommands : public LCommandController
{
public:
    LToolsCommands(LFrame& frame, LEditCommands& edit) : frame(frame), edit(edit) {}
    bool Command(int nId) override;

private:
    void CmToneGenerator();
    void CmTextToSpeech();
    void CmBatchConverter();
    // Makes a source into a new file, or inserts it at the cursor of the current file (in its
    // rate and channels) under the label; false when it could not be made.
    bool PlaceGeneratedAudio(LSoundSourceBase* pSource, bool bInsert, const std::string& szLabel);

    LFrame& frame;
    LEditCommands& edit;
};
