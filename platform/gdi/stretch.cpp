// Stretching copies: every source pixel becomes a block, or is left out, without mixing colours.
#include "platform/api/kernel.h"
#include "platform/gdi/objects.h"
#include "platform/kernel/heap.h"

#include <cstdlib>
#include <cstring>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// Where each source pixel begins among the destination's, and where the last one ends.
std::vector<LONG> Boundaries(LONG begin, int sourceSize, int destinationSize)
{
    std::vector<LONG> boundaries(static_cast<size_t>(sourceSize) + 1);
    const int step = destinationSize / sourceSize;
    const int remainder = destinationSize % sourceSize;
    LONG boundary = begin;
    int rest = 0;
    for (LONG& entry : boundaries) {
        entry = boundary;
        boundary += step;
        rest += remainder;
        if (rest >= sourceSize) {
            rest -= sourceSize;
            boundary++;
        }
    }
    return boundaries;
}

} // namespace

// Pictures larger than this are not kept whole in a processor's cache anyway.
constexpr int64_t streamedSurfacePixels = int64_t{4} << 20;

namespace {

// Writes past the cache: an ordinary store reads the memory first that it is about to overwrite, which for a large
// picture takes as long as the writing.
void StreamPixels(uint32_t* destination, const uint32_t* source, LONG count)
{
#if defined(__SSE2__)
    constexpr LONG blockSize = 4;
    constexpr uintptr_t alignment = sizeof(__m128i);
    while (count > 0 && reinterpret_cast<uintptr_t>(destination) % alignment != 0) {
        *destination++ = *source++;
        count--;
    }
    for (; count >= blockSize; count -= blockSize) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
        _mm_stream_si128(reinterpret_cast<__m128i*>(destination), block);
        destination += blockSize;
        source += blockSize;
    }
#endif
    memcpy(destination, source, static_cast<size_t>(count) * sizeof *source);
}

void EndStreaming()
{
#if defined(__SSE2__)
    _mm_sfence(); // streamed stores are not ordered with later ones
#endif
}

void StretchLine(std::vector<uint32_t>* line, const uint32_t* row, const std::vector<LONG>& columns)
{
    for (size_t i = 0; i + 1 < columns.size(); i++) {
        FillPixels(line->data() + columns[i], columns[i + 1] - columns[i], row[i]);
    }
}

} // namespace

int WINAPI StretchDIBits(HDC dc, int x, int y, int width, int height, int sourceX, int sourceY, int sourceWidth,
                         int sourceHeight, const void* bits, const BITMAPINFO* info, UINT usage, DWORD operation)
{
    constexpr int largest = 1 << 16;
    if ((dc == nullptr) || (bits == nullptr) || (info == nullptr) || usage != DIB_RGB_COLORS ||
        operation != SRCCOPY) {
        return 0;
    }
    const BITMAPINFOHEADER& header = info->bmiHeader;
    if (header.biBitCount != 32 || header.biCompression != BI_RGB || sourceX != 0 || sourceY != 0 ||
        sourceWidth != header.biWidth || sourceHeight != std::abs(int64_t{header.biHeight})) {
        return 0;
    }
    if (sourceWidth <= 0 || sourceHeight <= 0 || width <= 0 || height <= 0 || width > largest || height > largest ||
        std::abs(int64_t{x}) > largest || std::abs(int64_t{y}) > largest) {
        return 0;
    }
    Surface* surface = DrawingSurface(dc);
    if (surface == nullptr) {
        return sourceHeight;
    }

    const RECT area = DeviceRect(dc, {x, y, x + width, y + height});
    const bool streamed = int64_t{surface->width} * surface->height > streamedSurfacePixels;
    std::vector<LONG> lines;
    std::vector<LONG> columns;
    std::vector<uint32_t> stretched; // a row, where it is not as wide as the area
    const bool hasMemory = WithMemory([&] {
        lines = Boundaries(area.top, sourceHeight, height);
        if (width != sourceWidth) {
            columns = Boundaries(0, sourceWidth, width);
            stretched.resize(static_cast<size_t>(width));
        }
    });
    if (!hasMemory) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    for (int i = 0; i < sourceHeight; i++) {
        const int storedRow = header.biHeight < 0 ? i : sourceHeight - 1 - i;
        const uint32_t* row = static_cast<const uint32_t*>(bits) + static_cast<ptrdiff_t>(storedRow) * sourceWidth;
        if (width != sourceWidth) {
            StretchLine(&stretched, row, columns);
        }
        const uint32_t* line = width != sourceWidth ? stretched.data() : row;
        const RECT band = {area.left, lines[static_cast<size_t>(i)], area.right, lines[static_cast<size_t>(i) + 1]};
        ForEachVisiblePart(dc, surface, band, [&](const RECT& part) {
            const uint32_t* from = line + (part.left - area.left);
            const LONG count = part.right - part.left;
            for (LONG below = part.top; below < part.bottom; below++) {
                if (streamed) {
                    StreamPixels(PixelAddress(surface, part.left, below), from, count);
                } else {
                    memcpy(PixelAddress(surface, part.left, below), from, static_cast<size_t>(count) * sizeof *from);
                }
            }
        });
    }
    if (streamed) {
        EndStreaming();
    }
    return sourceHeight;
}
