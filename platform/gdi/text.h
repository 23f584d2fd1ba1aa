// Texts as rows of glyphs.
#pragma once

#include "platform/gdi/font.h"

struct TextGlyph {
    uint32_t character;
    const Glyph* glyph; // null for a line feed
    bool marked;        // underlined, whatever the font
};

struct TextReading {
    bool lineFeeds; // keeps them; else they are skipped like all control characters
    bool marks;     // '&' marks the character that follows, and "&&" is one '&'
};

// UTF-8; each byte that belongs to no character is shown as '?'.
std::vector<TextGlyph> ReadText(FontStrike* strike, const char* text, size_t length, TextReading reading);
int WidthOf(const TextGlyph* glyphs, size_t count);
// Draws with the device context's colours and background mode. x and y are the top-left corner of the text cell in
// device coordinates; nothing is drawn outside limit.
void DrawGlyphs(HDC dc, int x, int y, const TextGlyph* glyphs, size_t count, const RECT& limit);
