#include "toolbox/conversions.h"
#include "toolbox/drawing.h"

#include <algorithm>

void FillRectBrush(const Rect* rect, HBRUSH brush)
{
    const RECT area = PlatformRect(rect);
    FillRect(currentPort->dc, &area, brush);
}

void FrameRectBrush(const Rect* rect, HBRUSH brush)
{
    const RECT area = PlatformRect(rect);
    FrameRect(currentPort->dc, &area, brush);
}

bool ClipToBounds(Rect* rect, const Rect* bounds)
{
    rect->top = std::max(rect->top, bounds->top);
    rect->left = std::max(rect->left, bounds->left);
    rect->bottom = std::min(rect->bottom, bounds->bottom);
    rect->right = std::min(rect->right, bounds->right);
    if (rect->top < rect->bottom && rect->left < rect->right) {
        return true;
    }
    *rect = {};
    return false;
}
