#include "app/map_window.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"
#include "toolbox/windows.h"

#include <algorithm>

namespace {

constexpr int limitWithoutMap = 2000;
constexpr int minSizingWidth = 500; // while the frame is dragged
constexpr int minSizingHeight = 200;
constexpr int lineStep = 20;

ContentSize LargestFrame()
{
    const ContentSize content = ContentSizeOfMap(view.hasScrollBars != 0);
    return {content.width + 2 * view.frameLeft, content.height + view.frameTop + view.frameBottom};
}

void GiveSizeLimits(MINMAXINFO* limits)
{
    if (!shell.mapShown) {
        limits->ptMaxSize = {limitWithoutMap, limitWithoutMap};
        limits->ptMaxTrackSize = limits->ptMaxSize;
        return;
    }
    limits->ptMinTrackSize = {minContentWidth, minContentHeight};
    limits->ptMaxPosition = {0, 0};
    // A map smaller than the smallest window leaves the smallest window.
    const ContentSize largest = LargestFrame();
    limits->ptMaxSize.x =
        std::max(minContentWidth, std::min<int>(largest.width, shell.screenRect.right - shell.screenRect.left));
    limits->ptMaxSize.y =
        std::max(minContentHeight, std::min<int>(largest.height, shell.screenRect.bottom - shell.screenRect.top));
    limits->ptMaxTrackSize = limits->ptMaxSize;
}

bool DragsLeftEdge(WPARAM edge)
{
    return edge == WMSZ_LEFT || edge == WMSZ_TOPLEFT || edge == WMSZ_BOTTOMLEFT;
}

bool DragsRightEdge(WPARAM edge)
{
    return edge == WMSZ_RIGHT || edge == WMSZ_TOPRIGHT || edge == WMSZ_BOTTOMRIGHT;
}

bool DragsTopEdge(WPARAM edge)
{
    return edge == WMSZ_TOP || edge == WMSZ_TOPLEFT || edge == WMSZ_TOPRIGHT;
}

bool DragsBottomEdge(WPARAM edge)
{
    return edge == WMSZ_BOTTOM || edge == WMSZ_BOTTOMLEFT || edge == WMSZ_BOTTOMRIGHT;
}

// Moves whichever edge is dragged so that the length becomes size.
template <class Coordinate>
void SetLength(Coordinate& low, Coordinate& high, int size, bool dragsLow, bool dragsHigh)
{
    if (dragsLow) {
        low = high - size;
    } else if (dragsHigh) {
        high = low + size;
    }
}

void LimitSizing(WPARAM edge, LPARAM frameAddress)
{
    auto* frame = reinterpret_cast<LPRECT>(frameAddress);
    const auto setWidth = [&](int width) {
        SetLength(frame->left, frame->right, width, DragsLeftEdge(edge), DragsRightEdge(edge));
    };
    const auto setHeight = [&](int height) {
        SetLength(frame->top, frame->bottom, height, DragsTopEdge(edge), DragsBottomEdge(edge));
    };
    if (frame->right - frame->left < minSizingWidth) {
        setWidth(minSizingWidth);
    }
    if (frame->bottom - frame->top < minSizingHeight) {
        setHeight(minSizingHeight);
    }
    // The minimum wins where a small map's maximum lies below it.
    const ContentSize largest = LargestFrame();
    const int maxWidth = std::max(minSizingWidth, largest.width);
    const int maxHeight = std::max(minSizingHeight, largest.height);
    if (frame->right - frame->left > maxWidth) {
        setWidth(maxWidth);
    }
    if (frame->bottom - frame->top > maxHeight) {
        setHeight(maxHeight);
    }
}

void TakeSize()
{
    TakeClientSize();
    InvalidateMapRect(nullptr);
    if (view.hasScrollBars) {
        DestroyScrollBars();
    }
    if (!shell.mapShown) {
        return;
    }
    KeepViewInMap();
    if (view.hasScrollBars) {
        CreateScrollBars();
        const Rect growBox = GrowBoxRect();
        const SavedPort saved = UsePort(shell.mapWindow);
        FillRectColor(&growBox, colours.grey187);
        RestorePort(saved);
    }
}

int TrackedShift(HWND bar, WPARAM wParam)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_POS;
    GetScrollInfo(bar, SB_CTL, &info);
    return HIWORD(wParam) - info.nPos;
}

// How far a scroll-bar notification moves the view; pageSize is the view's extent along the bar.
int ScrollShift(HWND bar, WPARAM wParam, int pageSize)
{
    switch (LOWORD(wParam)) {
    case SB_LINEUP:
        return -lineStep;
    case SB_LINEDOWN:
        return lineStep;
    case SB_PAGEUP:
        return -pageSize;
    case SB_PAGEDOWN:
        return pageSize;
    case SB_THUMBTRACK:
        return TrackedShift(bar, wParam);
    default:
        return 0;
    }
}

// The record outlives its window, because the loops that end now still name it as their port.
void ForgetWindow()
{
    shell.quitRequested = 1;
    if (shell.mapWindow == nullptr) {
        return;
    }
    DestroyScrollBars();
    shell.mapWindowDC = nullptr;
    DetachWindowPort(shell.mapWindow);
}

} // namespace

bool MapWindowExists()
{
    return shell.mapWindow != nullptr && shell.mapWindow->window != nullptr;
}

void DestroyMapWindow()
{
    if (shell.mapWindow == nullptr) {
        return;
    }
    if (shell.mapWindow->window != nullptr) {
        DestroyWindow(shell.mapWindow->window);
    }
    if (currentPort == shell.mapWindow) {
        SetPort(nullptr);
    }
    FreePortRecord(shell.mapWindow);
    shell.mapWindow = nullptr;
}

LRESULT CALLBACK MapWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const bool isMapWindow = MapWindowExists() && shell.mapWindow->window == window;
    switch (message) {
    case WM_DESTROY:
        ForgetWindow();
        break;
    case WM_SIZE:
        if (isMapWindow) {
            TakeSize();
        }
        break;
    case WM_WINDOWPOSCHANGED:
        if (isMapWindow) {
            TakeClientSize();
        }
        break;
    case WM_GETMINMAXINFO:
        GiveSizeLimits(reinterpret_cast<MINMAXINFO*>(lParam));
        return 0;
    case WM_SIZING:
        if (shell.mapShown) {
            LimitSizing(wParam, lParam);
            return TRUE;
        }
        break;
    case WM_HSCROLL:
        ScrollMap(1, ScrollShift(view.horizontalScrollBar, wParam, view.viewRect.right - view.viewRect.left), 0);
        return 0;
    case WM_VSCROLL:
        ScrollMap(1, 0, ScrollShift(view.verticalScrollBar, wParam, view.viewRect.bottom - view.viewRect.top));
        return 0;
    case WM_CLOSE:
        if (IsCommandDisabled(quitCommand)) {
            return 0;
        }
        break;
    case WM_ENDSESSION:
        if (wParam != 0) {
            shell.quitRequested = 1;
        }
        return 0;
    case WM_ACTIVATEAPP:
        if (wParam != 0 && isMapWindow) {
            PaintMapWindow();
        }
        break;
    case WM_PAINT:
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_MOUSEMOVE:
        RestoreCursor();
        return 0;
    default:
        break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
