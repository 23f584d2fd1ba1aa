// Events, pointer trail, drawing, windows, menus and texts of the Toolbox, over the real platform layer.
#include "app/application.h"
#include "dialogs/dialog.h"
#include "platform/host/headless/headless.h"
#include "platform/user/platform_reset.h"
#include "toolbox/menus.h"
#include "toolbox/offscreen.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// ---- the window under test ----

std::vector<UINT> dispatched;

LRESULT CALLBACK TestProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    dispatched.push_back(message);
    return DefWindowProcA(window, message, wParam, lParam);
}

class ToolboxTest : public testing::Test {
  protected:
    void SetUp() override
    {
        PlatformReset();
        HeadlessReset(1000, 800);
        ASSERT_EQ(headlessHost.start(), 0);
        UseScriptedHost();
        shell = {};
        view = {};
        shell.appInstance = GetModuleHandleA(nullptr);
        SetRect(&shell.screenRect, 0, 0, 1000, 800);
        WNDCLASSEXA record = {};
        record.cbSize = sizeof record;
        record.style = CS_OWNDC;
        record.lpfnWndProc = TestProcedure;
        record.cbWndExtra = sizeof(WindowPtr);
        record.hInstance = shell.appInstance;
        record.lpszMenuName = "E_WKestrelMainMenu";
        record.lpszClassName = "ToolboxTestClass";
        ASSERT_NE(RegisterClassExA(&record), 0);
        const Rect bounds = {100, 200, 400, 700};
        shell.mapWindow = NewWindow("ToolboxTestClass", nullptr, &bounds, "Test", 1, 99, FRONT_WINDOW, 0, 0);
        ASSERT_NE(shell.mapWindow, nullptr);
        shell.mapWindowDC = shell.mapWindow->dc;
        SetPort(shell.mapWindow);
        ValidRect(nullptr);
        TakeEvents();
        dispatched.clear();
    }

    void TearDown() override
    {
        if (shell.mapWindow != nullptr) {
            const HWND window = shell.mapWindow->window;
            ReleaseWindowPort(shell.mapWindow);
            DestroyWindow(window);
        }
        SetPort(nullptr);
        shell = {};
        view = {};
        PlatformReset();
        host = &headlessHost;
        headlessHost.stop();
    }

    // All events that wait, those of keys and pointer first.
    static std::vector<EventRecord> TakeEvents(int32_t mask = everyEvent, HRGN region = nullptr)
    {
        std::vector<EventRecord> events;
        int idle = 0;
        while (idle < 3 && events.size() < 50) {
            if (WaitNextEvent(mask, &currentEvent, 0, region) != nullEvent)
                events.push_back(currentEvent);
            idle = currentEvent.when == 0 ? idle + 1 : 0;
        }
        return events;
    }

    static COLORREF PixelAt(int h, int v)
    {
        return GetPixel(currentPort->dc, h, v);
    }

    // The window's client corner on the screen.
    static Point Corner()
    {
        Point corner = {};
        LocalToGlobal(&corner);
        return corner;
    }
};

constexpr COLORREF paper = RGB(255, 255, 255);
constexpr COLORREF ink = RGB(200, 10, 30);

// ---- events ----

TEST_F(ToolboxTest, AnEmptyQueueGivesAnEventOfZeros)
{
    EventRecord event = {};
    event.what = 7;
    event.message = 7;
    event.when = 7;
    event.where = {7, 7};
    event.modifiers = 7;
    EXPECT_EQ(WaitNextEvent(everyEvent, &event, 0, nullptr), nullEvent);
    EXPECT_EQ(event.what, 0);
    EXPECT_EQ(event.message, 0u);
    EXPECT_EQ(event.when, 0u);
    EXPECT_TRUE(event.where.h == 0 && event.where.v == 0);
    EXPECT_EQ(event.modifiers, 0);
}

