// The software drawing layer: what each call leaves in the pixels of a surface.
#include "platform/api/user.h"
#include "tests/picture.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

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
    WithPen(HDC target, int width, COLORREF colour)
        : dc(target), pen(CreatePen(PS_SOLID, width, colour)), before(SelectObject(target, pen))
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
    WithFont(HDC target, const char* face, int height, int weight = FW_MEDIUM, bool underline = false) : dc(target)
    {
        LOGFONTA record = {};
        record.lfHeight = height;
        record.lfWeight = weight;
        record.lfUnderline = underline;
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
    EXPECT_TRUE(EqualRect(&picture.surface.dirty, std::data({RECT{1, 1, 4, 3}})));

    HBRUSH brush = CreateSolidBrush(RGB(0, 0, 255));
    RECT rect = {0, 0, 6, 5};
    FrameRect(picture.dc, &rect, brush);
    EXPECT_EQ(picture.Marks(blue), (Rows{"######", "#....#", "#....#", "#....#", "######"}));

    RECT inverted = {4, 3, 1, 1};
    const std::vector<uint32_t> before = picture.storage;
    FillRect(picture.dc, &inverted, brush);
    FrameRect(picture.dc, &inverted, brush);
    rect = {0, 0, 6, 5};
    FillRect(picture.dc, &rect, static_cast<HBRUSH>(GetStockObject(NULL_BRUSH)));
    EXPECT_EQ(picture.storage, before);
    DeleteObject(brush);
}

TEST(Gdi, OriginMovesDrawingAndFarOutCoordinatesAreCut)
{
    Picture picture(4, 3);
    SetWindowOrgEx(picture.dc, 1000, -500, nullptr);
    POINT previous;
    EXPECT_TRUE(OffsetWindowOrgEx(picture.dc, 5, 1, &previous));
    EXPECT_EQ(previous.x, 1000);
    Fill(picture.dc, {1006, -498, 1007, 30000}, RGB(255, 0, 0));
    EXPECT_EQ(picture.Marks(red), (Rows{"....", ".#..", ".#.."}));
    POINT points[] = {{1006, -498}, {0, 0}};
    LPtoDP(picture.dc, points, 2);
    EXPECT_EQ(points[0].x, 1);
    EXPECT_EQ(points[0].y, 1);
    DPtoLP(picture.dc, points, 2);
    EXPECT_EQ(points[0].y, -498);
    EXPECT_EQ(points[1].x, 0);

    Fill(picture.dc, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, RGB(0, 0, 255));
    EXPECT_EQ(picture.Count(blue), 12);
    Line(picture.dc, INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX - 7);
    EXPECT_EQ(SetPixel(picture.dc, INT32_MIN, 0, 0), CLR_INVALID);
}

TEST(Gdi, LinesLeaveOutTheirEndInEveryDirection)
{
    Picture picture(9, 9);
    WithPen pen(picture.dc, 0, RGB(255, 0, 0));
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
    EXPECT_EQ(position.x, 0);
    EXPECT_EQ(position.y, 8);
}

TEST(Gdi, SlantedLinesFromFarOutsideMeetTheSamePixels)
{
    // The same line, once wholly inside and once seen through a small picture.
    Picture whole(200, 120), part(30, 20);
    SetWindowOrgEx(part.dc, 90, 40, nullptr);
    const int ends[][4] = {
        {0, 0, 199, 117}, {199, 3, 1, 110}, {70, 119, 130, 0}, {110, 0, 90, 119}, {1, 60, 198, 58}};
    for (int width : {1, 4}) {
        WithPen wholePen(whole.dc, width, RGB(255, 0, 0)), partPen(part.dc, width, RGB(255, 0, 0));
        for (const auto& end : ends) {
            Line(whole.dc, end[0], end[1], end[2], end[3]);
            Line(part.dc, end[0], end[1], end[2], end[3]);
        }
        for (int y = 0; y < 20; ++y) {
            for (int x = 0; x < 30; ++x) {
                ASSERT_EQ(part.At(x, y), whole.At(90 + x, 40 + y)) << x << ' ' << y;
            }
        }
    }
    EXPECT_GT(part.Count(red), 100);
}

