#include "app/map_views.h"
#include "app/map_window.h"
#include "editing/overlay.h"
#include "mapdata/terrain.h"
#include "toolbox/drawing.h"
#include "toolbox/menus.h"
#include "toolbox/offscreen.h"
#include "toolbox/resources.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace {

constexpr int markInset = 3; // a centre is the cell's 4 by 4 pixels

// What a cell's square is filled with: the place of a row in the terrain table, or one of these.
constexpr int artGround = -1;  // left as it is
constexpr int tileGround = -2; // a NO-GO tile

// What the feature bits of a cell add to it.
struct FeatureLook {
    const TerrainRow* square;
    const TerrainRow* centre;
    const TerrainRow* frame;
    int squarePlace;
    bool overCost; // the square is shown, and not the movement cost
    bool overTile;
    DWORD centrePixel;
    DWORD framePixel;
};

// The terrain table as the picture needs it: looked up by the bits of a cell instead of searched for every cell.
struct Looks {
    FeatureLook ofFeatures[cellFeatureBits + 1];
    int moveCostGround[1 << (16 - cellMoveCostShift)];
    std::vector<HBRUSH> brushes; // of every row
    std::vector<DWORD> pixels;
};

constexpr DWORD DibPixel(COLORREF colour)
{
    return static_cast<DWORD>(GetRValue(colour)) << 16 | static_cast<DWORD>(GetGValue(colour)) << 8 |
           GetBValue(colour);
}

int PlaceOf(const TerrainRow* row)
{
    return static_cast<int>(row - TerrainRows().data());
}

void TakeHigher(const TerrainRow** shown, const TerrainRow& row)
{
    if (*shown == nullptr || row.analysis.precedence > (*shown)->analysis.precedence) {
        *shown = &row;
    }
}

FeatureLook LookOfFeatures(TerrainCell cell)
{
    FeatureLook look = {};
    for (const TerrainRow& row : TerrainRows(featureTerrain)) {
        if (!HoldsTerrain(cell, row)) {
            continue;
        }
        if (row.analysis.look == squareLook) {
            TakeHigher(&look.square, row);
        } else if (row.analysis.look == centreLook) {
            TakeHigher(&look.centre, row);
        } else if (row.analysis.look == frameLook) {
            TakeHigher(&look.frame, row);
        }
    }
    return look;
}

Looks PrepareLooks()
{
    Looks looks = {};
    const int costPrecedence = TerrainRows(moveCostTerrain).back().analysis.precedence;
    const int tilePrecedence = TerrainRows(noGoTerrain).front().analysis.precedence;
    for (int bits = 0; bits <= cellFeatureBits; bits++) {
        FeatureLook& look = looks.ofFeatures[bits];
        look = LookOfFeatures(static_cast<TerrainCell>(bits));
        look.overCost = look.square != nullptr && look.square->analysis.precedence > costPrecedence;
        look.overTile = look.square != nullptr && look.square->analysis.precedence > tilePrecedence;
        look.squarePlace = look.square != nullptr ? PlaceOf(look.square) : artGround;
        look.centrePixel = look.centre != nullptr ? DibPixel(look.centre->analysis.colour) : 0;
        look.framePixel = look.frame != nullptr ? DibPixel(look.frame->analysis.colour) : 0;
    }
    std::fill(std::begin(looks.moveCostGround), std::end(looks.moveCostGround), artGround);
    for (const TerrainRow& row : TerrainRows(moveCostTerrain)) {
        looks.moveCostGround[MoveCostCodeOf(row.value)] = PlaceOf(&row);
    }
    for (const TerrainRow& row : TerrainRows()) {
        looks.brushes.push_back(CreateSolidBrush(row.analysis.colour));
        looks.pixels.push_back(DibPixel(row.analysis.colour));
    }
    return looks;
}

void ReleaseLooks(const Looks& looks)
{
    for (const HBRUSH brush : looks.brushes) {
        DeleteObject(brush);
    }
}

const FeatureLook& LookOf(const Looks& looks, TerrainCell cell)
{
    return looks.ofFeatures[cell & cellFeatureBits];
}

int GroundOf(const Looks& looks, TerrainCell cell)
{
    const FeatureLook& look = LookOf(looks, cell);
    const bool isNoGo = (cell & cellNoGoMask) != 0;
    if (isNoGo ? look.overTile : look.overCost) {
        return look.squarePlace;
    }
    return isNoGo ? tileGround : looks.moveCostGround[MoveCostCodeOf(cell)];
}

Rect CellsRect(int firstColumn, int endColumn, int row)
{
    return MakeRect(firstColumn * cellSize, row * cellSize, endColumn * cellSize, (row + 1) * cellSize);
}