TEST_F(ToolboxTest, KeysArriveAsTheirMessages)
{
    const struct {
        const char* name;
        int key;
        int character;
        unsigned held;
        uintptr_t message;
        int modifiers;
    } rows[] = {
        {"a letter", 'N', 'n', 0, 'n', 0},
        {"Ctrl+N", 'N', 14, hostControl, 'n', controlKey},
        {"a digit", '7', '7', 0, '7', 0},
        {"Return", VK_RETURN, 13, 0, returnKey, 0},
        {"Backspace", VK_BACK, 8, 0, backspaceKey, 0},
        {"Ctrl with keypad plus", VK_ADD, '+', hostControl, '+', controlKey},
        {"Ctrl with plus", VK_OEM_PLUS, '+', hostControl | hostShift, '+', controlKey},
        {"plus alone", VK_ADD, '+', 0, '+', 0},
        {"left", VK_LEFT, 0, 0, leftArrowKey, 0},
        {"up with Shift", VK_UP, 0, hostShift, upArrowKey, 0},
        {"right", VK_RIGHT, 0, 0, rightArrowKey, 0},
        {"down", VK_DOWN, 0, 0, downArrowKey, 0},
        {"F1", VK_F1, 0, 0, 0x7A00, 0},
        {"F6", VK_F6, 0, 0, 0x6100, 0},
        {"F8", VK_F8, 0, 0, f8Key, 0},
        {"F9", VK_F9, 0, 0, f9Key, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        devices.modifiers = row.held;
        PressKey(row.key, row.character);
        const std::vector<EventRecord> events = TakeEvents();
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0].what, keyDown);
        EXPECT_EQ(events[0].message, row.message);
        EXPECT_EQ(events[0].modifiers, row.modifiers);
    }
}

TEST_F(ToolboxTest, KeysThatAreNoEvents)
{
    PressKey(VK_F7, 0);
    for (const EventRecord& event : TakeEvents())
        EXPECT_LE(event.message, 0xFFu) << "F7 is no function key";
    PressKey(VK_SHIFT, 0);
    PressKey(VK_CONTROL, 0);
    EXPECT_TRUE(TakeEvents().empty());
    devices.modifiers = hostAlt;
    PressKey('L', 'l');
    PressKey('K', 'k');
    const std::vector<EventRecord> events = TakeEvents();
    ASSERT_EQ(events.size(), 1u) << "only the release of Alt+L is one";
    EXPECT_EQ(events[0].message, 0x4Cu);
    EXPECT_EQ(events[0].modifiers, controlKey | optionKey);
}

TEST_F(ToolboxTest, ButtonsCarryTheirPlaceAndModifiers)
{
    const Point corner = Corner();
    for (const int button : {hostLeftButton, hostRightButton}) {
        devices.modifiers = hostShift | hostAlt;
        MovePointer(corner.h + 30, corner.v + 40);
        PressButton(button);
        devices.modifiers = hostControl;
        ReleaseButton(button);
        const std::vector<EventRecord> events = TakeEvents();
        ASSERT_EQ(events.size(), 2u);
        EXPECT_EQ(events[0].what, mouseDown);
        EXPECT_EQ(events[0].modifiers, shiftKey | optionKey);
        EXPECT_EQ(events[0].where.h, corner.h + 30);
        EXPECT_EQ(events[0].where.v, corner.v + 40);
        EXPECT_EQ(events[1].what, mouseUp);
        EXPECT_EQ(events[1].modifiers, controlKey);
    }
}

TEST_F(ToolboxTest, MaskedEventsAreLost)
{
    PressButton(hostLeftButton);
    ReleaseButton(hostLeftButton);
    PressKey('A', 'a');
    EXPECT_TRUE(TakeEvents(0).empty());
    EXPECT_TRUE(TakeEvents().empty()) << "they are not kept for later";
    PressKey(VK_LEFT, 0);
    devices.modifiers = hostControl;
    PressKey(VK_ADD, '+');
    EXPECT_EQ(TakeEvents(0).size(), 2u) << "mapped keys and Ctrl with plus come whatever the mask";
}

