// Texts as rows of glyphs.
#pragma once

#include "platform/gdi/font.h"

struct TextGlyph {
    uint32_t character;
    const Glyph* glyph; // null for a line feed
};

enum class LineFeeds { kept, skipped };

// UTF-8; each byte that belongs to no character is shown as '?', and control characters are skipped.
// False, with the last error, when there is no memory for them.
bool ReadText(FontStrike* strike, const char* text, size_t length, LineFeeds lineFeeds,
              std::vector<TextGlyph>* glyphs);
// Draws with the device context's colours and background mode. x and y are the top-left corner of the text cell in
// device coordinates; nothing is drawn outside limit.
void DrawGlyphs(HDC dc, int x, int y, const TextGlyph* glyphs, size_t count, const RECT& limit);
