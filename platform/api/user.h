// Windows, messages, painting, menus, scroll bars, cursors, keys and pointer (USER32).
//
// Coordinates are 32 bits in records and 16 bits in message words, as on Windows. One thread owns all windows.
// Pop-up windows have no visible border: for them the frame and the client area are the same rectangle.
#pragma once

#include "platform/api/types.h"

// ---- messages ----

#define WM_NULL 0x0000
#define WM_CREATE 0x0001
#define WM_DESTROY 0x0002
#define WM_MOVE 0x0003
#define WM_SIZE 0x0005
#define WM_PAINT 0x000F
#define WM_CLOSE 0x0010
#define WM_QUERYENDSESSION 0x0011
#define WM_QUIT 0x0012
#define WM_ERASEBKGND 0x0014
#define WM_ENDSESSION 0x0016
#define WM_ACTIVATEAPP 0x001C
#define WM_GETMINMAXINFO 0x0024
#define WM_WINDOWPOSCHANGED 0x0047
#define WM_NCDESTROY 0x0082
#define WM_KEYFIRST 0x0100
#define WM_KEYDOWN 0x0100
#define WM_KEYUP 0x0101
#define WM_CHAR 0x0102
#define WM_SYSKEYDOWN 0x0104
#define WM_SYSKEYUP 0x0105
#define WM_KEYLAST 0x0109
#define WM_SYSCHAR 0x0106
#define WM_COMMAND 0x0111
#define WM_HSCROLL 0x0114
#define WM_VSCROLL 0x0115
#define WM_MOUSEMOVE 0x0200
#define WM_LBUTTONDOWN 0x0201
#define WM_LBUTTONUP 0x0202
#define WM_RBUTTONDOWN 0x0204
#define WM_RBUTTONUP 0x0205
#define WM_MOUSEWHEEL 0x020A
#define WM_SIZING 0x0214

typedef struct tagMSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
} MSG, *LPMSG;

// The second parameter of WM_QUERYENDSESSION and WM_ENDSESSION, the only one given here. SIGTERM, SIGHUP, SIGINT and
// a lost display end the session: every top-level window gets the first message, then, whatever they answered, every
// one the second with TRUE. They come before all that is queued, as soon as the program takes or looks for a message,
// with any filter. From then on the pointer's buttons are up and file dialogs are cancelled. Departs from Windows,
// which ends the process when the second message was handled: here the program goes on and has to end by itself.
#define ENDSESSION_CRITICAL 0x40000000

#define PM_NOREMOVE 0x0000
#define PM_REMOVE 0x0001

// Never blocks for the program; with nothing to do it lets the host wait up to about 10 ms for the next event, so
// that a polling loop leaves the processor free. A WM_PAINT is made up only when nothing else waits and a window has
// an update region; it comes again until the region is validated. What Windows sends rather than posts (sizes,
// activation, scrolling, close requests) reaches the window procedures from inside this call.
BOOL WINAPI PeekMessageA(LPMSG message, HWND window, UINT first, UINT last, UINT remove);

#define QS_ALLINPUT 0x04FF
#define MWMO_INPUTAVAILABLE 0x0004
#define WAIT_OBJECT_0 0
#define WAIT_TIMEOUT 258
#define WAIT_FAILED 0xFFFFFFFF

// Waits until a message is there, a WM_PAINT among them, or the time is over. Only without handles, with QS_ALLINPUT
// and MWMO_INPUTAVAILABLE; anything else fails.
DWORD WINAPI MsgWaitForMultipleObjectsEx(DWORD count, const HANDLE* handles, DWORD milliseconds, DWORD wakeMask,
                                         DWORD flags);
LRESULT WINAPI DispatchMessageA(const MSG* message);
// Posts the WM_CHAR (WM_SYSCHAR) of a key that has a character, ahead of all input. Departs from Windows, where it is
// TRUE for every key-down message: TRUE only when it posted a WM_CHAR. Bits 16 to 23 of a key message's lParam, the
// scan code on Windows, carry the character here.
BOOL WINAPI TranslateMessage(const MSG* message);
LRESULT WINAPI SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BOOL WINAPI PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT WINAPI DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// ---- classes and windows ----