TEST_F(ToolboxTest, TheWheelTurnsUpOnlyForPositiveDeltas)
{
    const struct {
        int delta;
        int what;
    } rows[] = {{120, wheelUpEvt}, {1, wheelUpEvt}, {0, wheelDownEvt}, {-120, wheelDownEvt}};
    for (const auto& row : rows) {
        HostEvent event = EventNow(hostWheel);
        event.delta = row.delta;
        devices.events.push_back(event);
        const std::vector<EventRecord> events = TakeEvents(0);
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0].what, row.what);
        EXPECT_EQ(events[0].message, reinterpret_cast<uintptr_t>(shell.mapWindow));
    }
}

TEST_F(ToolboxTest, MovesAreEventsOnlyOutsideTheRegion)
{
    const HRGN region = CreateRectRgn(300, 200, 400, 300);
    MovePointer(350, 250);
    EXPECT_TRUE(TakeEvents(everyEvent, region).empty());
    EXPECT_EQ(dispatched, std::vector<UINT>{WM_MOUSEMOVE}) << "inside it the window sets the cursor";
    MovePointer(450, 250);
    const std::vector<EventRecord> events = TakeEvents(everyEvent, region);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].what, mouseMovedEvt);
    EXPECT_EQ(events[0].message, 250u);
    EXPECT_EQ(events[0].where.h, 450);
    SetEmptyRgn(region);
    MovePointer(350, 250);
    EXPECT_EQ(TakeEvents(everyEvent, region).size(), 1u);
    DeleteObject(region);
}

TEST_F(ToolboxTest, AMenuChoiceIsAPressInTheMenuBar)
{
    const HWND window = shell.mapWindow->window;
    PostMessageA(window, WM_COMMAND, MAKEWPARAM(305, 1), 0); // as an accelerator would
    PostMessageA(window, WM_COMMAND, 305, 0);
    const std::vector<EventRecord> events = TakeEvents(0);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].what, mouseDown);
    EXPECT_EQ(events[0].message, 0u);
    currentEvent = events[0];
    WindowPtr found = shell.mapWindow;
    EXPECT_EQ(FindWindow(currentEvent.where, &found), inMenuBar);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(MenuSelect(currentEvent.where), 203u << 16 | 5);
    shell.language = 2;
    EXPECT_EQ(MenuSelect(currentEvent.where), 303u << 16 | 5);
}

TEST_F(ToolboxTest, APaintRequestComesUntilItsUpdateIsEnded)
{
    InvalRect(nullptr);
    for (int i = 0; i < 3; i++) {
        ASSERT_EQ(WaitNextEvent(0, &currentEvent, 0, nullptr), updateEvt);
        EXPECT_EQ(currentEvent.message, reinterpret_cast<uintptr_t>(shell.mapWindow));
    }
    BeginUpdate(shell.mapWindow);
    EndUpdate(shell.mapWindow);
    EXPECT_TRUE(TakeEvents().empty());
}

TEST_F(ToolboxTest, TicksAreSixtiethsOfASecond)
{
    devices.now = 1000;
    EXPECT_EQ(TickCount(), 60u);
    devices.now = 1017;
    EXPECT_EQ(TickCount(), 61u);
}

// ---- pointer trail ----

class TrailTest : public ToolboxTest {
  protected:
    // Presses at that map position and takes the press as the event loop does.
    void Press(int h, int v)
    {
        MoveTo(h, v);
        TakeEvents();
        PressButton(hostLeftButton);
        const std::vector<EventRecord> events = TakeEvents(mDownMask);
        ASSERT_EQ(events.size(), 1u);
        BeginPointerTrail(&events[0]);
    }

    void MoveTo(int h, int v)
    {
        const Point corner = Corner();
        MovePointer(corner.h + h, corner.v + v);
    }

    // What the next calls give, "h,v" each, until the trail ends; positions that only repeat are left out.
    static std::string Follow()
    {
        std::string text;
        Point last = {-1, -1};
        Point point = {};
        for (int i = 0; i < 500 && NextTrailPoint(&point); i++) {
            if (!EqualPt(point, last))
                text += std::to_string(point.h) + "," + std::to_string(point.v) + " ";
            last = point;
        }
        EXPECT_EQ(NextTrailPoint(&point), 0) << "the trail ended";
        return text;
    }
};

