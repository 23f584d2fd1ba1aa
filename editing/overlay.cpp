#include "editing/overlay.h"

#include "mapdata/map_record.h"
#include "toolbox/offscreen.h"
#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int dotInset = 3; // a dot is the cell's 4 by 4 centre

struct NoGoTile {
    int value;
    int16_t left; // in the interface bitmap
};
constexpr NoGoTile noGoTiles[] = {{1, 54}, {2, 65}, {4, 76}};
constexpr int16_t noGoTileTop = 289;

struct MoveCostRow {
    int code;
    COLORREF colour;
    const int16_t* show;
};

// A class without a colour is no row here, so black stays a colour like any other.
const MoveCostRow moveCostTable[] = {
    {0, PALETTERGB(221, 221, 221), &editing.showClear},  {1, PALETTERGB(187, 187, 187), &editing.showRough1},
    {2, PALETTERGB(128, 128, 128), &editing.showRough2}, {3, PALETTERGB(85, 85, 85), &editing.showRough3},
    {4, PALETTERGB(0, 0, 0), &editing.showRough4},       {6, PALETTERGB(0, 0, 255), &editing.showWater},
};

const MoveCostRow* FindMoveCost(TerrainCell cell)
{
    for (const MoveCostRow& row : moveCostTable) {
        if (row.code == cell >> cellMoveCostShift) {
            return &row;
        }
    }
    return nullptr;
}

Rect CellRect(int x, int y)
{
    Rect rect;
    SetRect(&rect, x * cellSize, y * cellSize, (x + 1) * cellSize, (y + 1) * cellSize);
    return rect;
}

// Marks stay inside the view, also those of cells that the view shows only partly.
void FillInView(Rect rect, HBRUSH brush)
{
    if (ClipToBounds(&rect, &view.viewRect)) {
        FillRectBrush(&rect, brush);
    }
}

void OutlineInView(const Rect& cell, HBRUSH brush)
{
    Rect shown = cell;
    if (!ClipToBounds(&shown, &view.viewRect)) {
        return;
    }
    if (shown.left == cell.left && shown.top == cell.top && shown.right == cell.right &&
        shown.bottom == cell.bottom) {
        FrameRectBrush(&cell, brush);
        return;
    }
    const auto edge = [&](int left, int top, int right, int bottom) {
        Rect strip;
        SetRect(&strip, left, top, right, bottom);
        FillInView(strip, brush);
    };
    edge(cell.left, cell.top, cell.right, cell.top + 1);
    edge(cell.left, cell.bottom - 1, cell.right, cell.bottom);
    edge(cell.left, cell.top, cell.left + 1, cell.bottom);
    edge(cell.right - 1, cell.top, cell.right, cell.bottom);
}

void CopyNoGoTile(int value, const Rect& cell)
{
    for (const NoGoTile& tile : noGoTiles) {
        Rect shown = cell;
        if (tile.value == value && ClipToBounds(&shown, &view.viewRect)) {
            Rect source = shown;
            OffsetRect(&source, tile.left - cell.left, noGoTileTop - cell.top);
            CopyFromInterfaceBitmap(shell.mapWindow, &source, &shown);
        }
    }
}

// Draws the mark that the feature settings give a marked cell.
void MarkFeatureCell(TerrainCell cell, const Rect& place, HBRUSH gridBrush)
{
    if (!editing.solidGrid) {
        OutlineInView(place, gridBrush);
    } else if (editing.noGoLevel == 0) {
        FillInView(place, gridBrush);
    } else {
        CopyNoGoTile((cell & cellNoGoMask) >> cellNoGoShift, place);
    }
}

TerrainCell MaskOfTool(int32_t tool)
{
    switch (tool) {
    case hiLowTool:
        return cellHiLow;
    case woodsTool:
        return cellWoods;
    case townTool:
        return cellTown;
    case roadTool:
        return cellRoad;
    case miscLOSTool:
        return cellMiscLOSBlock;
    default:
        return 0;
    }
}

bool IsFeatureMarked(TerrainCell cell, TerrainCell toolMask)
{
    if (toolMask != 0) {
        return (cell & toolMask) != 0;
    }
    const int level = (cell & cellNoGoMask) >> cellNoGoShift;
    return editing.noGoLevel != 0 && level != 0 && (editing.showAllNoGo || level == editing.noGoLevel);
}

void MarkVisibleFeatures()
{
    const HBRUSH gridBrush = CreateSolidBrush(editing.gridColour);
    const TerrainCell toolMask = MaskOfTool(editing.featureTool);
    const Rect& shown = view.viewRect;
    for (int y = shown.top / cellSize; y < shown.bottom / cellSize; y++) {
        for (int x = shown.left / cellSize; x < shown.right / cellSize; x++) {
            const TerrainCell* cell = CellAt(x, y);
            if (cell != nullptr && IsFeatureMarked(*cell, toolMask)) {
                MarkFeatureCell(*cell, CellRect(x, y), gridBrush);
            }
        }
    }
    DeleteObject(gridBrush);
}

