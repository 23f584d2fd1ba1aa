// Rectangles, ports, lines, fills, text, offscreen surfaces and texts of the Toolbox.
#include "tests/toolbox_fixture.h"
#include "toolbox/offscreen.h"
#include "toolbox/resources.h"

#include <string>

namespace {

constexpr COLORREF paper = RGB(255, 255, 255);
constexpr COLORREF ink = RGB(200, 10, 30);
constexpr COLORREF black = RGB(0, 0, 0);
constexpr COLORREF blue = RGB(0, 0, 255);

// ---- rectangles and ports ----

TEST(ToolboxGeometry, RectanglesFollowTheToolboxRules)
{
    Rect rect = {};
    EXPECT_TRUE(EmptyRect(&rect));
    SetRect(&rect, 5, 5, 20, 5);
    EXPECT_FALSE(EmptyRect(&rect)) << "no width, but coordinates";
    EXPECT_EQ(rect.left, 5);
    EXPECT_EQ(rect.right, 20);
    EXPECT_EQ(rect.bottom, 5);
    OutsetRect(&rect, 2, -1);
    EXPECT_TRUE(rect.left == 3 && rect.right == 22 && rect.top == 6 && rect.bottom == 4);
    Pt2Rect({30, 9}, {10, 40}, &rect);
    EXPECT_TRUE(rect.top == 10 && rect.left == 9 && rect.bottom == 31 && rect.right == 41);
    EXPECT_TRUE(PtInRect({10, 9}, &rect));
    EXPECT_TRUE(PtInRect({30, 40}, &rect));
    EXPECT_FALSE(PtInRect({31, 40}, &rect));
    EXPECT_FALSE(PtInRect({30, 41}, &rect));
}

TEST_F(ToolboxTest, TheOriginMovesAllCoordinatesOfTheMapWindow)
{
    const ScriptPoint corner = OnScreen(0, 0);
    SetOrigin(120, 250);
    const Rect& content = shell.mapWindow->contentRect;
    EXPECT_TRUE(content.left == 120 && content.top == 250 && content.right == 620 && content.bottom == 550);
    EXPECT_TRUE(shell.mapWindow->portRect.left == 120 && shell.mapWindow->portRect.bottom == 550);
    Point point = {static_cast<int16_t>(corner.y + 7), static_cast<int16_t>(corner.x + 3)};
    GlobalToLocal(&point);
    EXPECT_TRUE(EqualPt(point, {257, 123}));
    SetOrigin(120, 250);
    EXPECT_EQ(content.left, 120) << "the same origin again changes nothing";

    // Map coordinates are invalidated where they show.
    ValidRect(nullptr);
    const Rect area = {300, 150, 310, 170};
    InvalRect(&area);
    BeginUpdate(shell.mapWindow);
    const Rect everything = content;
    FillRectColor(&everything, ink);
    EndUpdate(shell.mapWindow);
    EXPECT_EQ(PixelAt(150, 300), ink);
    EXPECT_EQ(PixelAt(169, 309), ink);
    EXPECT_NE(PixelAt(149, 300), ink);
    EXPECT_NE(PixelAt(170, 309), ink);
}

// ---- drawing ----

class DrawingTest : public ToolboxTest {
  protected:
    void SetUp() override
    {
        ToolboxTest::SetUp();
        BackColor(paper);
        EraseRect(&shell.mapWindow->portRect);
    }

