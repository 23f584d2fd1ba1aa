// The window layer's state and the calls between its files. Handles are numbers that are never used twice; the record
// of a handle is looked up again after every call of a window procedure, which may have destroyed the window.
#pragma once

#include "platform/api/gdi.h"
#include "platform/api/kernel.h"
#include "platform/api/user.h"
#include "platform/gdi/surface.h"
#include "platform/host/host.h"
#include "platform/user/region.h"

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct WindowClass {
    std::string name;
    WNDCLASSEXA record; // its texts point at name, menuName or are resource numbers
    std::string menuName;
};

enum WindowKind {
    framedWindow,
    popupWindow,
    scrollBarWindow,
    childWindow, // not shown
};

// Frame widths around the client area.
struct FrameBorders {
    int left;
    int top;
    int right;
    int bottom;
};

struct SizeLimits { // client sizes
    int minWidth;
    int minHeight;
    int maxWidth;
    int maxHeight;
    bool operator==(const SizeLimits&) const = default;
};

struct Window {
    HWND handle = nullptr;
    const WindowClass* windowClass = nullptr;
    WindowKind kind = framedWindow;
    DWORD style = 0;
    HWND parent = nullptr; // of a child
    HWND owner = nullptr;  // of a pop-up
    std::string title;
    std::vector<uint8_t> extra;
    bool visible = false;
    bool destroying = false;
    bool firstShowPending = false; // WM_SIZE and WM_MOVE wait for the first show

    // The client area, on the screen or for a child in its parent's client area. The size is ours, the position of a
    // framed window is what the host told last.
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    FrameBorders borders = {};
    SizeLimits sentLimits = {};

    HostWindow* hostWindow = nullptr;
    HostScrollBar* hostBar = nullptr;
    Surface picture = {};
    std::vector<uint32_t> pixels;
    HDC dc = nullptr;
    Region update;
    bool erasePending = false;
    HMENU menu = nullptr;
    SCROLLINFO scroll = {};
};

struct UserState {
    std::vector<std::unique_ptr<WindowClass>> classes;
    std::vector<std::unique_ptr<Window>> windows;
    std::vector<HWND> zOrder; // framed and pop-up windows, topmost first
    uintptr_t nextHandle = 0x10010;
    HWND capture = nullptr;
    HWND foreground = nullptr;
    bool programActive = false;

    std::deque<MSG> posted;      // taken before input
    bool sessionEnds = false;    // the windows are still to be told
    std::deque<HostEvent> input; // in the order in which it happened; becomes messages when it is taken
    unsigned keyModifiers = 0;   // as of the last message taken
    unsigned keyButtons = 0;
    std::vector<MOUSEMOVEPOINT> moveHistory; // oldest first
    bool keyDown[256] = {};                  // as of the last message taken
    bool keyDownNow[256] = {};
    uint64_t collected = 0;      // events taken from the host so far
    bool limitsMayDiffer = true; // the program had something to do since it was asked for its size limits
    uint32_t lastPresent = 0;
};

extern UserState user;

// ---- windows (window.cpp, create_window.cpp, geometry.cpp) ----

Window* Lookup(HWND handle); // null for dead handles
Window* LookupBar(const HostScrollBar* bar);
Window* FirstFramedWindow();
bool IsTopLevel(const Window& window);
LRESULT CallProcedure(const Window& window, UINT message, WPARAM wParam, LPARAM lParam);
void SendSizeAndMove(HWND handle); // a new window's first WM_SIZE and WM_MOVE
void RemoveWindow(HWND handle);    // all that it holds, its record and its place in the order

RECT ClientBox(const Window& window);     // origin (0, 0)
POINT ClientOrigin(const Window& window); // on the screen, now
// Takes the position and the frame widths from the host.
void RefreshPlace(Window& window);
void HandleHostGeometry(HWND handle);
void UpdateSizeLimits();
void Raise(Window& window);
void SetForeground(HWND handle);

constexpr UINT keptClientSize = 0x0800; // further SWP_ bits of WM_WINDOWPOSCHANGED, as Windows uses them
constexpr UINT keptClientPlace = 0x1000;

// ---- pictures (picture.cpp) ----

void ResizePicture(Window& window);
HDC DCOfWindow(Window& window);
void ReleasePicture(Window& window);
// Brings all drawing and the outline to the screen.
void PresentAll();

// ---- painting (paint.cpp) ----

void InvalidateArea(Window& window, const RECT& area, bool erase);
// The topmost visible window with an update region that the filter lets through; null for none.
Window* WindowToPaint(HWND filter);

// ---- messages and input (message.cpp, input.cpp) ----

// Takes events from the host into the queue, waiting up to waitMilliseconds for the first. Returns whether any came.
bool CollectEvents(int waitMilliseconds);
// The message that an input event becomes; false when its window is gone or the event means nothing.
bool MessageOfEvent(const HostEvent& event, MSG* message);
bool IsSentEvent(const HostEvent& event); // reaches the window procedures directly
void DeliverSentEvent(const HostEvent& event);
// Tells every window that the session ends.
void DeliverSessionEnd();
// Brings the key state up to this event, which is being taken.
void TakeKeyState(const HostEvent& event);
void DropMessagesOf(HWND handle);

// ---- menus, scroll bars, cursors, outline ----

HMENU LoadMenuOfClass(const WindowClass& windowClass);
void AttachMenu(Window& window);
void DestroyMenuOf(Window& window);
bool IsMenuChoiceEnabled(HMENU menu, UINT command);
void DestroyAllMenus();

void SyncScrollBar(Window& bar); // makes, replaces or removes the host's bar

void ShowIcons(const Window& window);
void DestroyAllImages();

HDC ScreenDC();
void ShowPendingOutline();
void ForgetOutline();
