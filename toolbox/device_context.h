// What the Toolbox's sources share in handling device contexts; for use inside toolbox/ only.
#pragma once

#include "platform/platform.h"

// Selects an object that an operation made and deletes the one displaced, unless that is the one the port started
// with. A null object changes nothing.
inline void ReplaceObject(HDC dc, HGDIOBJ object, HGDIOBJ initial)
{
    if (object == nullptr) {
        return;
    }
    const HGDIOBJ displaced = SelectObject(dc, object);
    // A port whose window is gone takes no object, so the new one is the one without a use.
    const HGDIOBJ unused = displaced != nullptr ? displaced : object;
    if (unused != initial) {
        DeleteObject(unused);
    }
}

// The end of every port: the object it started with is selected again.
inline void PutBackObject(HDC dc, HGDIOBJ initial)
{
    ReplaceObject(dc, initial, initial);
}

// The platform leaves out a line's end pixel; the further step of one pixel draws it.
inline void LineWithEndPixel(HDC dc, int x, int y)
{
    LineTo(dc, x, y);
    LineTo(dc, x + 1, y + 1);
    MoveToEx(dc, x, y, nullptr);
}
