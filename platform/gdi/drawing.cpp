#include "platform/gdi/objects.h"

#include <cstdlib>

void FillDeviceRect(HDC dc, Surface* surface, const RECT& area, uint32_t pixel)
{
    ForEachVisiblePart(dc, surface, area, [=](const RECT& part) {
        uint32_t* row = PixelAddress(surface, part.left, part.top);
        for (LONG y = part.top; y < part.bottom; y++, row += surface->stride) {
            FillPixels(row, part.right - part.left, pixel);
        }
    });
}

namespace {

void InvertDeviceRect(HDC dc, Surface* surface, const RECT& area)
{
    ForEachVisiblePart(dc, surface, area, [=](const RECT& part) {
        uint32_t* row = PixelAddress(surface, part.left, part.top);
        for (int y = part.top; y < part.bottom; ++y, row += surface->stride) {
            for (uint32_t* pixel = row; pixel < row + (part.right - part.left); ++pixel) {
                *pixel ^= 0xFFFFFF;
            }
        }
    });
}

} // namespace

// ---- fills ----

int WINAPI FillRect(HDC dc, const RECT* rect, HBRUSH brush)
{
    if ((dc == nullptr) || (rect == nullptr) || !IsObject(brush, ObjectType::brush)) {
        return 0;
    }
    if (Surface* surface = DrawingSurface(dc)) {
        FillDeviceRect(dc, surface, DeviceRect(dc, *rect), brush->pixel);
    }
    return 1;
}

namespace {

// Frames are mostly those of cells in full view: one pass over the rows instead of four fills.
bool IsWhollyVisible(HDC dc, Surface* surface, const RECT& area)
{
    const RECT whole = {0, 0, surface->width, surface->height};
    if (dc->clipped && dc->clip.size() != 1) {
        return false;
    }
    const RECT visible = dc->clipped ? Overlap(whole, dc->clip.front()) : whole;
    return area.left >= visible.left && area.top >= visible.top && area.right <= visible.right &&
           area.bottom <= visible.bottom;
}

void FrameDeviceRect(Surface* surface, const RECT& area, uint32_t pixel)
{
    const LONG width = area.right - area.left;
    uint32_t* row = PixelAddress(surface, area.left, area.top);
    FillPixels(row, width, pixel);
    for (LONG y = area.top + 1; y < area.bottom; y++) {
        row += surface->stride;
        row[0] = pixel;
        row[width - 1] = pixel;
    }
    FillPixels(row, width, pixel);
    GrowDirty(surface, area);
}

} // namespace

int WINAPI FrameRect(HDC dc, const RECT* rect, HBRUSH brush)
{
    if ((dc == nullptr) || (rect == nullptr) || !IsObject(brush, ObjectType::brush)) {
        return 0;
    }
    Surface* surface = DrawingSurface(dc);
    if ((surface == nullptr) || !HasArea(*rect)) {
        return 1;
    }
    RECT area = DeviceRect(dc, *rect);
    if (IsWhollyVisible(dc, surface, area)) {
        FrameDeviceRect(surface, area, brush->pixel);
        return 1;
    }
    FillDeviceRect(dc, surface, {area.left, area.top, area.right, area.top + 1}, brush->pixel);
    FillDeviceRect(dc, surface, {area.left, area.bottom - 1, area.right, area.bottom}, brush->pixel);
    FillDeviceRect(dc, surface, {area.left, area.top, area.left + 1, area.bottom}, brush->pixel);
    FillDeviceRect(dc, surface, {area.right - 1, area.top, area.right, area.bottom}, brush->pixel);
    return 1;
}

COLORREF WINAPI GetPixel(HDC dc, int x, int y)
{
    PixelRows rows;
    if ((dc == nullptr) || !SourceRows(dc, &rows)) {
        return CLR_INVALID;
    }
    int h = DeviceX(dc, x);
    int v = DeviceY(dc, y);
    if (h < 0 || h >= rows.width || v < 0 || v >= rows.height) {
        return CLR_INVALID;
    }
    uint32_t pixel;
    ConvertRow(&pixel, rows, h, v, 1);
    return ColourOf(pixel);
}

// ---- lines ----

// What a line leaves behind: its pen's square, in the raster mode of the device context.
struct Stroke {
    HDC dc;
    Surface* surface;
    int before; // pixels that the pen covers before and after the line's own
    int after;
    bool inverts;
    uint32_t pixel;
};

