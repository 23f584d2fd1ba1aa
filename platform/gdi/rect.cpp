#include "platform/api/user.h"

#include <algorithm>

// Far-out coordinates wrap, as they do on Windows.
static LONG Sum(LONG first, LONG second)
{
    return static_cast<LONG>(static_cast<ULONG>(first) + static_cast<ULONG>(second));
}

static LONG Difference(LONG first, LONG second)
{
    return static_cast<LONG>(static_cast<ULONG>(first) - static_cast<ULONG>(second));
}

BOOL WINAPI SetRect(LPRECT rect, int left, int top, int right, int bottom)
{
    if (!rect) {
        return FALSE;
    }
    *rect = {left, top, right, bottom};
    return TRUE;
}

BOOL WINAPI SetRectEmpty(LPRECT rect)
{
    return SetRect(rect, 0, 0, 0, 0);
}

BOOL WINAPI OffsetRect(LPRECT rect, int dx, int dy)
{
    if (!rect) {
        return FALSE;
    }
    *rect = {Sum(rect->left, dx), Sum(rect->top, dy), Sum(rect->right, dx), Sum(rect->bottom, dy)};
    return TRUE;
}

BOOL WINAPI InflateRect(LPRECT rect, int dx, int dy)
{
    if (!rect) {
        return FALSE;
    }
    *rect = {Difference(rect->left, dx), Difference(rect->top, dy), Sum(rect->right, dx), Sum(rect->bottom, dy)};
    return TRUE;
}

BOOL WINAPI IntersectRect(LPRECT result, const RECT* first, const RECT* second)
{
    if (!result || !first || !second) {
        return FALSE;
    }
    RECT common = {std::max(first->left, second->left), std::max(first->top, second->top),
                   std::min(first->right, second->right), std::min(first->bottom, second->bottom)};
    if (IsRectEmpty(first) || IsRectEmpty(second) || IsRectEmpty(&common)) {
        SetRectEmpty(result);
        return FALSE;
    }
    *result = common;
    return TRUE;
}

BOOL WINAPI UnionRect(LPRECT result, const RECT* first, const RECT* second)
{
    if (!result || !first || !second) {
        return FALSE;
    }
    if (IsRectEmpty(first) && IsRectEmpty(second)) {
        SetRectEmpty(result);
        return FALSE;
    }
    if (IsRectEmpty(first)) {
        *result = *second;
    } else if (IsRectEmpty(second)) {
        *result = *first;
    } else {
        *result = {std::min(first->left, second->left), std::min(first->top, second->top),
                   std::max(first->right, second->right), std::max(first->bottom, second->bottom)};
    }
    return TRUE;
}

BOOL WINAPI EqualRect(const RECT* first, const RECT* second)
{
    return first && second && first->left == second->left && first->top == second->top &&
           first->right == second->right && first->bottom == second->bottom;
}

BOOL WINAPI IsRectEmpty(const RECT* rect)
{
    return !rect || rect->left >= rect->right || rect->top >= rect->bottom;
}

BOOL WINAPI PtInRect(const RECT* rect, POINT point)
{
    return rect && point.x >= rect->left && point.x < rect->right && point.y >= rect->top && point.y < rect->bottom;
}