TEST(Gdi, WidePensCoverMoreBeforeThanAfter)
{
    Picture picture(8, 8);
    {
        WithPen pen(picture.dc, 2, RGB(255, 0, 0));
        Line(picture.dc, 2, 2, 6, 2);
        Line(picture.dc, 6, 2, 6, 6);
        Line(picture.dc, 6, 6, 2, 6);
        Line(picture.dc, 2, 6, 2, 2);
    }
    EXPECT_EQ(picture.Marks(red),
              (Rows{"........", ".######.", ".######.", ".##..##.", ".##..##.", ".######.", ".######.", "........"}));
    WithPen pen(picture.dc, 3, RGB(0, 0, 255));
    Line(picture.dc, 0, 4, 8, 4);
    EXPECT_EQ(picture.Marks(blue)[3], "########");
    EXPECT_EQ(picture.Marks(blue)[5], "########");
    EXPECT_EQ(picture.Count(blue), 24);
}

TEST(Gdi, InvertingTouchesEachPixelOfTheLineOnceAndTwiceRestores)
{
    constexpr uint32_t inverse = ground ^ 0xFFFFFF;
    Picture picture(40, 30);
    const std::vector<uint32_t> before = picture.storage;
    const RECT clips[] = {{0, 0, 25, 20}, {10, 5, 40, 30}, {12, 7, 14, 9}};
    for (int clipCount : {-1, 3}) {
        for (int width : {1, 2, 5}) {
            for (const RECT& line : {RECT{3, 3, 35, 3}, RECT{5, 28, 5, 2}, RECT{1, 1, 38, 27}, RECT{30, 2, 22, 29},
                                     RECT{36, 20, 2, 9}}) {
                Picture drawn(40, 30);
                if (clipCount >= 0) {
                    SetClipOfDC(picture.dc, clips, clipCount);
                    SetClipOfDC(drawn.dc, clips, clipCount);
                }
                WithPen pen(picture.dc, width, 0), drawnPen(drawn.dc, width, RGB(255, 0, 0));
                Line(drawn.dc, line.left, line.top, line.right, line.bottom);
                EXPECT_EQ(SetROP2(picture.dc, R2_NOT), R2_COPYPEN);
                Line(picture.dc, line.left, line.top, line.right, line.bottom);
                EXPECT_EQ(picture.Marks(inverse), drawn.Marks(red));
                EXPECT_GT(drawn.Count(red), 14);
                Line(picture.dc, line.left, line.top, line.right, line.bottom);
                EXPECT_EQ(picture.storage, before);
                EXPECT_EQ(SetROP2(picture.dc, R2_COPYPEN), R2_NOT);
            }
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
    EXPECT_EQ(SetPixel(picture.dc, 5, 0, 0), CLR_INVALID);
    EXPECT_EQ(SetPixel(picture.dc, 4, 1, PALETTERGB(0, 0, 255)), RGB(0, 0, 255));
    EXPECT_EQ(GetPixel(picture.dc, 4, 1), RGB(0, 0, 255));
    picture.surface.dirty = {};
    SetClipOfDC(picture.dc, nullptr, 0);
    Fill(picture.dc, {0, 0, 6, 3}, RGB(9, 9, 9));
    EXPECT_EQ(picture.Count(0x090909), 0);
    EXPECT_TRUE(IsRectEmpty(&picture.surface.dirty));
    ClearClipOfDC(picture.dc);
    Fill(picture.dc, {0, 0, 6, 3}, RGB(9, 9, 9));
    EXPECT_EQ(picture.Count(0x090909), 18);
}

std::vector<RECT> reportedLines;

TEST(Gdi, ScreenReportsInvertingLinesOnly)
{
    reportedLines.clear();
    HDC dc = CreateScreenDC([](int x0, int y0, int x1, int y1) { reportedLines.push_back({x0, y0, x1, y1}); });
    Line(dc, 1, 2, 3, 4);
    SetROP2(dc, R2_NOT);
    Line(dc, 5, 6, 70, 6);
    Fill(dc, {0, 0, 5, 5}, 0);
    TextOutA(dc, 0, 0, "x", 1);
    ASSERT_EQ(reportedLines.size(), 1u);
    EXPECT_EQ(reportedLines[0].right, 70);
    DeleteSurfaceDC(dc);
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
                    SetWindowOrgEx(target.dc, 100, 0, nullptr);
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

TEST(Gdi, OverlappingBlitKeepsTheSource)
{
    const RECT twoHalves[] = {{0, 0, 12, 5}, {0, 5, 12, 9}};
    for (bool clipped : {false, true}) {
        for (int dx : {-3, 0, 2}) {
            for (int dy : {-2, 0, 1}) {
                Picture picture(12, 9, 0);
                for (int y = 0; y < 9; ++y) {
                    for (int x = 0; x < 12; ++x) {
                        SetPixel(picture.dc, x, y, RGB(x, y, 7));
                    }
                }
                if (clipped) {
                    SetClipOfDC(picture.dc, twoHalves, 2);
                }
                BitBlt(picture.dc, 4 + dx, 3 + dy, 6, 3, picture.dc, 4, 3, SRCCOPY);
                for (int y = 0; y < 3; ++y) {
                    for (int x = 0; x < 6; ++x) {
                        ASSERT_EQ(GetPixel(picture.dc, 4 + dx + x, 3 + dy + y), RGB(4 + x, 3 + y, 7));
                    }
                }
            }
        }
    }
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
    EXPECT_EQ(record.bmWidth, 5);
    EXPECT_EQ(record.bmHeight, 4);
    EXPECT_EQ(record.bmBitsPixel, 32);
    EXPECT_EQ(GetObjectA(GetStockObject(BLACK_PEN), sizeof record, &record), 0);
    EXPECT_EQ(SelectObject(memory, displaced), bitmap);
    EXPECT_TRUE(DeleteObject(bitmap));
    EXPECT_FALSE(DeleteDC(picture.dc));
    EXPECT_TRUE(DeleteDC(memory));
    EXPECT_TRUE(DeleteDC(second));
    EXPECT_EQ(CreateCompatibleBitmap(picture.dc, 0, 5), nullptr);
    EXPECT_EQ(CreateCompatibleBitmap(picture.dc, INT32_MAX, INT32_MAX), nullptr);
}

TEST(Gdi, LargeBitmapsAreBlackToTheirLastPixel)
{
    for (SIZE size : {SIZE{511, 513}, SIZE{600, 600}, SIZE{1024, 1023}, SIZE{2048, 1024}, SIZE{16384, 130}}) {
        HDC memory = CreateCompatibleDC(nullptr);
        HBITMAP bitmap = CreateCompatibleBitmap(memory, size.cx, size.cy);
        HGDIOBJ displaced = SelectObject(memory, bitmap);
        EXPECT_EQ(GetPixel(memory, size.cx - 1, size.cy - 1), RGB(0, 0, 0));
        Fill(memory, {0, 0, size.cx, size.cy}, RGB(1, 2, 3));
        EXPECT_EQ(GetPixel(memory, size.cx - 1, size.cy - 1), RGB(1, 2, 3));
        SelectObject(memory, displaced);
        EXPECT_TRUE(DeleteObject(bitmap));
        DeleteDC(memory);
    }
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
    EXPECT_EQ(FillRect(nullptr, &rect, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH))), 0);
    EXPECT_FALSE(LineTo(nullptr, 1, 1));
    EXPECT_FALSE(BitBlt(nullptr, 0, 0, 1, 1, nullptr, 0, 0, SRCCOPY));
    EXPECT_EQ(GetPixel(nullptr, 0, 0), CLR_INVALID);
    EXPECT_EQ(SetTextColor(nullptr, 0), CLR_INVALID);
    EXPECT_EQ(SelectObject(nullptr, nullptr), nullptr);
    EXPECT_EQ(DrawTextA(nullptr, "x", 1, &rect, 0), 0);
    EXPECT_FALSE(DeleteObject(nullptr));
    for (int which : {WHITE_BRUSH, BLACK_BRUSH, NULL_BRUSH, WHITE_PEN, BLACK_PEN, SYSTEM_FONT, DEFAULT_PALETTE}) {
        ASSERT_NE(GetStockObject(which), nullptr);
        EXPECT_FALSE(DeleteObject(GetStockObject(which)));
    }
    // A context whose surface went away draws nothing.
    Picture picture(2, 2);
    SetSurfaceOfDC(picture.dc, nullptr);
    EXPECT_EQ(FillRect(picture.dc, &rect, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH))), 1);
    EXPECT_EQ(picture.Count(ground), 4);
}

