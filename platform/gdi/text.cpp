#include "platform/gdi/text.h"

#include "platform/api/kernel.h"
#include "platform/kernel/heap.h"

// ---- reading ----

namespace {

// The character that starts at text[*position], which moves on behind it.
uint32_t NextCharacter(const char* text, size_t length, size_t* position)
{
    const uint8_t first = static_cast<uint8_t>(text[(*position)++]);
    if (first < 0x80) {
        return first;
    }
    const int following = first >= 0xC2 && first <= 0xDF   ? 1
                          : (first & 0xF0) == 0xE0         ? 2
                          : first >= 0xF0 && first <= 0xF4 ? 3
                                                           : 0;
    if (following == 0 || length - *position < static_cast<size_t>(following)) {
        return '?';
    }
    uint32_t character = first & (0x3Fu >> following);
    for (int index = 0; index < following; ++index) {
        const uint8_t next = static_cast<uint8_t>(text[*position + static_cast<size_t>(index)]);
        if ((next & 0xC0) != 0x80) {
            return '?';
        }
        character = character << 6 | (next & 0x3F);
    }
    static const uint32_t smallest[] = {0, 0x80, 0x800, 0x10000};
    if (character < smallest[following] || character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
        return '?';
    }
    *position += static_cast<size_t>(following);
    return character;
}

} // namespace

bool ReadText(FontStrike* strike, const char* text, size_t length, LineFeeds lineFeeds,
              std::vector<TextGlyph>* glyphs)
{
    if (!WithMemory([&] { glyphs->reserve(length); })) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return false;
    }
    for (size_t position = 0; position < length;) {
        const uint32_t character = NextCharacter(text, length, &position);
        if (character == '\n' && lineFeeds == LineFeeds::kept) {
            glyphs->push_back({character, nullptr});
        } else if (character >= 0x20 && (character < 0x7F || character > 0x9F)) {
            glyphs->push_back({character, GlyphOf(strike, character)});
        }
    }
    return true;
}

namespace {

int WidthOf(const TextGlyph* glyphs, size_t count)
{
    int width = 0;
    for (size_t index = 0; index < count; ++index) {
        width += glyphs[index].glyph->advance;
    }
    return width;
}

// ---- drawing ----

uint32_t Blend(uint32_t below, uint32_t above, uint32_t coverage)
{
    uint32_t result = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        const uint32_t mixed = (above >> shift & 0xFF) * coverage + (below >> shift & 0xFF) * (255 - coverage);
        result |= (mixed + 127) / 255 << shift;
    }
    return result;
}

void DrawGlyph(HDC dc, Surface* surface, int left, int top, const Glyph& glyph, uint32_t pixel, const RECT& limit)
{
    const RECT area = Overlap({left, top, left + glyph.width, top + glyph.height}, limit);
    ForEachVisiblePart(dc, surface, area, [&](const RECT& part) {
        for (int y = part.top; y < part.bottom; ++y) {
            const uint8_t* coverage = glyph.coverage.data() + static_cast<ptrdiff_t>(y - top) * glyph.width - left;
            uint32_t* row = PixelAddress(surface, 0, y);
            for (int x = part.left; x < part.right; ++x) {
                if (coverage[x] == 255) {
                    row[x] = pixel;
                } else if (coverage[x] != 0) {
                    row[x] = Blend(row[x], pixel, coverage[x]);
                }
            }
        }
    });
}

} // namespace

void DrawGlyphs(HDC dc, int x, int y, const TextGlyph* glyphs, size_t count, const RECT& limit)
{
    Surface* surface = DrawingSurface(dc);
    if (surface == nullptr) {
        return;
    }
    const FontStrike& strike = *dc->font->strike;
    const uint32_t pixel = PixelOf(dc->textColour);
    const int baseline = y + strike.ascent;
    if (dc->backMode == OPAQUE) {
        const RECT cell = {x, y, x + WidthOf(glyphs, count), baseline + strike.descent};
        FillDeviceRect(dc, surface, Overlap(cell, limit), PixelOf(dc->backColour));
    }
    const int underline = baseline + strike.underlineTop;
    for (size_t index = 0; index < count && x < surface->width; ++index) {
        const Glyph& glyph = *glyphs[index].glyph;
        DrawGlyph(dc, surface, x + glyph.left, baseline - glyph.top, glyph, pixel, limit);
        if (dc->font->underline) {
            FillDeviceRect(dc, surface,
                           Overlap({x, underline, x + glyph.advance, underline + strike.underlineThickness}, limit),
                           pixel);
        }
        x += glyph.advance;
    }
}

// ---- calls ----

BOOL WINAPI TextOutA(HDC dc, int x, int y, LPCSTR text, int length)
{
    if ((dc == nullptr) || (text == nullptr) || length < 0 || (dc->font->strike == nullptr)) {
        return FALSE;
    }
    FontStrike* strike = dc->font->strike;
    std::vector<TextGlyph> glyphs;
    if (!ReadText(strike, text, static_cast<size_t>(length), LineFeeds::skipped, &glyphs)) {
        return FALSE;
    }
    const bool fromBaseline = (dc->textAlign & TA_BASELINE) == TA_BASELINE;
    const int top = DeviceY(dc, y) - (fromBaseline ? strike->ascent : 0);
    constexpr RECT everywhere = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    DrawGlyphs(dc, DeviceX(dc, x), top, glyphs.data(), glyphs.size(), everywhere);
    return TRUE;
}

BOOL WINAPI GetTextExtentPoint32A(HDC dc, LPCSTR text, int length, LPSIZE size)
{
    if ((dc == nullptr) || (text == nullptr) || length < 0 || (size == nullptr) || (dc->font->strike == nullptr)) {
        return FALSE;
    }
    FontStrike* strike = dc->font->strike;
    std::vector<TextGlyph> glyphs;
    if (!ReadText(strike, text, static_cast<size_t>(length), LineFeeds::skipped, &glyphs)) {
        return FALSE;
    }
    *size = {WidthOf(glyphs.data(), glyphs.size()), strike->ascent + strike->descent};
    return TRUE;
}
