#include "toolbox/windows.h"

#include "toolbox/conversions.h"
#include "toolbox/shell_door.h"

// ---- records and parts ----

WindowPtr WindowRecord(HWND window)
{
    // Scroll bars are the platform's own: their extra words, if any, are not ours.
    if (window == nullptr || window == view.horizontalScrollBar || window == view.verticalScrollBar) {
        return nullptr;
    }
    return reinterpret_cast<WindowPtr>(GetWindowLongPtrA(window, 0));
}

namespace {

WindowPtr PressedWindow(HWND window)
{
    if (window != nullptr && (window == view.horizontalScrollBar || window == view.verticalScrollBar)) {
        return shell.mapWindow;
    }
    return WindowRecord(window);
}

int16_t PartOfItem(WindowPtr window)
{
    constexpr int closeBoxKind = 6;
    constexpr int titleBarKind = 7;
    constexpr int rightTitleBoxKind = 26;

    const SavedPort saved = UsePort(window);
    Point point = currentEvent.where;
    GlobalToLocal(&point);
    RestorePort(saved);
    DialogItem* item = nullptr;
    if (!FindItemAt(point, window, &item)) {
        return inContent;
    }
    switch (DialogItemKind(item)) {
    case closeBoxKind:
    case rightTitleBoxKind:
        return inGoAway;
    case titleBarKind:
        return inDrag;
    default:
        return inContent;
    }
}

} // namespace

int16_t FindWindow(Point, WindowPtr* window)
{
    const MSG& message = currentEvent.platformMessage;
    *window = nullptr;
    if (message.message == WM_COMMAND && message.wParam < 0x10000) {
        return inMenuBar;
    }
    if (message.message != WM_LBUTTONDOWN && message.message != WM_RBUTTONDOWN) {
        *window = WindowRecord(message.hwnd);
        return inDesk;
    }
    *window = PressedWindow(message.hwnd);
    return *window != nullptr ? PartOfItem(*window) : static_cast<int16_t>(inContent);
}

// ---- making ----

enum NewWindowKind {
    popUpKind = 0,
    otherPopUpKind = 2,
    mapWindowKind = 99,
    mapChildKind = 997,
    childKind = 998,
    lastChildKind = 999
};

struct WindowStyles {
    DWORD frame; // for sizing the frame
    DWORD window;
};

namespace {

WindowStyles StylesOfKind(int kind)
{
    constexpr DWORD popUp = WS_POPUP | WS_BORDER;
    constexpr DWORD scrollingChild = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_BORDER | WS_VSCROLL;
    constexpr DWORD plain = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
    switch (kind) {
    case popUpKind:
    case otherPopUpKind:
        return {popUp, popUp};
    case mapWindowKind:
        return {WS_OVERLAPPEDWINDOW, WS_OVERLAPPEDWINDOW};
    case mapChildKind:
        return {popUp, WS_CHILD | WS_VISIBLE | WS_BORDER};
    case childKind:
    case lastChildKind:
        return {scrollingChild, scrollingChild};
    default:
        return {plain, plain};
    }
}

HWND CreatePlatformWindow(const char* className, WindowPtr parent, const Rect* bounds, const char* title, int kind)
{
    const WindowStyles styles = StylesOfKind(kind);
    WNDCLASSA windowClass = {};
    const bool hasMenu =
        GetClassInfoA(shell.appInstance, className, &windowClass) && windowClass.lpszMenuName != nullptr;
    RECT frame = PlatformRect(bounds);
    AdjustWindowRect(&frame, styles.frame, hasMenu);
    const int width = frame.right - frame.left;
    const int height = frame.bottom - frame.top;

    if (kind >= mapChildKind && kind <= lastChildKind) {
        const WindowPtr owner = kind == mapChildKind ? shell.mapWindow : parent;
        // A child window has its number in the place of the menu.
        const HMENU childNumber = reinterpret_cast<HMENU>(static_cast<UINT_PTR>(kind));
        return CreateWindowExA(0, className, title, styles.window, frame.left, frame.top, width, height,
                               owner != nullptr ? owner->window : nullptr, childNumber, shell.appInstance, nullptr);
    }
    if (EmptyRect(bounds)) {
        return CreateWindowExA(0, className, title, styles.window, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                               CW_USEDEFAULT, nullptr, nullptr, shell.appInstance, nullptr);
    }
    return CreateWindowExA(0, className, title, styles.window, frame.left, frame.top, width, height, nullptr, nullptr,
                           shell.appInstance, nullptr);
}

void PlaceBehind(HWND window, WindowPtr behind)
{
    if (behind != nullptr) {
        SetWindowPos(window, behind == FRONT_WINDOW ? HWND_NOTOPMOST : behind->window, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE);
    }
}

} // namespace

WindowPtr NewWindow(const char* className, WindowPtr parent, const Rect* bounds, const char* title, int visible,
                    int kind, WindowPtr behind, int, intptr_t)
{
    const HWND window = CreatePlatformWindow(className, parent, bounds, title, kind);
    if (window == nullptr) {
        return nullptr;
    }
    const WindowPtr port = NewPortRecord();
    if (port == nullptr) {
        DestroyWindow(window);
        return nullptr;
    }
    PrepareWindowPort(port, window);
    PlaceBehind(window, behind);
    if (visible) {
        ShowWindow(window, SW_SHOWNORMAL);
    }
    return port;
}

