// The software drawing layer: what each call leaves in the pixels of a surface.
#include "platform/api/user.h"
#include "platform/gdi/surface.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <vector>

namespace {

using Rows = std::vector<std::string>;

constexpr uint32_t red = 0xFF0000;
constexpr uint32_t blue = 0x0000FF;
constexpr uint32_t ground = 0x102030;

// A picture with its device context. Pixels beyond the width catch drawing outside the surface.
struct Picture {
    static constexpr int margin = 3;

    Picture(int width, int height, uint32_t fill = ground)
        : storage(static_cast<size_t>((width + margin) * height), fill),
          surface{storage.data(), width, height, width + margin, {}}, dc(CreateSurfaceDC(&surface))
    {
        for (int y = 0; y < height; ++y) {
            std::fill_n(storage.begin() + y * (width + margin) + width, margin, 0xDEADBEEF);
        }
    }

    ~Picture()
    {
        EXPECT_EQ(Count(0xDEADBEEF), margin * surface.height);
        DeleteSurfaceDC(dc);
    }

    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    uint32_t At(int x, int y) const
    {
        return storage[static_cast<size_t>(y * surface.stride + x)];
    }

    // Rows of '#' for pixels of that value and '.' for the others.
    Rows Marks(uint32_t value) const
    {
        Rows rows;
        for (int y = 0; y < surface.height; ++y) {
            rows.emplace_back();
            for (int x = 0; x < surface.width; ++x) {
                rows.back() += At(x, y) == value ? '#' : '.';
            }
        }
        return rows;
    }

    int Count(uint32_t value) const
    {
        return static_cast<int>(std::count(storage.begin(), storage.end(), value));
    }

    std::vector<uint32_t> storage;
    Surface surface;
    HDC dc;
};

bool Equal(const RECT& first, const RECT& second)
{
    return EqualRect(&first, &second) != FALSE;
}

void Fill(HDC dc, RECT rect, COLORREF colour)
{
    HBRUSH brush = CreateSolidBrush(colour);
    FillRect(dc, &rect, brush);
    EXPECT_TRUE(DeleteObject(brush));
}

void Line(HDC dc, int x0, int y0, int x1, int y1)
{
    MoveToEx(dc, x0, y0, nullptr);
    LineTo(dc, x1, y1);
}

// Selects a pen for as long as it lives.
struct WithPen {
    WithPen(HDC target, COLORREF colour)
        : dc(target), pen(CreatePen(PS_SOLID, 0, colour)), before(SelectObject(target, pen))
    {
    }
    ~WithPen()
    {
        EXPECT_EQ(SelectObject(dc, before), pen);
        EXPECT_TRUE(DeleteObject(pen));
    }
    HDC dc;
    HPEN pen;
    HGDIOBJ before;
};

struct WithFont {
    WithFont(HDC target, const char* face, int height, int weight = FW_MEDIUM) : dc(target)
    {
        LOGFONTA record = {};
        record.lfHeight = height;
        record.lfWeight = weight;
        strncpy(record.lfFaceName, face, LF_FACESIZE - 1);
        font = CreateFontIndirectA(&record);
        EXPECT_NE(font, nullptr);
        before = SelectObject(dc, font);
    }
    ~WithFont()
    {
        SelectObject(dc, before);
        EXPECT_TRUE(DeleteObject(font));
    }
    HDC dc;
    HFONT font;
    HGDIOBJ before;
};

SIZE Extent(HDC dc, const std::string& text)
{
    SIZE size = {-1, -1};
    EXPECT_TRUE(GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &size));
    return size;
}

// ---- fills and lines ----

TEST(Gdi, FillsAndFramesLeaveOutRightAndBottom)
{
    Picture picture(6, 5);
    Fill(picture.dc, {1, 1, 4, 3}, PALETTERGB(255, 0, 0));
    EXPECT_EQ(picture.Marks(red), (Rows{"......", ".###..", ".###..", "......", "......"}));
    EXPECT_TRUE(Equal(picture.surface.dirty, {1, 1, 4, 3}));

    HBRUSH brush = CreateSolidBrush(RGB(0, 0, 255));
    RECT rect = {0, 0, 6, 5};
    FrameRect(picture.dc, &rect, brush);
    EXPECT_EQ(picture.Marks(blue), (Rows{"######", "#....#", "#....#", "#....#", "######"}));

    RECT inverted = {4, 3, 1, 1};
    const std::vector<uint32_t> before = picture.storage;
    FillRect(picture.dc, &inverted, brush);
    FrameRect(picture.dc, &inverted, brush);
    EXPECT_EQ(picture.storage, before);
    DeleteObject(brush);
}

