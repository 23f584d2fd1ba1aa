#include "companion/map_data.h"

#include "toolbox/resources.h"

#include <algorithm>
#include <cctype>
#include <cstring>

const char* const headerWordNames[mapHeaderWordCount] = {
    "mapID",          "auxWord1",      "auxWord2",        "columnCount",      "rowCount",
    "mapRect.left",   "mapRect.top",   "mapRect.right",   "mapRect.bottom",   "areaFlag1",
    "areaRect1.left", "areaRect1.top", "areaRect1.right", "areaRect1.bottom", "areaFlag2",
    "areaRect2.left", "areaRect2.top", "areaRect2.right", "areaRect2.bottom", "areaFlag3",
    "areaRect3.left", "areaRect3.top", "areaRect3.right", "areaRect3.bottom", "markerWord",
    "utmEasting",     "utmNorthing",   "versionNumber",
};

namespace {

std::vector<TerrainCell*> ColumnsOf(MapData* map)
{
    std::vector<TerrainCell*> columns(static_cast<size_t>(map->record.columnCount));
    for (int x = 0; x < map->record.columnCount; x++) {
        columns[static_cast<size_t>(x)] = &CellOf(map, x, 0);
    }
    return columns;
}

const uint8_t* BytesOf(const std::string& text)
{
    return reinterpret_cast<const uint8_t*>(text.data());
}

} // namespace

void MakeCells(MapData* map)
{
    map->cells.assign(static_cast<size_t>(map->record.columnCount) * static_cast<size_t>(map->record.rowCount), 0);
}

int DecodeMap(const std::string& bytes, MapData* map)
{
    *map = {};
    map->fileBytes = bytes.size();
    size_t taken = 0;
    const int faults =
        DecodeMapHeader(BytesOf(bytes), std::min(bytes.size(), maxMapHeaderBytes), &map->record, &taken);
    if (faults != 0 || bytes.size() < mapHeaderWordBytes) {
        return faults != 0 ? faults : int{mapHeaderDamaged};
    }
    constexpr size_t markerPlace = 48;
    map->record.markerWord = static_cast<int16_t>(static_cast<uint8_t>(bytes[markerPlace]) |
                                                  static_cast<uint8_t>(bytes[markerPlace + 1]) << 8);
    MakeCells(map);
    DecodeCellRows(BytesOf(bytes) + taken, bytes.size() - taken, ColumnsOf(map).data(), map->record.columnCount, 0,
                   map->record.rowCount);
    map->wholeBytes = mapHeaderWordBytes + strlen(map->record.mapText) + 1 + sizeof(TerrainCell) * map->cells.size();
    return 0;
}

std::string FaultText(int faults)
{
    std::string text;
    const auto add = [&](int fault, const char* what) {
        if ((faults & fault) != 0) {
            text += (text.empty() ? "" : "; ") + std::string(what);
        }
    };
    add(mapTooWide, "the map is wider than 3100 pixels");
    add(mapTooHigh, "the map is higher than 3100 pixels");
    add(mapHeaderDamaged, "no map data file: sizes, counts or text cannot be a map's");
    return text;
}

std::string EncodeMap(const MapData& map)
{
    MapData copy = map;
    std::vector<uint8_t> bytes(mostMapBytes);
    const size_t header = EncodeMapHeader(&map.record, bytes.data());
    EncodeCellRows(ColumnsOf(&copy).data(), map.record.columnCount, 0, map.record.rowCount, bytes.data() + header);
    return {reinterpret_cast<const char*>(bytes.data()), header + sizeof(TerrainCell) * map.cells.size()};
}

std::string LengthFault(const MapData& map)
{
    if (map.fileBytes < map.wholeBytes) {
        return "the file ends early: " +
               Count(static_cast<long>(map.wholeBytes - map.fileBytes), "byte is", "bytes are") + " missing";
    }
    if (map.fileBytes > map.wholeBytes) {
        return "there are bytes behind the last cell";
    }
    return {};
}

bool LoadMap(Report* report, const std::string& path, bool needsWhole, MapData* map)
{
    std::string bytes;
    std::string fault;
    if (!ReadBytes(report, path, mostMapBytes, &bytes, &fault)) {
        Fail(report, path, "cannot be read: " + fault);
        return false;
    }
    if (const int faults = DecodeMap(bytes, map); faults != 0) {
        fault = FaultText(faults);
    } else if (needsWhole) {
        fault = LengthFault(*map);
    }
    if (!fault.empty()) {
        Fail(report, path, fault);
    }
    return fault.empty();
}

std::string Utf8Text(const MapRecord& record)
{
    std::string text;
    for (const char* next = record.mapText; *next != 0; next++) {
        const uint8_t character = static_cast<uint8_t>(*next);
        if (character < 0x80) {
            text += *next;
        } else {
            text += static_cast<char>(0xC0 | character >> 6);
            text += static_cast<char>(0x80 | (character & 0x3F));
        }
    }
    return text;
}

bool TextFromUtf8(const std::string& text, MapRecord* record)
{
    std::string characters;
    for (size_t i = 0; i < text.size(); i++) {
        const uint8_t first = static_cast<uint8_t>(text[i]);
        if (first < 0x80 && first != 0) {
            characters += text[i];
            continue;
        }
        const uint8_t second = i + 1 < text.size() ? static_cast<uint8_t>(text[i + 1]) : 0;
        if ((first != 0xC2 && first != 0xC3) || (second & 0xC0) != 0x80) {
            return false;
        }
        characters += static_cast<char>((first & 3) << 6 | (second & 0x3F));
        i++;
    }
    if (characters.size() >= sizeof record->mapText) {
        return false;
    }
    memcpy(record->mapText, characters.c_str(), characters.size() + 1);
    return true;
}

// ---- terrain by its names ----

// A level goes by the number that its tool has; others by their tool's name.
std::string TerrainKey(const TerrainRow& row)
{
    if (row.group == noGoTerrain) {
        return std::to_string(&row - TerrainRows(noGoTerrain).data() + 1);
    }
    char name[textBufferSize];
    GetIndStringRaw(name, ListOf(row.toolText), IndexOf(row.toolText)); // the English text, whatever the language
    std::string key;
    for (const char* next = name; *next != 0; next++) {
        if (isalnum(static_cast<unsigned char>(*next)) != 0) {
            key += static_cast<char>(tolower(static_cast<unsigned char>(*next)));
        }
    }
    return key;
}

const TerrainRow* TerrainOfKey(TerrainGroup group, const std::string& key, std::string* fault)
{
    const TerrainRow* found = nullptr;
    int count = 0;
    std::string all;
    for (const TerrainRow& row : TerrainRows(group)) {
        const std::string name = TerrainKey(row);
        if (name == key) {
            return &row;
        }
        if (!key.empty() && name.compare(0, key.size(), key) == 0) {
            found = &row;
            count++;
        }
        all += (all.empty() ? "" : ", ") + name;
    }
    *fault = "\"" + key + "\" is none of " + all;
    return count == 1 ? found : nullptr;
}

std::string CostName(TerrainCell cell)
{
    const TerrainRow* row = MoveCostOf(cell);
    return row != nullptr ? TerrainKey(*row) : "cost " + std::to_string(MoveCostCodeOf(cell));
}

std::string NoGoName(TerrainCell cell)
{
    const TerrainRow* row = NoGoOf(cell);
    return NoGoLevelOf(cell) == 0 ? "none"
           : row != nullptr       ? TerrainKey(*row)
                                  : "level " + std::to_string(NoGoLevelOf(cell));
}
