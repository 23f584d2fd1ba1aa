// Stretching blits: every source pixel becomes a block, or is left out, without mixing colours.
#include "platform/gdi/objects.h"

#include <cstdlib>
#include <vector>

// Where each source pixel begins among the destination's, and where the last one ends.
static std::vector<LONG> Boundaries(LONG begin, int sourceSize, int destinationSize)
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

int WINAPI SetStretchBltMode(HDC dc, int mode)
{
    return dc && mode == COLORONCOLOR ? COLORONCOLOR : 0;
}

BOOL WINAPI StretchBlt(HDC destination, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
                       int sourceWidth, int sourceHeight, DWORD operation)
{
    PixelRows rows;
    if (!destination || !source || operation != SRCCOPY || !SourceRows(source, &rows) || destination == source)
        return FALSE;
    const int left = DeviceX(source, sourceX);
    const int top = DeviceY(source, sourceY);
    constexpr int largest = 1 << 16;
    if (width <= 0 || height <= 0 || width > largest || height > largest || std::abs(x) > largest ||
        std::abs(y) > largest || sourceWidth <= 0 || sourceHeight <= 0 || left < 0 || top < 0 ||
        sourceWidth > rows.width - left || sourceHeight > rows.height - top)
        return FALSE;
    Surface* surface = DrawingSurface(destination);
    if (!surface)
        return TRUE;

    const RECT area = DeviceRect(destination, {x, y, x + width, y + height});
    const std::vector<LONG> columns = Boundaries(area.left, sourceWidth, width);
    const std::vector<LONG> lines = Boundaries(area.top, sourceHeight, height);
    std::vector<uint32_t> colours(static_cast<size_t>(sourceWidth));
    std::vector<LONG> edges(columns.size()); // the columns, clipped
    for (size_t row = 0; row + 1 < lines.size(); row++) {
        ConvertRow(colours.data(), rows, left, top + static_cast<int>(row), sourceWidth);
        const RECT band = {area.left, lines[row], area.right, lines[row + 1]};
        ForEachVisiblePart(destination, surface, band, [&](const RECT& part) {
            for (size_t i = 0; i < columns.size(); i++)
                edges[i] = std::clamp(columns[i], part.left, part.right);
            for (LONG below = part.top; below < part.bottom; below++) {
                uint32_t* line = PixelAddress(surface, 0, below);
                for (size_t i = 0; i < colours.size(); i++)
                    FillPixels(line + edges[i], edges[i + 1] - edges[i], colours[i]);
            }
        });
    }
    return TRUE;
}
