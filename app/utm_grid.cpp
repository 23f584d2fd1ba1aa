#include "app/commands.h"
#include "app/map_views.h"
#include "app/map_window.h"
#include "mapdata/map_record.h"
#include "toolbox/drawing.h"
#include "toolbox/menus.h"
#include "toolbox/offscreen.h"
#include "toolbox/resources.h"

namespace {

constexpr int kilometre = 100;    // map pixels
constexpr int labelEvery = 500;   // along a line
constexpr int eastingAbove = 46;  // first easting label, above the grid's bottom edge
constexpr int northingRight = 45; // first northing label, right of the grid's left edge
constexpr COLORREF labelBackground = PALETTERGB(255, 255, 102);

void DrawLabel(int kilometres, int h, int v)
{
    char text[textBufferSize] = "";
    if (kilometres < 10) {
        AppendZero(text);
    }
    AppendNumber(text, kilometres);
    MoveTo(h, v);
    DrawStringOpaque(text);
}

int NextKilometre(int kilometres)
{
    return kilometres >= 99 ? 0 : kilometres + 1;
}

void DrawEastings(const Rect& grid)
{
    int easting = currentMap.record.utmEasting;
    for (int h = grid.left; h < grid.right; h += kilometre) {
        MoveTo(h, grid.bottom);
        LineTo(h, grid.top);
        if (view.utmGridMode == 2) {
            for (int v = grid.bottom - eastingAbove; v > grid.top; v -= labelEvery) {
                DrawLabel(easting, h - 5, v);
            }
        }
        easting = NextKilometre(easting);
    }
}

void DrawNorthings(const Rect& grid)
{
    int northing = currentMap.record.utmNorthing;
    for (int v = grid.bottom; v > grid.top; v -= kilometre) {
        MoveTo(grid.left, v);
        LineTo(grid.right, v);
        if (view.utmGridMode == 2) {
            for (int h = grid.left + northingRight; h < grid.right; h += labelEvery) {
                DrawLabel(northing, h, v + 4);
            }
        }
        northing = NextKilometre(northing);
    }
}

// Draws the picture anew, art or analysis, without the grid.
void RedrawMapImage()
{
    SetCursorById(waitCursor);
    LoadMapArt();
}

void CheckGridItems()
{
    CheckItem(shell.viewMenu, gridItem, view.utmGridMode != 0);
    CheckItem(shell.viewMenu, gridLabelsItem, view.utmGridMode == 2);
}

} // namespace

void ToggleUTMGrid()
{
    if (view.utmGridMode != 0) {
        view.utmGridMode = 0;
        RedrawMapImage();
        InitCursor();
        InvalidateMapRect(nullptr);
    } else {
        view.utmGridMode = 1;
        DrawUTMGrid();
    }
    CheckGridItems();
}

void ToggleUTMCoordinates()
{
    if (view.utmGridMode == 2) {
        view.utmGridMode = 1;
        RedrawMapImage();
        DrawUTMGrid();
        InitCursor();
        InvalidateMapRect(nullptr);
    } else {
        view.utmGridMode = 2;
        DrawUTMGrid();
    }
    CheckGridItems();
}

void DrawUTMGrid()
{
    if (view.mapImage == nullptr || !MapWindowExists()) {
        return;
    }
    WindowPtr savedPort;
    uintptr_t savedDevice;
    GetGWorld(&savedPort, &savedDevice);
    SetGWorld(view.mapImage, 0);
    const int32_t number = view.mapImage->fontNumber;
    const int32_t size = view.mapImage->fontSize;
    const int32_t style = view.mapImage->fontStyle;
    const COLORREF foreColour = view.mapImage->foreColour;
    const COLORREF backColour = view.mapImage->backColour;
    COLORREF savedText;
    COLORREF savedBack;
    GetTextForeColor(&savedText);
    GetTextBackColor(&savedBack);

    BackColor(labelBackground);
    TextForeColor(colours.black);
    SetPortFont(fontCourier, 10, style);
    DrawEastings(currentMap.editableRect);
    DrawNorthings(currentMap.editableRect);

    SetTextForeColor(&savedText);
    SetTextBackColor(&savedBack);
    view.mapImage->foreColour = foreColour;
    view.mapImage->backColour = backColour;
    SetPortFont(number, size, style);
    SetPort(savedPort);
    InvalidateMapRect(&shell.mapWindow->portRect);
}

void RedrawUTMGridIfShown()
{
    if (view.utmGridMode != 0) {
        DrawUTMGrid();
    }
}