TEST(Gdi, OriginMovesDrawingAndFarOutCoordinatesAreCut)
{
    Picture picture(4, 3);
    OffsetWindowOrgEx(picture.dc, 1000, -500, nullptr);
    EXPECT_TRUE(OffsetWindowOrgEx(picture.dc, 5, 1, nullptr));
    Fill(picture.dc, {1006, -498, 1007, 30000}, RGB(255, 0, 0));
    EXPECT_EQ(picture.Marks(red), (Rows{"....", ".#..", ".#.."}));
    POINT points[] = {{1006, -498}, {0, 0}};
    LPtoDP(picture.dc, points, 2);
    EXPECT_TRUE(points[0].x == 1 && points[0].y == 1);
    DPtoLP(picture.dc, points, 2);
    EXPECT_TRUE(points[0].y == -498 && points[1].x == 0);
    Fill(picture.dc, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, RGB(0, 0, 255));
    EXPECT_EQ(picture.Count(blue), 12);
    Line(picture.dc, INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX - 7);
}

TEST(Gdi, LinesLeaveOutTheirEndInEveryDirection)
{
    Picture picture(9, 9);
    WithPen pen(picture.dc, RGB(255, 0, 0));
    Line(picture.dc, 4, 4, 8, 4);
    Line(picture.dc, 4, 4, 4, 0);
    Line(picture.dc, 4, 4, 1, 4);
    Line(picture.dc, 4, 4, 4, 7);
    Line(picture.dc, 0, 0, 3, 3);
    Line(picture.dc, 8, 8, 5, 5);
    Line(picture.dc, 6, 0, 8, 4);
    Line(picture.dc, 3, 6, 0, 8);
    EXPECT_EQ(picture.Marks(red), (Rows{"#.....#..", ".#..#..#.", "..#.#..#.", "....#...#", "..######.", "....#....",
                                        "...##.#..", ".##....#.", "........#"}));
    POINT position;
    MoveToEx(picture.dc, 0, 0, &position);
    EXPECT_TRUE(position.x == 0 && position.y == 8);
}

TEST(Gdi, SlantedLinesFromFarOutsideMeetTheSamePixels)
{
    // The same line, once wholly inside and once seen through a small picture.
    Picture whole(200, 120), part(30, 20);
    OffsetWindowOrgEx(part.dc, 90, 40, nullptr);
    const int ends[][4] = {
        {0, 0, 199, 117}, {199, 3, 1, 110}, {70, 119, 130, 0}, {110, 0, 90, 119}, {1, 60, 198, 58}};
    WithPen wholePen(whole.dc, RGB(255, 0, 0)), partPen(part.dc, RGB(255, 0, 0));
    for (const auto& end : ends) {
        Line(whole.dc, end[0], end[1], end[2], end[3]);
        Line(part.dc, end[0], end[1], end[2], end[3]);
    }
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 30; ++x) {
            ASSERT_EQ(part.At(x, y), whole.At(90 + x, 40 + y)) << x << ' ' << y;
        }
    }
    EXPECT_GT(part.Count(red), 50);
}

