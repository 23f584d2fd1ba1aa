#include "app/commands.h"
#include "app/map_views.h"
#include "app/map_window.h"
#include "mapdata/map_record.h"
#include "toolbox/drawing.h"
#include "toolbox/menus.h"
#include "toolbox/offscreen.h"
#include "toolbox/resources.h"

#include <algorithm>
#include <vector>

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

// ---- cells one by one ----

void DrawCellMarks(TerrainCell cell, const Rect& place, const AnalysisBrushes& brushes)
{
    const Rect centre = {static_cast<int16_t>(place.top + markInset), static_cast<int16_t>(place.left + markInset),
                         static_cast<int16_t>(place.bottom - markInset),
                         static_cast<int16_t>(place.right - markInset)};
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

void DrawRowCellByCell(int row, const AnalysisBrushes& brushes)
{
    FillRowGround(row, brushes);
    for (int column = 0; column < currentMap.record.columnCount; column++) {
        DrawCellMarks(currentMap.cellColumns[column][row], CellsRect(column, column + 1, row), brushes);
    }
}

// ---- whole rows ----

// The three lines of pixels that a row of cells is made of, besides its tiles.
struct RowLines {
    BITMAPINFO info; // of one line
    std::vector<DWORD> border;
    std::vector<DWORD> side;
    std::vector<DWORD> middle;
};

constexpr DWORD DibPixel(COLORREF colour)
{
    return static_cast<DWORD>(GetRValue(colour)) << 16 | static_cast<DWORD>(GetGValue(colour)) << 8 |
           GetBValue(colour);
}

void PrepareRowLines(RowLines* lines)
{
    const int width = currentMap.record.columnCount * cellSize;
    BITMAPINFOHEADER& header = lines->info.bmiHeader;
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = 1;
    header.biPlanes = 1;
    header.biBitCount = 32;
    for (std::vector<DWORD>* line : {&lines->border, &lines->side, &lines->middle}) {
        line->resize(static_cast<size_t>(width));
    }
}

void ComposeCell(TerrainCell cell, int ground, DWORD* border, DWORD* side, DWORD* middle)
{
    const DWORD groundPixel = DibPixel(groundColours[ground]);
    const DWORD edgePixel = cell & cellHiLow ? DibPixel(hiLowColour) : groundPixel;
    std::fill_n(border, cellSize, edgePixel);
    std::fill_n(side, cellSize, groundPixel);
    std::fill_n(middle, cellSize, groundPixel);
    if (cell & (cellWoods | cellTown)) {
        std::fill_n(middle + markInset, cellSize - 2 * markInset,
                    DibPixel(cell & cellTown ? townColour : woodsColour));
    }
    side[0] = side[cellSize - 1] = middle[0] = middle[cellSize - 1] = edgePixel;
}

// False when a cell of the row shows the art.
bool ComposeRow(RowLines* lines, int row)
{
    for (int column = 0; column < currentMap.record.columnCount; column++) {
        const TerrainCell cell = currentMap.cellColumns[column][row];
        const int ground = GroundOf(cell);
        if (ground == artGround) {
            return false;
        }
        // A tile will cover its square, whatever colour that has.
        const size_t start = static_cast<size_t>(column) * cellSize;
        ComposeCell(cell, std::max<int>(ground, roadGround), &lines->border[start], &lines->side[start],
                    &lines->middle[start]);
    }
    return true;
}

void CopyLine(const RowLines& lines, const std::vector<DWORD>& line, int top, int height)
{
    const int width = lines.info.bmiHeader.biWidth;
    StretchDIBits(view.mapImage->dc, 0, top, width, height, 0, 0, width, 1, line.data(), &lines.info, DIB_RGB_COLORS,
                  SRCCOPY);
}

void DrawRowFromLines(const RowLines& lines, int row, const AnalysisBrushes& brushes)
{
    constexpr int sideHeight = markInset - 1;
    const int top = row * cellSize;
    CopyLine(lines, lines.border, top, 1);
    CopyLine(lines, lines.side, top + 1, sideHeight);
    CopyLine(lines, lines.middle, top + markInset, cellSize - 2 * markInset);
    CopyLine(lines, lines.side, top + cellSize - markInset, sideHeight);
    CopyLine(lines, lines.border, top + cellSize - 1, 1);
    for (int column = 0; column < currentMap.record.columnCount; column++) {
        const TerrainCell cell = currentMap.cellColumns[column][row];
        if (GroundOf(cell) == tileGround) {
            DrawCellMarks(cell, CellsRect(column, column + 1, row), brushes);
        }
    }
}

// Repeating a row's lines takes little more than writing its pixels once, a fill for every square many times that.
void DrawRows(const AnalysisBrushes& brushes)
{
    RowLines lines = {};
    PrepareRowLines(&lines);
    for (int row = 0; row < currentMap.record.rowCount; row++) {
        if (ComposeRow(&lines, row)) {
            DrawRowFromLines(lines, row, brushes);
        } else {
            DrawRowCellByCell(row, brushes);
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
    DrawRows(brushes);
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
