// The dialogs that ask how a file of one format is to be written: the compressed WAV format, the
// headerless layout, the MP3 encoder's settings. Each format's dialog registers itself here under
// the format's name with one static instance; Save As shows it once the file is chosen. A format
// that reads by settings of its own (headerless files) may also offer a dialog on opening.
#pragma once

#include <cstdint>
#include <string>

#include "formats/LAudioFile.h"

class QWidget;

class LSaveFormatOptions
{
public:
    // Shows the dialog with the current choice in encoding; false when the user cancelled.
    using AskFn = bool (*)(QWidget* pParent, int32_t nSampleRate, uint8_t nChans, LAudioEncoding& encoding);

    // Shows the format's reading settings before a file is opened; false when the user cancelled.
    using AskOpenFn = bool (*)(QWidget* pParent, const std::string& szPath);

    LSaveFormatOptions(const char* szFormatName, AskFn pfnAsk, AskOpenFn pfnAskOpen = nullptr);

    // The registered dialog of the format (by its door name, "WAV"); true with nothing asked where
    // the format has none.
    static bool Ask(QWidget* pParent, const std::string& szFormatName, int32_t nSampleRate, uint8_t nChans,
                    LAudioEncoding& encoding);
    static bool HasDialog(const std::string& szFormatName);
    // The format's dialog for opening the file at szPath; true with nothing asked where it has none.
    static bool AskOpen(QWidget* pParent, const std::string& szFormatName, const std::string& szPath = "");

private:
    const char* szFormatName;
    AskFn pfnAsk;
    AskOpenFn pfnAskOpen;
    LSaveFormatOptions* pNext;
};