// Fills the squares of a row, neighbours of one ground together.
void FillRowGround(int row, const Looks& looks)
{
    const int columns = currentMap.record.columnCount;
    int start = 0;
    while (start < columns) {
        const int ground = GroundOf(looks, currentMap.cellColumns[start][row]);
        int end = start + 1;
        while (end < columns && GroundOf(looks, currentMap.cellColumns[end][row]) == ground) {
            end++;
        }
        if (ground >= 0) {
            const Rect stretch = CellsRect(start, end, row);
            FillRectBrush(&stretch, looks.brushes[static_cast<size_t>(ground)]);
        }
        start = end;
    }
}

// ---- cells one by one ----

HBRUSH BrushOf(const Looks& looks, const TerrainRow* row)
{
    return looks.brushes[static_cast<size_t>(PlaceOf(row))];
}

void DrawCellMarks(TerrainCell cell, const Rect& place, const Looks& looks)
{
    const FeatureLook& look = LookOf(looks, cell);
    if (GroundOf(looks, cell) == tileGround) {
        DrawNoGoTile(view.mapImage, NearestNoGoOf(cell), place, place);
    } else if (look.centre != nullptr) {
        Rect centre = place;
        OutsetRect(&centre, -markInset, -markInset);
        FillRectBrush(&centre, BrushOf(looks, look.centre));
    }
    if (look.frame != nullptr) {
        FrameRectBrush(&place, BrushOf(looks, look.frame));
    }
}

void DrawRowCellByCell(int row, const Looks& looks)
{
    FillRowGround(row, looks);
    for (int column = 0; column < currentMap.record.columnCount; column++) {
        DrawCellMarks(currentMap.cellColumns[column][row], CellsRect(column, column + 1, row), looks);
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

void ComposeCell(const FeatureLook& look, DWORD groundPixel, DWORD* border, DWORD* side, DWORD* middle)
{
    const DWORD edgePixel = look.frame != nullptr ? look.framePixel : groundPixel;
    std::fill_n(border, cellSize, edgePixel);
    std::fill_n(side, cellSize, groundPixel);
    std::fill_n(middle, cellSize, groundPixel);
    if (look.centre != nullptr) {
        std::fill_n(middle + markInset, cellSize - 2 * markInset, look.centrePixel);
    }
    side[0] = side[cellSize - 1] = middle[0] = middle[cellSize - 1] = edgePixel;
}

// False when a cell of the row shows the art.
bool ComposeRow(RowLines* lines, int row, const Looks& looks)
{
    for (int column = 0; column < currentMap.record.columnCount; column++) {
        const TerrainCell cell = currentMap.cellColumns[column][row];
        const int ground = GroundOf(looks, cell);
        if (ground == artGround) {
            return false;
        }
        // A tile will cover its square, whatever colour that has.
        const size_t start = static_cast<size_t>(column) * cellSize;
        ComposeCell(LookOf(looks, cell), looks.pixels[static_cast<size_t>(std::max(ground, 0))],
                    &lines->border[start], &lines->side[start], &lines->middle[start]);
    }
    return true;
}

void CopyLine(const RowLines& lines, const std::vector<DWORD>& line, int top, int height)
{
    const int width = lines.info.bmiHeader.biWidth;
    StretchDIBits(view.mapImage->dc, 0, top, width, height, 0, 0, width, 1, line.data(), &lines.info, DIB_RGB_COLORS,
                  SRCCOPY);
}

void DrawRowFromLines(const RowLines& lines, int row, const Looks& looks)
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
        if (GroundOf(looks, cell) == tileGround) {
            DrawCellMarks(cell, CellsRect(column, column + 1, row), looks);
        }
    }
}

// Repeating a row's lines takes little more than writing its pixels once, a fill for every square many times that.
void DrawRows(const Looks& looks)
{
    RowLines lines = {};
    PrepareRowLines(&lines);
    for (int row = 0; row < currentMap.record.rowCount; row++) {
        if (ComposeRow(&lines, row, looks)) {
            DrawRowFromLines(lines, row, looks);
        } else {
            DrawRowCellByCell(row, looks);
        }
    }
}

} // namespace

void RenderTerrainAnalysis()
{
    if (view.mapImage == nullptr) {
        return;
    }
    const Looks looks = PrepareLooks();
    const SavedPort saved = UsePort(view.mapImage);
    DrawRows(looks);
    RestorePort(saved);
    ReleaseLooks(looks);
    RedrawUTMGridIfShown();
}

void ToggleTerrainAnalysis()
{
    view.terrainAnalysisOn = view.terrainAnalysisOn == 0 ? 1 : 0;
    CheckCommand(terrainAnalysisCommand, view.terrainAnalysisOn);
    RedrawMapImage();
}
