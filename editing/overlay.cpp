#include "editing/overlay.h"

#include "mapdata/map_record.h"
#include "toolbox/offscreen.h"
#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

#include <algorithm>

namespace {

constexpr int dotInset = 3; // a dot is the cell's 4 by 4 centre

Rect CellRect(int x, int y)
{
    return MakeRect(x * cellSize, y * cellSize, (x + 1) * cellSize, (y + 1) * cellSize);
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
        FillInView(MakeRect(left, top, right, bottom), brush);
    };
    edge(cell.left, cell.top, cell.right, cell.top + 1);
    edge(cell.left, cell.bottom - 1, cell.right, cell.bottom);
    edge(cell.left, cell.top, cell.left + 1, cell.bottom);
    edge(cell.right - 1, cell.top, cell.right, cell.bottom);
}

// Draws the mark that the feature settings give a marked cell.
void MarkFeatureCell(TerrainCell cell, const Rect& place, HBRUSH gridBrush)
{
    if (!editing.solidGrid) {
        OutlineInView(place, gridBrush);
    } else if (editing.noGoLevel == 0) {
        FillInView(place, gridBrush);
    } else {
        DrawNoGoTile(currentPort, NoGoOf(cell), place, view.viewRect);
    }
}

// feature: the selected tool's, null for none.
bool IsFeatureMarked(TerrainCell cell, const TerrainRow* feature)
{
    if (feature != nullptr && feature->group == featureTerrain) {
        return HoldsTerrain(cell, *feature);
    }
    const int level = NoGoLevelOf(cell);
    return editing.noGoLevel != 0 && level != 0 && (editing.showAllNoGo || level == editing.noGoLevel);
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
    for (const TerrainRow& moveCost : TerrainRows(moveCostTerrain)) {
        if (*ShowFlagOf(moveCost) != 0) {
            brushes.ofCode[MoveCostCodeOf(moveCost.value)] = CreateSolidBrush(moveCost.shown.colour);
        }
    }
    return brushes;
}

// Marks the cells of one row from x to endX. In the solid style neighbours of one colour are filled together.
void MarkMoveCostRow(int y, int x, int endX, const MoveCostBrushes& brushes)
{
    const auto brushOf = [&](int column) {
        return brushes.ofCode[MoveCostCodeOf(currentMap.cellColumns[column][y])];
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

void PaintOverlay(bool marksCells, void (*markVisibleCells)())
{
    if (shell.mapWindow == nullptr || shell.mapWindow->window == nullptr) {
        return;
    }
    const SavedPort saved = UsePort(shell.mapWindow);
    ForeColor(editing.gridColour);
    BeginUpdate(shell.mapWindow);
    CopyMapImageToView();
    if (marksCells) {
        markVisibleCells();
    }
    DrawStatusStrip();
    EndUpdate(shell.mapWindow);
    RestorePort(saved);
}

} // namespace

int16_t* ShowFlagOf(const TerrainRow& moveCost)
{
    // In the order of the table.
    static int16_t* const flags[] = {&editing.showClear,  &editing.showRough1, &editing.showRough2,
                                     &editing.showRough3, &editing.showRough4, &editing.showWater};
    return flags[&moveCost - TerrainRows(moveCostTerrain).data()];
}

void DrawNoGoTile(WindowPtr port, const TerrainRow* noGo, const Rect& cell, const Rect& bounds)
{
    Rect shown = cell;
    if (noGo == nullptr || !ClipToBounds(&shown, &bounds)) {
        return;
    }
    Rect source = shown;
    OffsetRect(&source, noGo->tileLeft - cell.left, noGoTileTop - cell.top);
    CopyFromInterfaceBitmap(port, &source, &shown);
}

void MarkVisibleFeatures()
{
    const HBRUSH gridBrush = CreateSolidBrush(editing.gridColour);
    const TerrainRow* feature = FeatureOfTool(editing.featureTool);
    const Rect& shown = view.viewRect;
    for (int y = shown.top / cellSize; y < shown.bottom / cellSize; y++) {
        for (int x = shown.left / cellSize; x < shown.right / cellSize; x++) {
            const TerrainCell* cell = CellAt(x, y);
            if (cell != nullptr && IsFeatureMarked(*cell, feature)) {
                MarkFeatureCell(*cell, CellRect(x, y), gridBrush);
            }
        }
    }
    DeleteObject(gridBrush);
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
    const SavedPort saved = UsePort(shell.mapWindow);
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
    RestorePort(saved);
}

void DrawMoveCostCellMark(int x, int y)
{
    const TerrainCell* cell = CellAt(x, y);
    const TerrainRow* moveCost = cell != nullptr ? MoveCostOf(*cell) : nullptr;
    if (moveCost == nullptr) {
        return;
    }
    const HBRUSH brush = CreateSolidBrush(moveCost->shown.colour);
    MarkMoveCostCell(CellRect(x, y), brush);
    DeleteObject(brush);
}