TEST_F(TrailTest, AFlickThatIsOverBeforeTheFirstLookGivesEveryPosition)
{
    Press(10, 10);
    MoveTo(25, 12);
    devices.now += 1;
    MoveTo(40, 18);
    MoveTo(61, 22);
    ReleaseButton(hostLeftButton);
    devices.now += 1;
    MoveTo(90, 30);
    MoveTo(95, 30);
    EXPECT_EQ(Follow(), "25,12 40,18 61,22 ");
}

TEST_F(TrailTest, AllOfAFlickMayHappenInOneMillisecond)
{
    MoveTo(200, 200); // before the press, in the same millisecond
    Press(10, 10);
    MoveTo(20, 10);
    MoveTo(30, 10);
    MoveTo(20, 10);
    MoveTo(40, 10);
    ReleaseButton(hostLeftButton);
    MoveTo(90, 30);
    EXPECT_EQ(Follow(), "20,10 30,10 20,10 40,10 ");
}

TEST_F(TrailTest, ASecondPressDoesNotLengthenTheFirstTrail)
{
    Press(10, 10);
    MoveTo(20, 10);
    devices.now += 1;
    ReleaseButton(hostLeftButton);
    devices.now += 1;
    MoveTo(50, 50);
    PressButton(hostLeftButton);
    MoveTo(60, 60);
    EXPECT_EQ(Follow(), "20,10 ");
}

TEST_F(TrailTest, PositionsBetweenTwoLooksAreGivenOnceAndInOrder)
{
    Press(10, 10);
    std::string wanted;
    std::string given;
    Point point = {};
    for (int round = 0; round < 8; round++) {
        for (int i = 0; i < 9; i++) { // back and forth, three positions a millisecond
            const int h = 20 + (round * 9 + i) * 7 % 33;
            devices.now += i % 3 == 0;
            MoveTo(h, 40);
            wanted += std::to_string(h) + " ";
        }
        for (int i = 0; i < 9; i++) {
            EXPECT_EQ(NextTrailPoint(&point), 1);
            given += std::to_string(point.h) + " ";
        }
    }
    EXPECT_EQ(given, wanted);
    EXPECT_EQ(NextTrailPoint(&point), 1) << "the last one again while the button is held";
    EXPECT_EQ(std::to_string(point.h) + " ", wanted.substr(wanted.size() - 3));
    ReleaseButton(hostLeftButton);
    EXPECT_EQ(Follow(), "");
}

TEST_F(TrailTest, ThePointersPlaceCountsWhereNoMoveWasReported)
{
    Press(10, 10);
    const Point corner = Corner();
    devices.x = corner.h + 70;
    devices.y = corner.v + 80;
    Point point = {};
    EXPECT_EQ(NextTrailPoint(&point), 1);
    EXPECT_TRUE(EqualPt(point, {80, 70}));
}

TEST_F(TrailTest, EventsThatComeWhileTheButtonIsReadKeepTheirOrder)
{
    // The pointer is ahead of what was collected when the look begins.
    Press(10, 10);
    MoveTo(20, 10);
    MoveTo(30, 10);
    MoveTo(40, 10);
    devices.onQuery = [] {
        if (devices.queries > 1000)
            FAIL();
    };
    Point point = {};
    for (const int h : {20, 30, 40}) {
        EXPECT_EQ(NextTrailPoint(&point), 1);
        EXPECT_EQ(point.h, h);
    }
    // The release is drawn from the device between two steps of a look.
    devices.queries = 0;
    devices.onQuery = [] {
        if (devices.queries == 1) {
            MovePointer(devices.x + 5, devices.y);
            ReleaseButton(hostLeftButton);
            MovePointer(devices.x + 300, devices.y);
        }
    };
    EXPECT_EQ(Follow(), "45,10 ");
}

TEST_F(TrailTest, AReleaseThatNeverComesEndsTheTrail)
{
    Press(10, 10);
    devices.buttons = 0;
    MoveTo(50, 50);
    EXPECT_EQ(Follow(), "10,10 ") << "what was reported after the button went up is not used";
}

