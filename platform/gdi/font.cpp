#include "platform/gdi/font.h"

#include "platform/kernel/heap.h"

#include <cstdlib>
#include <cstring>
#include <ft2build.h>
#include <memory>
#include <new>
#include <string>
#include <strings.h>
#include FT_FREETYPE_H
#include FT_MODULE_H
#include FT_SYSTEM_H

namespace {

// In the order of family, then bold, then italic.
const char* const fontFileNames[] = {
    "LiberationSans-Regular.ttf",    "LiberationSans-Italic.ttf",      "LiberationSans-Bold.ttf",
    "LiberationSans-BoldItalic.ttf", "LiberationSerif-Regular.ttf",    "LiberationSerif-Italic.ttf",
    "LiberationSerif-Bold.ttf",      "LiberationSerif-BoldItalic.ttf", "LiberationMono-Regular.ttf",
    "LiberationMono-Italic.ttf",     "LiberationMono-Bold.ttf",        "LiberationMono-BoldItalic.ttf",
};

const char* const fontFolders[] = {
#if defined(KESTREL_FONT_FOLDER)
    KESTREL_FONT_FOLDER "/",
#endif
    "/usr/share/fonts/truetype/liberation/",
    "/usr/share/fonts/truetype/liberation2/",
};

} // namespace

struct FaceName {
    const char* name;
    int family;
    bool bold;
};

namespace {

const FaceName faceNames[] = {
    {"Arial", 0, false},
    {"Times New Roman", 1, false},
    {"Times New Roman Bold", 1, true},
    {"Courier New", 2, false},
};

} // namespace

constexpr size_t keptStrikes = 24;
constexpr int largestPixelSize = 500;

struct FontState {
    FT_Library library = nullptr;
    FT_Face faces[std::size(fontFileNames)] = {};
    std::vector<std::unique_ptr<FontStrike>> strikes; // the last used at the end
};

namespace {

FontState fonts;

// ---- the library's memory ----

// The library for fonts does not survive it when memory is refused while it renders. So where the heap refuses, a
// block comes from a room of the program's own, used from its start on and again once all blocks there were given
// back. Where that is full too, the process ends.
alignas(16) uint8_t spareRoom[1 << 20];
size_t spareUsed = 0;
int spareBlocks = 0;

bool IsSpare(const void* block)
{
    return block >= spareRoom && block < spareRoom + sizeof spareRoom;
}

void* TakeFontMemory(FT_Memory, long size)
{
    const size_t bytes = (static_cast<size_t>(size) + 15) / 16 * 16;
    void* block = ::operator new(bytes, std::nothrow);
    if (block != nullptr) {
        return block;
    }
    if (bytes > sizeof spareRoom - spareUsed) {
        return ::operator new(bytes);
    }
    block = spareRoom + spareUsed;
    spareUsed += bytes;
    ++spareBlocks;
    return block;
}

void GiveFontMemory(FT_Memory, void* block)
{
    if (!IsSpare(block)) {
        ::operator delete(block);
    } else if (--spareBlocks == 0) {
        spareUsed = 0;
    }
}

void* ResizeFontMemory(FT_Memory, long oldSize, long newSize, void* block)
{
    void* resized = TakeFontMemory(nullptr, newSize);
    memcpy(resized, block, static_cast<size_t>(std::min(oldSize, newSize)));
    GiveFontMemory(nullptr, block);
    return resized;
}

FT_MemoryRec_ fontMemory = {nullptr, TakeFontMemory, GiveFontMemory, ResizeFontMemory};

// ---- faces ----

FT_Face FaceOf(int fontFile)
{
    if (fonts.library == nullptr) {
        if (FT_New_Library(&fontMemory, &fonts.library) != 0) {
            fonts.library = nullptr;
            return nullptr;
        }
        FT_Add_Default_Modules(fonts.library);
        // The classic hinting moves stems onto whole pixels, which keeps small text crisp. It is set here because the
        // environment could have chosen another one.
        FT_UInt version = 35;
        FT_Property_Set(fonts.library, "truetype", "interpreter-version", &version);
    }
    FT_Face& face = fonts.faces[fontFile];
    for (const char* folder : fontFolders) {
        if (face != nullptr) {
            break;
        }
        std::string path = std::string(folder) + fontFileNames[fontFile];
        if (FT_New_Face(fonts.library, path.c_str(), 0, &face) != 0) {
            face = nullptr;
        }
    }
    return face;
}

// ---- glyphs ----

Glyph RenderGlyph(FT_Face face, uint32_t character)
{
    Glyph glyph = {};
    if (FT_Load_Char(face, character, FT_LOAD_RENDER | FT_LOAD_TARGET_NORMAL) != 0) {
        return glyph;
    }
    const FT_GlyphSlot slot = face->glyph;
    const FT_Bitmap& image = slot->bitmap;
    glyph.advance = static_cast<int>((slot->advance.x + 32) >> 6);
    glyph.left = slot->bitmap_left;
    glyph.top = slot->bitmap_top;
    if (image.pixel_mode != FT_PIXEL_MODE_GRAY) {
        return glyph;
    }
    glyph.width = static_cast<int>(image.width);
    glyph.height = static_cast<int>(image.rows);
    glyph.coverage.reserve(static_cast<size_t>(image.width) * image.rows);
    for (int y = 0; y < glyph.height; ++y) {
        const uint8_t* row = image.buffer + static_cast<ptrdiff_t>(y) * image.pitch;
        glyph.coverage.insert(glyph.coverage.end(), row, row + glyph.width);
    }
    return glyph;
}

} // namespace

