// Device-independent bitmaps, as files and resources hold them, turned into bitmaps.
#pragma once

#include "platform/gdi/objects.h"

constexpr int largestSide = 16384;

struct DibLayout {
    int width; // 1 to largestSide
    int height;
    bool topDown;
    int bits;              // 1, 4, 8, 16, 24 or 32
    bool runLengths;       // 4 and 8 bits only
    uint32_t masks[3];     // red, green, blue, for 16 and 32 bits
    uint32_t colours[256]; // for 1, 4 and 8 bits, black where the table ended
};

size_t DibRowBytes(const DibLayout& layout);

// Reads count entries of blue, green, red and, with 4 bytes an entry, one byte to skip.
void ReadColourTable(DibLayout* layout, const uint8_t* table, int count, int entryBytes);

// Uncompressed pixels must be there whole; of run lengths size bytes are read. With a block (which holds the pixels)
// the bitmap may take it over and then leaves *block empty; otherwise everything is copied. Null when memory is
// short.
HBITMAP BitmapFromDib(const DibLayout& layout, const uint8_t* pixels, size_t size, PixelBlock* block);

// Fills indices, one byte a pixel, rows bottom-up and width bytes apart, and all 0 before. What lies outside the
// picture is left out, and a stream that ends early keeps what was read.
void UnpackRunLengths(const DibLayout& layout, const uint8_t* stream, size_t size, uint8_t* indices);
