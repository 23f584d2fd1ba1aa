// kestrel-map info: what is in a map data file.
#include "companion/commands.h"
#include "companion/map_data.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

int CellsWith(const MapData& map, const TerrainRow& row)
{
    return static_cast<int>(
        std::count_if(map.cells.begin(), map.cells.end(), [&](TerrainCell cell) { return HoldsTerrain(cell, row); }));
}

struct TerrainShare {
    TerrainGroup group;
    std::string name;
    int cells;
};

// Every row of the terrain table, and the costs and levels of the map that are none of them.
std::vector<TerrainShare> SharesOf(const MapData& map)
{
    std::vector<TerrainShare> shares;
    for (const TerrainRow& row : TerrainRows()) {
        shares.push_back({row.group, TerrainKey(row), CellsWith(map, row)});
    }
    std::map<int, int> costs;
    std::map<int, int> levels;
    for (const TerrainCell cell : map.cells) {
        costs[cell & cellMoveCostMask]++;
        levels[cell & cellNoGoMask]++;
    }
    for (const auto& [field, count] : costs) {
        if (MoveCostOf(static_cast<TerrainCell>(field)) == nullptr) {
            shares.push_back({moveCostTerrain, CostName(static_cast<TerrainCell>(field)), count});
        }
    }
    for (const auto& [field, count] : levels) {
        if (field != 0 && NoGoOf(static_cast<TerrainCell>(field)) == nullptr) {
            shares.push_back({noGoTerrain, NoGoName(static_cast<TerrainCell>(field)), count});
        }
    }
    return shares;
}

constexpr struct {
    TerrainGroup group;
    const char* name;
} groupNames[] = {{featureTerrain, "features"}, {noGoTerrain, "noGo"}, {moveCostTerrain, "moveCosts"}};

Json JsonOf(const std::string& file, const MapData& map)
{
    const MapRecord& record = map.record;
    Json terrain;
    const std::vector<TerrainShare> shares = SharesOf(map);
    for (const auto& group : groupNames) {
        for (const TerrainShare& share : shares) {
            if (share.group == group.group) {
                terrain[group.name][share.name] = share.cells;
            }
        }
    }
    return {{"file", file},
            {"map", record.mapID},
            {"version", record.versionNumber},
            {"width", record.mapRect.right - record.mapRect.left},
            {"height", record.mapRect.bottom - record.mapRect.top},
            {"columns", record.columnCount},
            {"rows", record.rowCount},
            {"utmEasting", record.utmEasting},
            {"utmNorthing", record.utmNorthing},
            {"text", Utf8Text(record)},
            {"bytes", map.fileBytes},
            {"whole", map.fileBytes == map.wholeBytes},
            {"cells", map.cells.size()},
            {"terrain", terrain}};
}

std::string TextOf(const Report& report, const std::string& file, const MapData& map)
{
    const MapRecord& record = map.record;
    const int cellCount = static_cast<int>(map.cells.size());
    const auto number = [](int value) { return std::to_string(value); };
    std::string text = Coloured(report, boldColour, file) + "\n";
    const auto line = [&](std::string name, const std::string& value) {
        name.resize(12, ' ');
        text += "  " + name + value + "\n";
    };
    line("map", number(record.mapID) + ", version " + number(record.versionNumber));
    line("size", number(record.mapRect.right - record.mapRect.left) + " x " +
                     number(record.mapRect.bottom - record.mapRect.top) + " pixels, " + number(record.columnCount) +
                     " x " + number(record.rowCount) + " cells");
    line("UTM", "easting " + number(record.utmEasting) + ", northing " + number(record.utmNorthing));
    if (record.mapText[0] != 0) {
        line("text", Printable(Utf8Text(record)));
    }
    line("file", number(static_cast<int>(map.fileBytes)) + " bytes");
    if (const std::string fault = LengthFault(map); !fault.empty()) {
        line("", Coloured(report, redColour, fault));
    }
    constexpr const char* labels[] = {"", "NO-GO ", "cost "};
    for (const TerrainShare& share : SharesOf(map)) {
        const bool isNamed = share.name.find(' ') == std::string::npos;
        std::string cells = number(share.cells);
        cells.insert(0, cells.size() < 6 ? 6 - cells.size() : 0, ' ');
        std::string percent = Percent(share.cells, cellCount);
        percent.insert(0, percent.size() < 9 ? 9 - percent.size() : 0, ' ');
        std::string name = (isNamed ? labels[share.group] : "") + share.name;
        name.resize(std::max<size_t>(name.size(), 14), ' ');
        for (const std::string& part : {std::string("  "), name, cells, percent, std::string("\n")}) {
            text += part;
        }
    }
    return text;
}

} // namespace

int RunInfo(const InfoOptions& options, Report* report)
{
    int status = statusFine;
    Json maps = Json::array();
    for (const std::string& file : options.files) {
        MapData map;
        if (!LoadMap(report, file, false, &map)) {
            status = statusFailed;
        } else if (options.json) {
            maps.push_back(JsonOf(file, map));
        } else {
            report->out += (report->out.empty() ? "" : "\n") + TextOf(*report, file, map);
        }
    }
    if (options.json) {
        report->out = maps.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
    }
    return status;
}
