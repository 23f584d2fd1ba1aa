#include "platform/gdi/text.h"

// ---- reading ----

// The character that starts at text[*position], which moves on behind it.
static uint32_t NextCharacter(const char* text, size_t length, size_t* position)
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

std::vector<TextGlyph> ReadText(FontStrike* strike, const char* text, size_t length, TextReading reading)
{
    std::vector<TextGlyph> glyphs;
    glyphs.reserve(length);
    bool marked = false;
    for (size_t position = 0; position < length;) {
        const uint32_t character = NextCharacter(text, length, &position);
        if (character == '\n' && reading.lineFeeds) {
            glyphs.push_back({character, nullptr, false});
        } else if (character == '&' && reading.marks && !marked) {
            marked = true;
            continue;
        } else if (character >= 0x20 && (character < 0x7F || character > 0x9F)) {
            glyphs.push_back({character, GlyphOf(strike, character), marked && character != '&'});
        }
        marked = false;
    }
    return glyphs;
}

int WidthOf(const TextGlyph* glyphs, size_t count)
{
    int width = 0;
    for (size_t index = 0; index < count; ++index) {
        width += glyphs[index].glyph->advance;
    }
    return width;
}

// ---- drawing ----

static uint32_t Blend(uint32_t below, uint32_t above, uint32_t coverage)
{
    uint32_t result = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        const uint32_t mixed = (above >> shift & 0xFF) * coverage + (below >> shift & 0xFF) * (255 - coverage);
        result |= (mixed + 127) / 255 << shift;
    }
    return result;
}

static void DrawGlyph(HDC dc, Surface* surface, int left, int top, const Glyph& glyph, uint32_t pixel,
                      const RECT& limit)
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

void DrawGlyphs(HDC dc, int x, int y, const TextGlyph* glyphs, size_t count, const RECT& limit)
{
    Surface* surface = DrawingSurface(dc);
    if (!surface) {
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
        if (dc->font->underline || glyphs[index].marked) {
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
    if (!dc || !text || length < 0 || !dc->font->strike) {
        return FALSE;
    }
    FontStrike* strike = dc->font->strike;
    const std::vector<TextGlyph> glyphs = ReadText(strike, text, static_cast<size_t>(length), {false, false});
    const bool fromBaseline = (dc->textAlign & TA_BASELINE) == TA_BASELINE;
    const int top = DeviceY(dc, y) - (fromBaseline ? strike->ascent : 0);
    constexpr RECT everywhere = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    DrawGlyphs(dc, DeviceX(dc, x), top, glyphs.data(), glyphs.size(), everywhere);
    return TRUE;
}

BOOL WINAPI GetTextExtentPoint32A(HDC dc, LPCSTR text, int length, LPSIZE size)
{
    if (!dc || !text || length < 0 || !size || !dc->font->strike) {
        return FALSE;
    }
    FontStrike* strike = dc->font->strike;
    const std::vector<TextGlyph> glyphs = ReadText(strike, text, static_cast<size_t>(length), {false, false});
    *size = {WidthOf(glyphs.data(), glyphs.size()), strike->ascent + strike->descent};
    return TRUE;
}

BOOL WINAPI GetTextMetricsA(HDC dc, TEXTMETRICA* metrics)
{
    if (!dc || !metrics || !dc->font->strike) {
        return FALSE;
    }
    const FontStrike& strike = *dc->font->strike;
    *metrics = {};
    metrics->tmHeight = strike.ascent + strike.descent;
    metrics->tmAscent = strike.ascent;
    metrics->tmDescent = strike.descent;
    metrics->tmInternalLeading = metrics->tmHeight - strike.pixelSize;
    metrics->tmAveCharWidth = strike.averageWidth;
    metrics->tmMaxCharWidth = strike.maximumWidth;
    metrics->tmWeight = dc->font->weight;
    return TRUE;
}