void MarkMoveCostCell(const Rect& place, HBRUSH brush)
{
    Rect dot = place;
    switch (editing.brushStyle) {
    case solidBrush:
        FillInView(place, brush);
        break;
    case dotBrush:
        OutsetRect(&dot, -dotInset, -dotInset);
        FillInView(dot, brush);
        break;
    default:
        OutlineInView(place, brush);
        break;
    }
}

// A brush for every code that a cell can hold; null where the class has no colour or is not shown.
struct MoveCostBrushes {
    HBRUSH ofCode[1 << (16 - cellMoveCostShift)];
};

MoveCostBrushes CreateShownBrushes()
{
    MoveCostBrushes brushes = {};
    for (const MoveCostRow& row : moveCostTable) {
        if (*row.show) {
            brushes.ofCode[row.code] = CreateSolidBrush(row.colour);
        }
    }
    return brushes;
}

// Marks the cells of one row from x to endX. In the solid style neighbours of one colour are filled together.
void MarkMoveCostRow(int y, int x, int endX, const MoveCostBrushes& brushes)
{
    const auto brushOf = [&](int column) {
        return brushes.ofCode[currentMap.cellColumns[column][y] >> cellMoveCostShift];
    };
    while (x < endX) {
        const HBRUSH brush = brushOf(x);
        int next = x + 1;
        if (brush != nullptr) {
            Rect place = CellRect(x, y);
            while (editing.brushStyle == solidBrush && next < endX && brushOf(next) == brush) {
                next++;
            }
            place.right = static_cast<int16_t>(next * cellSize);
            MarkMoveCostCell(place, brush);
        }
        x = next;
    }
}

// Partly visible cells at the right and bottom are marked as well.
void MarkVisibleMoveCosts()
{
    const MoveCostBrushes brushes = CreateShownBrushes();
    const Rect& shown = view.viewRect;
    const int endX = std::min<int>(shown.right / cellSize + 1, currentMap.record.columnCount);
    const int endY = std::min<int>(shown.bottom / cellSize + 1, currentMap.record.rowCount);
    for (int y = shown.top / cellSize; y < endY; y++) {
        MarkMoveCostRow(y, shown.left / cellSize, endX, brushes);
    }
    for (const HBRUSH brush : brushes.ofCode) {
        if (brush != nullptr) {
            DeleteObject(brush);
        }
    }
}

void PaintOverlay(bool marksCells, void (*markVisibleCells)())
{
    if (shell.mapWindow == nullptr || shell.mapWindow->window == nullptr) {
        return;
    }
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(shell.mapWindow);
    ForeColor(editing.gridColour);
    BeginUpdate(shell.mapWindow);
    CopyMapImageToView();
    if (marksCells) {
        markVisibleCells();
    }
    DrawStatusStrip();
    EndUpdate(shell.mapWindow);
    SetPort(savedPort);
}

} // namespace

void PaintFeaturesOverlay()
{
    PaintOverlay(editing.featureTool != noFeatureTool, MarkVisibleFeatures);
}

void PaintMoveCostOverlay()
{
    PaintOverlay(editing.moveCostTool >= 0, MarkVisibleMoveCosts);
}

void DrawFeatureCellMark(int x, int y, bool wasSet)
{
    const TerrainCell* cell = CellAt(x, y);
    if (cell == nullptr) {
        return;
    }
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(shell.mapWindow);
    Rect place = CellRect(x, y);
    if (wasSet) {
        ForeColor(editing.gridColour);
        const HBRUSH gridBrush = CreateSolidBrush(editing.gridColour);
        MarkFeatureCell(*cell, place, gridBrush);
        DeleteObject(gridBrush);
    } else if (view.mapImage != nullptr && ClipToBounds(&place, &view.viewRect)) {
        FillRectColor(&place, shell.windowBackground); // stays where the cell reaches beyond the map
        if (ClipToBounds(&place, &currentMap.record.mapRect)) {
            CopyBits(view.mapImage->dc, shell.mapWindowDC, &place, &place, 0, nullptr);
        }
    }
    SetPort(savedPort);
}

void DrawMoveCostCellMark(int x, int y)
{
    const TerrainCell* cell = CellAt(x, y);
    const MoveCostRow* row = cell != nullptr ? FindMoveCost(*cell) : nullptr;
    if (row == nullptr) {
        return;
    }
    const HBRUSH brush = CreateSolidBrush(row->colour);
    MarkMoveCostCell(CellRect(x, y), brush);
    DeleteObject(brush);
}
