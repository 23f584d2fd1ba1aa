// The terrain table: one row for each feature, NO-GO level and movement cost, with everything that depends on which
// terrain it is. Palettes, strokes, overlays, the read-out and the terrain analysis read it.
#pragma once

#include "generated/text_names.h"
#include "mapdata/map_record.h"

#include <span>

enum TerrainGroup { featureTerrain, noGoTerrain, moveCostTerrain };

// Tools are numbered by the palette item that selects them; both palettes begin with 201.
enum FeatureTool {
    noFeatureTool = 0,
    hiLowTool = 201,
    woodsTool = 202,
    townTool = 203,
    roadTool = 204,
    miscLOSTool = 205,
    noGo1Tool = 211,
    noGo2Tool = 212,
    noGo3Tool = 213,
};
enum MoveCostTool {
    noMoveCostTool = -1,
    clearTool = 201,
    rough1Tool = 202,
    rough2Tool = 203,
    rough3Tool = 204,
    rough4Tool = 205,
    waterTool = 206,
};

// How the terrain analysis shows it. Of several squares and tiles the one of the highest precedence is shown, of
// several centres or frames too; a cell that shows a tile shows no centre.
enum AnalysisLook { noLook, squareLook, tileLook, centreLook, frameLook };

constexpr TextID noText = TextID{0};

struct TerrainReadout {
    TextID text = noText;
    int place = 0; // among the names of a cell, which come in this order
};

struct TerrainAnalysis {
    AnalysisLook look = noLook;
    int precedence = 0;
    COLORREF colour = 0;
};

// Of a movement cost: the item of the palette that shows the class, and the colour of its mark.
struct TerrainShown {
    int32_t item = 0;
    TextID text = noText;
    COLORREF colour = 0;
};

struct TerrainRow {
    TerrainGroup group = featureTerrain;
    int32_t tool = 0;      // palette item
    TerrainCell field = 0; // the bits that it is written into, which hold one value at a time
    TerrainCell value = 0; // in the field
    TextID toolText = noText;
    TerrainReadout readout = {};
    TerrainAnalysis analysis = {};
    TerrainShown shown = {};
    int16_t tileLeft = 0; // of a NO-GO level: its mark in the interface bitmap, a cell's size, at noGoTileTop
};

constexpr int16_t noGoTileTop = 289;
// Features lie in these bits of the cell word, NO-GO level and movement cost above them.
constexpr TerrainCell cellFeatureBits = 0x00FF;

std::span<const TerrainRow> TerrainRows(); // in the order of the palettes' items, one group after the other
std::span<const TerrainRow> TerrainRows(TerrainGroup group);

// The row of a palette's tool; null for none.
const TerrainRow* FeatureOfTool(int32_t tool); // NO-GO levels too
const TerrainRow* MoveCostOfTool(int32_t tool);

inline bool HoldsTerrain(TerrainCell cell, const TerrainRow& row)
{
    return (cell & row.field) == row.value;
}
// The level or cost that the cell holds; null for a level 0 and for values that no tool sets.
const TerrainRow* NoGoOf(TerrainCell cell);
const TerrainRow* MoveCostOf(TerrainCell cell);
// The same, but a level that no tool sets counts as the lightest one. Null only for level 0.
const TerrainRow* NearestNoGoOf(TerrainCell cell);

constexpr int NoGoLevelOf(TerrainCell cell)
{
    return (cell & cellNoGoMask) >> cellNoGoShift;
}

constexpr int MoveCostCodeOf(TerrainCell cell)
{
    return cell >> cellMoveCostShift;
}
