#include "mapdata/map_record.h"

#include "dialogs/modal.h"
#include "toolbox/drawing.h"

#include <algorithm>

void TakeMapFiles(const MapFiles& files)
{
    currentMap.dataFileSpec = files.data;
    currentMap.artFileSpec = files.art;
    currentMap.ownFileSpec = files.data;
}

int16_t AllocateCellColumns()
{
    ReleaseCellColumns();
    const int columnCount = currentMap.record.columnCount;
    const int rowCount = currentMap.record.rowCount;
    if (columnCount < 1 || columnCount > maxCellCount || rowCount < 1 || rowCount > maxCellCount) {
        return 1;
    }
    for (int x = 0; x < columnCount; x++) {
        const HGLOBAL block = GlobalAlloc(GHND, static_cast<SIZE_T>(rowCount) * sizeof(TerrainCell));
        if (block == nullptr) {
            ReleaseCellColumns();
            MemoryAlert();
            return 1;
        }
        currentMap.cellColumns[x] = static_cast<TerrainCell*>(GlobalLock(block));
        currentMap.allocatedColumns++;
    }
    return 0;
}

void ReleaseCellColumns()
{
    for (int x = 0; x < currentMap.allocatedColumns; x++) {
        const HGLOBAL block = GlobalHandle(currentMap.cellColumns[x]);
        GlobalUnlock(block);
        GlobalFree(block);
        currentMap.cellColumns[x] = nullptr;
    }
    currentMap.allocatedColumns = 0;
}

void ClearAllCells()
{
    for (int x = 0; x < currentMap.allocatedColumns; x++) {
        std::fill_n(currentMap.cellColumns[x], currentMap.record.rowCount, TerrainCell{0});
    }
}

void SetEditableRect()
{
    currentMap.editableRect = currentMap.record.mapRect;
    OutsetRect(&currentMap.editableRect, -cellSize, -cellSize);
}
