// Where windows are and how large they may be. The client size is ours and right at once; the place and the frame's
// widths are the host's, asked for whenever they count, because a window manager moves and frames windows as it
// likes.
#include "platform/user/state.h"

#include <algorithm>

namespace {

void ScreenSize(int* width, int* height)
{
    *width = 0;
    *height = 0;
    if (host != nullptr) {
        host->screenSize(width, height);
    }
}

RECT FrameBox(Window& window)
{
    RefreshPlace(window);
    POINT origin = ClientOrigin(window);
    return {origin.x - window.borders.left, origin.y - window.borders.top,
            origin.x + window.width + window.borders.right, origin.y + window.height + window.borders.bottom};
}

// Asks the window how large its frame may become while it is tracked.
MINMAXINFO AskTrackSizes(HWND handle)
{
    const Window* window = Lookup(handle);
    const FrameBorders& borders = window->borders;
    int screenWidth = 0;
    int screenHeight = 0;
    ScreenSize(&screenWidth, &screenHeight);
    constexpr int leastClientWidth = 112; // so that the frame keeps its buttons
    MINMAXINFO info = {};
    info.ptMaxSize = {screenWidth, screenHeight};
    info.ptMinTrackSize = {leastClientWidth + borders.left + borders.right, 1 + borders.top + borders.bottom};
    info.ptMaxTrackSize = {screenWidth + borders.left + borders.right, screenHeight + borders.top + borders.bottom};
    SendMessageA(handle, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
    return info;
}

// Where a minimum exceeds a maximum, the minimum wins.
int Limit(int value, int least, int most)
{
    return std::max(std::min(value, most), least);
}

bool HasTrackSizes(const Window& window)
{
    return window.kind == framedWindow && (window.style & WS_THICKFRAME);
}

// The frame that the window makes of a proposed one when its bottom-right corner is dragged there.
RECT AskSizing(HWND handle, const RECT& proposed)
{
    RECT answer = proposed;
    if (!SendMessageA(handle, WM_SIZING, WMSZ_BOTTOMRIGHT, reinterpret_cast<LPARAM>(&answer))) {
        return proposed;
    }
    return answer;
}

void UpdateSizeLimitsOf(HWND handle)
{
    Window* window = Lookup(handle);
    if ((window == nullptr) || !window->visible || (window->hostWindow == nullptr) || !HasTrackSizes(*window)) {
        return;
    }
    const RECT frame = FrameBox(*window);
    const MINMAXINFO info = AskTrackSizes(handle);
    constexpr int farAway = 20000;
    const RECT least = AskSizing(handle, {frame.left, frame.top, frame.left + 1, frame.top + 1});
    const RECT most = AskSizing(handle, {frame.left, frame.top, frame.left + farAway, frame.top + farAway});
    window = Lookup(handle);
    if (window == nullptr) {
        return;
    }
    const int acrossBorders = window->borders.left + window->borders.right;
    const int downBorders = window->borders.top + window->borders.bottom;
    SizeLimits limits = {};
    limits.minWidth = std::max(info.ptMinTrackSize.x, least.right - least.left) - acrossBorders;
    limits.minHeight = std::max(info.ptMinTrackSize.y, least.bottom - least.top) - downBorders;
    limits.maxWidth = std::min(info.ptMaxTrackSize.x, most.right - most.left) - acrossBorders;
    limits.maxHeight = std::min(info.ptMaxTrackSize.y, most.bottom - most.top) - downBorders;
    limits.maxWidth = std::max({limits.maxWidth, limits.minWidth, window->width});
    limits.maxHeight = std::max({limits.maxHeight, limits.minHeight, window->height});
    limits.minWidth = std::clamp(limits.minWidth, 1, window->width);
    limits.minHeight = std::clamp(limits.minHeight, 1, window->height);
    if (limits == window->sentLimits) {
        return;
    }
    window->sentLimits = limits;
    host->limitSize(window->hostWindow, limits.minWidth, limits.minHeight, limits.maxWidth, limits.maxHeight);
}

// A size that the program chooses may lie outside what the user can reach; the limits make way for it first.
void WidenLimits(Window& window, int width, int height)
{
    SizeLimits& limits = window.sentLimits;
    if (limits.maxWidth == 0) {
        return; // none were sent
    }
    const SizeLimits wider = {std::min(limits.minWidth, width), std::min(limits.minHeight, height),
                              std::max(limits.maxWidth, width), std::max(limits.maxHeight, height)};
    if (wider == limits) {
        return;
    }
    limits = wider;
    host->limitSize(window.hostWindow, wider.minWidth, wider.minHeight, wider.maxWidth, wider.maxHeight);
}

void InvalidateAfterSizing(Window& window, int oldWidth, int oldHeight)
{
    const UINT style = window.windowClass->record.style;
    const int width = window.width;
    const int height = window.height;
    const RECT box = ClientBox(window);
    Region inside;
    for (const RECT& part : window.update) {
        AddToRegion(inside,
                    {part.left, part.top, std::min(part.right, box.right), std::min(part.bottom, box.bottom)});
    }
    window.update = inside;
    if ((width != oldWidth && (style & CS_HREDRAW)) || (height != oldHeight && (style & CS_VREDRAW))) {
        InvalidateArea(window, box, true);
        return;
    }
    InvalidateArea(window, {oldWidth, 0, width, height}, true);
    InvalidateArea(window, {0, oldHeight, width, height}, true);
}

// Only HWND_TOP and HWND_TOPMOST change the order. HWND_NOTOPMOST takes a window out of the topmost ones, and here
// none is among them.
void Reorder(Window& window, HWND after)
{
    if (!IsTopLevel(window) || (after != HWND_TOP && after != HWND_TOPMOST)) {
        return;
    }
    Raise(window);
    if (window.hostWindow != nullptr) {
        host->raiseWindow(window.hostWindow);
    }
}

} // namespace

RECT ClientBox(const Window& window)
{
    return {0, 0, window.width, window.height};
}

void RefreshPlace(Window& window)
{
    if (window.hostWindow == nullptr) {
        return;
    }
    HostGeometry place = {};
    host->windowGeometry(window.hostWindow, &place);
    window.left = place.clientLeft;
    window.top = place.clientTop;
    if (window.kind != framedWindow) {
        return;
    }
    window.borders = {
        std::max(0, place.clientLeft - place.frame.left),
        std::max(0, place.clientTop - place.frame.top),
        std::max(0, place.frame.right - place.clientLeft - place.clientWidth),
        std::max(0, place.frame.bottom - place.clientTop - place.clientHeight),
    };
}

POINT ClientOrigin(const Window& window)
{
    POINT origin = {window.left, window.top};
    if (window.hostWindow != nullptr) {
        HostGeometry place = {};
        host->windowGeometry(window.hostWindow, &place);
        return {place.clientLeft, place.clientTop};
    }
    if (const Window* parent = Lookup(window.parent)) {
        POINT base = ClientOrigin(*parent);
        origin.x += base.x;
        origin.y += base.y;
    }
    return origin;
}

namespace {

// Takes over a new client size and tells the window. flags: SWP_ flags that go with the messages.
void AfterPlacement(HWND handle, int width, int height, UINT flags)
{
    Window* window = Lookup(handle);
    const int oldWidth = window->width;
    const int oldHeight = window->height;
    if (width == oldWidth && height == oldHeight) {
        flags |= keptClientSize;
    } else {
        window->width = width;
        window->height = height;
        ResizePicture(*window);
        if (!(flags & SWP_NOREDRAW)) {
            InvalidateAfterSizing(*window, oldWidth, oldHeight);
        }
    }
    if ((flags & keptClientSize) && (flags & keptClientPlace)) {
        return;
    }
    RECT frame = FrameBox(*window);
    WINDOWPOS position = {handle, nullptr, frame.left, frame.top, frame.right - frame.left, frame.bottom - frame.top,
                          flags};
    SendMessageA(handle, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&position));
    UpdateSizeLimitsOf(handle);
}

} // namespace

