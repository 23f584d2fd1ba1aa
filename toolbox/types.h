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

// The one way to make them: in the order of the platform, horizontal before vertical, from plain numbers.
constexpr Rect MakeRect(int left, int top, int right, int bottom)
{
    return {static_cast<int16_t>(top), static_cast<int16_t>(left), static_cast<int16_t>(bottom),
            static_cast<int16_t>(right)};
}

constexpr Point MakePoint(int h, int v)
{
    return {static_cast<int16_t>(v), static_cast<int16_t>(h)};
}

struct PortRecord;
typedef PortRecord* WindowPtr;
struct DialogItem;