TEST(Gdi, InvertingTouchesEachPixelOfTheLineOnceAndTwiceRestores)
{
    constexpr uint32_t inverse = ground ^ 0xFFFFFF;
    Picture picture(40, 30);
    const std::vector<uint32_t> before = picture.storage;
    const RECT clips[] = {{0, 0, 25, 20}, {10, 5, 40, 30}, {12, 7, 14, 9}};
    for (int clipCount : {-1, 3}) {
        for (const RECT& line :
             {RECT{3, 3, 35, 3}, RECT{5, 28, 5, 2}, RECT{1, 1, 38, 27}, RECT{30, 2, 22, 29}, RECT{36, 20, 2, 9}}) {
            Picture drawn(40, 30);
            if (clipCount >= 0) {
                SetClipOfDC(picture.dc, clips, clipCount);
                SetClipOfDC(drawn.dc, clips, clipCount);
            }
            WithPen pen(picture.dc, 0), drawnPen(drawn.dc, RGB(255, 0, 0));
            Line(drawn.dc, line.left, line.top, line.right, line.bottom);
            EXPECT_EQ(SetROP2(picture.dc, R2_NOT), R2_COPYPEN);
            Line(picture.dc, line.left, line.top, line.right, line.bottom);
            EXPECT_EQ(picture.Marks(inverse), drawn.Marks(red));
            EXPECT_GT(drawn.Count(red), 10);
            Line(picture.dc, line.left, line.top, line.right, line.bottom);
            EXPECT_EQ(picture.storage, before);
            EXPECT_EQ(SetROP2(picture.dc, R2_COPYPEN), R2_NOT);
        }
    }
}

TEST(Gdi, ClipLetsOnlyTheUnionThrough)
{
    Picture picture(6, 3);
    const RECT clips[] = {{0, 0, 3, 2}, {2, 1, 5, 9}, {4, 4, 4, 4}};
    SetClipOfDC(picture.dc, clips, 3);
    Fill(picture.dc, {0, 0, 6, 3}, RGB(255, 0, 0));
    EXPECT_EQ(picture.Marks(red), (Rows{"###...", "#####.", "..###."}));
    picture.surface.dirty = {};
    SetClipOfDC(picture.dc, nullptr, 0);
    Fill(picture.dc, {0, 0, 6, 3}, RGB(9, 9, 9));
    EXPECT_EQ(picture.Count(0x090909), 0);
    EXPECT_TRUE(Equal(picture.surface.dirty, {}));
    ClearClipOfDC(picture.dc);
    Fill(picture.dc, {0, 0, 6, 3}, RGB(9, 9, 9));
    EXPECT_EQ(picture.Count(0x090909), 18);
}

// ---- blits ----

TEST(Gdi, BlitCopiesWhatBothHoldAtEveryEdge)
{
    Picture source(5, 4, 0);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 5; ++x) {
            source.storage[static_cast<size_t>(y * source.surface.stride + x)] = static_cast<uint32_t>(y * 16 + x);
        }
    }
    for (int sourceX : {-3, 0, 2, 9}) {
        for (int sourceY : {-2, 0, 1}) {
            for (int x : {-4, -1, 0, 3, 6}) {
                for (int y : {-2, 0, 5}) {
                    Picture target(7, 6);
                    OffsetWindowOrgEx(target.dc, 100, 0, nullptr);
                    EXPECT_TRUE(BitBlt(target.dc, 100 + x, y, 6, 3, source.dc, sourceX, sourceY, SRCCOPY));
                    for (int v = 0; v < 6; ++v) {
                        for (int h = 0; h < 7; ++h) {
                            const int fromX = h - x + sourceX, fromY = v - y + sourceY;
                            const bool copied = h >= x && h < x + 6 && v >= y && v < y + 3 && fromX >= 0 &&
                                                fromX < 5 && fromY >= 0 && fromY < 4;
                            ASSERT_EQ(target.At(h, v), copied ? source.At(fromX, fromY) : ground);
                        }
                    }
                }
            }
        }
    }
    EXPECT_FALSE(BitBlt(source.dc, 0, 0, 1, 1, source.dc, 0, 0, 0x00550009));
}

