// The map window: its layout, painting, scrolling, sizing and moving. What other layers call of it is declared in
// toolbox/shell_door.h.
#pragma once

#include "toolbox/shell_door.h"

constexpr int statusStripHeight = 18;
constexpr int scrollBarWidth = 16;
constexpr int growBoxSize = 16;
constexpr int moveStripHeight = 10;
constexpr int minContentWidth = 370;
constexpr int minContentHeight = 300;

bool MapWindowExists();  // false before it is made and after it was destroyed
void DestroyMapWindow(); // and frees its record; for shutdown
void MakeProgramTitle(char* title);

// The view rectangle that belongs to the window's port rectangle.
Rect ViewRectOfPort();
// Takes the window's new client size: port and view rectangles.
void TakeClientSize();
// Moves the view back into the map after a change of size, and the drawing origin with it.
void KeepViewInMap();
void CreateScrollBars();
void DestroyScrollBars();

void DoGrow();
void MoveMapWindowByHand(Point click); // click: on the screen
void ValidateMapRect(const Rect* rect);
void InvalidateStatusStrip();

LRESULT CALLBACK MapWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
