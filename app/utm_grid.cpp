#include "app/map_views.h"
#include "app/map_window.h"
#include "mapdata/map_record.h"
#include "toolbox/drawing.h"
#include "toolbox/menus.h"
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

void CheckGridItems()
{
    CheckCommand(utmGridCommand, view.utmGridMode != 0);
    CheckCommand(utmCoordinatesCommand, view.utmGridMode == 2);
}

} // namespace

void ToggleUTMGrid()
{
    if (view.utmGridMode != 0) {
        view.utmGridMode = 0;
        RedrawMapImage();
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
    } else {
        view.utmGridMode = 2;
        DrawUTMGrid();
    }
    CheckGridItems();
}

void DrawUTMGrid()
{
    if (view.mapImage == nullptr) {
        return;
    }
    const SavedDrawing saved = BeginDrawing(view.mapImage);
    BackColor(labelBackground);
    TextForeColor(colours.black);
    SetPortFont(fontCourier, 10, view.mapImage->fontStyle);
    DrawEastings(currentMap.editableRect);
    DrawNorthings(currentMap.editableRect);
    EndDrawing(saved);
    if (MapWindowExists()) {
        InvalidateMapRect(&shell.mapWindow->portRect);
    }
}

void RedrawUTMGridIfShown()
{
    if (view.utmGridMode != 0) {
        DrawUTMGrid();
    }
}
