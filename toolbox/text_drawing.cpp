#include "toolbox/conversions.h"
#include "toolbox/device_context.h"
#include "toolbox/drawing.h"

#include <algorithm>
#include <cstring>

namespace {

// What a text box keeps free of its rectangle's left side.
constexpr int textBoxIndent = 4;

// ---- fonts ----

const char* FaceName(int fontNumber)
{
    switch (fontNumber) {
    case fontArial:
        return "Arial";
    case fontCourier:
        return "Courier New";
    default:
        return "Times New Roman Bold";
    }
}

} // namespace

HFONT NewFont(const char* faceName, int fontNumber, int size, int style)
{
    constexpr int defaultSize = 12;
    LOGFONTA record = {};
    record.lfHeight = size != 0 ? -size : -defaultSize;
    record.lfWeight = (style & styleBold) != 0 ? FW_BOLD : FW_MEDIUM;
    record.lfItalic = (style & styleItalic) != 0;
    record.lfUnderline = (style & styleUnderline) != 0;
    record.lfCharSet = ANSI_CHARSET;
    record.lfOutPrecision = OUT_TT_PRECIS;
    std::strncpy(record.lfFaceName, faceName != nullptr ? faceName : FaceName(fontNumber), LF_FACESIZE - 1);
    return CreateFontIndirectA(&record);
}

void SetPortFont(int fontNumber, int size, int style)
{
    const HFONT font = NewFont(nullptr, fontNumber, size == 10 ? 11 : size, style);
    if (font == nullptr) {
        return;
    }
    ReplaceObject(currentPort->dc, font, currentPort->initialFont);
    currentPort->fontNumber = fontNumber;
    currentPort->fontSize = size;
    currentPort->fontStyle = style;
}

// ---- lines of text ----

namespace {

int TextLength(const char* text)
{
    return static_cast<int>(std::strlen(text));
}

void DrawAtPen(const char* text, int backgroundMode)
{
    const HDC dc = currentPort->dc;
    POINT pen = {};
    MoveToEx(dc, 0, 0, &pen); // the one call that tells where the pen is
    MoveToEx(dc, pen.x, pen.y, nullptr);
    const int previousMode = SetBkMode(dc, backgroundMode);
    TextOutA(dc, pen.x, pen.y, text, TextLength(text));
    SetBkMode(dc, previousMode);
}

} // namespace

void DrawString(const char* text)
{
    DrawAtPen(text, TRANSPARENT);
}

void DrawStringOpaque(const char* text)
{
    DrawAtPen(text, OPAQUE);
}

int StringWidth(const char* text)
{
    SIZE extent = {};
    GetTextExtentPoint32A(currentPort->dc, text, TextLength(text), &extent);
    return extent.cx;
}

// ---- wrapped text ----

namespace {

// The texts carry no mnemonics: an '&' in them is meant to be seen.
constexpr UINT wrappedText = DT_WORDBREAK | DT_NOPREFIX;

} // namespace

void TextBox(const char* textPlusOne, int, const Rect* rect, int justification)
{
    const HDC dc = currentPort->dc;
    RECT area = PlatformRect(rect);
    area.left += textBoxIndent;
    const UINT alignment = justification == 1 ? DT_CENTER : justification == -1 ? DT_RIGHT : DT_LEFT;
    const UINT previousAlign = SetTextAlign(dc, TA_LEFT | TA_TOP);
    EraseRect(rect);
    DrawTextA(dc, textPlusOne - 1, -1, &area, wrappedText | alignment);
    SetTextAlign(dc, previousAlign);
}

int TextBoxHeight(const char* text, int width)
{
    const HDC dc = currentPort->dc;
    RECT area = {0, 0, std::max(width - textBoxIndent, 1), 0};
    const UINT previousAlign = SetTextAlign(dc, TA_LEFT | TA_TOP);
    DrawTextA(dc, text, -1, &area, wrappedText | DT_CALCRECT);
    SetTextAlign(dc, previousAlign);
    return area.bottom;
}