TEST(Gdi, MemoryContextHoldsOneBitmapAtATime)
{
    Picture picture(8, 8);
    HDC memory = CreateCompatibleDC(picture.dc), second = CreateCompatibleDC(nullptr);
    HBITMAP bitmap = CreateCompatibleBitmap(picture.dc, 5, 4);
    HGDIOBJ displaced = SelectObject(memory, bitmap);
    EXPECT_NE(displaced, nullptr);
    EXPECT_EQ(SelectObject(second, bitmap), nullptr);
    EXPECT_EQ(SelectObject(picture.dc, bitmap), nullptr);
    EXPECT_FALSE(DeleteObject(bitmap));
    EXPECT_EQ(GetPixel(memory, 4, 3), RGB(0, 0, 0));
    EXPECT_EQ(GetPixel(memory, 5, 3), CLR_INVALID);
    Fill(memory, {-5, -5, 50, 50}, RGB(255, 0, 0));
    BitBlt(picture.dc, 2, 3, 90, 90, memory, 1, 0, SRCCOPY);
    EXPECT_EQ(picture.Count(red), 16);
    BITMAP record;
    EXPECT_EQ(GetObjectA(bitmap, sizeof record, &record), static_cast<int>(sizeof record));
    EXPECT_TRUE(record.bmWidth == 5 && record.bmHeight == 4 && record.bmBitsPixel == 32);
    EXPECT_EQ(GetObjectA(GetStockObject(DEFAULT_PALETTE), sizeof record, &record), 0);
    EXPECT_EQ(SelectObject(memory, displaced), bitmap);
    EXPECT_TRUE(DeleteObject(bitmap));
    EXPECT_FALSE(DeleteDC(picture.dc));
    EXPECT_TRUE(DeleteDC(memory) && DeleteDC(second));
    EXPECT_EQ(CreateCompatibleBitmap(picture.dc, 0, 5), nullptr);
    EXPECT_EQ(CreateCompatibleBitmap(picture.dc, INT32_MAX, INT32_MAX), nullptr);
}

TEST(Gdi, PackedBitmapOfTheResourcesIsShown)
{
    struct {
        BITMAPINFOHEADER header;
        RGBQUAD colours[16];
        uint8_t rows[2][4];
    } dib = {{40, 3, 2, 1, 4, BI_RGB, 0, 0, 0, 0, 0}, {}, {{0x12, 0x30}, {0xF1, 0x20}}};
    dib.colours[1] = {0, 0, 255, 0};
    dib.colours[15] = {255, 0, 0, 0};
    Picture picture(3, 2);
    HBITMAP bitmap = CreateDIBitmap(picture.dc, &dib.header, CBM_INIT, dib.rows, reinterpret_cast<BITMAPINFO*>(&dib),
                                    DIB_RGB_COLORS);
    ASSERT_NE(bitmap, nullptr);
    HDC memory = CreateCompatibleDC(picture.dc);
    HGDIOBJ displaced = SelectObject(memory, bitmap);
    // Drawing into it, and the blit, see the rows bottom-up.
    Fill(memory, {2, 0, 3, 1}, RGB(9, 9, 9));
    BitBlt(picture.dc, 0, 0, 3, 2, memory, 0, 0, SRCCOPY);
    EXPECT_EQ((std::vector<uint32_t>{picture.At(0, 0), picture.At(1, 0), picture.At(2, 0), picture.At(0, 1)}),
              (std::vector<uint32_t>{blue, red, 0x090909, red}));
    SelectObject(memory, displaced);
    DeleteDC(memory);
    DeleteObject(bitmap);
}

// ---- objects ----

TEST(Gdi, NullHandlesFailAndStockObjectsStay)
{
    RECT rect = {0, 0, 1, 1};
    HBRUSH brush = CreateSolidBrush(0);
    EXPECT_EQ(FillRect(nullptr, &rect, brush), 0);
    EXPECT_FALSE(LineTo(nullptr, 1, 1));
    EXPECT_FALSE(BitBlt(nullptr, 0, 0, 1, 1, nullptr, 0, 0, SRCCOPY));
    EXPECT_EQ(GetPixel(nullptr, 0, 0), CLR_INVALID);
    EXPECT_EQ(SetTextColor(nullptr, 0), CLR_INVALID);
    EXPECT_EQ(SelectObject(nullptr, nullptr), nullptr);
    EXPECT_EQ(DrawTextA(nullptr, "x", 1, &rect, 0), 0);
    EXPECT_FALSE(DeleteObject(nullptr));
    for (int which : {BLACK_PEN, SYSTEM_FONT, DEFAULT_PALETTE}) {
        ASSERT_NE(GetStockObject(which), nullptr);
        EXPECT_FALSE(DeleteObject(GetStockObject(which)));
    }
    // A context without a surface draws nothing.
    HDC bare = CreateSurfaceDC(nullptr);
    EXPECT_EQ(FillRect(bare, &rect, brush), 1);
    DeleteObject(brush);
    DeleteSurfaceDC(bare);
}