TEST_F(TrailTest, TheRightButtonActsOnOnePlaceOnly)
{
    MoveTo(10, 10);
    PressButton(hostRightButton);
    MoveTo(50, 10);
    const std::vector<EventRecord> events = TakeEvents(mDownMask);
    ASSERT_EQ(events.size(), 1u);
    BeginPointerTrail(&events[0]);
    EXPECT_EQ(Follow(), "");
}

TEST_F(TrailTest, PositionsAreInThePortsCoordinates)
{
    SetOrigin(300, 500);
    Point before = {};
    GetMouse(&before);
    const Point corner = {static_cast<int16_t>(devices.y - (before.v - 500)),
                          static_cast<int16_t>(devices.x - (before.h - 300))};
    MovePointer(corner.h + 10, corner.v + 10);
    TakeEvents();
    PressButton(hostLeftButton);
    const std::vector<EventRecord> events = TakeEvents(mDownMask);
    ASSERT_EQ(events.size(), 1u);
    BeginPointerTrail(&events[0]);
    MovePointer(corner.h + 25, corner.v + 12);
    ReleaseButton(hostLeftButton);
    EXPECT_EQ(Follow(), "325,512 ");
}

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
    const Point corner = Corner();
    SetOrigin(120, 250);
    const Rect& content = shell.mapWindow->contentRect;
    EXPECT_TRUE(content.left == 120 && content.top == 250 && content.right == 620 && content.bottom == 550);
    EXPECT_TRUE(shell.mapWindow->portRect.left == 120 && shell.mapWindow->portRect.bottom == 550);
    Point point = {static_cast<int16_t>(corner.v + 7), static_cast<int16_t>(corner.h + 3)};
    GlobalToLocal(&point);
    EXPECT_TRUE(EqualPt(point, {257, 123}));
    SetOrigin(120, 250);
    EXPECT_EQ(content.left, 120) << "the same origin again changes nothing";

    // Map coordinates are invalidated where they show.
    ValidRect(nullptr);
    const Rect area = {300, 150, 310, 170};
    InvalRect(&area);
    RECT update = {};
    ASSERT_TRUE(GetUpdateRect(shell.mapWindow->window, &update, FALSE));
    DPtoLP(shell.mapWindowDC, reinterpret_cast<POINT*>(&update), 0); // client coordinates are wanted
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
        for (int v = area.top; v < area.bottom; v++)
            for (int h = area.left; h < area.right; h++)
                count += PixelAt(h, v) == colour ? 1 : 0;
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
    EXPECT_EQ(CountInk({0, 0, 80, 80}, RGB(0, 0, 0)), 2 * 50 + 2 * 30);
    EXPECT_EQ(PixelAt(60, 40), RGB(0, 0, 0));
    FrameOutline(currentPort->dc, &rect);
    EXPECT_EQ(CountInk({0, 0, 80, 80}, RGB(0, 0, 0)), 0);
    ForeColor(ink);
    ::MoveTo(0, 70);
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
    TextForeColor(RGB(0, 0, 0));
    ForeColor(ink);
    MoveTo(20, 40);
    DrawString("MMM");
    const int width = StringWidth("MMM");
    EXPECT_EQ(CountInk({0, 0, 80, 200}, ink), 0) << "the foreground colour is not the text's";
    EXPECT_GT(CountInk({30, 20, 40, static_cast<int16_t>(20 + width)}, RGB(0, 0, 0)), 10);
    EXPECT_EQ(CountInk({40, 0, 80, 200}, RGB(0, 0, 0)), 0) << "nothing below the baseline";
    EXPECT_EQ(CountInk({0, 0, 80, 19}, RGB(0, 0, 0)), 0);
    LineTo(22, 40);
    EXPECT_EQ(PixelAt(20, 40), ink) << "text does not move the pen";

    BackColor(RGB(0, 0, 255));
    MoveTo(20, 70);
    DrawString("M");
    EXPECT_EQ(CountInk({45, 0, 90, 200}, RGB(0, 0, 255)), 0);
    DrawStringOpaque("M");
    EXPECT_GT(CountInk({45, 0, 90, 200}, RGB(0, 0, 255)), 10);
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
    BackColor(RGB(0, 0, 255));
    TextForeColor(ink);
    const Rect box = {10, 10, 60, 110};
    const char text[] = "HH & HH HH HH HH HH";
    TextBox(text + 1, 0, &box, 0);
    EXPECT_EQ(PixelAt(10, 10), RGB(0, 0, 255));
    EXPECT_EQ(PixelAt(109, 59), RGB(0, 0, 255));
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

