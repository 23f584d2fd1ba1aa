#include "platform/gdi/objects.h"

#include <iterator>
#include <new>
#include <utility>

namespace {

HDC NewDeviceContext(DeviceKind kind)
{
    HDC dc = new (std::nothrow) HDC__{};
    if (dc == nullptr) {
        return nullptr;
    }
    dc->kind = kind;
    dc->textColour = RGB(0, 0, 0);
    dc->backColour = RGB(255, 255, 255);
    dc->backMode = OPAQUE;
    dc->rasterMode = R2_COPYPEN;
    dc->textAlign = TA_LEFT | TA_TOP;
    dc->pen = static_cast<HPEN>(GetStockObject(BLACK_PEN));
    dc->font = static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
    dc->palette = static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE));
    dc->bitmap = kind == DeviceKind::memory ? DefaultBitmap() : nullptr;
    return dc;
}

void FreeDeviceContext(HDC dc)
{
    CountSelection(&dc->pen->header, -1);
    CountSelection(&dc->font->header, -1);
    CountSelection(&dc->palette->header, -1);
    if (dc->bitmap != nullptr) {
        CountSelection(&dc->bitmap->header, -1);
    }
    delete dc;
}

} // namespace

HDC WINAPI CreateCompatibleDC(HDC)
{
    return NewDeviceContext(DeviceKind::memory);
}

BOOL WINAPI DeleteDC(HDC dc)
{
    if ((dc == nullptr) || dc->kind != DeviceKind::memory) {
        return FALSE;
    }
    FreeDeviceContext(dc);
    return TRUE;
}

HDC CreateSurfaceDC(Surface* surface)
{
    HDC dc = NewDeviceContext(DeviceKind::surface);
    if (dc != nullptr) {
        dc->surface = surface;
    }
    return dc;
}

void DeleteSurfaceDC(HDC dc)
{
    if ((dc != nullptr) && dc->kind != DeviceKind::memory) {
        FreeDeviceContext(dc);
    }
}

HDC CreateScreenDC(ScreenLine line)
{
    HDC dc = NewDeviceContext(DeviceKind::screen);
    if (dc != nullptr) {
        dc->screenLine = line;
    }
    return dc;
}

namespace {

// Adds what of the rectangle the list does not cover yet, so that no pixel is drawn twice by one call.
void AddDisjoint(std::vector<RECT>* list, RECT rect)
{
    std::vector<RECT> pieces = {rect};
    for (const RECT& taken : *list) {
        std::vector<RECT> remaining;
        for (const RECT& piece : pieces) {
            RECT common = Overlap(piece, taken);
            if (!HasArea(common)) {
                remaining.push_back(piece);
                continue;
            }
            const RECT around[] = {{piece.left, piece.top, piece.right, common.top},
                                   {piece.left, common.top, common.left, common.bottom},
                                   {common.right, common.top, piece.right, common.bottom},
                                   {piece.left, common.bottom, piece.right, piece.bottom}};
            std::copy_if(std::begin(around), std::end(around), std::back_inserter(remaining), HasArea);
        }
        pieces = remaining;
    }
    list->insert(list->end(), pieces.begin(), pieces.end());
}

} // namespace

void SetClipOfDC(HDC dc, const RECT* rects, int count)
{
    if (dc == nullptr) {
        return;
    }
    std::vector<RECT> clip;
    for (int index = 0; (rects != nullptr) && index < count; ++index) {
        if (HasArea(rects[index])) {
            AddDisjoint(&clip, rects[index]);
        }
    }
    dc->clip = clip;
    dc->clipped = true;
}

void ClearClipOfDC(HDC dc)
{
    if (dc == nullptr) {
        return;
    }
    dc->clip.clear();
    dc->clipped = false;
}

namespace {

// Bitmaps from files keep the depth of the file until something draws into them.
bool MakeNative(HBITMAP bitmap)
{
    HBITMAP native = NewNativeBitmap(bitmap->rows.width, bitmap->rows.height);
    if (native == nullptr) {
        return false;
    }
    for (int y = 0; y < bitmap->rows.height; ++y) {
        ConvertRow(PixelAddress(&native->surface, 0, y), bitmap->rows, 0, y, bitmap->rows.width);
    }
    std::swap(bitmap->block, native->block);
    bitmap->rows = native->rows;
    bitmap->surface = native->surface;
    FreeBitmap(native);
    return true;
}

} // namespace

