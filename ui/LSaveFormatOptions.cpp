#include "ui/LSaveFormatOptions.h"

namespace {
LSaveFormatOptions*& Head()
{
    static LSaveFormatOptions* p = nullptr;
    return p;
}
} // namespace

LSaveFormatOptions::LSaveFormatOptions(const char* szFormatName, AskFn pfnAsk, AskOpenFn pfnAskOpen)
    : szFormatName(szFormatName), pfnAsk(pfnAsk), pfnAskOpen(pfnAskOpen), pNext(Head())
{
    Head() = this;
}

bool LSaveFormatOptions::Ask(QWidget* pParent, const std::string& szFormatName, int32_t nSampleRate, uint8_t nChans,
                             LAudioEncoding& encoding)
{
    for (const LSaveFormatOptions* p = Head(); p; p = p->pNext)
        if (szFormatName == p->szFormatName)
            return p->pfnAsk(pParent, nSampleRate, nChans, encoding);
    return true;
}

bool LSaveFormatOptions::HasDialog(const std::string& szFormatName)
{
    for (const LSaveFormatOptions* p = Head(); p; p = p->pNext)
        if (szFormatName == p->szFormatName)
            return true;
    return false;
}

bool LSaveFormatOptions::AskOpen(QWidget* pParent, const std::string& szFormatName, const std::string& szPath)
{
    for (const LSaveFormatOptions* p = Head(); p; p = p->pNext)
        if (szFormatName == p->szFormatName && p->pfnAskOpen)
            return p->pfnAskOpen(pParent, szPath);
    return true;
}
