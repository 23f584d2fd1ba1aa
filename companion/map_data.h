// A map data file in memory, apart from the editor's one map, so that several can be looked at together.
#pragma once

#include "companion/report.h"
#include "mapdata/map_bytes.h"
#include "mapdata/terrain.h"

#include <string>
#include <vector>

struct MapData {
    MapRecord record;               // markerWord as the file has it
    std::vector<TerrainCell> cells; // column by column
    size_t fileBytes = 0;
    size_t wholeBytes = 0; // what header, text and cells of the record take
};

inline TerrainCell& CellOf(MapData* map, int x, int y)
{
    return map->cells[static_cast<size_t>(x) * static_cast<size_t>(map->record.rowCount) + static_cast<size_t>(y)];
}

inline TerrainCell CellOf(const MapData& map, int x, int y)
{
    return map.cells[static_cast<size_t>(x) * static_cast<size_t>(map.record.rowCount) + static_cast<size_t>(y)];
}

constexpr size_t mostMapBytes = maxMapHeaderBytes + sizeof(TerrainCell) * maxCellCount * maxCellCount;

void MakeCells(MapData* map); // all 0, as many as the record says
// As the editor reads it. Returns the sum of the header's faults (MapHeaderFault); with one there are no cells. A
// file that ends inside its first 56 bytes counts as damaged too.
int DecodeMap(const std::string& bytes, MapData* map);
std::string FaultText(int faults); // what is wrong with such a header
std::string EncodeMap(const MapData& map);

// Reads and decodes; a failure is told. needsWhole: a file that ends early or late is one too.
bool LoadMap(Report* report, const std::string& path, bool needsWhole, MapData* map);
std::string LengthFault(const MapData& map); // empty for a whole file

// What documents and exports call the header words, in the order of HeaderWordsOf.
extern const char* const headerWordNames[mapHeaderWordCount];

// A map's text has characters of one byte; elsewhere they are UTF-8. TextFromUtf8 fails where there is no such
// character or the text is too long.
std::string Utf8Text(const MapRecord& record);
bool TextFromUtf8(const std::string& text, MapRecord* record);

// ---- terrain by its names ----

// "hilow", "woods", "town", "road", "misclosblock"; "1", "2", "3"; "clear", "rough1" ... "water".
std::string TerrainKey(const TerrainRow& row);
// By key, or by the only key that begins so. Null when there is none; then fault names all there are.
const TerrainRow* TerrainOfKey(TerrainGroup group, const std::string& key, std::string* fault);
// Of a cell: a cost's key, "none" or a level's key; "cost 5" and "level 3" for values that no tool sets.
std::string CostName(TerrainCell cell);
std::string NoGoName(TerrainCell cell);
constexpr TerrainCell cellFreeBits = 0x0015;
