#include "cli/LCliCanvas.h"

#include <algorithm>
#include <cstring>

namespace {
struct Glyph
{
    char ch;
    const char* szRows[7];
};

// '#' marks a lit pixel.
const Glyph kFont[] = {
    {'0', {" ### ", "#   #", "#  ##", "# # #", "##  #", "#   #", " ### "}},
    {'1', {"  #  ", " ##  ", "  #  ", "  #  ", "  #  ", "  #  ", " ### "}},
    {'2', {" ### ", "#   #", "    #", "   # ", "  #  ", " #   ", "#####"}},
    {'3', {"#####", "   # ", "  #  ", "   # ", "    #", "#   #", " ### "}},
    {'4', {"   # ", "  ## ", " # # ", "#  # ", "#####", "   # ", "   # "}},
    {'5', {"#####", "#    ", "#### ", "    #", "    #", "#   #", " ### "}},
    {'6', {"  ## ", " #   ", "#    ", "#### ", "#   #", "#   #", " ### "}},
    {'7', {"#####", "    #", "   # ", "  #  ", " #   ", " #   ", " #   "}},
    {'8', {" ### ", "#   #", "#   #", " ### ", "#   #", "#   #", " ### "}},
    {'9', {" ### ", "#   #", "#   #", " ####", "    #", "   # ", " ##  "}},
    {'.', {"     ", "     ", "     ", "     ", "     ", " ##  ", " ##  "}},
    {':', {"     ", " ##  ", " ##  ", "     ", " ##  ", " ##  ", "     "}},
    {'-', {"     ", "     ", "     ", "#####", "     ", "     ", "     "}},
    {'+', {"     ", "  #  ", "  #  ", "#####", "  #  ", "  #  ", "     "}},
    {'k', {"#    ", "#    ", "#  # ", "# #  ", "##   ", "# #  ", "#  # "}},
    {'H', {"#   #", "#   #", "#   #", "#####", "#   #", "#   #", "#   #"}},
    {'z', {"     ", "     ", "#####", "   # ", "  #  ", " #   ", "#####"}},
    {'s', {"     ", "     ", " ####", "#    ", " ### ", "    #", "#### "}},
    {'d', {"    #", "    #", " ## #", "#  ##", "#   #", "#   #", " ####"}},
    {'B', {"#### ", "#   #", "#   #", "#### ", "#   #", "#   #", "#### "}},
    {'L', {"#    ", "#    ", "#    ", "#    ", "#    ", "#    ", "#####"}},
    {'R', {"#### ", "#   #", "#   #", "#### ", "# #  ", "#  # ", "#   #"}},
    {'h', {"#    ", "#    ", "# ## ", "##  #", "#   #", "#   #", "#   #"}},
    {'m', {"     ", "     ", "## # ", "# # #", "# # #", "#   #", "#   #"}},
};

const Glyph* Find(char ch)
{
    for (const Glyph& g : kFont)
        if (g.ch == ch)
            return &g;
    return nullptr;
}
} // namespace

LCliCanvas::LCliCanvas(int nNewWidth, int nNewHeight, LCliColour back)
    : nWidth(std::max(nNewWidth, 1)), nHeight(std::max(nNewHeight, 1)),
      vRgb(static_cast<size_t>(nWidth) * nHeight * 3)
{
    Fill(0, 0, nWidth, nHeight, back);
}

void LCliCanvas::Set(int x, int y, LCliColour c)
{
    if (x < 0 || y < 0 || x >= nWidth || y >= nHeight)
        return;
    uint8_t* p = vRgb.data() + (static_cast<size_t>(y) * nWidth + x) * 3;
    p[0] = c.r;
    p[1] = c.g;
    p[2] = c.b;
}

void LCliCanvas::Fill(int x, int y, int w, int h, LCliColour c)
{
    const int x0 = std::max(x, 0), x1 = std::min(x + w, nWidth);
    const int y0 = std::max(y, 0), y1 = std::min(y + h, nHeight);
    for (int yy = y0; yy < y1; ++yy)
        for (int xx = x0; xx < x1; ++xx)
            Set(xx, yy, c);
}

void LCliCanvas::Text(int x, int y, const std::string& sz, LCliColour c)
{
    for (char ch : sz) {
        if (const Glyph* g = Find(ch))
            for (int r = 0; r < kGlyphHeight; ++r)
                for (int col = 0; col < kGlyphWidth; ++col)
                    if (g->szRows[r][col] == '#')
                        Set(x + col, y + r, c);
        x += kAdvance;
    }
}
