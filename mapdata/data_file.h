// The map data file, byte for byte: 28 little-endian words, a zero-terminated text, the cell words row by row.
#pragma once

#include "mapdata/map_record.h"

// Reads header and text of the open file into currentMap. 0, or 1: a system error, a map over 3100 pixels a side
// (after its messages), counts or a rectangle that no map can have, a text of more than 255 characters.
int16_t ReadMapHeader(HFILE file);
// Reads the cells into the allocated grid, from where ReadMapHeader stopped. A file that ends early leaves 0.
int16_t ReadMapCells(HFILE file);
// Writes header, text and cells to a freshly created file and syncs it and its folder. 0 or 1.
int16_t WriteMapData(HFILE file);
// Closes currentMap.openDataFile, if there is one.
void CloseMapDataFile();
