#include "editing/whole_map.h"

#include "dialogs/modal.h"
#include "mapdata/rescue.h"
#include "mapdata/terrain.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

namespace {

template <class Change>
void ChangeEveryCell(Change change)
{
    for (int y = 0; y < currentMap.record.rowCount; y++) {
        for (int x = 0; x < currentMap.record.columnCount; x++) {
            TerrainCell& cell = currentMap.cellColumns[x][y];
            cell = static_cast<TerrainCell>(change(cell));
        }
    }
    NoteMapChange();
}

} // namespace

void ClearEveryFeature()
{
    ChangeEveryCell([](TerrainCell cell) { return cell & cellMoveCostMask; });
}

void ClearEveryMoveCost()
{
    ChangeEveryCell([](TerrainCell cell) { return cell & cellFeaturesMask; });
}

void RaiseWoodsAndTownsToR2()
{
    const int rough2 = MoveCostOfTool(rough2Tool)->value; // the highest bits are the cost, so words compare as costs
    ChangeEveryCell([=](int cell) {
        const bool slows = (cell & (cellWoods | cellTown)) != 0 && cell < rough2;
        return slows ? (cell & cellFeaturesMask) | rough2 : cell;
    });
}

void RemoveAllFeatures()
{
    if (YesNoAlert(280, 140, removeAllQuestionText)) {
        ClearEveryFeature();
        InvalidateMapRect(nullptr);
    }
}

void ZeroAllMoveCosts()
{
    if (YesNoAlert(300, 120, zeroAllQuestionText)) {
        ClearEveryMoveCost();
    }
}

void SetWoodsAndTownsToR2()
{
    if (YesNoAlert(200, 100, setToR2QuestionText)) {
        RaiseWoodsAndTownsToR2();
        SystemBeep();
        SystemBeep();
    }
}
