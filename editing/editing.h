// What the terrain editing tools share: the tools and display settings of both palettes.
#pragma once

#include "mapdata/terrain.h"
#include "toolbox/drawing.h"

enum BrushStyle { solidBrush = 0, dotBrush = 1, frameBrush = 2 };

struct EditingState {
    int32_t featureTool = noFeatureTool;
    int16_t noGoLevel = 0; // 1, 2 or 4 while a NO-GO tool is selected
    uint32_t showAllNoGo = 0;
    uint32_t solidGrid = 1; // filled marks, else outlined
    COLORREF gridColour = PALETTERGB(255, 0, 0);
    int32_t gridColourItem = 0; // 207 to 210, 0 for none
    int32_t moveCostTool = noMoveCostTool;
    int16_t brushStyle = solidBrush;
    int16_t showClear = 0;
    int16_t showRough1 = 0;
    int16_t showRough2 = 0;
    int16_t showRough3 = 0;
    int16_t showRough4 = 0;
    int16_t showWater = 0;
    Point palettePosition = MakePoint(25, 50); // on the screen: the top-left corner of either palette
    Rect selectionRect = {};                   // map pixels while the band is dragged, then cells
};

extern EditingState editing;

// The show flag of a movement cost.
int16_t* ShowFlagOf(const TerrainRow& moveCost);
