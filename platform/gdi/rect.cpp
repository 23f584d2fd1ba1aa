#include "platform/api/user.h"

namespace {

// Far-out coordinates wrap, as they do on Windows.
LONG Sum(LONG first, LONG second)
{
    return static_cast<LONG>(static_cast<ULONG>(first) + static_cast<ULONG>(second));
}

LONG Difference(LONG first, LONG second)
{
    return static_cast<LONG>(static_cast<ULONG>(first) - static_cast<ULONG>(second));
}

} // namespace

BOOL WINAPI OffsetRect(LPRECT rect, int dx, int dy)
{
    if (rect == nullptr) {
        return FALSE;
    }
    *rect = {Sum(rect->left, dx), Sum(rect->top, dy), Sum(rect->right, dx), Sum(rect->bottom, dy)};
    return TRUE;
}

BOOL WINAPI InflateRect(LPRECT rect, int dx, int dy)
{
    if (rect == nullptr) {
        return FALSE;
    }
    *rect = {Difference(rect->left, dx), Difference(rect->top, dy), Sum(rect->right, dx), Sum(rect->bottom, dy)};
    return TRUE;
}

BOOL WINAPI EqualRect(const RECT* first, const RECT* second)
{
    return (first != nullptr) && (second != nullptr) && first->left == second->left && first->top == second->top &&
           first->right == second->right && first->bottom == second->bottom;
}

BOOL WINAPI PtInRect(const RECT* rect, POINT point)
{
    return (rect != nullptr) && point.x >= rect->left && point.x < rect->right && point.y >= rect->top &&
           point.y < rect->bottom;
}
