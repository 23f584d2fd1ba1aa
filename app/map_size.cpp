#include "app/map_window.h"
#include "mapdata/map_record.h"
#include "toolbox/resources.h"
#include "toolbox/windows.h"

#include <algorithm>
#include <cstdlib>

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
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(shell.mapWindow);
    LocalToGlobal(&corner);
    SetPort(savedPort);
    OffsetRect(&content, corner.h, corner.v);
    return content;
}

} // namespace

Rect ViewRectOfPort()
{
    Rect shown = shell.mapWindow->portRect;
    if (!shell.mapShown && !view.hasScrollBars) {
        return shown;
    }
    shown.bottom = static_cast<int16_t>(shown.bottom - statusStripHeight);
    if (view.hasScrollBars) {
        shown.right = static_cast<int16_t>(shown.right - scrollBarWidth);
        shown.bottom = static_cast<int16_t>(shown.bottom - scrollBarWidth);
    }
    return shown;
}

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
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(shell.mapWindow);
    SetOrigin(view.viewRect.left, view.viewRect.top);
    InvalRect(&shell.mapWindow->portRect);
    SetPort(savedPort);
}

void FitWindowToMap()
{
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(shell.mapWindow);
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
    const int wantedHeight = MapHeight() + view.frameTop + view.frameBottom + statusStripHeight + scrollBarWidth;
    const int wantedWidth = MapWidth() + view.frameLeft + frameRight + scrollBarWidth;
    // A map smaller than the smallest window gets the smallest window.
    const int height = std::max(minContentHeight, std::min(wantedHeight, screenHeight));
    const int width = std::max(minContentWidth, std::min(wantedWidth, screenWidth));
    SizeWindow(shell.mapWindow, width - view.frameLeft - frameRight, height - view.frameTop - view.frameBottom, 1);
    MoveWindowTo(shell.mapWindow, shell.screenRect.left + view.frameLeft, shell.screenRect.top + view.frameTop, 0);

    InvalRect(nullptr);
    RefreshContentRect(shell.mapWindow);
    view.viewRect = shell.mapWindow->portRect;
    view.viewRect.bottom = static_cast<int16_t>(view.viewRect.bottom - statusStripHeight);
    if (view.hasScrollBars) {
        view.viewRect = ViewRectOfPort();
    }
    FillRectColor(&shell.mapWindow->portRect, shell.windowBackground);
    SetPort(savedPort);
}

int HandleContentClick()
{
    if (!MapWindowExists()) {
        return 0;
    }
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(shell.mapWindow);
    Point point = currentEvent.where;
    GlobalToLocal(&point);
    SetPort(savedPort);

    const Rect& port = shell.mapWindow->portRect;
    const Rect moveStrip = {port.top, port.left, static_cast<int16_t>(port.top + moveStripHeight), port.right};
    const Rect growBox = {static_cast<int16_t>(port.bottom - growBoxSize),
                          static_cast<int16_t>(port.right - growBoxSize), port.bottom, port.right};
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
    const int below = statusStripHeight + (view.hasScrollBars ? scrollBarWidth : 0);
    const int maxWidth = std::min<int>(shell.screenRect.right - shell.screenRect.left, MapWidth());
    const int maxHeight = std::min<int>(shell.screenRect.bottom - shell.screenRect.top, MapHeight() + below);
    Rect limits;
    SetRect(&limits, minContentWidth, minContentHeight, std::max(minContentWidth, maxWidth),
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
