// Selecting an area with a rubber band and filling or erasing its cells.
#pragma once

#include "editing/editing.h"

// Follows the band from the press at start (screen coordinates) to the release, then asks what to do with the cells
// inside, with the palette hidden meanwhile.
void SelectArea(WindowPtr palette, Point start);
