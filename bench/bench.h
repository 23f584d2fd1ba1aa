// A largest map in memory and in the current folder, with the program's window on the headless host, for all
// benchmarks.
#pragma once

#include <cstddef>

constexpr int largestSide = 3100;
constexpr int benchScreenWidth = 1920;
constexpr int benchScreenHeight = 1080;

// Starts the program once, without its main loop, and opens the largest map in a window as large as the screen.
void OpenLargestMap();
// Marks that many cells of the view with Woods, spread evenly, and clears all others.
void MarkCells(int count);
// Pixels, one row after the other, large enough for the map; touched.
const unsigned* LargePixels();