Surface* DrawingSurface(HDC dc)
{
    Surface* surface = dc->surface;
    if (dc->kind == DeviceKind::memory) {
        if (dc->bitmap->rows.topRow == nullptr) {
            return nullptr;
        }
        if ((dc->bitmap->surface.pixels == nullptr) && !MakeNative(dc->bitmap)) {
            return nullptr;
        }
        surface = &dc->bitmap->surface;
    }
    return (surface != nullptr) && (surface->pixels != nullptr) ? surface : nullptr;
}

bool SourceRows(HDC dc, PixelRows* rows)
{
    if (dc->kind == DeviceKind::memory) {
        *rows = dc->bitmap->rows;
    } else {
        const Surface* surface = dc->surface;
        if (surface == nullptr) {
            return false;
        }
        *rows = {reinterpret_cast<const uint8_t*>(surface->pixels),
                 static_cast<ptrdiff_t>(surface->stride) * 4,
                 surface->width,
                 surface->height,
                 32,
                 nullptr};
    }
    return rows->topRow != nullptr;
}

// ---- origin ----

namespace {

LONG Sum(LONG first, LONG second)
{
    return static_cast<LONG>(static_cast<ULONG>(first) + static_cast<ULONG>(second));
}

LONG Negative(LONG value)
{
    return static_cast<LONG>(0 - static_cast<ULONG>(value));
}

} // namespace

BOOL WINAPI OffsetWindowOrgEx(HDC dc, int dx, int dy, LPPOINT previous)
{
    if (dc == nullptr) {
        return FALSE;
    }
    if (previous != nullptr) {
        *previous = dc->origin;
    }
    dc->origin = {Sum(dc->origin.x, dx), Sum(dc->origin.y, dy)};
    return TRUE;
}

namespace {

BOOL MovePoints(HDC dc, LPPOINT points, int count, LONG dx, LONG dy)
{
    if ((dc == nullptr) || (points == nullptr) || count < 0) {
        return FALSE;
    }
    for (int index = 0; index < count; ++index) {
        points[index] = {Sum(points[index].x, dx), Sum(points[index].y, dy)};
    }
    return TRUE;
}

} // namespace

BOOL WINAPI LPtoDP(HDC dc, LPPOINT points, int count)
{
    return (dc != nullptr) && MovePoints(dc, points, count, Negative(dc->origin.x), Negative(dc->origin.y));
}

BOOL WINAPI DPtoLP(HDC dc, LPPOINT points, int count)
{
    return (dc != nullptr) && MovePoints(dc, points, count, dc->origin.x, dc->origin.y);
}

// ---- attributes ----

int WINAPI SetROP2(HDC dc, int mode)
{
    if ((dc == nullptr) || (mode != R2_NOT && mode != R2_COPYPEN)) {
        return 0;
    }
    return std::exchange(dc->rasterMode, mode);
}

COLORREF WINAPI SetTextColor(HDC dc, COLORREF colour)
{
    return dc != nullptr ? std::exchange(dc->textColour, colour) : CLR_INVALID;
}

COLORREF WINAPI GetTextColor(HDC dc)
{
    return dc != nullptr ? dc->textColour : CLR_INVALID;
}

COLORREF WINAPI SetBkColor(HDC dc, COLORREF colour)
{
    return dc != nullptr ? std::exchange(dc->backColour, colour) : CLR_INVALID;
}

COLORREF WINAPI GetBkColor(HDC dc)
{
    return dc != nullptr ? dc->backColour : CLR_INVALID;
}

int WINAPI SetBkMode(HDC dc, int mode)
{
    if ((dc == nullptr) || (mode != TRANSPARENT && mode != OPAQUE)) {
        return 0;
    }
    return std::exchange(dc->backMode, mode);
}

UINT WINAPI SetTextAlign(HDC dc, UINT align)
{
    return dc != nullptr ? std::exchange(dc->textAlign, align) : CLR_INVALID;
}