// ---- text ----

TEST(Gdi, TextSitsOnItsBaselineInsideItsCell)
{
    Picture picture(60, 40, 0xFFFFFF);
    WithFont font(picture.dc, "Arial", -11);
    constexpr int ascent = 10;
    EXPECT_EQ(Extent(picture.dc, "EEE").cy, 13);
    SetBkMode(picture.dc, TRANSPARENT);
    SetTextAlign(picture.dc, TA_BASELINE);
    TextOutA(picture.dc, 5, 20, "EEE", 3);
    const RECT dirty = picture.surface.dirty;
    EXPECT_TRUE(dirty.bottom == 20 && dirty.top == 12) << "capitals of an 11-pixel Arial are 8 pixels high";
    EXPECT_LE(dirty.right, 5 + Extent(picture.dc, "EEE").cx);
    EXPECT_EQ(picture.At(6, 15), 0u) << "stems are crisp: a whole pixel of the text colour";

    // The same text from its top-left corner lies as much lower as the ascent says.
    Picture other(60, 40, 0xFFFFFF);
    WithFont otherFont(other.dc, "arial", -11);
    SetBkMode(other.dc, TRANSPARENT);
    TextOutA(other.dc, 5, 20 - ascent, "EEE", 3);
    EXPECT_EQ(other.storage, picture.storage);

    Picture opaque(60, 40);
    WithFont courier(opaque.dc, "Courier New", -11);
    EXPECT_EQ(SetBkColor(opaque.dc, PALETTERGB(255, 255, 102)), RGB(255, 255, 255));
    SetTextAlign(opaque.dc, TA_BASELINE);
    TextOutA(opaque.dc, 10, 20, "  ", 2);
    const SIZE size = Extent(opaque.dc, "  ");
    EXPECT_EQ(opaque.Count(0xFFFF66), size.cx * size.cy) << "the cell is filled";
    EXPECT_TRUE(opaque.surface.dirty.left == 10 && opaque.surface.dirty.top == 20 - ascent);
}

TEST(Gdi, FontsDifferAsTheirRecordsSay)
{
    Picture picture(200, 60, 0xFFFFFF);
    const std::string text = "Kestrel wing";
    auto width = [&](const char* face, int height, int weight) {
        WithFont font(picture.dc, face, height, weight);
        return Extent(picture.dc, text).cx;
    };
    EXPECT_EQ(width("Arial", -12, 500), width("Arial", -12, 400));
    EXPECT_LT(width("Arial", -12, 599), width("Arial", -12, 600));
    EXPECT_EQ(width("Times New Roman Bold", -24, 500), width("Times New Roman", -24, 700));
    EXPECT_NE(width("Times New Roman", -24, 500), width("Times New Roman", -24, 700));
    EXPECT_EQ(width("No Such Face", -12, 500), width("Arial", -12, 500));
}

TEST(Gdi, TextIsReadAsUtf8)
{
    Picture picture(10, 10);
    WithFont font(picture.dc, "Arial", -11);
    const LONG question = Extent(picture.dc, "?").cx;
    EXPECT_EQ(Extent(picture.dc, "Se\xC3\xA9").cx, Extent(picture.dc, "Se").cx + Extent(picture.dc, "e").cx);
    for (const char* bad : {"\xE9", "\xC3", "\x80", "\xFF", "\xC0"}) {
        EXPECT_EQ(Extent(picture.dc, bad).cx, question) << static_cast<int>(static_cast<uint8_t>(bad[0]));
    }
    EXPECT_EQ(Extent(picture.dc, "\xC0\x80").cx, 2 * question);
    EXPECT_EQ(Extent(picture.dc, "\xED\xA0\x80").cx, 3 * question);
    EXPECT_EQ(Extent(picture.dc, "a\x01\t\r\nb").cx, Extent(picture.dc, "ab").cx);
    EXPECT_EQ(Extent(picture.dc, "").cx, 0);
}

