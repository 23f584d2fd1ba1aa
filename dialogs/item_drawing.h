// What the parts of the dialog manager draw and measure with; dialog.h is the public side.
#pragma once

#include "dialogs/dialog.h"

constexpr COLORREF editActiveColour = 0x020000FF; // red
constexpr COLORREF editIdleColour = 0x02669ACC;   // tan
constexpr COLORREF pressedFaceColour = 0x02BBBBBB;

// The objects, colours and font of a port while something else is drawn into it. Between the calls the port is
// current.
struct SavedDrawing {
    WindowPtr port;
    WindowPtr previousPort;
    HGDIOBJ pen;
    HGDIOBJ font;
    COLORREF textColour;
    COLORREF textBackColour;
    COLORREF foreColour;
    COLORREF backColour;
    int32_t fontNumber;
    int32_t fontSize;
    int32_t fontStyle;
};
void BeginDrawing(WindowPtr port, SavedDrawing* saved);
void EndDrawing(const SavedDrawing* saved);

// Text in rect on a background, in the current port with font 3. justification as of TextBox.
void DrawTextInBox(const char* text, const Rect* rect, COLORREF textColour, COLORREF backColour, int size, int style,
                   int justification);
void CopyItemImage(const DialogItem* item); // the image of a check box's state, when there is one

// The height a static text of the default size needs in a rectangle of that width.
int StaticTextHeight(WindowPtr dialog, const char* text, int width);
// The width of a push button's text.
int ButtonTextWidth(WindowPtr dialog, const char* text);
