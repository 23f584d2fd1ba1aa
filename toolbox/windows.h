// Windows in the Toolbox's style, over the platform's: made by kind number, found by part code, dragged and grown
// with an outline, invalidated through the current port.
#pragma once

#include "toolbox/drawing.h"

enum WindowPart { inDesk = 0, inMenuBar = 1, inContent = 3, inDrag = 4, inGrow = 5, inGoAway = 6 };

// The window's record, from its first extra word; null for windows that have none.
WindowPtr WindowRecord(HWND window);

// bounds: the wanted client area on the screen, all zero to let the platform choose. behind: -1 for in front of all,
// a window, or null. Kinds: 0 and 2 pop-up, 99 the map window, 997 to 999 child windows, any other a plain window.
// The last two words are not used. Null when the window or its record could not be made.
WindowPtr NewWindow(const char* className, WindowPtr parent, const Rect* bounds, const char* title, int visible,
                    int kind, WindowPtr behind, int hasCloseBox, intptr_t referenceValue);
#define FRONT_WINDOW (reinterpret_cast<WindowPtr>(static_cast<intptr_t>(-1)))

// Classifies the current event; the point is not used.
int16_t FindWindow(Point where, WindowPtr* window);
void DragWindow(WindowPtr window, Point start, const Rect* bounds);
// The map window only. limits: left and right the least and greatest width, top and bottom those of the height.
// Returns (height << 16) | width.
uint32_t GrowWindow(uintptr_t unused1, uintptr_t unused2, const Rect* limits);
void MoveWindowTo(WindowPtr window, int h, int v, int front);
void SizeWindow(WindowPtr window, int width, int height, int update);
void BeginUpdate(WindowPtr window);
void EndUpdate(WindowPtr window);
void InvalRect(const Rect* rect); // the current port's coordinates; null for the whole window
void ValidRect(const Rect* rect);
void GetWindowContentRect(WindowPtr window, Rect* rect); // client area, origin (0, 0)
void GetWindowFrameRect(WindowPtr window, Rect* rect);   // whole window on the screen
void SetWTitle(WindowPtr window, const char* title);
void GetWTitle(WindowPtr window, char* title); // 255 bytes
void ShowWindowInactive(WindowPtr window);
void ShowHide(WindowPtr window, int show);
void BringToTop(WindowPtr window);
// Brings the window to the top unless it is there already. Cheap enough for every turn of a loop.
void KeepOnTop(WindowPtr window);
// Whether the user can see the window now: no other one of ours lies over it, and nobody else's over all of it.
bool IsInSight(WindowPtr window);

// Draws the rectangle's outline on the screen, or removes the one that is there.
void ScreenOutline(const Rect* rect);

// Ties a record and its window together (the window's first extra word) and fills it in: device context, initial
// objects, text alignment, black on white, plain Arial 10, palette, content and port rectangle. Shared with the
// dialog manager, which then sets its own font and colours.
void PrepareWindowPort(WindowPtr port, HWND window);
// Parts a record from its window, on WM_DESTROY: the initial objects go back, the displaced ones are deleted, window
// and device context become null. The record stays for loops that still name it.
void DetachWindowPort(WindowPtr port);
// The same, and frees the record. None is ignored.
void ReleaseWindowPort(WindowPtr port);
WindowPtr NewPortRecord(); // zero-filled; null when memory is short
void FreePortRecord(WindowPtr port);

// Recomputes contentRect and portRect from the client area, in the port's logical coordinates.
void RefreshContentRect(WindowPtr window);

LRESULT CALLBACK ScrollSubWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK InfoWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
