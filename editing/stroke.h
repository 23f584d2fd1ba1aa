// Painting cells: strokes with the pointer, and the change of one cell that strokes and fills share.
#pragma once

#include "editing/editing.h"

// A stroke, or a fill of one cell, sets or clears; toggle decides from the cell.
enum CellMode { toggleCell = 0, setCell = 1, clearCell = 2 };

// Changes one cell with the selected tool and draws its mark. Returns the mode used; outside the grid nothing changes
// and the mode comes back as it was.
int ChangeFeatureCell(int x, int y, int mode);
int ChangeMoveCostCell(int x, int y, int mode);

// Run the stroke that the current event's press begins, to the release. With Alt held the press selects an area
// instead; the palette is the one that is open.
void FeaturesStroke(WindowPtr palette);
void MoveCostStroke(WindowPtr palette);

// What the move-cost tool sets; Clear while none is selected.
const TerrainRow& SelectedMoveCost();
