// kestrel-map export and import: maps for other programs, and back.
#include "companion/commands.h"
#include "companion/exchange.h"
#include "companion/save.h"

#include <filesystem>
#include <functional>

namespace {

constexpr int metresPerPixel = 10;
constexpr int metresPerKilometre = 1000;
constexpr size_t mostInputBytes = 64 << 20;

// An ESRI ASCII grid: the UTM kilometres place the map, whose grid begins a cell's side inside its bottom-left
// corner.
std::string AscOf(const MapData& map, const std::function<int(TerrainCell)>& valueOf)
{
    const MapRecord& record = map.record;
    const int height = record.mapRect.bottom - record.mapRect.top;
    const int left = record.utmEasting * metresPerKilometre - cellSize * metresPerPixel;
    const int belowGrid = record.rowCount * cellSize - (height - cellSize);
    const int bottom = record.utmNorthing * metresPerKilometre - belowGrid * metresPerPixel;
    std::string text = "ncols " + std::to_string(record.columnCount) + "\nnrows " + std::to_string(record.rowCount) +
                       "\nxllcorner " + std::to_string(left) + "\nyllcorner " + std::to_string(bottom) +
                       "\ncellsize " + std::to_string(cellSize * metresPerPixel) + "\nNODATA_value -9999\n";
    for (int y = 0; y < record.rowCount; y++) {
        for (int x = 0; x < record.columnCount; x++) {
            text += std::to_string(valueOf(CellOf(map, x, y)));
            text += x + 1 < record.columnCount ? ' ' : '\n';
        }
    }
    return text;
}

// "OUT-cost.asc" and so on; in a folder, by the name of the map.
std::vector<OutputFile> AscFiles(const ExportOptions& options, const MapData& map)
{
    std::error_code error;
    std::filesystem::path stem = options.output;
    if (std::filesystem::is_directory(stem, error)) {
        stem /= std::filesystem::path(options.file).stem();
    } else if (stem.extension() == ".asc") {
        stem.replace_extension();
    }
    std::vector<OutputFile> files;
    const auto add = [&](const std::string& name, const std::function<int(TerrainCell)>& valueOf) {
        files.push_back({stem.string() + "-" + name + ".asc", AscOf(map, valueOf)});
    };
    add("cost", MoveCostCodeOf);
    add("nogo", NoGoLevelOf);
    for (const TerrainRow& row : TerrainRows(featureTerrain)) {
        add(TerrainKey(row), [&](TerrainCell cell) { return HoldsTerrain(cell, row) ? 1 : 0; });
    }
    return files;
}

} // namespace

int RunExport(const ExportOptions& options, Report* report)
{
    MapData map;
    const bool isGrid = options.format == "asc";
    if (isGrid && options.output == standardStream) {
        return Fail(report, "", "--to asc makes several files; -o names them");
    }
    if (!LoadMap(report, options.file, false, &map)) {
        return statusFailed;
    }
    const std::vector<OutputFile> files =
        isGrid ? AscFiles(options, map)
               : std::vector<OutputFile>{{options.output, options.format == "csv" ? CsvOf(map) : JsonTextOf(map)}};
    if (!WriteOutput(report, files)) {
        return statusFailed;
    }
    if (const std::string fault = LengthFault(map); !fault.empty()) {
        Fail(report, options.file, fault + "; it is exported as the editor reads it");
        return statusFound;
    }
    return statusFine;
}

int RunImport(const ImportOptions& options, Report* report)
{
    FileBefore before;
    MapData map;
    std::string text;
    std::string fault;
    if (!ReadBytes(report, options.input, mostInputBytes, &text, &fault)) {
        return Fail(report, options.input, "cannot be read: " + fault);
    }
    if (text.size() > mostInputBytes) {
        return Fail(report, options.input, "it is too long for a map");
    }
    const bool isRead = options.format == "csv" ? MapFromCsv(text, &map, &fault) : MapFromJson(text, &map, &fault);
    if (!isRead) {
        return Fail(report, options.input, fault);
    }
    return ReadBefore(report, options.file, &before) && SaveMapData(report, before, map) ? statusFine : statusFailed;
}
