// The Toolbox on the headless host: events, pointer trail, windows, menus, drawing and texts.
#include "tests/editor_session.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"

namespace {

// The started program with a map window of 500 x 300 pixels.
class ToolboxTest : public StartedProgram {
  protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        SizeWindow(shell.mapWindow, 500, 300, 1);
        MoveWindowTo(shell.mapWindow, 200, 100, 1);
        SetPort(shell.mapWindow);
        ValidRect(nullptr);
        TakeEvents();
    }

    // Runs the script to its end; what came of it.
    static std::vector<EventRecord> TakeEvents(int32_t mask = everyEvent, HRGN region = nullptr)
    {
        std::vector<EventRecord> events;
        int idle = 0;
        while ((idle < 3 || HeadlessStepsLeft() > 0) && events.size() < 50) {
            if (WaitNextEvent(mask, &currentEvent, 0, region) != nullEvent) {
                events.push_back(currentEvent);
            }
            idle = currentEvent.when == 0 ? idle + 1 : 0;
        }
        return events;
    }

    static std::vector<EventRecord> TakeKey(int key, int held)
    {
        if (held != 0) {
            PressKeyWith(held, [=] { ScriptKey(key); });
        } else {
            ScriptKey(key);
        }
        return TakeEvents();
    }

    // Takes events up to a press, which is then the current event.
    static bool TakePress()
    {
        for (int i = 0; i < 100; i++) {
            if (WaitNextEvent(mDownMask, &currentEvent, 0, nullptr) == mouseDown) {
                return true;
            }
        }
        return false;
    }

    // The screen position of a point of the client area.
    static ScriptPoint OnScreen(int h, int v)
    {
        const ScriptPoint origin = HeadlessClientOrigin();
        return {origin.x + h, origin.y + v};
    }
};

// ---- events ----

TEST_F(ToolboxTest, LoopsWaitLongerOnlyWhileNothingHappensAndNothingIsPolled)
{
    static int longest;
    Host listening = headlessHost;
    listening.pump = [](int wait) {
        longest = std::max(longest, wait);
        headlessHost.pump(wait);
    };
    host = &listening;
    const auto longestWait = [](int turns) {
        longest = 0;
        for (int i = 0; i < turns; i++) {
            WaitNextEvent(everyEvent, &currentEvent, 0, nullptr);
        }
        return longest;
    };
    ScriptKey(VK_F8);
    EXPECT_EQ(longestWait(20), 10);
    EXPECT_EQ(longestWait(40), 200);
    ScriptKey(VK_F8, 50);
    const uint32_t before = GetTickCount();
    EXPECT_EQ(WaitNextEvent(everyEvent, &currentEvent, 0, nullptr), keyDown);
    EXPECT_EQ(GetTickCount() - before, 50U) << "an event ends the wait";
    EXPECT_EQ(longestWait(20), 10);
    shell.cursorReadoutOn = 1;
    EXPECT_EQ(longestWait(60), 10);
    host = &headlessHost;
}

TEST_F(ToolboxTest, KeysArriveAsTheirMessages)
{
    const struct {
        int key;
        int held;
        uintptr_t message;
        int modifiers;
    } rows[] = {
        {'N', VK_CONTROL, 'n', controlKey},
        {VK_ADD, VK_CONTROL, '+', controlKey},
        {VK_OEM_PLUS, VK_CONTROL, '+', controlKey},
        {VK_UP, VK_SHIFT, upArrowKey, 0},
        {VK_LEFT, 0, leftArrowKey, 0},
        {VK_RIGHT, 0, rightArrowKey, 0},
        {VK_DOWN, 0, downArrowKey, 0},
        {VK_RETURN, 0, returnKey, 0},
        {VK_BACK, 0, backspaceKey, 0},
        {VK_ESCAPE, 0, escapeKey, 0},
        {'N', 0, 'n', 0},
        {'7', 0, '7', 0},
        {VK_ADD, 0, '+', 0},
        {VK_F1, 0, 0x7A00, 0},
        {VK_F2, 0, 0x7800, 0},
        {VK_F3, 0, 0x6300, 0},
        {VK_F4, 0, 0x7600, 0},
        {VK_F5, 0, 0x6000, 0},
        {VK_F6, 0, 0x6100, 0},
        {VK_F8, 0, f8Key, 0},
        {VK_F9, 0, f9Key, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "key " << row.key << " with " << row.held);
        const std::vector<EventRecord> events = TakeKey(row.key, row.held);
        ASSERT_EQ(events.size(), 1u) << "Ctrl and Shift alone are no events";
        EXPECT_EQ(events[0].what, keyDown);
        EXPECT_EQ(events[0].message, row.message);
        EXPECT_EQ(events[0].modifiers, row.modifiers);
    }
    for (const int key : {VK_MULTIPLY, VK_DIVIDE}) {
        EXPECT_TRUE(TakeKey(key, VK_CONTROL).empty()) << "the codes of the keypad are those of letters";
    }
}