void HandleHostGeometry(HWND handle)
{
    Window* window = Lookup(handle);
    if ((window == nullptr) || (window->hostWindow == nullptr) || window->destroying) {
        return;
    }
    const int oldLeft = window->left;
    const int oldTop = window->top;
    HostGeometry place = {};
    host->windowGeometry(window->hostWindow, &place);
    RefreshPlace(*window);
    if (place.clientWidth <= 0 || place.clientHeight <= 0 ||
        (place.clientWidth == window->width && place.clientHeight == window->height)) {
        return;
    }
    const UINT flags = SWP_NOZORDER | SWP_NOACTIVATE;
    const bool moved = window->left != oldLeft || window->top != oldTop;
    AfterPlacement(handle, place.clientWidth, place.clientHeight, moved ? flags : flags | keptClientPlace);
}

void UpdateSizeLimits()
{
    for (size_t i = 0; i < user.windows.size(); i++) {
        UpdateSizeLimitsOf(user.windows[i]->handle);
    }
}

BOOL WINAPI SetWindowPos(HWND handle, HWND after, int x, int y, int width, int height, UINT flags)
{
    Window* window = Lookup(handle);
    if ((window == nullptr) || window->destroying) {
        return FALSE;
    }
    if (!(flags & SWP_NOZORDER)) {
        Reorder(*window, after);
    }
    const bool move = !(flags & SWP_NOMOVE);
    const bool size = !(flags & SWP_NOSIZE);
    if (!move && !size) {
        return TRUE;
    }
    if (!IsTopLevel(*window)) {
        if (move) {
            window->left = x;
            window->top = y;
        }
        if (size) {
            window->width = std::max(0, width);
            window->height = std::max(0, height);
        }
        if (window->kind == scrollBarWindow) {
            SyncScrollBar(*window);
        }
        return TRUE;
    }

    RefreshPlace(*window);
    const int oldLeft = window->left;
    const int oldTop = window->top;
    int clientWidth = window->width;
    int clientHeight = window->height;
    if (size) {
        if (HasTrackSizes(*window)) {
            const MINMAXINFO info = AskTrackSizes(handle);
            width = Limit(width, info.ptMinTrackSize.x, info.ptMaxTrackSize.x);
            height = Limit(height, info.ptMinTrackSize.y, info.ptMaxTrackSize.y);
            window = Lookup(handle);
            if (window == nullptr) {
                return FALSE;
            }
        }
        clientWidth = std::max(1, width - window->borders.left - window->borders.right);
        clientHeight = std::max(1, height - window->borders.top - window->borders.bottom);
    }
    const bool newSize = clientWidth != window->width || clientHeight != window->height;
    WidenLimits(*window, clientWidth, clientHeight);
    host->placeWindow(window->hostWindow, move ? x : hostDefaultPlace, move ? y : hostDefaultPlace,
                      newSize ? clientWidth : 0, newSize ? clientHeight : 0);
    RefreshPlace(*window);
    const bool moved = window->left != oldLeft || window->top != oldTop;
    AfterPlacement(handle, clientWidth, clientHeight, moved ? flags : flags | keptClientPlace);
    return TRUE;
}