TEST(Gdi, PalettesAndRegionsKeepWhatTheyWereGiven)
{
    struct {
        WORD version;
        WORD count;
        PALETTEENTRY entries[3];
    } wanted = {0x300, 3, {{1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0}}};
    HPALETTE palette = CreatePalette(reinterpret_cast<LOGPALETTE*>(&wanted));
    Picture picture(2, 2);
    HPALETTE before = SelectPalette(picture.dc, palette, FALSE);
    EXPECT_EQ(before, GetStockObject(DEFAULT_PALETTE));
    EXPECT_EQ(GetCurrentObject(picture.dc, OBJ_PAL), palette);
    EXPECT_FALSE(DeleteObject(palette));
    PALETTEENTRY entries[8] = {};
    EXPECT_EQ(GetPaletteEntries(palette, 1, 8, entries), 2u);
    EXPECT_EQ(entries[1].peBlue, 9);
    SelectPalette(picture.dc, before, FALSE);
    EXPECT_TRUE(DeleteObject(palette));

    HRGN region = CreateRectRgn(8, 9, 2, 3), empty = CreateRectRgn(0, 0, 0, 0);
    EXPECT_TRUE(PtInRegion(region, 2, 3));
    EXPECT_FALSE(PtInRegion(region, 8, 3));
    EXPECT_EQ(CombineRgn(region, empty, nullptr, RGN_COPY), NULLREGION);
    EXPECT_FALSE(PtInRegion(region, 2, 3));
    DeleteObject(region);
    DeleteObject(empty);
}

