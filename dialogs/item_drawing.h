// What the parts of the dialog manager draw and measure with; dialog.h is the public side.
#pragma once

#include "dialogs/dialog.h"

constexpr COLORREF editActiveColour = 0x020000FF; // red
constexpr COLORREF editIdleColour = 0x02669ACC;   // tan
constexpr COLORREF pressedFaceColour = 0x02BBBBBB;

// Text in rect on a background, in the current port with font 3. justification as of TextBox.
void DrawTextInBox(const char* text, const Rect* rect, COLORREF textColour, COLORREF backColour, int size, int style,
                   int justification);
void CopyItemImage(const DialogItem* item); // the image of a check box's state, when there is one

// The width of a push button's text.
int ButtonTextWidth(WindowPtr dialog, const char* text);