// ---- place, size, order ----

namespace {

// The frame that the window would have around this client area on the screen. Measured on the window itself, because
// its style is not kept; a window that was never shown has the frame that the platform gives it then.
RECT FrameAround(HWND window, const RECT& wanted)
{
    RECT frame = {};
    RECT client = {};
    POINT corner = {};
    GetWindowRect(window, &frame);
    GetClientRect(window, &client);
    ClientToScreen(window, &corner);
    return {wanted.left - (corner.x - frame.left), wanted.top - (corner.y - frame.top),
            wanted.right + (frame.right - (corner.x + client.right)),
            wanted.bottom + (frame.bottom - (corner.y + client.bottom))};
}

} // namespace

void MoveWindowTo(WindowPtr window, int h, int v, int front)
{
    RECT client = {};
    GetClientRect(window->window, &client);
    const RECT frame = FrameAround(window->window, {h, v, h + client.right, v + client.bottom});
    MoveWindow(window->window, frame.left, frame.top, frame.right - frame.left, frame.bottom - frame.top, TRUE);
    if (front) {
        SetWindowPos(window->window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    }
}

void SizeWindow(WindowPtr window, int width, int height, int update)
{
    if (width == 0 && height == 0) {
        return;
    }
    const RECT frame = FrameAround(window->window, {0, 0, width, height});
    constexpr UINT flags = SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS;
    SetWindowPos(window->window, nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top,
                 update ? flags : flags | SWP_NOREDRAW);
    RefreshContentRect(window);
}

void ShowWindowInactive(WindowPtr window)
{
    if (window != nullptr) {
        ShowWindow(window->window, SW_SHOWNOACTIVATE);
    }
}

void ShowHide(WindowPtr window, int show)
{
    if (window != nullptr && window->window != nullptr) {
        ShowWindow(window->window, show ? SW_SHOW : SW_HIDE);
    }
}

void BringToTop(WindowPtr window)
{
    if (window != nullptr) {
        SetWindowPos(window->window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
}

void KeepOnTop(WindowPtr window)
{
    if (window != nullptr && GetTopWindow(HWND_DESKTOP) != window->window) {
        BringToTop(window);
    }
}

bool IsInSight(WindowPtr window)
{
    constexpr int looks = 5; // along each side
    RECT frame = {};
    GetWindowRect(window->window, &frame);
    bool seen = false;
    for (int i = 0; i < looks * looks; i++) {
        const LONG across = (2 * (i % looks) + 1) * (frame.right - frame.left) / (2 * looks);
        const LONG down = (2 * (i / looks) + 1) * (frame.bottom - frame.top) / (2 * looks);
        const HWND shown = WindowFromPoint({frame.left + across, frame.top + down});
        if (shown != nullptr && shown != window->window) {
            return false;
        }
        seen = seen || shown != nullptr;
    }
    return seen;
}

void GetWindowContentRect(WindowPtr window, Rect* rect)
{
    *rect = RectFrom(LogicalClientRect(window->window, nullptr));
}

void GetWindowFrameRect(WindowPtr window, Rect* rect)
{
    RECT frame = {};
    GetWindowRect(window->window, &frame);
    *rect = RectFrom(frame);
}

void SetWTitle(WindowPtr window, const char* title)
{
    SetWindowTextA(window->window, title);
}

void GetWTitle(WindowPtr window, char* title)
{
    constexpr int titleSize = 255;
    title[0] = '\0';
    GetWindowTextA(window->window, title, titleSize);
}

// ---- updates ----

namespace {

PAINTSTRUCT updateInProgress;

} // namespace

void BeginUpdate(WindowPtr window)
{
    if (window != nullptr) {
        BeginPaint(window->window, &updateInProgress);
    }
}

void EndUpdate(WindowPtr window)
{
    if (window != nullptr) {
        EndPaint(window->window, &updateInProgress);
    }
}

namespace {

// The rectangle in client coordinates of the current port's window.
RECT ClientForm(const Rect* rect)
{
    if (currentPort != shell.mapWindow) {
        return PlatformRect(rect);
    }
    POINT corners[2] = {{rect->left, rect->top}, {rect->right, rect->bottom}};
    LPtoDP(shell.mapWindowDC, corners, 2);
    return {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
}

} // namespace

void InvalRect(const Rect* rect)
{
    if (currentPort == nullptr || currentPort->window == nullptr) {
        return;
    }
    if (rect == nullptr) {
        InvalidateRect(currentPort->window, nullptr, FALSE);
        return;
    }
    const RECT area = ClientForm(rect);
    InvalidateRect(currentPort->window, &area, FALSE);
}

void ValidRect(const Rect* rect)
{
    if (currentPort == nullptr || currentPort->window == nullptr) {
        return;
    }
    if (rect == nullptr) {
        ValidateRect(currentPort->window, nullptr);
        return;
    }
    const RECT area = ClientForm(rect);
    ValidateRect(currentPort->window, &area);
}