TEST_F(ToolboxTest, F7IsNoFunctionKeyAndAltGivesOnlyTheReleaseOfL)
{
    ScriptKey(VK_F7);
    for (const EventRecord& event : TakeEvents()) {
        EXPECT_LE(event.message, 0xFFu);
    }
    ScriptKeyDown(VK_MENU);
    ScriptText("lk");
    ScriptKeyUp(VK_MENU);
    const std::vector<EventRecord> events = TakeEvents(0);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].what, keyDown);
    EXPECT_EQ(events[0].message, 0x4Cu);
    EXPECT_EQ(events[0].modifiers, controlKey | optionKey);
}

TEST_F(ToolboxTest, AMenuChoiceIsAPressInTheMenuBar)
{
    PostMessageA(shell.mapWindow->window, WM_COMMAND, MAKEWPARAM(106, 1), 0); // as an accelerator would
    ScriptMenu(106);
    const std::vector<EventRecord> events = TakeEvents(0);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].what, mouseDown);
    EXPECT_EQ(events[0].message, 0u);
    currentEvent = events[0];
    WindowPtr found = shell.mapWindow;
    EXPECT_EQ(FindWindow(currentEvent.where, &found), inMenuBar);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(MenuSelect(currentEvent.where), 201u << 16 | 6);
    shell.language = 2;
    EXPECT_EQ(MenuSelect(currentEvent.where), 301u << 16 | 6);
}

// ---- pointer trail ----

class TrailTest : public ToolboxTest {
  protected:
    static void Press(int h, int v, int delay = 0, int button = hostLeftButton)
    {
        const ScriptPoint place = OnScreen(h, v);
        ScriptPress(place.x, place.y, button, delay);
    }

    static void Move(const std::vector<MapPoint>& points, int delay = 0)
    {
        for (const MapPoint& point : points) {
            const ScriptPoint place = OnScreen(point.h, point.v);
            ScriptMove(place.x, place.y, delay);
        }
    }

    // What the trail of the next press gives, "h,v" each; positions that only repeat are left out.
    static std::string Follow()
    {
        EXPECT_TRUE(TakePress());
        BeginPointerTrail(&currentEvent);
        std::string text;
        Point last = currentEvent.where;
        GlobalToLocal(&last);
        Point point = {};
        for (int i = 0; i < 2000 && NextTrailPoint(&point); i++) {
            if (!EqualPt(point, last)) {
                text += std::to_string(point.h) + "," + std::to_string(point.v) + " ";
            }
            last = point;
        }
        EXPECT_EQ(NextTrailPoint(&point), 0) << "the trail has an end";
        return text;
    }
};

TEST_F(TrailTest, AFlickThatIsOverBeforeTheFirstLookGivesEveryPosition)
{
    // All in one millisecond, or after a rest before the press and the release.
    for (const int rest : {0, 1}) {
        SCOPED_TRACE(rest);
        Move({{150, 200}}, 30);
        Move({{10, 10}});
        Press(10, 10, rest);
        Move({{20, 10}, {30, 12}, {20, 10}, {40, 18}});
        ScriptRelease(rest);
        Move({{90, 30}, {95, 30}});
        EXPECT_EQ(Follow(), "20,10 30,12 20,10 40,18 ");
        const std::vector<EventRecord> events = TakeEvents(mUpMask);
        ASSERT_EQ(events.size(), 1u) << "the release stays in the queue";
        EXPECT_EQ(events[0].what, mouseUp);
    }
}