#define CS_VREDRAW 0x0001
#define CS_HREDRAW 0x0002
#define CS_OWNDC 0x0020
#define CS_NOCLOSE 0x0200

typedef struct tagWNDCLASSEXA {
    UINT cbSize;
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCSTR lpszMenuName;
    LPCSTR lpszClassName;
    HICON hIconSm;
} WNDCLASSEXA;

typedef struct tagWNDCLASSA {
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCSTR lpszMenuName;
    LPCSTR lpszClassName;
} WNDCLASSA;

ATOM WINAPI RegisterClassExA(const WNDCLASSEXA* record);
BOOL WINAPI GetClassInfoA(HINSTANCE instance, LPCSTR name, WNDCLASSA* record);

#define WS_OVERLAPPED 0x00000000
#define WS_POPUP 0x80000000
#define WS_CHILD 0x40000000
#define WS_VISIBLE 0x10000000
#define WS_CLIPSIBLINGS 0x04000000
#define WS_CLIPCHILDREN 0x02000000
#define WS_CAPTION 0x00C00000
#define WS_BORDER 0x00800000
#define WS_VSCROLL 0x00200000
#define WS_SYSMENU 0x00080000
#define WS_THICKFRAME 0x00040000
#define WS_MINIMIZEBOX 0x00020000
#define WS_MAXIMIZEBOX 0x00010000
#define WS_OVERLAPPEDWINDOW                                                                                          \
    (WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX)
#define SBS_HORZ 0x0000
#define SBS_VERT 0x0001
#define CW_USEDEFAULT ((int)0x80000000)

// The class "SCROLLBAR" is there without registration: a native scroll bar, a child of an overlapped window, whose
// notifications go to that window. Child windows of other classes are not shown.
HWND WINAPI CreateWindowExA(DWORD extendedStyle, LPCSTR className, LPCSTR title, DWORD style, int x, int y, int width,
                            int height, HWND parent, HMENU menuOrId, HINSTANCE instance, LPVOID parameter);
BOOL WINAPI DestroyWindow(HWND window);
BOOL WINAPI IsWindow(HWND window);
BOOL WINAPI SetWindowTextA(HWND window, LPCSTR text);
int WINAPI GetWindowTextA(HWND window, LPSTR buffer, int size);
LONG_PTR WINAPI GetWindowLongPtrA(HWND window, int index); // index: byte offset into the class's extra window bytes
LONG_PTR WINAPI SetWindowLongPtrA(HWND window, int index, LONG_PTR value);

#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_SHOWNOACTIVATE 4
#define SW_SHOW 5
#define SWP_NOSIZE 0x0001
#define SWP_NOMOVE 0x0002
#define SWP_NOZORDER 0x0004
#define SWP_NOREDRAW 0x0008
#define SWP_NOACTIVATE 0x0010
#define SWP_NOCOPYBITS 0x0100
#define HWND_TOP ((HWND)0)
#define HWND_TOPMOST ((HWND)-1)
#define HWND_NOTOPMOST ((HWND)-2)
#define HWND_DESKTOP ((HWND)0)

typedef struct tagWINDOWPOS {
    HWND hwnd;
    HWND hwndInsertAfter;
    int x;
    int y;
    int cx;
    int cy;
    UINT flags;
} WINDOWPOS;

typedef struct tagMINMAXINFO {
    POINT ptReserved;
    POINT ptMaxSize;
    POINT ptMaxPosition;
    POINT ptMinTrackSize;
    POINT ptMaxTrackSize;
} MINMAXINFO;

#define WMSZ_LEFT 1
#define WMSZ_RIGHT 2
#define WMSZ_TOP 3
#define WMSZ_TOPLEFT 4
#define WMSZ_TOPRIGHT 5
#define WMSZ_BOTTOM 6
#define WMSZ_BOTTOMLEFT 7
#define WMSZ_BOTTOMRIGHT 8

