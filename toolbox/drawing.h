// Ports, rectangles, pens, colours, lines, fills and text. Everything without a device context among its arguments
// draws into the current port and reads its colours. Nothing here reports failure. Only toolbox/ turns our rectangles
// and points into the platform's.
#pragma once

#include "toolbox/types.h"

// One for every window, dialog and offscreen surface; in a zero-filled movable memory block, locked for its whole
// life.
struct PortRecord {
    HWND window; // null for an offscreen surface
    HDC dc;
    void (*drawProcedure)(HWND window);
    void (*scrollProcedure)(HWND window, WPARAM wParam);
    HPEN initialPen;
    HPALETTE initialPalette;
    HFONT initialFont;
    HBITMAP offscreenBitmap;
    HBITMAP displacedBitmap;
    COLORREF foreColour;
    COLORREF backColour;
    Rect portRect; // drawable area in logical coordinates
    int32_t fontNumber;
    int32_t fontSize;
    int32_t fontStyle;
    intptr_t referenceValue;
    Rect contentRect; // client area in logical coordinates; moves when the map scrolls
    void* dialogData;
    // The dialog manager's own (dialogs/dialog.h).
    uint8_t frameStyle;
    uint8_t typedCount;
    uint16_t itemCount;
    DialogItem* activeEditItem;
    DialogItem* defaultItem;
    DialogItem* firstItem;
};

extern WindowPtr currentPort;

// Font numbers and style bits.
enum FontNumber { fontTimesBold = 0, fontArial = 3, fontCourier = 4 };
enum FontStyle { stylePlain = 0, styleBold = 1, styleItalic = 2, styleUnderline = 4 };

// ---- ports and coordinates ----

void SetPort(WindowPtr port);
void GetPort(WindowPtr* port);
// Screen point to the current port's coordinates, for the map window map coordinates.
void GlobalToLocal(Point* point);
// The current port's client coordinates (not map coordinates) to the screen.
void LocalToGlobal(Point* point);
// The pointer now, in the current port's coordinates.
void GetMouse(Point* point);
// Moves the current port's origin so that its top-left client pixel is (h, v), in logical pixels, and refreshes
// contentRect and portRect. The shift persists. Without a port it moves the foreground window's. Cannot fail.
void SetOrigin(int h, int v);

// ---- a port used for a while ----

struct SavedPort {
    WindowPtr previous;
};
// Makes the port current; RestorePort makes the one current that was. Nothing else is kept: for fills, copies,
// invalidation and conversions.
[[nodiscard]] SavedPort UsePort(WindowPtr port);
void RestorePort(const SavedPort& saved);

struct SavedDrawing {
    SavedPort current;
    WindowPtr port;
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
// The same for whoever sets pen, font or colours: EndDrawing gives the port its own back. The drawing begins with the
// port's initial pen and font and its own colours.
[[nodiscard]] SavedDrawing BeginDrawing(WindowPtr port);
void EndDrawing(const SavedDrawing& saved);

// ---- rectangles and points ----

void SetRect(Rect* rect, int left, int top, int right, int bottom);
void OffsetRect(Rect* rect, int dh, int dv);
void OutsetRect(Rect* rect, int dh, int dv); // negative values shrink
// True only when all four coordinates are 0.
bool EmptyRect(const Rect* rect);
bool PtInRect(Point point, const Rect* rect);
// The smallest rectangle that holds both points as whole pixels.
void Pt2Rect(Point first, Point second, Rect* rect);
void SetPt(Point* point, int h, int v);
bool EqualPt(Point first, Point second);
void SetEmptyRgn(HRGN region);
// The part of rect that lies inside bounds; false, with rect empty, when there is none.
bool ClipToBounds(Rect* rect, const Rect* bounds);

// ---- pen, colours, lines ----

void ForeColor(COLORREF colour); // and a new one-pixel pen of that colour
void PenSize(int width, int height);
void TextForeColor(COLORREF colour);
void BackColor(COLORREF colour);
COLORREF GetTextForeColor(COLORREF* colour);
COLORREF GetTextBackColor(COLORREF* colour);
void SetTextForeColor(const COLORREF* colour); // the device context's only, to restore saved ones
void SetTextBackColor(const COLORREF* colour);
void MoveTo(int h, int v);
void LineTo(int h, int v); // with its end pixel; the pen stays there
// Inverts the outline of the rectangle; a second call removes it.
void FrameOutline(HDC dc, const Rect* rect);

// ---- rectangles drawn ----

void FillRectColor(const Rect* rect, COLORREF colour);
// The same with a brush of the caller's, for drawing many rectangles of one colour.
void FillRectBrush(const Rect* rect, HBRUSH brush);
void FrameRectBrush(const Rect* rect, HBRUSH brush); // one-pixel border
void EraseRect(const Rect* rect);
void FrameRect(const Rect* rect);
void ClipRect(const Rect* rect); // does nothing

// ---- text ----

void DrawString(const char* text);
void DrawStringOpaque(const char* text);
int StringWidth(const char* text);
// Word-wrapped text: justification 1 centred, -1 right, else left. textPlusOne is the address one byte past the
// text's start, length is not used. Fills rect with the port's background colour; the text starts 4 pixels further
// right.
void TextBox(const char* textPlusOne, int length, const Rect* rect, int justification);
// The height that TextBox needs for a zero-terminated text in a rectangle of that width with the port's font.
int TextBoxHeight(const char* text, int width);
HFONT NewFont(const char* faceName, int fontNumber, int size, int style);
// Selects the font into the current port and records it there; size 10 is drawn as 11.
void SetPortFont(int fontNumber, int size, int style);

// ---- interface bitmap ----

// Copies from the interface bitmap the area at source's top-left corner, of destination's size, into the port.
void CopyFromInterfaceBitmap(WindowPtr port, const Rect* source, const Rect* destination);
