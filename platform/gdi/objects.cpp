#include "platform/gdi/objects.h"

#include <new>

static HPEN__ whitePen = {{ObjectType::pen, 0, true}, 1, 0xFFFFFF};
static HPEN__ blackPen = {{ObjectType::pen, 0, true}, 1, 0};
static HBRUSH__ whiteBrush = {{ObjectType::brush, 0, true}, 0xFFFFFF, false};
static HBRUSH__ blackBrush = {{ObjectType::brush, 0, true}, 0, false};
static HBRUSH__ nullBrush = {{ObjectType::brush, 0, true}, 0, true};
static HPALETTE__ defaultPalette = {{ObjectType::palette, 0, true}, {}};
static HBITMAP__ defaultBitmap = {{ObjectType::bitmap, 0, true}, {}, {nullptr, 0, 1, 1, 32, nullptr}, {}, {}};

HGDIOBJ WINAPI GetStockObject(int which)
{
    switch (which) {
    case WHITE_BRUSH:
        return &whiteBrush;
    case BLACK_BRUSH:
        return &blackBrush;
    case NULL_BRUSH:
        return &nullBrush;
    case WHITE_PEN:
        return &whitePen;
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

static ObjectHeader* HeaderOf(HGDIOBJ object)
{
    return static_cast<ObjectHeader*>(object);
}

bool IsObject(const void* object, ObjectType type)
{
    return object && static_cast<const ObjectHeader*>(object)->type == type;
}

void CountSelection(ObjectHeader* header, int change)
{
    if (!header->stock) {
        header->selections += change;
    }
}

template <typename Object>
static HGDIOBJ Exchange(Object** slot, Object* object)
{
    Object* displaced = *slot;
    CountSelection(&object->header, 1);
    CountSelection(&displaced->header, -1);
    *slot = object;
    return displaced;
}

static HGDIOBJ SelectBitmap(HDC dc, HBITMAP bitmap)
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

HGDIOBJ WINAPI SelectObject(HDC dc, HGDIOBJ object)
{
    if (!dc || !object) {
        return nullptr;
    }
    switch (HeaderOf(object)->type) {
    case ObjectType::pen:
        return Exchange(&dc->pen, static_cast<HPEN>(object));
    case ObjectType::brush:
        return Exchange(&dc->brush, static_cast<HBRUSH>(object));
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
    if (!dc) {
        return nullptr;
    }
    switch (type) {
    case OBJ_PEN:
        return dc->pen;
    case OBJ_BRUSH:
        return dc->brush;
    case OBJ_PAL:
        return dc->palette;
    case OBJ_FONT:
        return dc->font;
    case OBJ_BITMAP:
        return dc->bitmap;
    default:
        return nullptr;
    }
}

BOOL WINAPI DeleteObject(HGDIOBJ object)
{
    if (!object || HeaderOf(object)->stock || HeaderOf(object)->selections > 0) {
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
    return new (std::nothrow) HBRUSH__{{ObjectType::brush, 0, false}, PixelOf(colour), false};
}

// ---- palettes ----

HPALETTE WINAPI CreatePalette(const LOGPALETTE* palette)
{
    if (!palette || palette->palNumEntries == 0) {
        return nullptr;
    }
    HPALETTE made = new (std::nothrow) HPALETTE__{{ObjectType::palette, 0, false}, {}};
    if (made) {
        made->entries.assign(palette->palPalEntry, palette->palPalEntry + palette->palNumEntries);
    }
    return made;
}

HPALETTE WINAPI SelectPalette(HDC dc, HPALETTE palette, BOOL)
{
    if (!dc || !IsObject(palette, ObjectType::palette)) {
        return nullptr;
    }
    return static_cast<HPALETTE>(Exchange(&dc->palette, palette));
}

UINT WINAPI RealizePalette(HDC dc)
{
    // A true-colour device has no entries to change.
    return dc ? 0 : CLR_INVALID;
}

UINT WINAPI GetPaletteEntries(HPALETTE palette, UINT start, UINT count, PALETTEENTRY* entries)
{
    if (!IsObject(palette, ObjectType::palette)) {
        return 0;
    }
    UINT size = static_cast<UINT>(palette->entries.size());
    if (!entries) {
        return size;
    }
    if (start >= size) {
        return 0;
    }
    count = std::min(count, size - start);
    std::copy_n(palette->entries.begin() + start, count, entries);
    return count;
}

// ---- regions ----

HRGN WINAPI CreateRectRgn(int left, int top, int right, int bottom)
{
    HRGN region = new (std::nothrow) HRGN__{{ObjectType::region, 0, false}, {}};
    RECT rect = {std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom)};
    if (region && HasArea(rect)) {
        region->rects.push_back(rect);
    }
    return region;
}

int WINAPI CombineRgn(HRGN destination, HRGN first, HRGN, int mode)
{
    if (!IsObject(destination, ObjectType::region) || !IsObject(first, ObjectType::region) || mode != RGN_COPY) {
        return 0;
    }
    if (destination != first) {
        destination->rects = first->rects;
    }
    if (destination->rects.empty()) {
        return NULLREGION;
    }
    return destination->rects.size() == 1 ? SIMPLEREGION : COMPLEXREGION;
}

BOOL WINAPI PtInRegion(HRGN region, int x, int y)
{
    if (!IsObject(region, ObjectType::region)) {
        return FALSE;
    }
    return std::any_of(region->rects.begin(), region->rects.end(), [x, y](const RECT& rect) {
        return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
    });
}