// ---- windows ----

TEST_F(ToolboxTest, AWindowIsPlacedAndSizedByItsClientArea)
{
    Rect content = {};
    GetWindowContentRect(shell.mapWindow, &content);
    EXPECT_TRUE(content.left == 0 && content.top == 0 && content.right == 500 && content.bottom == 300);
    SizeWindow(shell.mapWindow, 640, 360, 1);
    EXPECT_EQ(shell.mapWindow->portRect.right, 640);
    EXPECT_EQ(shell.mapWindow->portRect.bottom, 360);
    SizeWindow(shell.mapWindow, 0, 0, 1);
    EXPECT_EQ(shell.mapWindow->portRect.right, 640);
    MoveWindowTo(shell.mapWindow, 150, 170, 1);
    EXPECT_TRUE(EqualPt(Corner(), {170, 150}));
    GetWindowContentRect(shell.mapWindow, &content);
    EXPECT_TRUE(content.right == 640 && content.bottom == 360);

    char title[256];
    SetWTitle(shell.mapWindow, std::string(300, 'x').c_str());
    GetWTitle(shell.mapWindow, title);
    EXPECT_EQ(std::string(title), std::string(254, 'x'));
}

TEST_F(ToolboxTest, AWindowThatCannotBeMadeIsNull)
{
    const Rect bounds = {10, 10, 50, 50};
    EXPECT_EQ(NewWindow("NoSuchClass", nullptr, &bounds, "", 1, 0, nullptr, 0, 0), nullptr);
}

class DraggingTest : public ToolboxTest {
  protected:
    void SetUp() override
    {
        ToolboxTest::SetUp();
        const Rect bounds = {300, 300, 400, 450};
        palette = NewWindow("ToolboxTestClass", nullptr, &bounds, "", 1, 0, FRONT_WINDOW, 0, 0);
        ASSERT_NE(palette, nullptr);
        TakeEvents();
    }

    void TearDown() override
    {
        const HWND window = palette->window;
        ReleaseWindowPort(palette);
        DestroyWindow(window);
        ToolboxTest::TearDown();
    }

    Point Place() const
    {
        Rect frame = {};
        GetWindowFrameRect(palette, &frame);
        EXPECT_EQ(frame.right - frame.left, 150);
        return {frame.top, frame.left};
    }

    WindowPtr palette = nullptr;
};

TEST_F(DraggingTest, ADraggedWindowGoesWhereItsOutlineWas)
{
    devices.x = 310;
    devices.y = 305;
    devices.buttons = hostLeftButton;
    MovePointer(330, 300);
    PressKey('A', 'a');
    MovePointer(250, 290); // left of the window's own corner
    ReleaseButton(hostLeftButton);
    DragWindow(palette, {305, 310}, &shell.screenRect);
    EXPECT_TRUE(EqualPt(Place(), {285, 240}));
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_TRUE(TakeEvents(keyDownMask).empty()) << "what came meanwhile is discarded";
    EXPECT_TRUE(devices.outline.empty());
}

TEST_F(DraggingTest, ADragWithoutItsReleaseEnds)
{
    InvalRect(nullptr); // paint requests keep coming
    DragWindow(palette, {305, 310}, &shell.screenRect);
    EXPECT_TRUE(EqualPt(Place(), {300, 300}));
}

