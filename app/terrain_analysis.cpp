#include "app/map_views.h"

#include <algorithm>
#include <vector>

#include "app/commands.h"
#include "app/map_window.h"
#include "mapdata/map_record.h"
#include "toolbox/drawing.h"
#include "toolbox/menus.h"
#include "toolbox/offscreen.h"
#include "toolbox/resources.h"

namespace {

constexpr int markInset = 3; // Woods and Town marks are the cell's 4 by 4 centre

// What a cell's square is filled with.
enum Ground { roadGround, clearGround, rough1Ground, rough2Ground, rough3Ground, rough4Ground, waterGround };
constexpr int groundCount = 7;
constexpr int artGround = -1;  // left as it is
constexpr int tileGround = -2; // a NO-GO tile

constexpr COLORREF groundColours[groundCount] = {
    PALETTERGB(255, 255, 255), PALETTERGB(221, 221, 221), PALETTERGB(153, 153, 153), PALETTERGB(102, 102, 102),
    PALETTERGB(85, 85, 85),    PALETTERGB(0, 0, 0),       PALETTERGB(166, 202, 240),
};
constexpr COLORREF woodsColour = PALETTERGB(102, 204, 102);
constexpr COLORREF townColour = PALETTERGB(153, 0, 51);
constexpr COLORREF hiLowColour = PALETTERGB(154, 104, 52);

struct AnalysisBrushes {
    HBRUSH ground[groundCount];
    HBRUSH woods;
    HBRUSH town;
    HBRUSH hiLow;
};

AnalysisBrushes CreateBrushes()
{
    AnalysisBrushes brushes;
    for (int i = 0; i < groundCount; i++) {
        brushes.ground[i] = CreateSolidBrush(groundColours[i]);
    }
    brushes.woods = CreateSolidBrush(woodsColour);
    brushes.town = CreateSolidBrush(townColour);
    brushes.hiLow = CreateSolidBrush(hiLowColour);
    return brushes;
}

void DeleteBrushes(const AnalysisBrushes& brushes)
{
    for (const HBRUSH brush : brushes.ground) {
        DeleteObject(brush);
    }
    DeleteObject(brushes.woods);
    DeleteObject(brushes.town);
    DeleteObject(brushes.hiLow);
}

int GroundOf(TerrainCell cell)
{
    if (cell & cellRoad) {
        return roadGround;
    }
    if (cell & cellNoGoMask) {
        return tileGround;
    }
    switch (cell >> cellMoveCostShift) {
    case 0:
        return clearGround;
    case 1:
        return rough1Ground;
    case 2:
        return rough2Ground;
    case 3:
        return rough3Ground;
    case 4:
        return rough4Ground;
    case 6:
        return waterGround;
    default:
        return artGround;
    }
}

Rect CellsRect(int firstColumn, int endColumn, int row)
{
    return {static_cast<int16_t>(row * cellSize), static_cast<int16_t>(firstColumn * cellSize),
            static_cast<int16_t>((row + 1) * cellSize), static_cast<int16_t>(endColumn * cellSize)};
}

void CopyNoGoTile(TerrainCell cell, const Rect& place)
{
    const int level = (cell & cellNoGoMask) >> cellNoGoShift;
    const int16_t left = level == 4 ? 76 : level == 2 ? 65 : 54;
    const Rect tile = {289, left, 299, static_cast<int16_t>(left + cellSize)};
    CopyFromInterfaceBitmap(view.mapImage, &tile, &place);
}

// Fills the squares of a row, neighbours of one ground together.
void FillRowGround(int row, const AnalysisBrushes& brushes)
{
    const int columns = currentMap.record.columnCount;
    int start = 0;
    while (start < columns) {
        const int ground = GroundOf(currentMap.cellColumns[start][row]);
        int end = start + 1;
        while (end < columns && GroundOf(currentMap.cellColumns[end][row]) == ground) {
            end++;
        }
        if (ground >= 0) {
            const Rect stretch = CellsRect(start, end, row);
            FillRectBrush(&stretch, brushes.ground[ground]);
        }
        start = end;
    }
}

// A bitmap with one pixel for each cell, in the colour of its ground. Null when a cell shows the art, or on failure.
HBITMAP CreateGroundBitmap()
{
    const int columns = currentMap.record.columnCount;
    const int rows = currentMap.record.rowCount;
    struct {
        BITMAPINFOHEADER header;
        RGBQUAD colours[groundCount];
    } info = {};
    info.header.biSize = sizeof info.header;
    info.header.biWidth = columns;
    info.header.biHeight = -rows; // from the top down
    info.header.biPlanes = 1;
    info.header.biBitCount = 8;
    info.header.biClrUsed = groundCount;
    for (int i = 0; i < groundCount; i++) {
        const COLORREF colour = groundColours[i];
        info.colours[i] = {GetBValue(colour), GetGValue(colour), GetRValue(colour), 0};
    }
    const size_t rowBytes = static_cast<size_t>(columns + 3) / 4 * 4;
    std::vector<BYTE> pixels(rowBytes * static_cast<size_t>(rows));
    for (int column = 0; column < columns; column++) {
        for (int row = 0; row < rows; row++) {
            const int ground = GroundOf(currentMap.cellColumns[column][row]);
            if (ground == artGround) {
                return nullptr;
            }
            // A tile will cover its square, whatever colour that has.
            pixels[static_cast<size_t>(row) * rowBytes + static_cast<size_t>(column)] =
                static_cast<BYTE>(std::max<int>(ground, roadGround));
        }
    }
    return CreateDIBitmap(shell.mapWindowDC, &info.header, CBM_INIT, pixels.data(),
                          reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS);
}

void DrawRowMarks(int row, const AnalysisBrushes& brushes)
{
    for (int column = 0; column < currentMap.record.columnCount; column++) {
        const TerrainCell cell = currentMap.cellColumns[column][row];
        if ((cell & (cellWoods | cellTown | cellHiLow | cellNoGoMask)) == 0) {
            continue;
        }
        const Rect place = CellsRect(column, column + 1, row);
        const Rect centre = {
            static_cast<int16_t>(place.top + markInset), static_cast<int16_t>(place.left + markInset),
            static_cast<int16_t>(place.bottom - markInset), static_cast<int16_t>(place.right - markInset)};
        const bool showsTile = GroundOf(cell) == tileGround;
        if (showsTile) {
            CopyNoGoTile(cell, place);
        }
        if ((cell & cellWoods) && !showsTile) {
            FillRectBrush(&centre, brushes.woods);
        }
        if ((cell & cellTown) && !showsTile) {
            FillRectBrush(&centre, brushes.town);
        }
        if (cell & cellHiLow) {
            FrameRectBrush(&place, brushes.hiLow);
        }
    }
}

// The squares come from stretching copies, which are much faster than one fill after another; without the bitmap of
// the ground they are filled. A few rows at a time, so that their marks find them in the processor's cache.
void DrawRows(HDC ground, const AnalysisBrushes& brushes)
{
    constexpr int rowsAtATime = 2;
    const int columns = currentMap.record.columnCount;
    const int rows = currentMap.record.rowCount;
    for (int first = 0; first < rows; first += rowsAtATime) {
        const int end = std::min(first + rowsAtATime, rows);
        if (ground != nullptr) {
            StretchBlt(view.mapImage->dc, 0, first * cellSize, columns * cellSize, (end - first) * cellSize, ground,
                       0, first, columns, end - first, SRCCOPY);
        }
        for (int row = first; row < end; row++) {
            if (ground == nullptr) {
                FillRowGround(row, brushes);
            }
            DrawRowMarks(row, brushes);
        }
    }
}

} // namespace

