#include "toolbox/conversions.h"
#include "toolbox/device_context.h"
#include "toolbox/drawing.h"

// ---- pen and colours ----

namespace {

void SelectNewPen(int width)
{
    ReplaceObject(currentPort->dc, CreatePen(PS_SOLID, width, currentPort->foreColour), currentPort->initialPen);
}

} // namespace

void ForeColor(COLORREF colour)
{
    currentPort->foreColour = colour;
    SelectNewPen(0);
}

void PenSize(int width, int)
{
    SelectNewPen(width);
}

void TextForeColor(COLORREF colour)
{
    currentPort->foreColour = colour;
    SetTextColor(currentPort->dc, colour);
}

void BackColor(COLORREF colour)
{
    currentPort->backColour = colour;
    SetBkColor(currentPort->dc, colour);
}

COLORREF GetTextForeColor(COLORREF* colour)
{
    *colour = GetTextColor(currentPort->dc);
    return *colour;
}

COLORREF GetTextBackColor(COLORREF* colour)
{
    *colour = GetBkColor(currentPort->dc);
    return *colour;
}

void SetTextForeColor(const COLORREF* colour)
{
    SetTextColor(currentPort->dc, *colour);
}

void SetTextBackColor(const COLORREF* colour)
{
    SetBkColor(currentPort->dc, *colour);
}

// ---- lines ----

void MoveTo(int h, int v)
{
    MoveToEx(currentPort->dc, h, v, nullptr);
}

void LineTo(int h, int v)
{
    LineWithEndPixel(currentPort->dc, h, v);
}

void FrameOutline(HDC dc, const Rect* rect)
{
    const int previousMode = SetROP2(dc, R2_NOT);
    MoveToEx(dc, rect->left, rect->top, nullptr);
    LineTo(dc, rect->right, rect->top);
    LineTo(dc, rect->right, rect->bottom);
    LineTo(dc, rect->left, rect->bottom);
    LineTo(dc, rect->left, rect->top);
    SetROP2(dc, previousMode);
}

// ---- rectangles drawn ----

void FillRectColor(const Rect* rect, COLORREF colour)
{
    const HBRUSH brush = CreateSolidBrush(colour);
    FillRectBrush(rect, brush);
    DeleteObject(brush);
}

void EraseRect(const Rect* rect)
{
    FillRectColor(rect, currentPort->backColour);
}

void FrameRect(const Rect* rect)
{
    const HBRUSH brush = CreateSolidBrush(currentPort->foreColour);
    FrameRectBrush(rect, brush);
    DeleteObject(brush);
}

void ClipRect(const Rect*) {}