TEST_F(ToolboxTest, GrowingFollowsThePointerWithinItsLimits)
{
    const Point corner = Corner();
    const Rect limits = {200, 370, 350, 600}; // 370 to 600 wide, 200 to 350 high
    EXPECT_EQ(GrowWindow(0, 0, &limits), 300u << 16 | 500) << "already released: the size as it is";
    const Rect small = {400, 370, 350, 450};
    EXPECT_EQ(GrowWindow(0, 0, &small), 400u << 16 | 450) << "the least size wins over the greatest";

    static Point to[4];
    static int step;
    to[0] = {static_cast<int16_t>(corner.v + 310), static_cast<int16_t>(corner.h + 520)};
    to[1] = {static_cast<int16_t>(corner.v + 900), static_cast<int16_t>(corner.h + 100)};
    to[2] = {static_cast<int16_t>(corner.v + 290), static_cast<int16_t>(corner.h + 555)};
    to[3] = to[2];
    step = 0;
    devices.x = corner.h + 495;
    devices.y = corner.v + 295;
    devices.buttons = hostLeftButton;
    devices.onQuery = [] {
        if (step == 4) {
            devices.buttons = 0;
            return;
        }
        devices.x = to[step].h;
        devices.y = to[step].v;
        step++;
    };
    EXPECT_EQ(GrowWindow(0, 0, &limits), 290u << 16 | 555);
    GdiFlush();
    TakeEvents();
    EXPECT_TRUE(devices.outline.empty()) << "the outline is taken away";
    EXPECT_EQ(currentPort, shell.mapWindow);
}

// ---- menus ----

TEST_F(ToolboxTest, KeyEquivalentsWorkOnlyForEnabledItems)
{
    const HMENU bar = GetMenu(shell.mapWindow->window);
    shell.fileMenu = GetSubMenu(bar, 0);
    shell.editMenu = GetSubMenu(bar, 1);
    shell.viewMenu = GetSubMenu(bar, 2);
    shell.helpMenu = GetSubMenu(bar, 3);
    const struct {
        int character;
        HMENU menu;
        int item;
        uint32_t result;
    } rows[] = {
        {'n', shell.fileMenu, 1, 201u << 16 | 1}, {'o', shell.fileMenu, 2, 201u << 16 | 2},
        {'s', shell.fileMenu, 4, 201u << 16 | 4}, {'q', shell.fileMenu, 6, 201u << 16 | 6},
        {'t', shell.editMenu, 1, 202u << 16 | 1}, {'m', shell.editMenu, 2, 202u << 16 | 2},
        {'r', shell.viewMenu, 1, 203u << 16 | 1},
    };
    DisableAllMenus();
    for (const auto& row : rows) {
        EXPECT_EQ(MenuKey(row.character), 0u);
        EnableItem(row.menu, row.item);
        EXPECT_EQ(MenuKey(row.character), row.result);
        DisableItem(row.menu, row.item);
    }
    for (const int character : {'p', 'e', 'N', 'l', 'u', 0, -1, 300})
        EXPECT_EQ(MenuKey(character), 0u);

    EnableItem(shell.fileMenu, 0);
    EXPECT_EQ(GetMenuState(bar, 0, MF_BYPOSITION) & (MF_GRAYED | MF_DISABLED), 0u);
    EXPECT_NE(GetMenuState(bar, 1, MF_BYPOSITION) & MF_GRAYED, 0u);
    EXPECT_EQ(MenuKey('n'), 0u) << "the title does not enable its items";
    DisableMenuTitles();
    EXPECT_NE(GetMenuState(bar, 0, MF_BYPOSITION) & MF_GRAYED, 0u);

    CheckItem(shell.viewMenu, 5, 1);
    EXPECT_NE(GetMenuState(shell.viewMenu, 4, MF_BYPOSITION) & MF_CHECKED, 0u);
    CheckItem(shell.viewMenu, 5, 0);
    EXPECT_EQ(GetMenuState(shell.viewMenu, 4, MF_BYPOSITION) & MF_CHECKED, 0u);
    CheckItem(shell.viewMenu, 77, 1);
    EnableItem(shell.viewMenu, 77);
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
