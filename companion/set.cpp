// kestrel-map set: sets or clears one value where a mask covers the cells.
#include "companion/commands.h"
#include "companion/picture.h"
#include "companion/save.h"

#include <algorithm>

namespace {

constexpr size_t mostMaskBytes = 256 << 20;
constexpr int fullLevel = 255;

const TerrainRow* ChosenTerrain(const SetOptions& options, std::string* fault)
{
    return !options.feature.empty() ? TerrainOfKey(featureTerrain, options.feature, fault)
           : !options.noGo.empty()  ? TerrainOfKey(noGoTerrain, options.noGo, fault)
                                    : TerrainOfKey(moveCostTerrain, options.cost, fault);
}

// The mask covers a cell as far as the cell's pixels are bright, on average. Of a cell that reaches beyond the map
// only the part inside counts.
bool IsCovered(const Mask& mask, int side, int x, int y, int percent)
{
    long sum = 0;
    long count = 0;
    for (int v = y * side; v < std::min((y + 1) * side, mask.height); v++) {
        for (int h = x * side; h < std::min((x + 1) * side, mask.width); h++) {
            sum += mask.levels[static_cast<size_t>(v) * static_cast<size_t>(mask.width) + static_cast<size_t>(h)];
            count++;
        }
    }
    return count > 0 && sum * 100 >= static_cast<long>(percent) * fullLevel * count;
}

TerrainCell Changed(TerrainCell cell, const TerrainRow& terrain, bool clears)
{
    if (clears && !HoldsTerrain(cell, terrain)) {
        return cell;
    }
    const int rest = cell & ~terrain.field;
    return static_cast<TerrainCell>(clears ? rest : rest | terrain.value);
}

bool ReadMask(Report* report, const std::string& path, const MapData& map, Mask* mask)
{
    const Rect whole = WholeMap(map);
    std::string bytes;
    std::string fault;
    if (!ReadBytes(report, path, mostMaskBytes, &bytes, &fault)) {
        Fail(report, path, "cannot be read: " + fault);
        return false;
    }
    if (!DecodeMask(bytes, {whole.right, whole.bottom}, {map.record.columnCount, map.record.rowCount}, mask,
                    &fault)) {
        Fail(report, path, fault);
        return false;
    }
    return true;
}

} // namespace

int RunSet(const SetOptions& options, Report* report)
{
    std::string fault;
    FileBefore before;
    MapData map;
    Mask mask;
    const TerrainRow* terrain = ChosenTerrain(options, &fault);
    if (terrain == nullptr) {
        return Fail(report, "", fault);
    }
    if (!ReadBefore(report, options.file, &before)) {
        return statusFailed;
    }
    if (!before.exists) {
        return Fail(report, options.file, "there is no such file");
    }
    const int faults = DecodeMap(before.bytes, &map);
    fault = faults != 0 ? FaultText(faults) : LengthFault(map);
    if (!fault.empty()) {
        return Fail(report, options.file, fault);
    }
    map.record.markerWord = 1;
    if (!options.mask.empty() && !ReadMask(report, options.mask, map, &mask)) {
        return statusFailed;
    }
    const int side = mask.width == map.record.columnCount && mask.height == map.record.rowCount ? 1 : cellSize;
    long changed = 0;
    for (int y = 0; y < map.record.rowCount; y++) {
        for (int x = 0; x < map.record.columnCount; x++) {
            TerrainCell& cell = CellOf(&map, x, y);
            const TerrainCell now = Changed(cell, *terrain, options.clears);
            if (now != cell && (options.mask.empty() || IsCovered(mask, side, x, y, options.threshold))) {
                cell = now;
                changed++;
            }
        }
    }
    if (changed != 0 && !SaveMapData(report, before, map)) {
        return statusFailed;
    }
    report->out += options.file + ": " + Count(changed, "cell", "cells") + " changed\n";
    return statusFine;
}
