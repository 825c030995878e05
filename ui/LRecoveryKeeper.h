// Recovery after a crash: at the start it offers the documents of sessions that ended
// abnormally, then keeps a recovery project of this session in the working folder, rewritten
// after every finished change and removed when the editor closes normally.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "ui/LFrame.h"

class LEdProject;
class LRecoveryLock;

class LRecoveryKeeper
{
public:
    // What the session holds now, as a project; and how recovered documents are opened.
    using CollectFn = std::function<void(LEdProject& project)>;
    using AddFn = std::function<void(LEdProject& project)>;

    LRecoveryKeeper(LFrame& frame, CollectFn fnCollect, AddFn fnAdd);
    ~LRecoveryKeeper();

    void Start();
    // A failing write is told once, not after every edit.
    void Write();
    void Stop();

private:
    // Offers one abandoned session's documents; false when the user wanted them and they could
    // not be read (its folder must then stay).
    bool RecoverSession(const std::string& szFolder);

    LFrame& frame;
    CollectFn fnCollect;
    AddFn fnAdd;
    std::unique_ptr<LRecoveryLock> pRecoveryLock;
    std::string szRecoveryPath;
    bool bRecoveryFailTold = false;
};