TEST_F(TrailTest, PositionsOfOneMillisecondMayArriveOneByOne)
{
    static int given;
    Host slowHost = headlessHost;
    slowHost.pump = [](int wait) {
        given = 0;
        headlessHost.pump(wait);
    };
    slowHost.nextEvent = [](HostEvent* event) { return given++ == 0 ? headlessHost.nextEvent(event) : 0; };
    host = &slowHost;
    Press(10, 10);
    Move({{20, 10}, {30, 10}, {40, 10}, {30, 10}, {20, 10}, {30, 10}, {50, 10}});
    ScriptRelease(200);
    Move({{90, 30}});
    EXPECT_EQ(Follow(), "20,10 30,10 40,10 30,10 20,10 30,10 50,10 ");
    TakeEvents();
    host = &headlessHost;
}

TEST_F(TrailTest, PositionsBetweenTwoLooksAreGivenOnceAndInOrder)
{
    for (const int wait : {1, 3, 20}) {
        SCOPED_TRACE(wait);
        std::string wanted;
        Press(10, 10, 5);
        for (int i = 0; i < 120; i++) { // back and forth, several positions a millisecond
            const int h = 20 + i * 7 % 33;
            Move({{h, 40}}, i % 4 == 0 ? wait : 0);
            wanted += std::to_string(h) + ",40 ";
        }
        ScriptRelease(wait);
        Move({{5, 5}}, 1);
        EXPECT_EQ(Follow(), wanted);
        TakeEvents();
    }
}

TEST_F(TrailTest, NothingOfAfterTheReleaseIsUsed)
{
    for (int delay = 0; delay < 7; delay++) { // whatever step of a look it falls into
        SCOPED_TRACE(delay);
        Press(10, 10, 5);
        Move({{20, 10}}, 8 + delay);
        Move({{33, 10}}, 1);
        Move({{45, 10}});
        ScriptRelease(0);
        Move({{300, 10}});
        Move({{310, 10}}, 1);
        EXPECT_EQ(Follow(), "20,10 33,10 45,10 ");
        TakeEvents();
    }
    Press(10, 10);
    Move({{20, 10}}, 1);
    ScriptRelease(1);
    Press(50, 50, 1); // the second press does not lengthen the first trail
    Move({{60, 60}}, 1);
    Move({{70, 70}}, 300);
    ScriptRelease(1);
    EXPECT_EQ(Follow(), "20,10 ");
    EXPECT_EQ(Follow(), "60,60 70,70 ");
}

TEST_F(TrailTest, ThePointersPlaceCountsWhereNoMoveWasReported)
{
    Press(10, 10);
    ASSERT_TRUE(TakePress());
    BeginPointerTrail(&currentEvent);
    Host silentHost = headlessHost; // its pointer moves without a word
    silentHost.pointer = [](int* x, int* y) {
        *x = OnScreen(70, 80).x;
        *y = OnScreen(70, 80).y;
    };
    host = &silentHost;
    Point point = {};
    for (int i = 0; i < 2; i++) { // and the last position is given again while the button is held
        EXPECT_EQ(NextTrailPoint(&point), 1);
        EXPECT_TRUE(EqualPt(point, {80, 70}));
    }
    host = &headlessHost;
    ScriptRelease();
    TakeEvents();
}

TEST_F(TrailTest, AReleaseThatWasTakenByOthersEndsTheTrail)
{
    Press(10, 10);
    ScriptRelease(20);
    ASSERT_TRUE(TakePress());
    const EventRecord press = currentEvent;
    TakeEvents();
    BeginPointerTrail(&press);
    Move({{200, 200}}, 1);
    Point point = {};
    int calls = 0;
    while (NextTrailPoint(&point) && calls < 10000) {
        EXPECT_TRUE(EqualPt(point, {10, 10}));
        calls++;
    }
    EXPECT_LT(calls, 10000);
}

TEST_F(TrailTest, TheRightButtonActsOnOnePlaceAndPositionsAreInThePortsCoordinates)
{
    Press(10, 10, 0, hostRightButton);
    Move({{50, 10}});
    EXPECT_EQ(Follow(), "");
    ScriptRelease();
    TakeEvents();
    SetOrigin(300, 500);
    Press(10, 10);
    Move({{25, 12}});
    ScriptRelease();
    EXPECT_EQ(Follow(), "325,512 ");
}

