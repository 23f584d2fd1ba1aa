#include "editing/whole_map.h"

#include "dialogs/modal.h"
#include "mapdata/map_record.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

namespace {

constexpr int questionList = 15000;
constexpr int rough2Code = 2;

template <class Change>
void ChangeEveryCell(Change change)
{
    for (int y = 0; y < currentMap.record.rowCount; y++) {
        for (int x = 0; x < currentMap.record.columnCount; x++) {
            TerrainCell& cell = currentMap.cellColumns[x][y];
            cell = static_cast<TerrainCell>(change(cell));
        }
    }
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
    ChangeEveryCell([](TerrainCell cell) {
        const bool slows = (cell & (cellWoods | cellTown)) != 0 && cell >> cellMoveCostShift < rough2Code;
        return slows ? (cell & cellFeaturesMask) | rough2Code << cellMoveCostShift : cell;
    });
}

void RemoveAllFeatures()
{
    if (YesNoAlert(280, 140, questionList, 161, nullptr)) {
        ClearEveryFeature();
        InvalidateMapRect(nullptr);
    }
}

void ZeroAllMoveCosts()
{
    if (YesNoAlert(300, 120, questionList, 162, nullptr)) {
        ClearEveryMoveCost();
    }
}

void SetWoodsAndTownsToR2()
{
    if (YesNoAlert(200, 100, questionList, 160, nullptr)) {
        RaiseWoodsAndTownsToR2();
        SystemBeep();
        SystemBeep();
    }
}
