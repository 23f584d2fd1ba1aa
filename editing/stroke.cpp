#include "editing/stroke.h"

#include "editing/area_fill.h"
#include "editing/overlay.h"
#include "mapdata/map_record.h"
#include "toolbox/shell_door.h"

#include <iterator>

namespace {

typedef int (*CellOperation)(int x, int y, int mode);
enum Direction { undecided = 0, up = 1, right = 3, down = 5, left = 7 };

// What a feature tool writes into the bits of its field, and clears from it.
struct FeatureRow {
    int32_t tool;
    TerrainCell field;
    TerrainCell value;
};
const FeatureRow featureTable[] = {
    {hiLowTool, cellHiLow, cellHiLow},
    {woodsTool, cellWoods, cellWoods},
    {townTool, cellTown, cellTown},
    {roadTool, cellRoad, cellRoad},
    {miscLOSTool, cellMiscLOSBlock, cellMiscLOSBlock},
    {noGo1Tool, cellNoGoMask, 1 << cellNoGoShift},
    {noGo2Tool, cellNoGoMask, 2 << cellNoGoShift},
    {noGo3Tool, cellNoGoMask, 4 << cellNoGoShift},
};

const FeatureRow* FindFeature(int32_t tool)
{
    for (const FeatureRow& row : featureTable) {
        if (row.tool == tool) {
            return &row;
        }
    }
    return nullptr;
}

// Sets or clears a field of the cell; toggle clears only a field that already holds the value.
int ChangeField(TerrainCell* cell, TerrainCell field, TerrainCell value, int mode)
{
    if (mode == toggleCell) {
        mode = (*cell & field) == value ? clearCell : setCell;
    }
    const TerrainCell rest = static_cast<TerrainCell>(*cell & ~field);
    *cell = mode == setCell ? static_cast<TerrainCell>(rest | value) : rest;
    return mode;
}

struct Stroke {
    CellOperation paintCell;
    Point start;
    Point last;
    int lastColumn;
    int lastRow;
    int mode;
    bool locksDirection;
    int direction;
};

// A point outside the map belongs to no cell and is passed over; the mode is decided by the first cell inside.
void PaintPoint(Stroke* stroke, Point point)
{
    if (!PtInRect(point, &currentMap.record.mapRect)) {
        return;
    }
    const int column = point.h / cellSize;
    const int row = point.v / cellSize;
    if (column == stroke->lastColumn && row == stroke->lastRow) {
        return;
    }
    stroke->last = point;
    stroke->lastColumn = column;
    stroke->lastRow = row;
    stroke->mode = stroke->paintCell(column, row, stroke->mode);
}

int DirectionTo(Point from, Point to)
{
    return to.h > from.h ? right : to.h < from.h ? left : to.v > from.v ? down : to.v < from.v ? up : undecided;
}

void FollowPoint(Stroke* stroke, Point point)
{
    if (EqualPt(point, stroke->last)) {
        return;
    }
    if (stroke->locksDirection && stroke->direction == undecided) {
        stroke->direction = DirectionTo(stroke->start, point);
    }
    if (stroke->direction == right || stroke->direction == left) {
        point.v = stroke->start.v;
    } else if (stroke->direction == up || stroke->direction == down) {
        point.h = stroke->start.h;
    }
    PaintPoint(stroke, point);
}

void RunStroke(WindowPtr palette, CellOperation paintCell)
{
    if (HandleContentClick()) {
        return;
    }
    if (currentEvent.modifiers == optionKey) {
        SelectArea(palette, currentEvent.where);
        return;
    }
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(shell.mapWindow);
    Stroke stroke = {};
    stroke.paintCell = paintCell;
    stroke.locksDirection = currentEvent.modifiers == shiftKey;
    stroke.lastColumn = -1;
    stroke.lastRow = -1;
    stroke.start = currentEvent.where;
    GlobalToLocal(&stroke.start);
    stroke.last = stroke.start;
    BeginPointerTrail(&currentEvent);
    PaintPoint(&stroke, stroke.start);
    Point point;
    while (NextTrailPoint(&point)) {
        FollowPoint(&stroke, point);
    }
    SetPort(savedPort);
}

} // namespace

int PaintFeatureCell(int x, int y, int mode)
{
    TerrainCell* cell = CellAt(x, y);
    const FeatureRow* feature = FindFeature(editing.featureTool);
    if (cell == nullptr || feature == nullptr) {
        return mode;
    }
    mode = ChangeField(cell, feature->field, feature->value, mode);
    DrawFeatureCellMark(x, y, mode == setCell);
    return mode;
}

int MoveCostCodeOfTool(int32_t tool)
{
    static const int codes[] = {0, 1, 2, 3, 4, 6};
    const bool isTool = tool >= clearTool && tool <= waterTool;
    return isTool ? codes[tool - clearTool] : 0;
}

int PaintMoveCostCell(int x, int y, int mode)
{
    TerrainCell* cell = CellAt(x, y);
    if (cell == nullptr) {
        return mode;
    }
    const auto value = static_cast<TerrainCell>(MoveCostCodeOfTool(editing.moveCostTool) << cellMoveCostShift);
    mode = ChangeField(cell, cellMoveCostMask, value, mode);
    DrawMoveCostCellMark(x, y);
    return mode;
}

void FeaturesStroke(WindowPtr palette)
{
    RunStroke(palette, PaintFeatureCell);
}

void MoveCostStroke(WindowPtr palette)
{
    RunStroke(palette, PaintMoveCostCell);
}