BOOL WINAPI MoveWindow(HWND handle, int x, int y, int width, int height, BOOL repaint)
{
    return SetWindowPos(handle, HWND_TOP, x, y, width, height,
                        SWP_NOZORDER | SWP_NOACTIVATE | (repaint ? 0U : SWP_NOREDRAW));
}

BOOL WINAPI AdjustWindowRect(LPRECT rect, DWORD style, BOOL)
{
    if (rect == nullptr) {
        return FALSE;
    }
    Window* framed = FirstFramedWindow();
    if ((style & (WS_POPUP | WS_CHILD)) || (framed == nullptr)) {
        return TRUE;
    }
    RefreshPlace(*framed);
    rect->left -= framed->borders.left;
    rect->top -= framed->borders.top;
    rect->right += framed->borders.right;
    rect->bottom += framed->borders.bottom;
    return TRUE;
}

BOOL WINAPI GetClientRect(HWND handle, LPRECT rect)
{
    const Window* window = Lookup(handle);
    if ((window == nullptr) || (rect == nullptr)) {
        return FALSE;
    }
    *rect = ClientBox(*window);
    return TRUE;
}

BOOL WINAPI GetWindowRect(HWND handle, LPRECT rect)
{
    Window* window = Lookup(handle);
    if ((window == nullptr) || (rect == nullptr)) {
        return FALSE;
    }
    *rect = FrameBox(*window);
    return TRUE;
}

BOOL WINAPI ClientToScreen(HWND handle, LPPOINT point)
{
    const Window* window = Lookup(handle);
    if ((window == nullptr) || (point == nullptr)) {
        return FALSE;
    }
    POINT origin = ClientOrigin(*window);
    point->x += origin.x;
    point->y += origin.y;
    return TRUE;
}

// HWND_DESKTOP stands for the screen.
int WINAPI MapWindowPoints(HWND from, HWND to, LPPOINT points, UINT count)
{
    const Window* source = Lookup(from);
    const Window* target = Lookup(to);
    if (((from != nullptr) && (source == nullptr)) || ((to != nullptr) && (target == nullptr)) ||
        ((points == nullptr) && count > 0)) {
        return 0;
    }
    POINT offset = source != nullptr ? ClientOrigin(*source) : POINT{0, 0};
    if (target != nullptr) {
        POINT origin = ClientOrigin(*target);
        offset.x -= origin.x;
        offset.y -= origin.y;
    }
    for (UINT i = 0; i < count; i++) {
        points[i].x += offset.x;
        points[i].y += offset.y;
    }
    return static_cast<int>(MAKELONG(static_cast<WORD>(offset.x), static_cast<WORD>(offset.y)));
}

int WINAPI GetSystemMetrics(int index)
{
    int width = 0;
    int height = 0;
    ScreenSize(&width, &height);
    switch (index) {
    case SM_CXSCREEN:
        return width;
    case SM_CYSCREEN:
        return height;
    case SM_CXSMICON:
    case SM_CYSMICON:
        return 16;
    default:
        return 0;
    }
}
