#include "app/map_window.h"
#include "mapdata/map_record.h"
#include "toolbox/windows.h"

#include <algorithm>

namespace {

constexpr int arrowStepH = 128;
constexpr int arrowStepV = 80;

// Where the view's edge may go: into the map, and at its start where the map is smaller than the view.
int ClampShift(int edge, int shift, int viewSize, int mapSize)
{
    const int last = std::max(0, mapSize - viewSize);
    return std::clamp(edge + shift, 0, last) - edge;
}

int BarPosition(HWND bar)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_POS;
    GetScrollInfo(bar, SB_CTL, &info);
    return info.nPos;
}

void SetBarPosition(HWND bar, int position)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_POS;
    info.nPos = position; // the control keeps it in its range
    SetScrollInfo(bar, SB_CTL, &info, TRUE);
}

void FollowWithBars(int dh, int dv)
{
    const Rect& map = currentMap.record.mapRect;
    const Rect& shown = view.viewRect;
    if (dh != 0) {
        const int maxLeft = map.right - (shown.right - shown.left);
        int position = maxLeft;
        if (shown.left < maxLeft) {
            position = shown.left > map.left ? BarPosition(view.horizontalScrollBar) + dh : map.left;
        }
        SetBarPosition(view.horizontalScrollBar, position);
    }
    if (dv != 0) {
        int position = map.bottom;
        if (shown.bottom < map.bottom) {
            position = shown.top > map.top ? BarPosition(view.verticalScrollBar) + dv : map.top;
        }
        SetBarPosition(view.verticalScrollBar, position);
    }
}

// Creates one bar over its place in the layout, given in map coordinates. A bar no wider than it is high is vertical.
HWND CreateBar(Rect place, int range, int position)
{
    OffsetRect(&place, -view.viewRect.left, -view.viewRect.top);
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    const bool vertical = width <= height;
    const DWORD style = WS_CHILD | WS_VISIBLE | (vertical ? SBS_VERT : SBS_HORZ);
    const HWND bar = CreateWindowExA(0, "SCROLLBAR", "", style, place.left, place.top, width, height,
                                     shell.mapWindow->window, nullptr, shell.appInstance, nullptr);
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = range;
    info.nPage = static_cast<UINT>(vertical ? view.viewRect.bottom - view.viewRect.top
                                            : view.viewRect.right - view.viewRect.left);
    SetScrollInfo(bar, SB_CTL, &info, TRUE);
    SetBarPosition(bar, position);
    return bar;
}

} // namespace

void ScrollMap(int updateBars, int dh, int dv)
{
    if (!MapWindowExists()) {
        return;
    }
    const Rect& map = currentMap.record.mapRect;
    dh = ClampShift(view.viewRect.left, dh, view.viewRect.right - view.viewRect.left, map.right);
    dv = ClampShift(view.viewRect.top, dv, view.viewRect.bottom - view.viewRect.top, map.bottom);
    if (dh == 0 && dv == 0) {
        return;
    }
    const SavedPort saved = UsePort(shell.mapWindow);
    ValidRect(&view.viewRect);
    OffsetRect(&view.viewRect, dh, dv);
    SetOrigin(view.viewRect.left, view.viewRect.top);
    InvalRect(nullptr);
    if (updateBars && view.verticalScrollBar != nullptr) {
        FollowWithBars(dh, dv);
    }
    RestorePort(saved);
}

int HandleMapKey(uint32_t key)
{
    struct KeyRow {
        int key;
        int dh;
        int dv;
        bool paints;
    };
    static const KeyRow keyTable[] = {
        {leftArrowKey, -arrowStepH, 0, true},
        {rightArrowKey, arrowStepH, 0, true},
        {upArrowKey, 0, -arrowStepV, true},
        {downArrowKey, 0, arrowStepV, true},
        {'*', 0, 0, true},
        {'+', 0, 0, true},
        {'/', 0, 0, true},
        {'=', 0, 0, true},
        {' ', 0, 0, false},
    };
    for (const KeyRow& row : keyTable) {
        if (row.key == static_cast<int>(key & 0xFF)) {
            if (shell.mapShown) {
                ScrollMap(1, row.dh, row.dv);
            }
            if (row.paints) {
                PaintMapWindow();
            }
            return 1;
        }
    }
    return 0;
}

void CreateScrollBarsIfNeeded()
{
    if (!view.hasScrollBars) {
        CreateScrollBars();
    }
}

void CreateScrollBars()
{
    view.hasScrollBars = 1;
    view.viewRect = ViewRectOfPort();
    DestroyScrollBars();
    const Rect& shown = view.viewRect;
    const Rect& map = currentMap.record.mapRect;
    view.verticalScrollBar = CreateBar(VerticalBarRect(), map.bottom, shown.top);
    view.horizontalScrollBar = CreateBar(HorizontalBarRect(), map.right, shown.left);

    const SavedPort saved = UsePort(shell.mapWindow);
    const Rect corner = ScrollBarCornerRect();
    FillRectColor(&corner, colours.grey187);
    RestorePort(saved);
}

void DestroyScrollBars()
{
    DestroyWindow(view.verticalScrollBar);
    DestroyWindow(view.horizontalScrollBar);
    view.verticalScrollBar = nullptr;
    view.horizontalScrollBar = nullptr;
}
