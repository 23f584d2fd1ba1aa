// Device contexts, objects, fills, lines, blits, bitmaps, palettes and text (GDI32), drawn in software.
//
// Surfaces are 32 bits a pixel. Every window of a class with CS_OWNDC has one device context for its whole life,
// which draws into the window's retained picture; between BeginPaint and EndPaint it is clipped to the update region.
// Palette-relative colours are their RGB. Text is UTF-8 and drawn from the Liberation fonts with FreeType.
#pragma once

#include "platform/api/types.h"

// ---- objects ----

#define OBJ_PEN 1
#define OBJ_PAL 5
#define OBJ_FONT 6
#define CLR_INVALID 0xFFFFFFFF

#define BLACK_PEN 7
#define SYSTEM_FONT 13
#define DEFAULT_PALETTE 15

#define PS_SOLID 0

HGDIOBJ WINAPI GetStockObject(int which);
// Selecting returns the object displaced: a pen, a font or a bitmap, the last only in a memory device context. A
// brush is given to each call that fills.
HGDIOBJ WINAPI SelectObject(HDC dc, HGDIOBJ object);
HGDIOBJ WINAPI GetCurrentObject(HDC dc, UINT type);
// Stock objects are left alone; so is an object that is selected into a device context (FALSE).
BOOL WINAPI DeleteObject(HGDIOBJ object);
HPEN WINAPI CreatePen(int style, int width, COLORREF colour);
HBRUSH WINAPI CreateSolidBrush(COLORREF colour);

// ---- device contexts ----

HDC WINAPI CreateCompatibleDC(HDC dc);
BOOL WINAPI DeleteDC(HDC dc);
// The device context of a window, or with no window the screen's, on which only lines with R2_NOT show.
HDC WINAPI GetDC(HWND window);
int WINAPI ReleaseDC(HWND window, HDC dc);
// Brings drawing made so far to the screen.
BOOL WINAPI GdiFlush();

BOOL WINAPI OffsetWindowOrgEx(HDC dc, int dx, int dy, LPPOINT previous);
BOOL WINAPI LPtoDP(HDC dc, LPPOINT points, int count);
BOOL WINAPI DPtoLP(HDC dc, LPPOINT points, int count);

#define R2_NOT 6
#define R2_COPYPEN 13
int WINAPI SetROP2(HDC dc, int mode);

// ---- lines and fills ----

BOOL WINAPI MoveToEx(HDC dc, int x, int y, LPPOINT previous);
// Leaves out the end pixel. A pen n pixels wide covers n rows or columns, one more before the line than after for
// even n.
BOOL WINAPI LineTo(HDC dc, int x, int y);
int WINAPI FillRect(HDC dc, const RECT* rect, HBRUSH brush);
int WINAPI FrameRect(HDC dc, const RECT* rect, HBRUSH brush);
COLORREF WINAPI GetPixel(HDC dc, int x, int y); // how tests look at a picture; the program never does

// ---- bitmaps ----

#define SRCCOPY 0x00CC0020

typedef struct tagBITMAP {
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    LPVOID bmBits;
} BITMAP;

typedef struct tagRGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
} RGBQUAD;

typedef struct tagBITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
} BITMAPINFOHEADER;

typedef struct tagBITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
} BITMAPINFO;

#define BI_RGB 0
#define BI_RLE8 1
#define BI_RLE4 2
#define BI_BITFIELDS 3
#define DIB_RGB_COLORS 0
#define CBM_INIT 4

// Null when width or height is below 1 or memory is short. The pixels are zero (black).
HBITMAP WINAPI CreateCompatibleBitmap(HDC dc, int width, int height);
// A bitmap from a packed device-independent one; only CBM_INIT, DIB_RGB_COLORS and uncompressed 1, 4, 8 and 24 bits.
HBITMAP WINAPI CreateDIBitmap(HDC dc, const BITMAPINFOHEADER* header, DWORD flags, const void* bits,
                              const BITMAPINFO* info, UINT usage);
