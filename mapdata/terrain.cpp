#include "mapdata/terrain.h"

#include <algorithm>
#include <array>

namespace {

// The names of a cell in the read-out.
enum ReadoutPlace { roadPlace = 1, woodsPlace, townPlace, moveCostPlace, noGoPlace };
enum SquarePrecedence { costSquare = 1, noGoTile = 2, roadSquare = 3 };

constexpr COLORREF Grey(int value)
{
    return PALETTERGB(value, value, value);
}

constexpr TerrainRow Feature(int32_t tool, TerrainCell bit, TextID toolText, TerrainReadout readout,
                             TerrainAnalysis analysis)
{
    return {.group = featureTerrain,
            .tool = tool,
            .field = bit,
            .value = bit,
            .toolText = toolText,
            .readout = readout,
            .analysis = analysis};
}

constexpr TerrainRow NoGo(int32_t tool, int level, TextID toolText, TextID readoutText, int16_t tileLeft)
{
    return {.group = noGoTerrain,
            .tool = tool,
            .field = cellNoGoMask,
            .value = static_cast<TerrainCell>(level << cellNoGoShift),
            .toolText = toolText,
            .readout = {readoutText, noGoPlace},
            .analysis = {tileLook, noGoTile},
            .tileLeft = tileLeft};
}

constexpr TerrainRow MoveCost(int32_t tool, int code, TextID toolText, TextID readoutText, COLORREF analysisColour,
                              TerrainShown shown)
{
    return {.group = moveCostTerrain,
            .tool = tool,
            .field = cellMoveCostMask,
            .value = static_cast<TerrainCell>(code << cellMoveCostShift),
            .toolText = toolText,
            .readout = {readoutText, moveCostPlace},
            .analysis = {squareLook, costSquare, analysisColour},
            .shown = shown};
}

// The groups one after the other, each in the order of its palette.
constexpr std::array terrainTable = {
    // tool, bit, tool's text, read-out, analysis
    Feature(hiLowTool, cellHiLow, hiLowToolText, {}, {frameLook, 1, PALETTERGB(154, 104, 52)}),
    Feature(woodsTool, cellWoods, woodsToolText, {woodsNameText, woodsPlace},
            {centreLook, 1, PALETTERGB(102, 204, 102)}),
    Feature(townTool, cellTown, townToolText, {townNameText, townPlace}, {centreLook, 2, PALETTERGB(153, 0, 51)}),
    Feature(roadTool, cellRoad, roadToolText, {roadNameText, roadPlace}, {squareLook, roadSquare, Grey(255)}),
    Feature(miscLOSTool, cellMiscLOSBlock, miscLOSToolText, {}, {}),
    // tool, level, tool's text, read-out's text, left edge of the tile; the lightest level first
    NoGo(noGo1Tool, 1, noGo1ToolText, noGo1NameText, 54),
    NoGo(noGo2Tool, 2, noGo2ToolText, noGo2NameText, 65),
    NoGo(noGo3Tool, 4, noGo3ToolText, noGo3NameText, 76),
    // tool, code, tool's text, read-out's text, analysis colour, show box and colour of the mark
    MoveCost(clearTool, 0, clearToolText, clearNameText, Grey(221), {207, showClearBoxText, Grey(221)}),
    MoveCost(rough1Tool, 1, rough1ToolText, rough1NameText, Grey(153), {208, showRough1BoxText, Grey(187)}),
    MoveCost(rough2Tool, 2, rough2ToolText, rough2NameText, Grey(102), {209, showRough2BoxText, Grey(128)}),
    MoveCost(rough3Tool, 3, rough3ToolText, rough3NameText, Grey(85), {210, showRough3BoxText, Grey(85)}),
    MoveCost(rough4Tool, 4, rough4ToolText, rough4NameText, Grey(0), {211, showRough4BoxText, Grey(0)}),
    MoveCost(waterTool, 6, waterToolText, waterNameText, PALETTERGB(166, 202, 240),
             {212, showWaterBoxText, PALETTERGB(0, 0, 255)}),
};

static_assert(std::all_of(terrainTable.begin(), terrainTable.end(), [](const TerrainRow& row) {
    return (row.group == featureTerrain) == ((row.field & cellFeatureBits) != 0);
}));

template <typename Wanted>
const TerrainRow* FindRow(TerrainGroup group, Wanted wanted)
{
    const auto rows = TerrainRows(group);
    const auto found = std::find_if(rows.begin(), rows.end(), wanted);
    return found != rows.end() ? &*found : nullptr;
}

const TerrainRow* RowOfTool(TerrainGroup group, int32_t tool)
{
    return FindRow(group, [=](const TerrainRow& row) { return row.tool == tool; });
}

const TerrainRow* RowHeld(TerrainGroup group, TerrainCell cell)
{
    return FindRow(group, [=](const TerrainRow& row) { return HoldsTerrain(cell, row); });
}

} // namespace

std::span<const TerrainRow> TerrainRows()
{
    return terrainTable;
}

std::span<const TerrainRow> TerrainRows(TerrainGroup group)
{
    const auto isOfGroup = [=](const TerrainRow& row) { return row.group == group; };
    const auto first = std::find_if(terrainTable.begin(), terrainTable.end(), isOfGroup);
    return {first, std::find_if_not(first, terrainTable.end(), isOfGroup)};
}

const TerrainRow* FeatureOfTool(int32_t tool)
{
    const TerrainRow* feature = RowOfTool(featureTerrain, tool);
    return feature != nullptr ? feature : RowOfTool(noGoTerrain, tool);
}

const TerrainRow* MoveCostOfTool(int32_t tool)
{
    return RowOfTool(moveCostTerrain, tool);
}

const TerrainRow* NoGoOf(TerrainCell cell)
{
    return RowHeld(noGoTerrain, cell);
}

const TerrainRow* MoveCostOf(TerrainCell cell)
{
    return RowHeld(moveCostTerrain, cell);
}

const TerrainRow* NearestNoGoOf(TerrainCell cell)
{
    if (NoGoLevelOf(cell) == 0) {
        return nullptr;
    }
    const TerrainRow* held = NoGoOf(cell);
    return held != nullptr ? held : TerrainRows(noGoTerrain).data();
}
