// Font files, sizes of them, and rendered glyphs. Rendered glyphs outlive the fonts that asked for them, because
// fonts are made and deleted around single texts.
#pragma once

#include "platform/gdi/objects.h"

#include <unordered_map>

struct Glyph {
    int advance; // whole pixels
    int left;    // of the image, from the pen
    int top;     // of the image, upwards from the baseline
    int width;
    int height;
    std::vector<uint8_t> coverage; // width x height, 255 opaque
};

// One font file at one size.
struct FontStrike {
    int fontFile;
    int pixelSize;
    int users; // fonts
    int ascent;
    int descent;
    int underlineTop; // rows below the baseline
    int underlineThickness;
    std::unordered_map<uint32_t, Glyph> glyphs;
    const Glyph* ascii[128]; // null until rendered
};

// The glyph of a character; the font's own box for one that it does not have.
const Glyph* GlyphOf(FontStrike* strike, uint32_t character);
