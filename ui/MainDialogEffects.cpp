// The Effects menu and the commands that work like effects (mixing, conversions, tools).
// An effect reads its stored parameters, shows its dialog, and then:
//   StartModifyCurrentFile(label); run its process over GetSelection(); EndModifyCurrentFile(...)
// on GetCurrentFile()->GetDocument().
#include "ui/MainDialog.h"

bool MainDialog::CmEffect(int nCommandId)
{
    (void)nCommandId;
    return false;
}

bool MainDialog::IsEffectCommandEnabled(int nCommandId) const
{
    (void)nCommandId;
    return false;
}