    static int CountInk(const Rect& area, COLORREF colour)
    {
        int count = 0;
        for (int v = area.top; v < area.bottom; v++) {
            for (int h = area.left; h < area.right; h++) {
                count += PixelAt(h, v) == colour ? 1 : 0;
            }
        }
        return count;
    }
};

TEST_F(DrawingTest, LinesIncludeTheirEndPixelAndLeaveThePenThere)
{
    ForeColor(ink);
    MoveTo(10, 20);
    LineTo(20, 20);
    EXPECT_EQ(CountInk({0, 0, 60, 60}, ink), 11);
    EXPECT_EQ(PixelAt(20, 20), ink);
    LineTo(20, 30);
    EXPECT_EQ(CountInk({0, 0, 60, 60}, ink), 21) << "the second line starts at the first one's end";
    EXPECT_EQ(PixelAt(20, 30), ink);
    EXPECT_EQ(PixelAt(21, 31), paper);
    PenSize(3, 1);
    MoveTo(10, 50);
    LineTo(30, 50);
    EXPECT_EQ(PixelAt(15, 49), ink);
    EXPECT_EQ(PixelAt(15, 51), ink);
    EXPECT_EQ(PixelAt(15, 52), paper);
}

TEST_F(DrawingTest, AnOutlineDrawnTwiceIsGone)
{
    const Rect rect = {10, 10, 40, 60};
    FrameOutline(currentPort->dc, &rect);
    EXPECT_EQ(CountInk({0, 0, 80, 80}, black), 2 * 50 + 2 * 30);
    EXPECT_EQ(PixelAt(60, 40), black);
    FrameOutline(currentPort->dc, &rect);
    EXPECT_EQ(CountInk({0, 0, 80, 80}, black), 0);
    ForeColor(ink);
    MoveTo(0, 70);
    LineTo(3, 70);
    EXPECT_EQ(PixelAt(2, 70), ink) << "the raster mode is the old one again";
}

TEST_F(DrawingTest, RectanglesLeaveOutRightAndBottom)
{
    const Rect filled = {10, 10, 20, 30};
    FillRectColor(&filled, ink);
    EXPECT_EQ(CountInk({0, 0, 50, 50}, ink), 200);
    EraseRect(&filled);
    TextForeColor(ink);
    FrameRect(&filled);
    EXPECT_EQ(CountInk({0, 0, 50, 50}, ink), 2 * 20 + 2 * 8);
}

TEST_F(DrawingTest, TextTakesTheTextColourAndThePensPlace)
{
    TextForeColor(black);
    ForeColor(ink);
    MoveTo(20, 40);
    DrawString("MMM");
    const int width = StringWidth("MMM");
    EXPECT_EQ(CountInk({0, 0, 80, 200}, ink), 0) << "the foreground colour is not the text's";
    EXPECT_GT(CountInk({30, 20, 40, static_cast<int16_t>(20 + width)}, black), 10);
    EXPECT_EQ(CountInk({40, 0, 80, 200}, black), 0) << "nothing below the baseline";
    EXPECT_EQ(CountInk({0, 0, 80, 19}, black), 0);
    LineTo(22, 40);
    EXPECT_EQ(PixelAt(20, 40), ink) << "text does not move the pen";

    BackColor(blue);
    MoveTo(20, 70);
    DrawString("M");
    EXPECT_EQ(CountInk({45, 0, 90, 200}, blue), 0);
    DrawStringOpaque("M");
    EXPECT_GT(CountInk({45, 0, 90, 200}, blue), 10);
}

TEST_F(DrawingTest, FontsAreKeptAsAskedFor)
{
    SetPortFont(fontArial, 10, stylePlain);
    const int width = StringWidth("Woods and towns");
    EXPECT_EQ(currentPort->fontSize, 10);
    SetPortFont(fontArial, 11, stylePlain);
    EXPECT_EQ(StringWidth("Woods and towns"), width) << "size 10 is made as 11";
    SetPortFont(fontTimesBold, 24, styleBold | styleItalic);
    EXPECT_GT(StringWidth("Woods and towns"), width);
    EXPECT_EQ(currentPort->fontNumber, fontTimesBold);
    EXPECT_EQ(currentPort->fontStyle, styleBold | styleItalic);
    TEXTMETRICA metrics = {};
    const HFONT font = NewFont(nullptr, fontArial, 0, stylePlain);
    const HGDIOBJ displaced = SelectObject(currentPort->dc, font);
    GetTextMetricsA(currentPort->dc, &metrics);
    EXPECT_EQ(metrics.tmHeight - metrics.tmInternalLeading, 12) << "no size is 12";
    SelectObject(currentPort->dc, displaced);
    DeleteObject(font);
}

TEST_F(DrawingTest, ATextBoxFillsItsRectangleAndStartsFourPixelsIn)
{
    BackColor(blue);
    TextForeColor(ink);
    const Rect box = {10, 10, 60, 110};
    const char text[] = "HH & HH HH HH HH HH";
    TextBox(text + 1, 0, &box, 0);
    EXPECT_EQ(PixelAt(10, 10), blue);
    EXPECT_EQ(PixelAt(109, 59), blue);
    EXPECT_EQ(PixelAt(110, 59), paper);
    EXPECT_EQ(CountInk({10, 10, 60, 14}, ink), 0) << "the indent";
    EXPECT_GT(CountInk({10, 14, 22, 110}, ink), 10) << "the first letter is drawn";
    EXPECT_GT(CountInk({24, 14, 60, 110}, ink), 10) << "the text wraps";

    const int oneLine = TextBoxHeight("HH", 100);
    EXPECT_GT(oneLine, 8);
    EXPECT_GE(TextBoxHeight(text, 60), 2 * oneLine);
    EXPECT_EQ(TextBoxHeight("HH", StringWidth("HH") + 4), oneLine) << "the indent counts";
    EXPECT_GT(TextBoxHeight("H H", StringWidth("H H") + 3), oneLine);

    MoveTo(10, 200);
    DrawString("H");
    EXPECT_EQ(CountInk({200, 0, 230, 110}, ink), 0) << "text stands on its baseline again";
}

TEST_F(DrawingTest, OffscreenSurfacesAreMadeAndTakenApart)
{
    WindowPtr world = shell.mapWindow;
    const Rect flat = {0, 0, 0, 40};
    EXPECT_EQ(NewGWorld(&world, 0, &flat, nullptr, nullptr, 0), 1);
    EXPECT_EQ(world, nullptr);
    EXPECT_EQ(currentPort, shell.mapWindow);

    const Rect bounds = {0, 0, 30, 40};
    ASSERT_EQ(NewGWorld(&world, 0, &bounds, nullptr, nullptr, 0), 0);
    WindowPtr saved = nullptr;
    uintptr_t device = 1;
    GetGWorld(&saved, &device);
    SetGWorld(world, 0);
    FillRectColor(&bounds, ink);
    ForeColor(paper);
    MoveTo(0, 0);
    LineTo(39, 0);
    SetGWorld(saved, device);
    SetGWorld(nullptr, 0);
    EXPECT_EQ(currentPort, shell.mapWindow) << "none is no port";
    const Rect source = {0, 0, 30, 40};
    const Rect destination = {50, 60, 55, 64};
    CopyBits(world->dc, currentPort->dc, &source, &destination, 0, nullptr);
    EXPECT_EQ(CountInk({40, 40, 90, 110}, ink), 4 * 4) << "the destination's size, unscaled, less the white line";
    DisposeGWorld(world);
    DisposeGWorld(nullptr);
}

// ---- texts, cursors ----

TEST(ToolboxTexts, OperationsThatReachTheLimitAreSkippedWhole)
{
    char text[textBufferSize];
    const std::string long254(254, 'a');
    const std::string long255(255, 'b');
    CopyText("kept", text);
    CopyText(long255.c_str(), text);
    EXPECT_STREQ(text, "kept");
    CopyText(long254.c_str(), text);
    EXPECT_EQ(text, long254);
    AppendText(text, "x");
    AppendBlank(text);
    AppendNumber(text, 7);
    EXPECT_EQ(text, long254);
    AppendChar(text, 'c');
    EXPECT_EQ(text, long254 + "c");
    AppendChar(text, 'd');
    EXPECT_EQ(text, long254 + "c");

    CopyText(std::string(251, 'a').c_str(), text);
    AppendDash(text);
    EXPECT_EQ(std::string(text).size(), 254u);
    CopyText("Map ", text);
    AppendZero(text);
    AppendNumber(text, -2147483647 - 1);
    EXPECT_STREQ(text, "Map 0-2147483648");
}

TEST(ToolboxTexts, NumbersAreReadUpToTheFirstNonDigit)
{
    const struct {
        const char* text;
        int32_t number;
    } rows[] = {{"  +42x", 42}, {"abc", 0}, {"", 0},    {"-7", -7},        {"\t 12 3", 12},
                {"+-3", 0},     {"- 3", 0}, {"007", 7}, {"4294967297", 1}, {"-2147483648", -2147483647 - 1}};
    for (const auto& row : rows) {
        int32_t number = 99;
        EXPECT_EQ(StringToNum(row.text, &number), row.number) << row.text;
        EXPECT_EQ(number, row.number);
    }
}

TEST(ToolboxTexts, TextsAreComparedWithOrWithoutCase)
{
    EXPECT_TRUE(EqualString("Map", "MAP", 0, 0));
    EXPECT_FALSE(EqualString("Map", "MAP", 1, 0));
    EXPECT_TRUE(EqualString("Map", "Map", 1, 1));
    EXPECT_FALSE(EqualString("Map", "Map1", 0, 0));
    EXPECT_FALSE(EqualString("Map1", "Map", 0, 0));
    EXPECT_FALSE(EqualString("[", "{", 0, 0)) << "only letters have case";
}

TEST_F(ToolboxTest, StringListsFollowTheLanguage)
{
    char text[textBufferSize] = "old";
    GetIndString(text, 15000, 18);
    EXPECT_STREQ(text, "Memory Allocation Error!");
    char french[textBufferSize];
    GetIndStringRaw(french, 15000, 518);
    shell.language = 2;
    GetIndString(text, 15000, 18);
    EXPECT_STREQ(text, french);
    EXPECT_STRNE(text, "Memory Allocation Error!");
    GetIndString(text, 0, 1);
    EXPECT_STREQ(text, "") << "no such text";
}

TEST_F(ToolboxTest, TheChosenCursorStays)
{
    SetCursorById(moveWindowCursor);
    const HCURSOR own = view.currentCursor;
    EXPECT_NE(own, nullptr);
    EXPECT_EQ(view.currentCursorIsOwn, 1);
    SetCursorById(moveWindowCursor);
    EXPECT_EQ(SetCursor(view.currentCursor), view.currentCursor) << "it is the one shown, and alive";
    SetCursorById(waitCursor);
    EXPECT_EQ(view.currentCursorIsOwn, 0);
    SetCursor(nullptr);
    RestoreCursor();
    EXPECT_EQ(SetCursor(nullptr), LoadCursorA(nullptr, IDC_WAIT));
    InitCursor();
    EXPECT_EQ(view.currentCursor, LoadCursorA(nullptr, IDC_ARROW));
}

} // namespace