TEST(Gdi, RectangleArithmetic)
{
    RECT a = {0, 0, 10, 10}, b = {5, -5, 20, 5}, apart = {10, 0, 12, 4}, result;
    EXPECT_TRUE(IntersectRect(&result, &a, &b));
    EXPECT_TRUE(EqualRect(&result, std::data({RECT{5, 0, 10, 5}})));
    EXPECT_FALSE(IntersectRect(&result, &a, &apart));
    EXPECT_TRUE(EqualRect(&result, std::data({RECT{0, 0, 0, 0}})));
    EXPECT_TRUE(UnionRect(&result, &a, &b));
    EXPECT_TRUE(EqualRect(&result, std::data({RECT{0, -5, 20, 10}})));
    RECT thin = {50, 50, 50, 60};
    EXPECT_TRUE(UnionRect(&result, &thin, &a));
    EXPECT_TRUE(EqualRect(&result, &a));
    InflateRect(&a, -2, 3);
    OffsetRect(&a, 1, 1);
    EXPECT_TRUE(EqualRect(&a, std::data({RECT{3, -2, 9, 14}})));
    EXPECT_TRUE(PtInRect(&a, {3, -2}));
    EXPECT_FALSE(PtInRect(&a, {9, 0}));
    EXPECT_FALSE(PtInRect(&a, {5, 14}));
}

// ---- text ----

TEST(Gdi, TextSitsOnItsBaselineInsideItsCell)
{
    Picture picture(60, 40, 0xFFFFFF);
    WithFont font(picture.dc, "Arial", -11);
    TEXTMETRICA metrics;
    ASSERT_TRUE(GetTextMetricsA(picture.dc, &metrics));
    EXPECT_EQ(metrics.tmHeight, metrics.tmAscent + metrics.tmDescent);
    EXPECT_EQ(metrics.tmHeight, 13);
    SetBkMode(picture.dc, TRANSPARENT);
    SetTextAlign(picture.dc, TA_BASELINE);
    TextOutA(picture.dc, 5, 20, "EEE", 3);
    const RECT dirty = picture.surface.dirty;
    EXPECT_EQ(dirty.bottom, 20);
    EXPECT_EQ(dirty.top, 12); // capitals of an 11-pixel Arial are 8 pixels high
    EXPECT_LE(dirty.right, 5 + Extent(picture.dc, "EEE").cx);
    EXPECT_EQ(picture.At(6, 15), 0u); // stems are crisp: a whole pixel of the text colour

    // The same text from its top-left corner lies as much lower as the ascent says.
    Picture other(60, 40, 0xFFFFFF);
    WithFont otherFont(other.dc, "arial", -11);
    SetBkMode(other.dc, TRANSPARENT);
    TextOutA(other.dc, 5, 20 - metrics.tmAscent, "EEE", 3);
    EXPECT_EQ(other.storage, picture.storage);
}