// For a bitmap: fills a BITMAP and returns its size in bytes; 0 for anything else.
int WINAPI GetObjectA(HANDLE object, int size, LPVOID record);
BOOL WINAPI BitBlt(HDC destination, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
                   DWORD operation);

// Fills the destination from a device-independent bitmap, repeating or leaving out rows and pixels without mixing
// colours. Only SRCCOPY, DIB_RGB_COLORS, uncompressed 32 bits, not mirrored, and all of the bitmap's width and
// height. Returns the number of rows read, 0 when nothing was drawn for one of these reasons.
int WINAPI StretchDIBits(HDC dc, int x, int y, int width, int height, int sourceX, int sourceY, int sourceWidth,
                         int sourceHeight, const void* bits, const BITMAPINFO* info, UINT usage, DWORD operation);

// ---- palettes ----

typedef struct tagPALETTEENTRY {
    BYTE peRed;
    BYTE peGreen;
    BYTE peBlue;
    BYTE peFlags;
} PALETTEENTRY;

typedef struct tagLOGPALETTE {
    WORD palVersion;
    WORD palNumEntries;
    PALETTEENTRY palPalEntry[1];
} LOGPALETTE;

HPALETTE WINAPI CreatePalette(const LOGPALETTE* palette);
HPALETTE WINAPI SelectPalette(HDC dc, HPALETTE palette, BOOL background);
UINT WINAPI RealizePalette(HDC dc);

// ---- regions ----

#define RGN_COPY 5
#define NULLREGION 1
#define SIMPLEREGION 2

HRGN WINAPI CreateRectRgn(int left, int top, int right, int bottom);
int WINAPI CombineRgn(HRGN destination, HRGN first, HRGN second, int mode);
BOOL WINAPI PtInRegion(HRGN region, int x, int y);

// ---- text ----

#define LF_FACESIZE 32
#define FW_MEDIUM 500
#define FW_BOLD 700
#define ANSI_CHARSET 0
#define OUT_TT_PRECIS 4

typedef struct tagLOGFONTA {
    LONG lfHeight;
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    CHAR lfFaceName[LF_FACESIZE];
} LOGFONTA;

#define TA_NOUPDATECP 0
#define TA_LEFT 0
#define TA_TOP 0
#define TA_BASELINE 24
#define TRANSPARENT 1
#define OPAQUE 2

#define DT_LEFT 0x0000
#define DT_CENTER 0x0001
#define DT_RIGHT 0x0002
#define DT_WORDBREAK 0x0010
#define DT_CALCRECT 0x0400
#define DT_NOPREFIX 0x0800

// Negative heights are character heights. Faces: "Arial", "Times New Roman", "Times New Roman Bold", "Courier New";
// weights from 600 on take the bold face. Any other face name is Arial. Null when no font file could be opened.
HFONT WINAPI CreateFontIndirectA(const LOGFONTA* record);
COLORREF WINAPI SetTextColor(HDC dc, COLORREF colour);
COLORREF WINAPI GetTextColor(HDC dc);
COLORREF WINAPI SetBkColor(HDC dc, COLORREF colour);
COLORREF WINAPI GetBkColor(HDC dc);
int WINAPI SetBkMode(HDC dc, int mode);
UINT WINAPI SetTextAlign(HDC dc, UINT align);
BOOL WINAPI TextOutA(HDC dc, int x, int y, LPCSTR text, int length);
BOOL WINAPI GetTextExtentPoint32A(HDC dc, LPCSTR text, int length, LPSIZE size);
// length -1 for a zero-terminated text. Returns the text's height. Lines break at blanks and at line feeds, and
// inside a word that is wider than the rectangle. Only with DT_NOPREFIX: an '&' is drawn as it stands.
int WINAPI DrawTextA(HDC dc, LPCSTR text, int length, LPRECT rect, UINT format);
