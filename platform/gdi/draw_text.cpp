#include "platform/gdi/text.h"

#include <cstring>

struct TextLine {
    size_t start;
    size_t end;
    size_t next; // where the line after it starts
    int width;
};

namespace {

// The line that starts there. Blanks at a break belong to no line, and blanks before the end never cause a break.
TextLine NextLine(const std::vector<TextGlyph>& glyphs, size_t start, bool wraps, int room)
{
    TextLine broken = {start, start, start, 0}; // at the last gap between words
    bool inWord = false;
    int width = 0;
    size_t index = start;
    for (; index < glyphs.size(); ++index) {
        const TextGlyph& glyph = glyphs[index];
        if (glyph.character == '\n') {
            return {start, index, index + 1, width};
        }
        if (glyph.character == ' ') {
            if (inWord) {
                broken = {start, index, index, width};
            }
            if (broken.end > start) {
                broken.next = index + 1;
            }
            inWord = false;
        } else {
            if (wraps && index > start && width + glyph.glyph->advance > room) {
                return broken.end > start ? broken : TextLine{start, index, index, width};
            }
            inWord = true;
        }
        width += glyph.glyph->advance;
    }
    return {start, index, index, width};
}

} // namespace

int WINAPI DrawTextA(HDC dc, LPCSTR text, int length, LPRECT rect, UINT format)
{
    if ((dc == nullptr) || (text == nullptr) || length < -1 || (rect == nullptr) || (dc->font->strike == nullptr)) {
        return 0;
    }
    FontStrike* strike = dc->font->strike;
    const size_t size = length < 0 ? strlen(text) : static_cast<size_t>(length);
    std::vector<TextGlyph> glyphs;
    if (!ReadText(strike, text, size, LineFeeds::kept, &glyphs)) {
        return 0;
    }
    const bool wraps = (format & DT_WORDBREAK) != 0;
    const bool measures = (format & DT_CALCRECT) != 0;
    const RECT area = DeviceRect(dc, *rect);
    const int room = area.right - area.left;
    const int lineHeight = strike->ascent + strike->descent;

    int lines = 0;
    int widest = 0;
    for (size_t start = 0; start < glyphs.size(); ++lines) {
        const TextLine line = NextLine(glyphs, start, wraps, room);
        widest = std::max(widest, line.width);
        if (!measures) {
            int x = area.left;
            if (format & DT_CENTER) {
                x += (room - line.width) / 2;
            } else if (format & DT_RIGHT) {
                x += room - line.width;
            }
            DrawGlyphs(dc, x, area.top + lines * lineHeight, glyphs.data() + line.start, line.end - line.start, area);
        }
        start = line.next;
    }
    if (measures) {
        rect->bottom = rect->top + lines * lineHeight;
        if (lines <= 1) {
            rect->right = rect->left + widest;
        }
    }
    return lines * lineHeight;
}
