#include "platform/gdi/objects.h"

#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "rows of 24 bits are read as little-endian words");

namespace {

// Copies in short pieces. For long ones the C library may use the processor's string move, which some processors run
// eight times slower where the addresses differ by a few bytes beyond whole pages, as a block of the heap and one of
// whole pages do.
void CopyPixels(uint32_t* destination, const uint8_t* source, int count)
{
    constexpr int longestPiece = 480; // below the length from which the C library changes its method
    while (count > 0) {
        const int piece = std::min(count, longestPiece);
        memcpy(destination, source, static_cast<size_t>(piece) * 4);
        destination += piece;
        source += static_cast<ptrdiff_t>(piece) * 4;
        count -= piece;
    }
}

} // namespace

void ConvertRow(uint32_t* destination, const PixelRows& source, int x, int y, int count)
{
    const uint8_t* row = source.topRow + source.stride * y;
    if (source.bits == 32) {
        CopyPixels(destination, row + static_cast<ptrdiff_t>(x) * 4, count);
    } else if (source.bits == 24) {
        const uint8_t* from = row + static_cast<ptrdiff_t>(x) * 3;
        // A whole word is read for each pixel but the last, after which the row may end.
        for (int index = 0; index < count - 1; ++index, from += 3) {
            uint32_t word;
            memcpy(&word, from, sizeof word);
            destination[index] = word & 0xFFFFFF;
        }
        destination[count - 1] = static_cast<uint32_t>(from[2]) << 16 | static_cast<uint32_t>(from[1]) << 8 | from[0];
    } else {
        const uint8_t* from = row + x;
        for (int index = 0; index < count; ++index) {
            destination[index] = source.colours[from[index]];
        }
    }
}

namespace {

// Copies within one surface, where source and destination may overlap.
void MoveRows(Surface* surface, const RECT& part, int shiftX, int shiftY)
{
    size_t bytes = static_cast<size_t>(part.right - part.left) * sizeof(uint32_t);
    int rows = part.bottom - part.top;
    for (int index = 0; index < rows; ++index) {
        // Away from the source, so that no row is overwritten before it was copied.
        int y = shiftY < 0 ? part.bottom - 1 - index : part.top + index;
        memmove(PixelAddress(surface, part.left, y), PixelAddress(surface, part.left + shiftX, y + shiftY), bytes);
    }
}

// With several clip rectangles one part could overwrite another's source, so the source is set aside first.
void MoveThroughCopy(HDC dc, Surface* surface, const RECT& area, int shiftX, int shiftY)
{
    int width = area.right - area.left;
    int height = area.bottom - area.top;
    HBITMAP copy = NewNativeBitmap(width, height);
    if (copy == nullptr) {
        return;
    }
    for (int y = 0; y < height; ++y) {
        memcpy(PixelAddress(&copy->surface, 0, y), PixelAddress(surface, area.left + shiftX, area.top + shiftY + y),
               static_cast<size_t>(width) * 4);
    }
    ForEachVisiblePart(dc, surface, area, [=](const RECT& part) {
        for (int y = part.top; y < part.bottom; ++y) {
            ConvertRow(PixelAddress(surface, part.left, y), copy->rows, part.left - area.left, y - area.top,
                       part.right - part.left);
        }
    });
    FreeBitmap(copy);
}

} // namespace

BOOL WINAPI BitBlt(HDC destination, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
                   DWORD operation)
{
    if ((destination == nullptr) || (source == nullptr) || operation != SRCCOPY) {
        return FALSE;
    }
    Surface* surface = DrawingSurface(destination);
    PixelRows rows;
    if ((surface == nullptr) || !SourceRows(source, &rows)) {
        return TRUE;
    }

    // What lies in both the destination and the source, in the destination's device coordinates.
    const int64_t toLeft = static_cast<int64_t>(x) - destination->origin.x;
    const int64_t toTop = static_cast<int64_t>(y) - destination->origin.y;
    const int64_t shiftH = static_cast<int64_t>(sourceX) - source->origin.x - toLeft;
    const int64_t shiftV = static_cast<int64_t>(sourceY) - source->origin.y - toTop;
    const int64_t left = std::max({toLeft, -shiftH, int64_t{0}});
    const int64_t top = std::max({toTop, -shiftV, int64_t{0}});
    const int64_t right = std::min({toLeft + width, rows.width - shiftH, int64_t{surface->width}});
    const int64_t bottom = std::min({toTop + height, rows.height - shiftV, int64_t{surface->height}});
    if (left >= right || top >= bottom) {
        return TRUE;
    }
    const RECT area = {static_cast<LONG>(left), static_cast<LONG>(top), static_cast<LONG>(right),
                       static_cast<LONG>(bottom)};
    const int shiftX = static_cast<int>(shiftH);
    const int shiftY = static_cast<int>(shiftV);

    if (rows.topRow != reinterpret_cast<const uint8_t*>(surface->pixels)) {
        ForEachVisiblePart(destination, surface, area, [&](const RECT& part) {
            for (int row = part.top; row < part.bottom; ++row) {
                ConvertRow(PixelAddress(surface, part.left, row), rows, part.left + shiftX, row + shiftY,
                           part.right - part.left);
            }
        });
    } else if (destination->clipped && destination->clip.size() > 1) {
        MoveThroughCopy(destination, surface, area, shiftX, shiftY);
    } else {
        ForEachVisiblePart(destination, surface, area,
                           [=](const RECT& part) { MoveRows(surface, part, shiftX, shiftY); });
    }
    return TRUE;
}
