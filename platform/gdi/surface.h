// What the window layer needs of the drawing layer: device contexts over pictures that it owns.
#pragma once

#include "platform/api/gdi.h"
#include "platform/api/types.h"

#include <cstddef>
#include <cstdint>

// A picture of 32 bits a pixel, 0x00RRGGBB, rows top-down. dirty is the bounding box of what was drawn since it was
// last emptied (left >= right: nothing); drawing only ever grows it.
struct Surface {
    uint32_t* pixels;
    int width;
    int height;
    int stride; // in pixels
    RECT dirty;
};

// A device context that draws into a surface of the caller's; a null surface draws nothing. Its attributes (origin,
// colours, objects) live until DeleteSurfaceDC. The surface's pixels may be replaced at any time.
HDC CreateSurfaceDC(Surface* surface);
void DeleteSurfaceDC(HDC dc);

// Clips drawing to the union of these rectangles (device coordinates); they are copied. A count of 0 clips everything
// away; ClearClipOfDC lets everything through again.
void SetClipOfDC(HDC dc, const RECT* rects, int count);
void ClearClipOfDC(HDC dc);

// The screen's device context: it has no pixels; a LineTo in R2_NOT reports the line, all else draws nothing. The end
// point is left out by LineTo and so not part of the line.
typedef void (*ScreenLine)(int x0, int y0, int x1, int y1);
HDC CreateScreenDC(ScreenLine line);

// A bitmap file's contents in memory as LoadImageA gives it, for tests and fuzzers; null when it is damaged. The
// bytes are copied or taken apart, never kept.
HBITMAP BitmapFromFileBytes(const uint8_t* bytes, size_t size);
// The same from a path, reading the file once. Null when it cannot be read or is damaged.
HBITMAP BitmapFromFile(const char* path);

// Every header of a bitmap file with its masks and colour table ends within these bytes.
constexpr size_t bitmapHeadBytes = 2048;
// The size that a bitmap file has, from its first bitmapHeadBytes bytes, or all. False when it is no bitmap that
// could be loaded; runs of compressed pixels are not looked at.
bool BitmapSizeFromHead(const uint8_t* head, uint64_t fileSize, int* width, int* height);