void RenderTerrainAnalysis()
{
    if (view.mapImage == nullptr) {
        return;
    }
    const AnalysisBrushes brushes = CreateBrushes();
    WindowPtr savedPort;
    uintptr_t savedDevice;
    GetGWorld(&savedPort, &savedDevice);
    SetGWorld(view.mapImage, 0);
    const HBITMAP ground = CreateGroundBitmap();
    if (ground != nullptr) {
        const HDC source = CreateCompatibleDC(shell.mapWindowDC);
        const HGDIOBJ displaced = SelectObject(source, ground);
        SetStretchBltMode(view.mapImage->dc, COLORONCOLOR);
        DrawRows(source, brushes);
        SelectObject(source, displaced);
        DeleteDC(source);
        DeleteObject(ground);
    } else {
        DrawRows(nullptr, brushes);
    }
    SetPort(savedPort);
    DeleteBrushes(brushes);
    RedrawUTMGridIfShown();
}

void ToggleTerrainAnalysis()
{
    view.terrainAnalysisOn = view.terrainAnalysisOn == 0 ? 1 : 0;
    CheckItem(shell.viewMenu, analysisItem, view.terrainAnalysisOn);
    SetCursorById(waitCursor);
    LoadMapArt();
    RedrawUTMGridIfShown();
    InitCursor();
    InvalidateMapRect(nullptr);
}
