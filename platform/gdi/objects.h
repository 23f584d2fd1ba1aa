// The records behind the drawing handles, and the few helpers that every drawing call shares. A handle is the address
// of its record.
#pragma once

#include "platform/gdi/surface.h"

#include <algorithm>
#include <cstring>
#include <vector>

enum class ObjectType { pen, brush, bitmap, font, palette, region };

// Every object that SelectObject or DeleteObject may be given begins with this header.
struct ObjectHeader {
    ObjectType type;
    int selections; // by device contexts
    bool stock;     // never counted, never deleted
};

struct HPEN__ {
    ObjectHeader header;
    int width; // at least 1
    uint32_t pixel;
};

struct HBRUSH__ {
    ObjectHeader header;
    uint32_t pixel;
};

struct HPALETTE__ {
    ObjectHeader header;
};

struct HRGN__ {
    ObjectHeader header;
    RECT rect;
};

struct FontStrike;

struct HFONT__ {
    ObjectHeader header;
    FontStrike* strike; // null only for the system font when no font file could be opened
    bool underline;
};

// Zeroed memory for pixels. Large blocks are the system's own pages, so that untouched ones cost nothing and freed
// ones go back at once.
struct PixelBlock {
    uint8_t* bytes;
    size_t size;
};

bool AllocateBlock(PixelBlock* block, size_t size); // false when memory is short
void FreeBlock(PixelBlock* block);

// Rows of pixels of any stored depth: 32 as in a surface, 24 as in a bitmap file, 8 as indices into colours.
struct PixelRows {
    const uint8_t* topRow;
    ptrdiff_t stride; // in bytes; negative where the rows are stored bottom-up
    int width;
    int height;
    int bits;
    const uint32_t* colours; // 256 of them for 8 bits
};

struct HBITMAP__ {
    ObjectHeader header;
    PixelBlock block;
    PixelRows rows;
    uint32_t colours[256];
    Surface surface; // its pixels are null until the bitmap is stored in 32 bits
};

enum class DeviceKind { surface, memory, screen };

struct HDC__ {
    DeviceKind kind;
    Surface* surface;
    ScreenLine screenLine;
    POINT origin;
    POINT position;
    COLORREF textColour;
    COLORREF backColour;
    int backMode;
    int rasterMode;
    UINT textAlign;
    HPEN pen;
    HFONT font;
    HPALETTE palette;
    HBITMAP bitmap; // memory device contexts only
    bool clipped;
    std::vector<RECT> clip; // device coordinates, no two overlap
};

// ---- objects.cpp ----

// The handle as an object of that type; null when it is none.
bool IsObject(const void* object, ObjectType type);
HBITMAP DefaultBitmap(); // what a new memory device context holds; has no pixels
void CountSelection(ObjectHeader* header, int change);

// ---- bitmap.cpp ----

HBITMAP NewBitmapRecord(); // null when memory is short
void FreeBitmap(HBITMAP bitmap);
// An empty 32-bit bitmap; null when a side is below 1 or memory is short.
HBITMAP NewNativeBitmap(int width, int height);
void ConvertRow(uint32_t* destination, const PixelRows& source, int x, int y, int count);

// ---- device_context.cpp ----

// What the device context draws into, made 32 bits deep when it is not yet; null when it draws nothing.
Surface* DrawingSurface(HDC dc);
bool SourceRows(HDC dc, PixelRows* rows);

// ---- font.cpp ----

void FreeFont(HFONT font);
HFONT SystemFont();

// ---- colours and coordinates ----

inline uint32_t PixelOf(COLORREF colour)
{
    return static_cast<uint32_t>(GetRValue(colour)) << 16 | static_cast<uint32_t>(GetGValue(colour)) << 8 |
           GetBValue(colour);
}

inline COLORREF ColourOf(uint32_t pixel)
{
    return RGB(static_cast<int>(pixel >> 16 & 0xFF), static_cast<int>(pixel >> 8 & 0xFF),
               static_cast<int>(pixel & 0xFF));
}