const Glyph* GlyphOf(FontStrike* strike, uint32_t character)
{
    if (character < 128 && (strike->ascii[character] != nullptr)) {
        return strike->ascii[character];
    }
    auto found = strike->glyphs.find(character);
    if (found == strike->glyphs.end()) {
        FT_Face face = FaceOf(strike->fontFile);
        FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(strike->pixelSize));
        if (!WithMemory([&] { found = strike->glyphs.emplace(character, RenderGlyph(face, character)).first; })) {
            static const Glyph noGlyph = {}; // this time
            return &noGlyph;
        }
    }
    if (character < 128) {
        strike->ascii[character] = &found->second;
    }
    return &found->second;
}

// ---- sizes ----

namespace {

int RoundedUp(FT_Pos length)
{
    return static_cast<int>((length + 63) >> 6);
}

void ReadMetrics(FT_Face face, FontStrike* strike)
{
    FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(strike->pixelSize));
    const FT_Size_Metrics& metrics = face->size->metrics;
    strike->ascent = RoundedUp(metrics.ascender);
    strike->descent = RoundedUp(-metrics.descender);
    const FT_Pos thickness = FT_MulFix(face->underline_thickness, metrics.y_scale);
    const FT_Pos middle = FT_MulFix(-face->underline_position, metrics.y_scale);
    strike->underlineThickness = std::max(1, static_cast<int>((thickness + 32) >> 6));
    strike->underlineTop = std::max(1, static_cast<int>((middle - thickness / 2 + 32) >> 6));
}

void DropOldStrikes()
{
    for (size_t index = 0; fonts.strikes.size() > keptStrikes && index < fonts.strikes.size();) {
        if (fonts.strikes[index]->users == 0) {
            fonts.strikes.erase(fonts.strikes.begin() + static_cast<ptrdiff_t>(index));
        } else {
            ++index;
        }
    }
}

FontStrike* TakeStrike(int fontFile, int pixelSize)
{
    auto matches = [=](const auto& strike) { return strike->fontFile == fontFile && strike->pixelSize == pixelSize; };
    auto found = std::find_if(fonts.strikes.begin(), fonts.strikes.end(), matches);
    if (found != fonts.strikes.end()) {
        std::rotate(found, found + 1, fonts.strikes.end());
    } else {
        FT_Face face = FaceOf(fontFile);
        if (face == nullptr) {
            return nullptr;
        }
        const bool kept = WithMemory([&] {
            auto strike = std::make_unique<FontStrike>();
            strike->fontFile = fontFile;
            strike->pixelSize = pixelSize;
            ReadMetrics(face, strike.get());
            fonts.strikes.push_back(std::move(strike));
        });
        if (!kept) {
            return nullptr;
        }
    }
    FontStrike* strike = fonts.strikes.back().get();
    ++strike->users;
    DropOldStrikes();
    return strike;
}

// ---- fonts ----

// A positive height is that of the text cell: the largest characters whose rounded ascent and descent fit are taken.
int PixelSizeOf(FT_Face face, LONG height)
{
    constexpr int64_t defaultSize = 12;
    int64_t size = height == 0 ? defaultSize : std::abs(static_cast<int64_t>(height));
    size = std::min<int64_t>(size, largestPixelSize);
    for (; height > 0 && size > 1; --size) {
        FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size));
        const FT_Size_Metrics& metrics = face->size->metrics;
        if (RoundedUp(metrics.ascender) + RoundedUp(-metrics.descender) <= height) {
            break;
        }
    }
    return static_cast<int>(size);
}

} // namespace

HFONT WINAPI CreateFontIndirectA(const LOGFONTA* record)
{
    if (record == nullptr) {
        return nullptr;
    }
    FaceName chosen = faceNames[0];
    for (const FaceName& face : faceNames) {
        if (strncasecmp(record->lfFaceName, face.name, LF_FACESIZE) == 0) {
            chosen = face;
        }
    }
    const bool bold = chosen.bold || record->lfWeight >= 600;
    const int fontFile = chosen.family * 4 + (bold ? 2 : 0) + (record->lfItalic ? 1 : 0);
    FT_Face face = FaceOf(fontFile);
    if (face == nullptr) {
        return nullptr;
    }
    FontStrike* strike = TakeStrike(fontFile, PixelSizeOf(face, record->lfHeight));
    if (strike == nullptr) {
        return nullptr;
    }
    HFONT font = new (std::nothrow) HFONT__{{ObjectType::font, 0, false}, strike, record->lfUnderline != 0};
    if (font == nullptr) {
        --strike->users;
    }
    return font;
}

void FreeFont(HFONT font)
{
    --font->strike->users;
    delete font;
}

HFONT SystemFont()
{
    static HFONT__ font = {{ObjectType::font, 0, true}, nullptr, false};
    if (font.strike == nullptr) {
        font.strike = TakeStrike(0, 13);
    }
    return &font;
}