TEST(Gdi, OpaqueTextFillsItsCell)
{
    Picture picture(60, 40);
    WithFont font(picture.dc, "Courier New", -11);
    EXPECT_EQ(SetBkColor(picture.dc, PALETTERGB(255, 255, 102)), RGB(255, 255, 255));
    SetTextAlign(picture.dc, TA_BASELINE);
    TextOutA(picture.dc, 10, 20, "  ", 2);
    const SIZE size = Extent(picture.dc, "  ");
    TEXTMETRICA metrics;
    GetTextMetricsA(picture.dc, &metrics);
    EXPECT_EQ(picture.Count(0xFFFF66), size.cx * size.cy);
    EXPECT_EQ(picture.surface.dirty.left, 10);
    EXPECT_EQ(picture.surface.dirty.top, 20 - metrics.tmAscent);
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
    {
        WithFont font(picture.dc, "Arial", 32); // a cell height
        EXPECT_NEAR(Extent(picture.dc, text).cy, 32, 1);
    }
    WithFont font(picture.dc, "Arial", -11, FW_MEDIUM, true);
    SetBkMode(picture.dc, TRANSPARENT);
    TextOutA(picture.dc, 0, 0, "   ", 3);
    EXPECT_EQ(picture.Count(0), Extent(picture.dc, "   ").cx); // the underline alone
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
    const int height = DrawTextA(dc, text.c_str(), -1, &rect, format | DT_CALCRECT);
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
        {"  aaaaaaa", 5, 2}, {"bb aaaaaa", 5, 3}, {"abc", 0, 3},       {"&aaaaa", 5, 1}, {"aaaa&&a", 5, 2},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(TextHeight(picture.dc, one.text, one.columns * cell, DT_WORDBREAK), one.lines * line) << one.text;
    }
    EXPECT_EQ(TextHeight(picture.dc, "aa bb cc dd", cell, DT_LEFT), line);
    RECT rect;
    TextHeight(picture.dc, "abc", 50 * cell, DT_WORDBREAK, &rect);
    EXPECT_EQ(rect.right, 3 * cell);
    EXPECT_EQ(rect.bottom, line);
    TextHeight(picture.dc, "abc abc abc", 8 * cell, DT_WORDBREAK, &rect);
    EXPECT_EQ(rect.right, 8 * cell);
    EXPECT_EQ(rect.bottom, 2 * line);
    TextHeight(picture.dc, "&abc", 50 * cell, DT_NOPREFIX, &rect);
    EXPECT_EQ(rect.right, 4 * cell);
    EXPECT_TRUE(IsRectEmpty(&picture.surface.dirty));
}

TEST(Gdi, DrawnTextIsAlignedAndClipped)
{
    Picture picture(80, 40, 0xFFFFFF);
    WithFont font(picture.dc, "Courier New", -10);
    const int cell = Extent(picture.dc, "m").cx, line = Extent(picture.dc, "m").cy;
    SetBkColor(picture.dc, RGB(255, 0, 0));
    SetWindowOrgEx(picture.dc, 100, 0, nullptr);
    auto dirtyOf = [&](RECT rect, const char* text, UINT format) {
        picture.surface.dirty = {};
        DrawTextA(picture.dc, text, static_cast<int>(strlen(text)), &rect, format);
        return picture.surface.dirty;
    };
    RECT dirty = dirtyOf({110, 2, 170, 38}, "ab", DT_LEFT);
    EXPECT_TRUE(EqualRect(&dirty, std::data({RECT{10, 2, 10 + 2 * cell, 2 + line}})));
    dirty = dirtyOf({110, 2, 170, 38}, "ab", DT_RIGHT);
    EXPECT_EQ(dirty.left, 70 - 2 * cell);
    EXPECT_EQ(dirty.right, 70);
    dirty = dirtyOf({110, 2, 170, 38}, "ab\nabcd", DT_CENTER | DT_WORDBREAK);
    EXPECT_EQ(dirty.left, 10 + (60 - 4 * cell) / 2);
    EXPECT_EQ(dirty.bottom, 2 + 2 * line);
    dirty = dirtyOf({110, 2, 115, 6}, "abcd", DT_LEFT);
    EXPECT_TRUE(EqualRect(&dirty, std::data({RECT{10, 2, 15, 6}})));
    dirty = dirtyOf({110, 2, 115, 6}, "abcd", DT_LEFT | DT_NOCLIP);
    EXPECT_EQ(dirty.right, 10 + 4 * cell);

    // "&b" is drawn as "b" with a line below it.
    Picture plain(80, 40, 0xFFFFFF), marked(80, 40, 0xFFFFFF);
    WithFont plainFont(plain.dc, "Courier New", -10), markedFont(marked.dc, "Courier New", -10);
    RECT rect = {0, 0, 80, 40};
    DrawTextA(plain.dc, "   ", -1, &rect, 0);
    DrawTextA(marked.dc, " & ", -1, &rect, 0);
    EXPECT_EQ(marked.Count(0), cell);
    EXPECT_EQ(plain.Count(0), 0);
}

} // namespace