namespace {

void StrokeRect(const Stroke& stroke, const RECT& area)
{
    if (stroke.inverts) {
        InvertDeviceRect(stroke.dc, stroke.surface, area);
    } else {
        FillDeviceRect(stroke.dc, stroke.surface, area, stroke.pixel);
    }
}

void StrokeStraight(const Stroke& stroke, POINT from, POINT to)
{
    // From the first pixel to the one before the last, whichever way the line runs.
    RECT area = {std::min(from.x, to.x), std::min(from.y, to.y), std::max(from.x, to.x), std::max(from.y, to.y)};
    (from.y == to.y ? area.bottom : area.right) += 1;
    if (to.x < from.x) {
        area.left += 1;
        area.right += 1;
    }
    if (to.y < from.y) {
        area.top += 1;
        area.bottom += 1;
    }
    StrokeRect(stroke, {area.left - stroke.before, area.top - stroke.before, area.right + stroke.after,
                        area.bottom + stroke.after});
}

// Along the longer axis the line has one pixel at each step; the other coordinate is rounded to the nearest. Steps
// whose pen cannot touch the surface are passed over by calculation, so that a far-out end costs nothing.
void StrokeSlanted(const Stroke& stroke, POINT from, POINT to)
{
    bool steep = std::abs(to.y - from.y) > std::abs(to.x - from.x);
    int64_t length = steep ? std::abs(to.y - from.y) : std::abs(to.x - from.x);
    int64_t rise = steep ? std::abs(to.x - from.x) : std::abs(to.y - from.y);
    int stepX = to.x < from.x ? -1 : 1;
    int stepY = to.y < from.y ? -1 : 1;
    int start = steep ? from.y : from.x;
    int direction = steep ? stepY : stepX;
    int extent = steep ? stroke.surface->height : stroke.surface->width;
    int64_t low = -static_cast<int64_t>(stroke.after);
    int64_t high = static_cast<int64_t>(extent) - 1 + stroke.before;
    int64_t first = std::max<int64_t>(0, direction > 0 ? low - start : start - high);
    int64_t end = std::min(length, (direction > 0 ? high - start : start - low) + 1);

    int64_t previousMinor = 0;
    for (int64_t step = first; step < end; ++step) {
        int64_t minor = (2 * step * rise + length) / (2 * length);
        int x = from.x + stepX * static_cast<int>(steep ? minor : step);
        int y = from.y + stepY * static_cast<int>(steep ? step : minor);
        RECT square = {x - stroke.before, y - stroke.before, x + stroke.after + 1, y + stroke.after + 1};
        if (step == first) {
            StrokeRect(stroke, square);
        } else {
            // Only what the square of the step before has not covered, so that inverting touches every pixel once.
            bool moved = minor != previousMinor;
            if (!steep || moved) {
                LONG edge = stepX > 0 ? square.right - 1 : square.left;
                StrokeRect(stroke, {edge, square.top, edge + 1, square.bottom});
                (stepX > 0 ? square.right : square.left) -= stepX;
            }
            if (steep || moved) {
                LONG edge = stepY > 0 ? square.bottom - 1 : square.top;
                StrokeRect(stroke, {square.left, edge, square.right, edge + 1});
            }
        }
        previousMinor = minor;
    }
}

} // namespace

BOOL WINAPI MoveToEx(HDC dc, int x, int y, LPPOINT previous)
{
    if (dc == nullptr) {
        return FALSE;
    }
    if (previous != nullptr) {
        *previous = dc->position;
    }
    dc->position = {x, y};
    return TRUE;
}

BOOL WINAPI LineTo(HDC dc, int x, int y)
{
    if (dc == nullptr) {
        return FALSE;
    }
    POINT from = {DeviceX(dc, dc->position.x), DeviceY(dc, dc->position.y)};
    POINT to = {DeviceX(dc, x), DeviceY(dc, y)};
    dc->position = {x, y};
    if (from.x == to.x && from.y == to.y) {
        return TRUE;
    }
    if (dc->kind == DeviceKind::screen) {
        if (dc->rasterMode == R2_NOT && dc->screenLine) {
            dc->screenLine(from.x, from.y, to.x, to.y);
        }
        return TRUE;
    }
    Surface* surface = DrawingSurface(dc);
    if (surface == nullptr) {
        return TRUE;
    }
    int width = dc->pen->width;
    Stroke stroke = {dc, surface, width / 2, (width - 1) / 2, dc->rasterMode == R2_NOT, dc->pen->pixel};
    if (from.x == to.x || from.y == to.y) {
        StrokeStraight(stroke, from, to);
    } else {
        StrokeSlanted(stroke, from, to);
    }
    return TRUE;
}
