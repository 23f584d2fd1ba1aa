#include "platform/gdi/objects.h"

#include <new>

namespace {

HPEN__ blackPen = {{ObjectType::pen, 0, true}, 1, 0};
HPALETTE__ defaultPalette = {{ObjectType::palette, 0, true}};
HBITMAP__ defaultBitmap = {{ObjectType::bitmap, 0, true}, {}, {nullptr, 0, 1, 1, 32, nullptr}, {}, {}};

} // namespace

HGDIOBJ WINAPI GetStockObject(int which)
{
    switch (which) {
    case BLACK_PEN:
        return &blackPen;
    case SYSTEM_FONT:
        return SystemFont();
    case DEFAULT_PALETTE:
        return &defaultPalette;
    default:
        return nullptr;
    }
}

HBITMAP DefaultBitmap()
{
    return &defaultBitmap;
}

namespace {

ObjectHeader* HeaderOf(HGDIOBJ object)
{
    return static_cast<ObjectHeader*>(object);
}

} // namespace

bool IsObject(const void* object, ObjectType type)
{
    return (object != nullptr) && static_cast<const ObjectHeader*>(object)->type == type;
}

void CountSelection(ObjectHeader* header, int change)
{
    if (!header->stock) {
        header->selections += change;
    }
}

namespace {

template <typename Object>
HGDIOBJ Exchange(Object** slot, Object* object)
{
    Object* displaced = *slot;
    CountSelection(&object->header, 1);
    CountSelection(&displaced->header, -1);
    *slot = object;
    return displaced;
}

HGDIOBJ SelectBitmap(HDC dc, HBITMAP bitmap)
{
    if (dc->kind != DeviceKind::memory) {
        return nullptr;
    }
    // A bitmap is in one device context at a time.
    if (bitmap->header.selections > 0 && bitmap != dc->bitmap) {
        return nullptr;
    }
    return Exchange(&dc->bitmap, bitmap);
}

} // namespace

HGDIOBJ WINAPI SelectObject(HDC dc, HGDIOBJ object)
{
    if ((dc == nullptr) || (object == nullptr)) {
        return nullptr;
    }
    switch (HeaderOf(object)->type) {
    case ObjectType::pen:
        return Exchange(&dc->pen, static_cast<HPEN>(object));
    case ObjectType::font:
        return Exchange(&dc->font, static_cast<HFONT>(object));
    case ObjectType::bitmap:
        return SelectBitmap(dc, static_cast<HBITMAP>(object));
    default:
        return nullptr;
    }
}

HGDIOBJ WINAPI GetCurrentObject(HDC dc, UINT type)
{
    if (dc == nullptr) {
        return nullptr;
    }
    switch (type) {
    case OBJ_PEN:
        return dc->pen;
    case OBJ_PAL:
        return dc->palette;
    case OBJ_FONT:
        return dc->font;
    default:
        return nullptr;
    }
}

BOOL WINAPI DeleteObject(HGDIOBJ object)
{
    if ((object == nullptr) || HeaderOf(object)->stock || HeaderOf(object)->selections > 0) {
        return FALSE;
    }
    switch (HeaderOf(object)->type) {
    case ObjectType::pen:
        delete static_cast<HPEN>(object);
        break;
    case ObjectType::brush:
        delete static_cast<HBRUSH>(object);
        break;
    case ObjectType::bitmap:
        FreeBitmap(static_cast<HBITMAP>(object));
        break;
    case ObjectType::font:
        FreeFont(static_cast<HFONT>(object));
        break;
    case ObjectType::palette:
        delete static_cast<HPALETTE>(object);
        break;
    case ObjectType::region:
        delete static_cast<HRGN>(object);
        break;
    }
    return TRUE;
}

HPEN WINAPI CreatePen(int style, int width, COLORREF colour)
{
    if (style != PS_SOLID) {
        return nullptr;
    }
    return new (std::nothrow) HPEN__{{ObjectType::pen, 0, false}, std::clamp(width, 1, 1024), PixelOf(colour)};
}

HBRUSH WINAPI CreateSolidBrush(COLORREF colour)
{
    return new (std::nothrow) HBRUSH__{{ObjectType::brush, 0, false}, PixelOf(colour)};
}

// ---- palettes ----

// The entries are not kept: a palette-relative colour is its RGB.
HPALETTE WINAPI CreatePalette(const LOGPALETTE* palette)
{
    if ((palette == nullptr) || palette->palNumEntries == 0) {
        return nullptr;
    }
    return new (std::nothrow) HPALETTE__{{ObjectType::palette, 0, false}};
}

HPALETTE WINAPI SelectPalette(HDC dc, HPALETTE palette, BOOL)
{
    if ((dc == nullptr) || !IsObject(palette, ObjectType::palette)) {
        return nullptr;
    }
    return static_cast<HPALETTE>(Exchange(&dc->palette, palette));
}

UINT WINAPI RealizePalette(HDC dc)
{
    // A true-colour device has no entries to change.
    return dc != nullptr ? 0 : CLR_INVALID;
}

// ---- regions ----

HRGN WINAPI CreateRectRgn(int left, int top, int right, int bottom)
{
    return new (std::nothrow)
        HRGN__{{ObjectType::region, 0, false},
               {std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom)}};
}

int WINAPI CombineRgn(HRGN destination, HRGN first, HRGN, int mode)
{
    if (!IsObject(destination, ObjectType::region) || !IsObject(first, ObjectType::region) || mode != RGN_COPY) {
        return 0;
    }
    destination->rect = first->rect;
    return HasArea(destination->rect) ? SIMPLEREGION : NULLREGION;
}

BOOL WINAPI PtInRegion(HRGN region, int x, int y)
{
    if (!IsObject(region, ObjectType::region)) {
        return FALSE;
    }
    const RECT& rect = region->rect;
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}
