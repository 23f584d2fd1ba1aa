// The one map in memory: its cell words, its record, its files.
#pragma once

#include "mapdata/file_access.h"
#include "toolbox/types.h"

typedef uint16_t TerrainCell;

// Bits 0, 2 and 4 of a cell word have no meaning here; they are kept through load and save.
enum TerrainCellMask {
    cellMiscLOSBlock = 0x0002,
    cellHiLow = 0x0008,
    cellRoad = 0x0020,
    cellWoods = 0x0040,
    cellTown = 0x0080,
    cellNoGoMask = 0x0700,     // level 0, 1, 2 or 4
    cellMoveCostMask = 0xF800, // code 0 Clear, 1 to 4 Rough, 6 Water
    cellFeaturesMask = 0x07FF,
};
constexpr int cellNoGoShift = 8;
constexpr int cellMoveCostShift = 11;
constexpr int cellSize = 10; // map pixels a side

constexpr int minMapWidth = 450;
constexpr int minMapHeight = 220;
constexpr int maxMapSide = 3100;
constexpr int maxCellCount = 310; // columns or rows
constexpr int minMapID = 100;
constexpr int maxMapID = 999;

struct MapRecord {
    int16_t mapID = 0;
    int16_t auxWord1 = 0; // carried, as the areas and the text are
    int16_t auxWord2 = 0;
    int16_t columnCount = 0;
    int16_t rowCount = 0;
    Rect mapRect = {}; // map pixels, from (0, 0)
    int16_t areaFlag1 = 0;
    Rect areaRect1 = {};
    int16_t areaFlag2 = 0;
    Rect areaRect2 = {};
    int16_t areaFlag3 = 0;
    Rect areaRect3 = {};
    int16_t markerWord = 0; // 1 after every transfer
    int16_t utmEasting = 0; // kilometre numbers of the bottom-left corner, 0 to 99
    int16_t utmNorthing = 0;
    int16_t versionNumber = 0; // 100 to 999
    char mapText[256] = {};
};

// The two files of a map. An attempt to open or create one works on its own, since commands come through under its
// dialogs.
struct MapFiles {
    FileSpec data = {};
    FileSpec art = {};
};

struct CurrentMap {
    MapRecord record;
    // Column x holds record.rowCount words; null where there is none. Callers keep x and y inside the counts.
    TerrainCell* cellColumns[maxCellCount] = {};
    int16_t allocatedColumns = 0; // how many of them are there
    FileSpec dataFileSpec = {};
    FileSpec artFileSpec = {};
    FileSpec ownFileSpec = {}; // what dataFileSpec must be for a save
    HFILE openDataFile = noFile;
    int mapModified = 0;
    int16_t loadedMapID = 0; // mapID as read or created
    Rect editableRect = {};  // mapRect inset by 10
};

extern CurrentMap currentMap;

// The map in memory has these files from now on; only SaveMap changes that, with the identity number.
void TakeMapFiles(const MapFiles& files);

// record.columnCount zero-filled columns of record.rowCount words, in place of the ones that were there. 1 after the
// memory alert when a block could not be had.
int16_t AllocateCellColumns();
void ReleaseCellColumns();
void ClearAllCells();

inline int MapWidth()
{
    return currentMap.record.mapRect.right - currentMap.record.mapRect.left;
}

inline int MapHeight()
{
    return currentMap.record.mapRect.bottom - currentMap.record.mapRect.top;
}

// Cells that a length in map pixels needs.
constexpr int CellCountOf(int pixels)
{
    return pixels / cellSize + (pixels % cellSize != 0 ? 1 : 0);
}

// The cell word at (x, y), or null outside the grid and while there is none.
inline TerrainCell* CellAt(int x, int y)
{
    if (x < 0 || y < 0 || x >= currentMap.allocatedColumns || y >= currentMap.record.rowCount) {
        return nullptr;
    }
    return &currentMap.cellColumns[x][y];
}
void SetEditableRect(); // from mapRect
