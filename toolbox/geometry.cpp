#include "toolbox/drawing.h"

#include <algorithm>

void SetRect(Rect* rect, int left, int top, int right, int bottom)
{
    *rect = MakeRect(left, top, right, bottom);
}

void OffsetRect(Rect* rect, int dh, int dv)
{
    SetRect(rect, rect->left + dh, rect->top + dv, rect->right + dh, rect->bottom + dv);
}

void OutsetRect(Rect* rect, int dh, int dv)
{
    SetRect(rect, rect->left - dh, rect->top - dv, rect->right + dh, rect->bottom + dv);
}

bool EmptyRect(const Rect* rect)
{
    return rect->top == 0 && rect->left == 0 && rect->bottom == 0 && rect->right == 0;
}

bool PtInRect(Point point, const Rect* rect)
{
    return point.h >= rect->left && point.h < rect->right && point.v >= rect->top && point.v < rect->bottom;
}

void Pt2Rect(Point first, Point second, Rect* rect)
{
    SetRect(rect, std::min(first.h, second.h), std::min(first.v, second.v), std::max(first.h, second.h) + 1,
            std::max(first.v, second.v) + 1);
}

void SetPt(Point* point, int h, int v)
{
    *point = MakePoint(h, v);
}

bool EqualPt(Point first, Point second)
{
    return first.h == second.h && first.v == second.v;
}

void SetEmptyRgn(HRGN region)
{
    const HRGN empty = CreateRectRgn(0, 0, 0, 0);
    CombineRgn(region, empty, empty, RGN_COPY);
    DeleteObject(empty);
}
