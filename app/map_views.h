// What the View menu adds to the map: the terrain read-out in the status strip, the UTM grid and the terrain analysis
// picture. The last two are drawn into the map image; loading the art again removes them. The drawing functions that
// other layers call are declared in toolbox/shell_door.h.
#pragma once

#include "toolbox/shell_door.h"

// ComposeMapImage under the wait cursor, then the whole map window is to be repainted.
void RedrawMapImage();

void ToggleUTMGrid();
void ToggleUTMCoordinates();
void ToggleTerrainAnalysis();
void ToggleCursorReadout();

void ShowCursorReadout(Point point); // of a point of the map, in map coordinates
// Six digits, kilometres and hundreds of metres east, then north, of a map point. buffer: 256 bytes.
void FormatGridReference(char* buffer, int h, int v);
// Appends the cell's features, movement cost and NO-GO level, a blank before each; nothing outside the grid.
void DescribeCell(int column, int row, char* buffer);
