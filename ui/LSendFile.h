// Sending a file by mail: the desktop's mail program gets it as an attachment through
// xdg-email. Whether one is there is asked first, so that the user hears why nothing opened.
#pragma once

#include <string>

namespace LSendFile {
// Empty when a mail program can be asked to send; else the reason, for the user.
std::string CheckMailProgram();
// Starts the mail program with szPath attached; false with the reason.
bool Attach(const std::string& szPath, std::string* pszError);
// A folder of its own for a copy that must outlive the editor's working folder until the mail
// program has read it.
std::string NewSendFolder();
} // namespace LSendFile