// ---- windows ----

TEST_F(ToolboxTest, AWindowIsPlacedAndSizedByItsClientArea)
{
    Rect content = {};
    GetWindowContentRect(shell.mapWindow, &content);
    EXPECT_TRUE(content.left == 0 && content.top == 0 && content.right == 500 && content.bottom == 300);
    SizeWindow(shell.mapWindow, 640, 360, 1);
    EXPECT_TRUE(shell.mapWindow->portRect.right == 640 && shell.mapWindow->portRect.bottom == 360);
    SizeWindow(shell.mapWindow, 0, 0, 1);
    MoveWindowTo(shell.mapWindow, 150, 170, 1);
    EXPECT_TRUE(OnScreen(0, 0).x == 150 && OnScreen(0, 0).y == 170);
    GetWindowContentRect(shell.mapWindow, &content);
    EXPECT_TRUE(content.right == 640 && content.bottom == 360);

    EXPECT_EQ(NewWindow("NoSuchClass", nullptr, &content, "", 1, 0, nullptr, 0, 0), nullptr);
}

TEST_F(ToolboxTest, ADraggedWindowGoesWhereItsOutlineWas)
{
    const Point place = {300, 300};
    const WindowPtr dialog = NewMockDialog(1, 200, 100, "", &place);
    ShowWindowInactive(dialog);
    const auto frame = [&] {
        Rect rect = {};
        GetWindowFrameRect(dialog, &rect);
        return rect;
    };
    ScriptPress(310, 305);
    ASSERT_TRUE(TakePress());
    ScriptMove(330, 300);
    ScriptText("a");
    ScriptMove(250, 290); // left of and above the window's own corner
    ScriptWait(100);
    ScriptCall([&] {
        EXPECT_EQ(headless.outline.size(), 4u);
        EXPECT_EQ(frame().left, 300) << "only the outline moves";
    });
    ScriptRelease();
    DragWindow(dialog, currentEvent.where, &shell.screenRect);
    EXPECT_TRUE(frame().left == 240 && frame().top == 285 && frame().right == 440 && frame().bottom == 385);
    EXPECT_EQ(headless.captured, nullptr);
    for (const EventRecord& event : TakeEvents()) {
        EXPECT_NE(event.what, keyDown) << "what came meanwhile is discarded";
    }
    EXPECT_TRUE(headless.outline.empty());
    InvalidateWindowRect(dialog, nullptr); // paint requests keep coming
    DragWindow(dialog, {305, 310}, &shell.screenRect);
    EXPECT_EQ(frame().left, 240) << "without its release a drag ends";
    DisposeMockDialog(dialog);
}

TEST_F(ToolboxTest, GrowingFollowsThePointerWithinItsLimits)
{
    const Rect limits = {200, 370, 350, 600}; // 370 to 600 wide, 200 to 350 high
    EXPECT_EQ(GrowWindow(0, 0, &limits), 300u << 16 | 500) << "already released: the size as it is";
    const Rect crossed = {400, 370, 350, 450};
    EXPECT_EQ(GrowWindow(0, 0, &crossed), 400u << 16 | 450) << "the least size wins over the greatest";

    const ScriptPoint corner = OnScreen(0, 0);
    ScriptPress(corner.x + 495, corner.y + 295);
    ASSERT_TRUE(TakePress());
    ScriptMove(corner.x + 520, corner.y + 310);
    ScriptMove(corner.x + 100, corner.y + 500, 40);
    ScriptCall(
        [corner] {
            EXPECT_FALSE(headless.outline.empty());
            for (const HostSegment& segment : headless.outline) {
                EXPECT_TRUE(segment.y0 == corner.y + 350 || segment.x0 == corner.x + 370) << "bottom and right edge";
            }
        },
        40);
    ScriptMove(corner.x + 555, corner.y + 290);
    ScriptRelease(40);
    EXPECT_EQ(GrowWindow(0, 0, &limits), 290u << 16 | 555);
    TakeEvents();
    EXPECT_TRUE(headless.outline.empty());
    EXPECT_EQ(currentPort, shell.mapWindow);
}

