// What the terrain editing tools share: the tools and display settings of both palettes.
#pragma once

#include "toolbox/drawing.h"

// Tools are numbered by the palette item that selects them.
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
enum BrushStyle { solidBrush = 0, dotBrush = 1, frameBrush = 2 };

struct EditingState {
    int32_t featureTool = noFeatureTool;
    int16_t noGoLevel = 0; // 1, 2 or 4 while a NO-GO tool is selected
    uint32_t showAllNoGo = 0;
    uint32_t solidGrid = 1;     // filled marks, else outlined
    COLORREF gridColour = 0;    // set at start-up with the named colours
    int32_t gridColourItem = 0; // 207 to 210, 0 for none
    int32_t moveCostTool = noMoveCostTool;
    int16_t brushStyle = solidBrush;
    int16_t showClear = 0;
    int16_t showRough1 = 0;
    int16_t showRough2 = 0;
    int16_t showRough3 = 0;
    int16_t showRough4 = 0;
    int16_t showWater = 0;
    Point palettePosition = {50, 25}; // v, h: screen position of either palette's top-left corner
    Rect selectionRect = {};          // map pixels while the band is dragged, then cells
};

extern EditingState editing;
