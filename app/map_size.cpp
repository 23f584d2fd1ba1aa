#include "app/map_window.h"
#include "mapdata/map_record.h"
#include "toolbox/resources.h"
#include "toolbox/windows.h"

#include <algorithm>
#include <cstdlib>

// ---- layout ----

namespace {

constexpr int scrollBarWidth = 16;
constexpr int growBoxSize = 16;
constexpr int growBoxImageWidth = 18;
constexpr int growBoxImageHeight = 36;
constexpr int moveStripHeight = 10;

Rect BottomRightOfPort(int width, int height)
{
    const Rect& port = shell.mapWindow->portRect;
    return MakeRect(port.right - width, port.bottom - height, port.right, port.bottom);
}

} // namespace

Rect ViewRectOfPort()
{
    const Rect& port = shell.mapWindow->portRect;
    const int bar = view.hasScrollBars ? scrollBarWidth : 0;
    return MakeRect(port.left, port.top, port.right - bar, port.bottom - statusStripHeight - bar);
}

Rect StatusStripRect()
{
    const Rect& port = shell.mapWindow->portRect;
    return MakeRect(port.left, port.bottom - statusStripHeight, port.right, port.bottom);
}

Rect MoveStripRect()
{
    const Rect& port = shell.mapWindow->portRect;
    return MakeRect(port.left, port.top, port.right, port.top + moveStripHeight);
}

Rect GrowBoxRect()
{
    return BottomRightOfPort(growBoxSize, growBoxSize);
}

Rect GrowBoxImageRect()
{
    return BottomRightOfPort(growBoxImageWidth, growBoxImageHeight);
}

Rect VerticalBarRect()
{
    const Rect& shown = view.viewRect;
    return MakeRect(shown.right, shown.top - 1, shown.right + scrollBarWidth, shown.bottom + 1);
}

Rect HorizontalBarRect()
{
    const Rect& shown = view.viewRect;
    return MakeRect(shown.left - 1, shown.bottom, shown.right + 1, shown.bottom + scrollBarWidth);
}

Rect ScrollBarCornerRect()
{
    const Rect& shown = view.viewRect;
    return MakeRect(shown.right + 1, shown.bottom + 1, shown.right + scrollBarWidth, shown.bottom + scrollBarWidth);
}

ContentSize ContentSizeOfMap(bool withScrollBars)
{
    const int bar = withScrollBars ? scrollBarWidth : 0;
    return {MapWidth() + bar, MapHeight() + statusStripHeight + bar};
}

// ---- size ----

namespace {

// The width of one side of the window frame, from that side of the outer and of the content rectangle on the screen.
int Border(int outer, int content)
{
    return std::abs(std::abs(outer) - std::abs(content));
}

Rect ContentOnScreen()
{
    Rect content;
    GetWindowContentRect(shell.mapWindow, &content);
    Point corner = {0, 0};
    const SavedPort saved = UsePort(shell.mapWindow);
    LocalToGlobal(&corner);
    RestorePort(saved);
    OffsetRect(&content, corner.h, corner.v);
    return content;
}

} // namespace

void TakeClientSize()
{
    RefreshContentRect(shell.mapWindow);
    view.viewRect = shell.mapShown ? ViewRectOfPort() : shell.mapWindow->portRect;
}

void KeepViewInMap()
{
    const Rect& map = currentMap.record.mapRect;
    const int excessH = std::min<int>(view.viewRect.right - map.right, view.viewRect.left);
    const int excessV = std::min<int>(view.viewRect.bottom - map.bottom, view.viewRect.top);
    if (excessH <= 0 && excessV <= 0) {
        return;
    }
    OffsetRect(&view.viewRect, -std::max(excessH, 0), -std::max(excessV, 0));
    const SavedPort saved = UsePort(shell.mapWindow);
    SetOrigin(view.viewRect.left, view.viewRect.top);
    InvalRect(&shell.mapWindow->portRect);
    RestorePort(saved);
}

void FitWindowToMap()
{
    const SavedPort saved = UsePort(shell.mapWindow);
    SetOrigin(0, 0);

    Rect outer;
    GetWindowFrameRect(shell.mapWindow, &outer);
    const Rect content = ContentOnScreen();
    view.frameLeft = Border(outer.left, content.left);
    view.frameTop = Border(outer.top, content.top);
    view.frameBottom = Border(outer.bottom, content.bottom);
    const int frameRight = Border(outer.right, content.right);

    const int screenWidth = shell.screenRect.right - shell.screenRect.left;
    const int screenHeight = shell.screenRect.bottom - shell.screenRect.top;
    const ContentSize wanted = ContentSizeOfMap(true);
    const int wantedWidth = wanted.width + view.frameLeft + frameRight;
    const int wantedHeight = wanted.height + view.frameTop + view.frameBottom;
    // A map smaller than the smallest window gets the smallest window.
    const int height = std::max(minContentHeight, std::min(wantedHeight, screenHeight));
    const int width = std::max(minContentWidth, std::min(wantedWidth, screenWidth));
    SizeWindow(shell.mapWindow, width - view.frameLeft - frameRight, height - view.frameTop - view.frameBottom, 1);
    MoveWindowTo(shell.mapWindow, shell.screenRect.left + view.frameLeft, shell.screenRect.top + view.frameTop, 0);

    InvalRect(nullptr);
    RefreshContentRect(shell.mapWindow);
    view.viewRect = ViewRectOfPort();
    FillRectColor(&shell.mapWindow->portRect, shell.windowBackground);
    RestorePort(saved);
}

int HandleContentClick()
{
    if (!MapWindowExists()) {
        return 0;
    }
    const SavedPort saved = UsePort(shell.mapWindow);
    Point point = currentEvent.where;
    GlobalToLocal(&point);
    RestorePort(saved);

    const Rect moveStrip = MoveStripRect();
    const Rect growBox = GrowBoxRect();
    if (currentEvent.modifiers == optionKey && PtInRect(point, &moveStrip)) {
        MoveMapWindowByHand(currentEvent.where);
        return 1;
    }
    if (PtInRect(point, &growBox)) {
        DoGrow();
        return 1;
    }
    return 0;
}

void DoGrow()
{
    if (!shell.mapShown) {
        return;
    }
    const ContentSize largest = ContentSizeOfMap(view.hasScrollBars != 0);
    // The grow box leaves no room for the vertical bar; fitting and the frame do.
    const int maxWidth = std::min<int>(shell.screenRect.right - shell.screenRect.left, MapWidth());
    const int maxHeight = std::min<int>(shell.screenRect.bottom - shell.screenRect.top, largest.height);
    const Rect limits = MakeRect(minContentWidth, minContentHeight, std::max(minContentWidth, maxWidth),
                                 std::max(minContentHeight, maxHeight));
    const uint32_t size = GrowWindow(0, 0, &limits);
    if (size == 0 || !MapWindowExists()) {
        return;
    }
    InvalidateMapRect(nullptr);
    // The window procedure places the view and the scroll bars anew when the size arrives.
    SizeWindow(shell.mapWindow, static_cast<int>(size & 0xFFFF), static_cast<int>(size >> 16), 1);
    PaintMapWindow();
}
