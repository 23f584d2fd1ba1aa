// The map window: its layout, painting, scrolling, sizing and moving. What other layers call of it is declared in
// toolbox/shell_door.h.
#pragma once

#include "toolbox/shell_door.h"

constexpr int statusStripHeight = 18;
constexpr int minContentWidth = 370;
constexpr int minContentHeight = 300;

bool MapWindowExists();  // false before it is made and after it was destroyed
void DestroyMapWindow(); // and frees its record; for shutdown
void MakeProgramTitle(char* title);

// ---- layout, in map coordinates: the places in the window's port rectangle ----

Rect ViewRectOfPort(); // what is left for the map beside the strip and, when there are some, the scroll bars
Rect StatusStripRect();
Rect MoveStripRect();       // along the top, takes the click that moves the window by hand
Rect GrowBoxRect();         // the bottom-right corner, takes the click that resizes
Rect GrowBoxImageRect();    // the right end of the status strip and as much above it
Rect VerticalBarRect();     // beside the view
Rect HorizontalBarRect();   // below the view
Rect ScrollBarCornerRect(); // between the bars

struct ContentSize {
    int width;
    int height;
};
// The content area that shows the whole map above the status strip, with or without scroll bars.
ContentSize ContentSizeOfMap(bool withScrollBars);

// ---- size and scroll bars ----

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