BOOL WINAPI ShowWindow(HWND window, int how);
// Of the order only HWND_TOP and HWND_TOPMOST change anything. A client area is at least 1 pixel wide and high.
BOOL WINAPI SetWindowPos(HWND window, HWND after, int x, int y, int width, int height, UINT flags);
BOOL WINAPI MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
// Grows a client rectangle to the frame's. Frames are the window manager's: their widths are those that the
// overlapped window has now (0 before it was shown, or where there is no window manager).
BOOL WINAPI AdjustWindowRect(LPRECT rect, DWORD style, BOOL menu);
BOOL WINAPI GetClientRect(HWND window, LPRECT rect);
BOOL WINAPI GetWindowRect(HWND window, LPRECT rect);
BOOL WINAPI ClientToScreen(HWND window, LPPOINT point);
int WINAPI MapWindowPoints(HWND from, HWND to, LPPOINT points, UINT count);
// The program's own windows only: the one that the window manager has topmost and that is no child, or none.
HWND WINAPI GetTopWindow(HWND parent);
HWND WINAPI WindowFromPoint(POINT place); // the program's own, no child; none where another program's shows
HWND WINAPI GetForegroundWindow();
HWND WINAPI SetCapture(HWND window);
BOOL WINAPI ReleaseCapture();

#define SM_CXSCREEN 0
#define SM_CYSCREEN 1
#define SM_CXSMICON 49
#define SM_CYSMICON 50
int WINAPI GetSystemMetrics(int index);

// ---- painting ----

typedef struct tagPAINTSTRUCT {
    HDC hdc;
    BOOL fErase;
    RECT rcPaint; // in the device context's logical coordinates
    BOOL fRestore;
    BOOL fIncUpdate;
    BYTE rgbReserved[32];
} PAINTSTRUCT;

HDC WINAPI BeginPaint(HWND window, PAINTSTRUCT* paint);
BOOL WINAPI EndPaint(HWND window, const PAINTSTRUCT* paint);
BOOL WINAPI InvalidateRect(HWND window, const RECT* rect, BOOL erase); // client coordinates; null for the whole area
BOOL WINAPI ValidateRect(HWND window, const RECT* rect);
BOOL WINAPI UpdateWindow(HWND window);

// ---- rectangles ----

BOOL WINAPI OffsetRect(LPRECT rect, int dx, int dy);
BOOL WINAPI InflateRect(LPRECT rect, int dx, int dy);
BOOL WINAPI EqualRect(const RECT* first, const RECT* second);
BOOL WINAPI PtInRect(const RECT* rect, POINT point);

// ---- menus ----

#define MF_ENABLED 0x0000
#define MF_GRAYED 0x0001
#define MF_DISABLED 0x0002
#define MF_UNCHECKED 0x0000
#define MF_CHECKED 0x0008
#define MF_BYCOMMAND 0x0000
#define MF_BYPOSITION 0x0400
#define MF_SEPARATOR 0x0800
#define MF_UNHILITE 0x0000
#define MF_HILITE 0x0080

HMENU WINAPI GetMenu(HWND window);
HMENU WINAPI GetSubMenu(HMENU menu, int position);
int WINAPI GetMenuItemCount(HMENU menu); // separators included; -1 for none
// (UINT)-1 when there is no such item. For a title in the bar the low byte holds the flags.
UINT WINAPI GetMenuState(HMENU menu, UINT item, UINT flags);
BOOL WINAPI EnableMenuItem(HMENU menu, UINT item, UINT flags);
DWORD WINAPI CheckMenuItem(HMENU menu, UINT item, UINT flags);
BOOL WINAPI HiliteMenuItem(HWND window, HMENU menu, UINT item, UINT flags);
BOOL WINAPI DrawMenuBar(HWND window);
HACCEL WINAPI LoadAcceleratorsA(HINSTANCE instance, LPCSTR name);

// ---- scroll bars ----

#define SB_CTL 2
#define SB_LINEUP 0
#define SB_LINELEFT 0
#define SB_LINEDOWN 1
#define SB_LINERIGHT 1
#define SB_PAGEUP 2
#define SB_PAGELEFT 2
#define SB_PAGEDOWN 3
#define SB_PAGERIGHT 3
#define SB_THUMBPOSITION 4
#define SB_THUMBTRACK 5
#define SB_TOP 6
#define SB_ENDSCROLL 8
#define SIF_RANGE 0x0001
#define SIF_PAGE 0x0002
#define SIF_POS 0x0004
#define SIF_ALL 0x0017

typedef struct tagSCROLLINFO {
    UINT cbSize;
    UINT fMask;
    int nMin;
    int nMax;
    UINT nPage;
    int nPos;
    int nTrackPos;
} SCROLLINFO;

