#include "editing/stroke.h"

#include "editing/area_fill.h"
#include "editing/overlay.h"
#include "mapdata/rescue.h"
#include "toolbox/shell_door.h"

namespace {

typedef int (*CellOperation)(int x, int y, int mode);
enum Direction { undecided = 0, up = 1, right = 3, down = 5, left = 7 };

// Sets or clears a field of the cell; toggle clears only a field that already holds the value.
int ChangeField(TerrainCell* cell, const TerrainRow& terrain, int mode)
{
    if (mode == toggleCell) {
        mode = HoldsTerrain(*cell, terrain) ? clearCell : setCell;
    }
    const TerrainCell rest = static_cast<TerrainCell>(*cell & ~terrain.field);
    *cell = mode == setCell ? static_cast<TerrainCell>(rest | terrain.value) : rest;
    return mode;
}

struct Stroke {
    CellOperation changeCell;
    Point start;
    Point last;
    int lastColumn;
    int lastRow;
    int mode;
    bool locksDirection;
    int direction;
};

// A point outside the map belongs to no cell and is passed over; the mode is decided by the first cell inside.
void ChangeCellAt(Stroke* stroke, Point point)
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
    stroke->mode = stroke->changeCell(column, row, stroke->mode);
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
    ChangeCellAt(stroke, point);
}

void RunStroke(WindowPtr palette, CellOperation changeCell)
{
    if (HandleContentClick()) {
        return;
    }
    if (currentEvent.modifiers == optionKey) {
        SelectArea(palette, currentEvent.where);
        return;
    }
    const SavedPort saved = UsePort(shell.mapWindow);
    Stroke stroke = {};
    stroke.changeCell = changeCell;
    stroke.locksDirection = currentEvent.modifiers == shiftKey;
    stroke.lastColumn = -1;
    stroke.lastRow = -1;
    stroke.start = currentEvent.where;
    GlobalToLocal(&stroke.start);
    stroke.last = stroke.start;
    BeginPointerTrail(&currentEvent);
    ChangeCellAt(&stroke, stroke.start);
    Point point;
    while (NextTrailPoint(&point)) {
        FollowPoint(&stroke, point);
    }
    RestorePort(saved);
    NoteMapChange();
}

} // namespace

int ChangeFeatureCell(int x, int y, int mode)
{
    TerrainCell* cell = CellAt(x, y);
    const TerrainRow* feature = FeatureOfTool(editing.featureTool);
    if (cell == nullptr || feature == nullptr) {
        return mode;
    }
    mode = ChangeField(cell, *feature, mode);
    DrawFeatureCellMark(x, y, mode == setCell);
    return mode;
}

int ChangeMoveCostCell(int x, int y, int mode)
{
    TerrainCell* cell = CellAt(x, y);
    if (cell == nullptr) {
        return mode;
    }
    mode = ChangeField(cell, SelectedMoveCost(), mode);
    DrawMoveCostCellMark(x, y);
    return mode;
}

const TerrainRow& SelectedMoveCost()
{
    const TerrainRow* selected = MoveCostOfTool(editing.moveCostTool);
    return selected != nullptr ? *selected : TerrainRows(moveCostTerrain).front();
}

void FeaturesStroke(WindowPtr palette)
{
    RunStroke(palette, ChangeFeatureCell);
}

void MoveCostStroke(WindowPtr palette)
{
    RunStroke(palette, ChangeMoveCostCell);
}
