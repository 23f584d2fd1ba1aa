// The Toolbox's rectangles and points in the platform's form and back, for use inside toolbox/ only.
#pragma once

#include "toolbox/types.h"

inline RECT PlatformRect(const Rect* rect)
{
    return {rect->left, rect->top, rect->right, rect->bottom};
}

inline POINT PlatformPoint(Point point)
{
    return {point.h, point.v};
}

inline Point PointFrom(const POINT& point)
{
    return MakePoint(point.x, point.y);
}

inline Rect RectFrom(const RECT& rect)
{
    return MakeRect(rect.left, rect.top, rect.right, rect.bottom);
}

// The position that a mouse message carries: two signed 16-bit halves, in client coordinates of its window.
inline POINT MessagePoint(LPARAM lParam)
{
    const auto word = static_cast<ULONG_PTR>(lParam);
    return {static_cast<int16_t>(LOWORD(word)), static_cast<int16_t>(HIWORD(word))};
}

// The window's client area in the logical coordinates of its device context; in client coordinates without one.
inline RECT LogicalClientRect(HWND window, HDC dc)
{
    RECT client = {};
    GetClientRect(window, &client);
    POINT corners[2] = {{client.left, client.top}, {client.right, client.bottom}};
    if (dc != nullptr) {
        DPtoLP(dc, corners, 2);
    }
    return {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
}