// ---- menus ----

TEST_F(ToolboxTest, KeyEquivalentsWorkOnlyForEnabledItems)
{
    const HMENU bar = GetMenu(shell.mapWindow->window);
    DisableAllMenus();
    for (const char character : std::string("nosqtmr")) {
        EXPECT_EQ(MenuKey(character), 0u) << character;
    }
    EnableItem(shell.fileMenu, 0);
    EXPECT_EQ(MenuKey('n'), 0u) << "the title does not enable its items";
    EnableItem(shell.fileMenu, 1);
    EXPECT_EQ(MenuKey('n'), 201u << 16 | 1);
    for (const int character : {int{'p'}, int{'e'}, int{'N'}, int{'l'}, int{'u'}, 0, -1, 300}) {
        EXPECT_EQ(MenuKey(character), 0u);
    }
    const auto isGrey = [&](UINT title) { return (GetMenuState(bar, title, MF_BYPOSITION) & MF_GRAYED) != 0; };
    EXPECT_TRUE(!isGrey(0) && isGrey(1));
    DisableMenuTitles();
    EXPECT_TRUE(isGrey(0));
    CheckItem(shell.viewMenu, 77, 1);
    EnableItem(shell.viewMenu, 77);
}

constexpr COLORREF paper = RGB(255, 255, 255);
constexpr COLORREF ink = RGB(200, 10, 30);
constexpr COLORREF blue = RGB(0, 0, 255);

// ---- rectangles and ports ----

TEST(ToolboxGeometry, RectanglesFollowTheToolboxRules)
{
    Rect rect = {};
    EXPECT_TRUE(EmptyRect(&rect));
    SetRect(&rect, 5, 5, 20, 5);
    EXPECT_FALSE(EmptyRect(&rect)) << "no width, but coordinates";
    EXPECT_TRUE(rect.left == 5 && rect.right == 20 && rect.bottom == 5);
    OutsetRect(&rect, 2, -1);
    EXPECT_TRUE(rect.left == 3 && rect.right == 22 && rect.top == 6 && rect.bottom == 4);
    Pt2Rect({30, 9}, {10, 40}, &rect);
    EXPECT_TRUE(rect.top == 10 && rect.left == 9 && rect.bottom == 31 && rect.right == 41);
    EXPECT_TRUE(PtInRect({10, 9}, &rect) && PtInRect({30, 40}, &rect));
    EXPECT_FALSE(PtInRect({31, 40}, &rect) || PtInRect({30, 41}, &rect));
}

class DrawingTest : public ToolboxTest {
  protected:
    void SetUp() override
    {
        ToolboxTest::SetUp();
        BackColor(paper);
        EraseRect(&shell.mapWindow->portRect);
    }

    static COLORREF At(int h, int v)
    {
        return PixelOf(currentPort, h, v);
    }

    static int Count(int left, int top, int right, int bottom, COLORREF colour)
    {
        Rect area;
        SetRect(&area, left, top, right, bottom);
        return CountPixels(currentPort, area, colour);
    }
};

TEST_F(DrawingTest, TheOriginMovesAllCoordinatesOfTheMapWindow)
{
    const ScriptPoint corner = OnScreen(0, 0);
    const Rect& port = shell.mapWindow->portRect;
    for (int i = 0; i < 2; i++) { // the same origin again changes nothing
        SetOrigin(120, 250);
        EXPECT_TRUE(port.left == 120 && port.top == 250 && port.right == 620 && port.bottom == 550);
    }
    Point point = {static_cast<int16_t>(corner.y + 7), static_cast<int16_t>(corner.x + 3)};
    GlobalToLocal(&point);
    EXPECT_TRUE(EqualPt(point, {257, 123}));

    // Map coordinates are invalidated where they show.
    ValidRect(nullptr);
    const Rect area = {300, 150, 310, 170};
    InvalRect(&area);
    BeginUpdate(shell.mapWindow);
    FillRectColor(&port, ink);
    EndUpdate(shell.mapWindow);
    EXPECT_EQ(Count(120, 250, 620, 550, ink), 20 * 10);
    EXPECT_TRUE(At(150, 300) == ink && At(169, 309) == ink);
}

// ---- drawing ----