// Coordinates so far out that no surface reaches them are held at a bound that leaves room to calculate with.
inline int BoundedCoordinate(int64_t value)
{
    constexpr int64_t bound = 1 << 28;
    return static_cast<int>(std::clamp(value, -bound, bound));
}

inline int DeviceX(HDC dc, int x)
{
    return BoundedCoordinate(static_cast<int64_t>(x) - dc->origin.x);
}

inline int DeviceY(HDC dc, int y)
{
    return BoundedCoordinate(static_cast<int64_t>(y) - dc->origin.y);
}

inline RECT DeviceRect(HDC dc, const RECT& rect)
{
    return {DeviceX(dc, rect.left), DeviceY(dc, rect.top), DeviceX(dc, rect.right), DeviceY(dc, rect.bottom)};
}

inline RECT Overlap(const RECT& first, const RECT& second)
{
    return {std::max(first.left, second.left), std::max(first.top, second.top), std::min(first.right, second.right),
            std::min(first.bottom, second.bottom)};
}

inline bool HasArea(const RECT& rect)
{
    return rect.left < rect.right && rect.top < rect.bottom;
}

inline void GrowDirty(Surface* surface, const RECT& rect)
{
    RECT& dirty = surface->dirty;
    if (!HasArea(dirty)) {
        dirty = rect;
        return;
    }
    dirty.left = std::min(dirty.left, rect.left);
    dirty.top = std::min(dirty.top, rect.top);
    dirty.right = std::max(dirty.right, rect.right);
    dirty.bottom = std::max(dirty.bottom, rect.bottom);
}

// Where only the corners of a part are drawn, the session fuzzer reaches every bound of every drawing at a hundredth
// of the cost.
#if defined(KESTREL_DRAWS_CORNERS)
constexpr bool drawsCorners = true;
#else
constexpr bool drawsCorners = false;
#endif

template <typename Draw>
void DrawPart(Surface* surface, const RECT& part, Draw draw)
{
    GrowDirty(surface, part);
    if constexpr (drawsCorners) {
        draw(RECT{part.left, part.top, part.left + 1, part.top + 1});
        draw(RECT{part.right - 1, part.bottom - 1, part.right, part.bottom});
    } else {
        draw(part);
    }
}

// Calls draw with each part of the area (device coordinates) that the surface's bounds and the clip let through.
template <typename Draw>
void ForEachVisiblePart(HDC dc, Surface* surface, const RECT& area, Draw draw)
{
    RECT inside = Overlap(area, {0, 0, surface->width, surface->height});
    if (!HasArea(inside)) {
        return;
    }
    if (!dc->clipped) {
        DrawPart(surface, inside, draw);
        return;
    }
    for (const RECT& clip : dc->clip) {
        RECT part = Overlap(inside, clip);
        if (HasArea(part)) {
            DrawPart(surface, part, draw);
        }
    }
}

inline uint32_t* PixelAddress(Surface* surface, int x, int y)
{
    return surface->pixels + static_cast<ptrdiff_t>(y) * surface->stride + x;
}

// Most fills are of a few pixels, so a row is a handful of stores of four pixels, the last of which overlaps the one
// before it; a general fill would spend its time on finding out how to begin.
inline void FillPixels(uint32_t* pixels, LONG count, uint32_t pixel)
{
    constexpr LONG blockSize = 4;
    const uint32_t block[blockSize] = {pixel, pixel, pixel, pixel};
    if (count < blockSize) {
        for (LONG i = 0; i < count; i++) {
            pixels[i] = pixel;
        }
        return;
    }
    const LONG lastBlock = count - blockSize;
    for (LONG i = 0; i < lastBlock; i += blockSize) {
        memcpy(pixels + i, block, sizeof block);
    }
    memcpy(pixels + lastBlock, block, sizeof block);
}

// Fills an area in device coordinates.
void FillDeviceRect(HDC dc, Surface* surface, const RECT& area, uint32_t pixel);