int TextHeight(HDC dc, const std::string& text, int width, UINT format, RECT* measured = nullptr)
{
    RECT rect = {0, 0, width, 5};
    const int height = DrawTextA(dc, text.c_str(), -1, &rect, format | DT_NOPREFIX | DT_CALCRECT);
    if (measured) {
        *measured = rect;
    }
    return height;
}

TEST(Gdi, WordsWrapAtBlanksLineFeedsAndInsideLongWords)
{
    Picture picture(10, 10);
    WithFont font(picture.dc, "Courier New", -10);
    const int cell = Extent(picture.dc, "m").cx, line = Extent(picture.dc, "m").cy;
    struct {
        const char* text;
        int columns;
        int lines;
    } cases[] = {
        {"", 5, 0},          {"aa", 5, 1},        {"aaaaa", 5, 1},     {"aa bb", 5, 1},  {"aa bbb", 5, 2},
        {"aa   bbb", 5, 2},  {"aaaaa bb", 5, 2},  {"aaaaa    ", 5, 1}, {"aaaaaa", 5, 2}, {"aaaaaaaaaaa", 5, 3},
        {"a\nb", 5, 2},      {"a\r\nb", 5, 2},    {"a\n\nb", 5, 3},    {"a\n", 5, 1},    {"aa bb cc", 5, 2},
        {"  aaaaaaa", 5, 2}, {"bb aaaaaa", 5, 3}, {"abc", 0, 3},       {"&aaaaa", 5, 2},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(TextHeight(picture.dc, one.text, one.columns * cell, DT_WORDBREAK), one.lines * line) << one.text;
    }
    EXPECT_EQ(TextHeight(picture.dc, "aa bb cc dd", cell, DT_LEFT), line);
    RECT rect;
    TextHeight(picture.dc, "abc", 50 * cell, DT_WORDBREAK, &rect);
    EXPECT_TRUE(rect.right == 3 * cell && rect.bottom == line);
    TextHeight(picture.dc, "abc abc abc", 8 * cell, DT_WORDBREAK, &rect);
    EXPECT_TRUE(rect.right == 8 * cell && rect.bottom == 2 * line);
    EXPECT_TRUE(Equal(picture.surface.dirty, {}));
}

TEST(Gdi, DrawnTextIsAlignedAndClipped)
{
    Picture picture(80, 40, 0xFFFFFF);
    WithFont font(picture.dc, "Courier New", -10);
    const int cell = Extent(picture.dc, "m").cx, line = Extent(picture.dc, "m").cy;
    SetBkColor(picture.dc, RGB(255, 0, 0));
    OffsetWindowOrgEx(picture.dc, 100, 0, nullptr);
    auto dirtyOf = [&](RECT rect, const char* text, UINT format) {
        picture.surface.dirty = {};
        DrawTextA(picture.dc, text, static_cast<int>(strlen(text)), &rect, format | DT_NOPREFIX);
        return picture.surface.dirty;
    };
    RECT dirty = dirtyOf({110, 2, 170, 38}, "ab", DT_LEFT);
    EXPECT_TRUE(Equal(dirty, {10, 2, 10 + 2 * cell, 2 + line}));
    dirty = dirtyOf({110, 2, 170, 38}, "ab", DT_RIGHT);
    EXPECT_TRUE(dirty.left == 70 - 2 * cell && dirty.right == 70);
    dirty = dirtyOf({110, 2, 170, 38}, "ab\nabcd", DT_CENTER | DT_WORDBREAK);
    EXPECT_TRUE(dirty.left == 10 + (60 - 4 * cell) / 2 && dirty.bottom == 2 + 2 * line);
    dirty = dirtyOf({110, 2, 115, 6}, "abcd", DT_LEFT);
    EXPECT_TRUE(Equal(dirty, {10, 2, 15, 6}));
}

// ---- stretching ----

struct DibOf32Bits {
    std::vector<uint32_t> pixels;
    BITMAPINFO info;
};

DibOf32Bits NewDib(int width, int height, const std::vector<uint32_t>& pixels)
{
    DibOf32Bits dib = {pixels, {}};
    dib.info.bmiHeader.biSize = sizeof dib.info.bmiHeader;
    dib.info.bmiHeader.biWidth = width;
    dib.info.bmiHeader.biHeight = height;
    dib.info.bmiHeader.biPlanes = 1;
    dib.info.bmiHeader.biBitCount = 32;
    return dib;
}

