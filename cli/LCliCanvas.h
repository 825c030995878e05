// A small RGB picture to draw into: filled rectangles, and text in a built-in 5 x 7 pixel font
// that knows the digits and the few letters the pictures' labels use.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct LCliColour
{
    uint8_t r, g, b;
};

class LCliCanvas
{
public:
    static constexpr int kGlyphWidth = 5;
    static constexpr int kGlyphHeight = 7;
    static constexpr int kAdvance = 6;

    LCliCanvas(int nWidth, int nHeight, LCliColour back);

    int GetWidth() const { return nWidth; }
    int GetHeight() const { return nHeight; }
    const std::vector<uint8_t>& GetRgb() const { return vRgb; }

    // Pixels outside the picture are left alone.
    void Set(int x, int y, LCliColour c);
    void Fill(int x, int y, int w, int h, LCliColour c);
    // Text with its top left corner at (x, y); characters the font lacks are left blank.
    void Text(int x, int y, const std::string& sz, LCliColour c);
    static int TextWidth(const std::string& sz) { return static_cast<int>(sz.size()) * kAdvance - 1; }

private:
    int nWidth;
    int nHeight;
    std::vector<uint8_t> vRgb;
};