TEST_F(DrawingTest, FontsAreKeptAsAskedFor)
{
    const auto widthOf = [](int font, int size, int style) {
        SetPortFont(font, size, style);
        return StringWidth("Woods and towns");
    };
    const int width = widthOf(fontArial, 10, stylePlain);
    EXPECT_EQ(currentPort->fontSize, 10);
    EXPECT_EQ(widthOf(fontArial, 11, stylePlain), width) << "size 10 is made as 11";
    EXPECT_EQ(widthOf(fontArial, 0, stylePlain), widthOf(fontArial, 12, stylePlain)) << "no size is 12";
    EXPECT_GT(widthOf(fontArial, 12, stylePlain), width);
    EXPECT_GT(widthOf(fontTimesBold, 24, styleBold | styleItalic), width);
    EXPECT_EQ(currentPort->fontNumber, fontTimesBold);
    EXPECT_EQ(currentPort->fontStyle, styleBold | styleItalic);
}

TEST_F(DrawingTest, ATextBoxFillsItsRectangleAndStartsFourPixelsIn)
{
    BackColor(blue);
    TextForeColor(ink);
    const Rect box = {10, 10, 60, 110};
    const char text[] = "HH & HH HH HH HH HH";
    TextBox(text + 1, 0, &box, 0);
    EXPECT_TRUE(At(10, 10) == blue && At(109, 59) == blue && At(110, 59) == paper);
    EXPECT_EQ(Count(10, 10, 14, 60, ink), 0) << "the indent";
    EXPECT_GT(Count(14, 10, 110, 22, ink), 10) << "the first letter is drawn";
    EXPECT_GT(Count(14, 24, 110, 60, ink), 10) << "the text wraps";

    const int oneLine = TextBoxHeight("HH", 100);
    EXPECT_GT(oneLine, 8);
    EXPECT_GE(TextBoxHeight(text, 60), 2 * oneLine);
    EXPECT_EQ(TextBoxHeight("HH", StringWidth("HH") + 4), oneLine) << "the indent counts";
    EXPECT_GT(TextBoxHeight("H H", StringWidth("H H") + 3), oneLine);

    MoveTo(10, 200);
    DrawString("H");
    EXPECT_EQ(Count(0, 200, 110, 230, ink), 0) << "text stands on its baseline again";
}

// ---- texts, cursors ----

TEST(ToolboxTexts, OperationsThatReachTheLimitAreSkippedWhole)
{
    char text[textBufferSize];
    const std::string long254(254, 'a');
    CopyText("kept", text);
    CopyText(std::string(255, 'b').c_str(), text);
    EXPECT_STREQ(text, "kept");
    CopyText(long254.c_str(), text);
    AppendText(text, "x");
    AppendBlank(text);
    AppendNumber(text, 7);
    EXPECT_EQ(text, long254);
    AppendChar(text, 'c');
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

TEST(ToolboxTexts, NumbersAreReadUpToTheFirstNonDigitAndLettersComparedWithOrWithoutCase)
{
    const std::pair<const char*, int32_t> rows[] = {
        {"  +42x", 42}, {"abc", 0}, {"", 0},    {"-7", -7},        {"\t 12 3", 12},
        {"+-3", 0},     {"- 3", 0}, {"007", 7}, {"4294967297", 1}, {"-2147483648", -2147483647 - 1}};
    for (const auto& [text, wanted] : rows) {
        int32_t number = 99;
        EXPECT_EQ(StringToNum(text, &number), wanted) << text;
        EXPECT_EQ(number, wanted);
    }
    EXPECT_TRUE(EqualString("Map", "MAP", 0, 0) && EqualString("Map", "Map", 1, 1));
    EXPECT_FALSE(EqualString("Map", "MAP", 1, 0) || EqualString("Map", "Map1", 0, 0) ||
                 EqualString("Map1", "Map", 0, 0) || EqualString("[", "{", 0, 0));
}

TEST_F(ToolboxTest, StringListsFollowTheLanguage)
{
    char text[textBufferSize] = "old";
    char french[textBufferSize];
    GetIndString(text, 15000, 18);
    EXPECT_STREQ(text, "Memory Allocation Error!");
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
    EXPECT_NE(view.currentCursor, nullptr);
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