int Stretch(HDC dc, int x, int y, int width, int height, const DibOf32Bits& dib)
{
    const BITMAPINFOHEADER& header = dib.info.bmiHeader;
    return StretchDIBits(dc, x, y, width, height, 0, 0, header.biWidth, std::abs(header.biHeight), dib.pixels.data(),
                         &dib.info, DIB_RGB_COLORS, SRCCOPY);
}

TEST(Gdi, StretchingRepeatsPixelsAndStaysInsideClipAndSurface)
{
    Picture target(12, 9);
    // Three pixels to seven columns: the second one has columns 2 and 3 of them, the third one 4 to 6.
    DibOf32Bits dib = NewDib(3, -2, {0, red, 0, 0, 0, blue});
    EXPECT_EQ(Stretch(target.dc, 2, 1, 7, 4, dib), 2);
    const Rows redRows = {"............", "....##......", "....##......", "............", "............",
                          "............", "............", "............", "............"};
    EXPECT_EQ(target.Marks(red), redRows);
    const Rows blueRows = {"............", "............", "............", "......###...", "......###...",
                           "............", "............", "............", "............"};
    EXPECT_EQ(target.Marks(blue), blueRows);

    // With a positive height the rows begin at the bottom.
    dib.info.bmiHeader.biHeight = 2;
    EXPECT_EQ(Stretch(target.dc, 9, 7, 3, 2, dib), 2);
    EXPECT_EQ(target.At(11, 7), static_cast<uint32_t>(blue));
    EXPECT_EQ(target.At(10, 8), static_cast<uint32_t>(red));

    // Beyond every edge and through a clip rectangle nothing else changes.
    const RECT clip = {3, 3, 5, 5};
    SetClipOfDC(target.dc, &clip, 1);
    EXPECT_EQ(Stretch(target.dc, -10, -10, 40, 40, NewDib(1, 1, {red})), 1);
    ClearClipOfDC(target.dc);
    EXPECT_EQ(target.Count(red), 4 + 1 + 4);

    EXPECT_EQ(Stretch(target.dc, 0, 0, -4, 4, dib), 0) << "mirrored";
    EXPECT_EQ(Stretch(target.dc, 0, 0, 4, 0, dib), 0);
    EXPECT_EQ(Stretch(target.dc, 0, 0, 4, 4, NewDib(3, 0, {0})), 0);
    EXPECT_EQ(StretchDIBits(target.dc, 0, 0, 4, 4, 1, 0, 2, 2, dib.pixels.data(), &dib.info, DIB_RGB_COLORS, SRCCOPY),
              0)
        << "a part of the bitmap";
    dib.info.bmiHeader.biBitCount = 24;
    EXPECT_EQ(Stretch(target.dc, 0, 0, 4, 4, dib), 0);
    EXPECT_EQ(target.Count(red), 4 + 1 + 4);
}

// Large pictures are written by another way, which must begin and end at any pixel.
TEST(Gdi, RowsOfLargePicturesAreCopiedToTheirLastPixel)
{
    constexpr int side = 2100;
    Picture target(side, side, 0);
    std::vector<uint32_t> row(23);
    std::iota(row.begin(), row.end(), 1);
    for (int x = 0; x < 5; x++) {
        for (int count = 1; count <= static_cast<int>(row.size()); count++) {
            const int y = x * 100 + count * 4;
            ASSERT_EQ(Stretch(target.dc, x, y, count, 2, NewDib(count, 1, row)), 1);
            for (int below = y; below < y + 2; below++) {
                for (int i = x == 0 ? 0 : -1; i <= count; i++) {
                    ASSERT_EQ(target.At(x + i, below), i < 0 || i == count ? 0u : row[static_cast<size_t>(i)])
                        << x << " " << count << " " << i;
                }
            }
            ASSERT_EQ(target.At(x, y + 2), 0u);
        }
    }
    ASSERT_EQ(Stretch(target.dc, side - 3, side - 1, 23, 5, NewDib(23, 1, row)), 1);
    EXPECT_EQ(target.At(side - 1, side - 1), 3u);
}

} // namespace
