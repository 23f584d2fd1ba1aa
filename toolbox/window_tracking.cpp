// Following the pointer with an outline on the screen: a window that is dragged, the map window that is grown.
#include "toolbox/conversions.h"
#include "toolbox/device_context.h"
#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

#include <algorithm>

void ScreenOutline(const Rect* rect)
{
    const HDC screen = GetDC(nullptr);
    FrameOutline(screen, rect);
    ReleaseDC(nullptr, screen);
}

// ---- dragging ----

namespace {

void MoveOutline(Rect* outline, Point* last, const MSG& message)
{
    POINT position = MessagePoint(message.lParam);
    ClientToScreen(message.hwnd, &position);
    const Point point = PointFrom(position);
    if (EqualPt(point, *last)) {
        return;
    }
    ScreenOutline(outline);
    OffsetRect(outline, point.h - last->h, point.v - last->v);
    *last = point;
    ScreenOutline(outline);
}

void TrackOutline(Rect* outline, Point start)
{
    Point last = start;
    PressWatch watch = {};
    while (true) {
        MSG message = {};
        const bool taken = PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);
        if (taken && message.message == WM_MOUSEMOVE) {
            MoveOutline(outline, &last, message);
        } else if (PressHasEnded(&watch, StillDown() != 0, taken && message.message == WM_LBUTTONUP)) {
            return;
        }
    }
}

} // namespace

void DragWindow(WindowPtr window, Point start, const Rect*)
{
    const HWND dragged = window->window;
    Rect outline = {};
    GetWindowFrameRect(window, &outline);
    SetCapture(dragged);
    ScreenOutline(&outline);
    TrackOutline(&outline, start);
    ScreenOutline(&outline);
    MoveWindow(dragged, outline.left, outline.top, outline.right - outline.left, outline.bottom - outline.top, TRUE);
    ReleaseCapture();
    AdjustMenus();
}

// ---- growing ----

namespace {

POINT MapPointOnScreen(int h, int v)
{
    POINT position = {h, v};
    LPtoDP(shell.mapWindowDC, &position, 1);
    ClientToScreen(shell.mapWindow->window, &position);
    return position;
}

// The bottom and the right edge only: the others stay where they are.
void GrowOutline(HDC screen, const POINT& anchor, const POINT& corner)
{
    MoveToEx(screen, anchor.x, corner.y, nullptr);
    LineWithEndPixel(screen, corner.x, corner.y);
    LineWithEndPixel(screen, corner.x, anchor.y);
}

// The least size wins where the limits cross.
int Limited(int size, int least, int greatest)
{
    return std::max(std::min(size, greatest), least);
}

POINT LimitedCorner(const POINT& anchor, const POINT& corner, const Rect* limits)
{
    return {anchor.x + Limited(corner.x - anchor.x, limits->left, limits->right),
            anchor.y + Limited(corner.y - anchor.y, limits->top, limits->bottom)};
}

} // namespace

uint32_t GrowWindow(uintptr_t, uintptr_t, const Rect* limits)
{
    const SavedPort saved = UsePort(shell.mapWindow);
    const HDC screen = GetDC(nullptr);
    const int previousMode = SetROP2(screen, R2_NOT);
    const Rect& content = shell.mapWindow->contentRect;
    const POINT anchor = MapPointOnScreen(content.left, content.top);
    POINT corner = MapPointOnScreen(content.right, content.bottom);
    Point last = currentEvent.where;
    GlobalToLocal(&last);
    bool outlineShown = false;
    Point point = {};
    BeginPointerTrail(&currentEvent);
    while (NextTrailPoint(&point)) {
        if (EqualPt(point, last)) {
            continue;
        }
        last = point;
        if (outlineShown) {
            GrowOutline(screen, anchor, corner);
        }
        corner = LimitedCorner(anchor, MapPointOnScreen(point.h, point.v), limits);
        GrowOutline(screen, anchor, corner);
        outlineShown = true;
    }
    if (outlineShown) {
        GrowOutline(screen, anchor, corner);
    }
    SetROP2(screen, previousMode);
    ReleaseDC(nullptr, screen);
    RestorePort(saved);
    corner = LimitedCorner(anchor, corner, limits);
    return MAKELONG(static_cast<WORD>(corner.x - anchor.x), static_cast<WORD>(corner.y - anchor.y));
}
