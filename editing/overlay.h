// The terrain drawn over the map while a palette is open: whole overlays, and the mark of one changed cell.
#pragma once

#include "editing/editing.h"

// Repaint the invalid part of the map window: a fresh copy of the map image, then the marks of the visible cells.
void PaintFeaturesOverlay();
void PaintMoveCostOverlay();
// The marks alone, drawn into the current port, whose coordinates are map pixels, as far as view.viewRect reaches.
void MarkVisibleFeatures();
void MarkVisibleMoveCosts();
// Draw one cell into the map window right after its word changed. Only inside the view.
void DrawFeatureCellMark(int x, int y, bool wasSet);
void DrawMoveCostCellMark(int x, int y);
// The tile of a NO-GO level, as far as the cell's square lies inside the bounds. Nothing for null.
void DrawNoGoTile(WindowPtr port, const TerrainRow* noGo, const Rect& cell, const Rect& bounds);
