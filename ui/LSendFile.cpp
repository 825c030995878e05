#include "ui/LSendFile.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "core/LComponents.h"
#include "core/LTempFolder.h"
#include "platform/engine/LChildProcess.h"

std::string LSendFile::CheckMailProgram()
{
    if (LComponents::Find("xdg-email").empty())
        return "Sending needs the program xdg-email, which is not installed.\n"
               "Install the package xdg-utils (sudo apt-get install xdg-utils).";
    // xdg-email starts whatever the desktop has for mailto: links; with none it fails silently.
    const std::string szMime = LComponents::Find("xdg-mime");
    if (!szMime.empty()) {
        LChildProcess query;
        if (query.Start({szMime, "query", "default", "x-scheme-handler/mailto"}, LChildProcess::PipeOut)) {
            char szOut[256] = {};
            query.ReadFull(szOut, sizeof(szOut) - 1, 5000);
            query.Wait(5000);
            if (szOut[0] == '\0' || szOut[0] == '\n')
                return "No mail program is set up on this computer.\n"
                       "Choose one in your desktop's settings for e-mail, then try again.";
        }
    }
    return std::string();
}

bool LSendFile::Attach(const std::string& szPath, std::string* pszError)
{
    return LChildProcess::StartDetached({LComponents::Find("xdg-email"), "--attach", szPath}, pszError);
}

std::string LSendFile::NewSendFolder()
{
    std::string szTemplate = LTempFolder::Path() + "/sonitra-send-XXXXXX";
    if (!::mkdtemp(szTemplate.data()))
        return std::string();
    return szTemplate;
}
