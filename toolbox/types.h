// Rectangles and points of the Toolbox: vertical before horizontal, 16 bits each, right and bottom exclusive.
#pragma once

#include "platform/platform.h"

struct Rect {
    int16_t top;
    int16_t left;
    int16_t bottom;
    int16_t right;
};

struct Point {
    int16_t v;
    int16_t h;
};

struct PortRecord;
typedef PortRecord* WindowPtr;
struct DialogItem;