// Only SB_CTL. The position is held between nMin and nMax - nPage + 1; returns the position after the call.
int WINAPI SetScrollInfo(HWND bar, int which, const SCROLLINFO* info, BOOL redraw);
BOOL WINAPI GetScrollInfo(HWND bar, int which, SCROLLINFO* info);

// ---- cursors and icons ----

#define IDC_ARROW MAKEINTRESOURCEA(32512)
#define IDC_WAIT MAKEINTRESOURCEA(32514)
#define IMAGE_BITMAP 0
#define IMAGE_ICON 1
#define LR_DEFAULTCOLOR 0x0000
#define LR_LOADFROMFILE 0x0010
#define LR_CREATEDIBSECTION 0x2000

HCURSOR WINAPI LoadCursorA(HINSTANCE instance, LPCSTR name);
BOOL WINAPI DestroyCursor(HCURSOR cursor); // FALSE for system cursors, which are never destroyed
HCURSOR WINAPI SetCursor(HCURSOR cursor);
int WINAPI ShowCursor(BOOL show);
HICON WINAPI LoadIconA(HINSTANCE instance, LPCSTR name);
// Icons from the resources, or with IMAGE_BITMAP and LR_LOADFROMFILE a Windows or OS/2 bitmap file: 1, 4, 8, 16, 24
// and 32 bits, run lengths, both row orders. Null when the file cannot be read, is damaged, holds less than its
// header claims, or is larger than 16384 pixels a side.
HANDLE WINAPI LoadImageA(HINSTANCE instance, LPCSTR name, UINT type, int width, int height, UINT flags);

// ---- keys and pointer ----

#define VK_LBUTTON 0x01
#define VK_RBUTTON 0x02
#define VK_BACK 0x08
#define VK_TAB 0x09
#define VK_RETURN 0x0D
#define VK_SHIFT 0x10
#define VK_CONTROL 0x11
#define VK_MENU 0x12
#define VK_ESCAPE 0x1B
#define VK_SPACE 0x20
#define VK_END 0x23
#define VK_HOME 0x24
#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28
#define VK_DELETE 0x2E
#define VK_MULTIPLY 0x6A
#define VK_ADD 0x6B
#define VK_DIVIDE 0x6F
#define VK_F1 0x70
#define VK_F2 0x71
#define VK_F3 0x72
#define VK_F4 0x73
#define VK_F5 0x74
#define VK_F6 0x75
#define VK_F7 0x76
#define VK_F8 0x77
#define VK_F9 0x78
#define VK_F10 0x79
#define VK_OEM_PLUS 0xBB

// The state as of the last message taken. The keys Alt and Super both count as VK_MENU.
SHORT WINAPI GetKeyState(int key);
// The device's state now; handles no message. Drawing made since the last look reaches the screen by then.
SHORT WINAPI GetAsyncKeyState(int key);
BOOL WINAPI GetCursorPos(LPPOINT point);
BOOL WINAPI SetCursorPos(int x, int y);

typedef struct tagMOUSEMOVEPOINT {
    int x; // screen coordinates
    int y;
    DWORD time;
    ULONG_PTR dwExtraInfo;
} MOUSEMOVEPOINT;

#define GMMP_USE_DISPLAY_POINTS 1
// The last positions that the pointer reported, newest first; returns their number, -1 on bad arguments. Up to 1024
// are kept and may be asked for, where Windows has 64: a program that is held up for a moment would lose part of a
// stroke. point is the newest position to start from; here its coordinates and time are not used to search: all are
// returned.
int WINAPI GetMouseMovePointsEx(UINT size, MOUSEMOVEPOINT* point, MOUSEMOVEPOINT* buffer, int count,
                                DWORD resolution);

#define MB_ICONASTERISK 0x00000040
BOOL WINAPI MessageBeep(UINT type);

// ---- entry point ----

// Defined by the program.
int WINAPI WinMain(HINSTANCE instance, HINSTANCE previousInstance, LPSTR commandLine, int showCommand);

// ---- strings ----

// Copies the text of a string resource, at most size - 1 bytes; returns its length, 0 (and an empty buffer) when
// there is none.
int WINAPI LoadStringA(HINSTANCE instance, UINT id, LPSTR buffer, int size);
