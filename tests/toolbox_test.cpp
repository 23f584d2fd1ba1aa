// Events, pointer trail, windows and menus of the Toolbox, driven through the headless host.
#include "app/application.h"
#include "dialogs/dialog.h"
#include "tests/toolbox_fixture.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"

#include <algorithm>
#include <string>

namespace {

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
    EXPECT_TRUE(EqualPt(event.where, {0, 0}));
    EXPECT_EQ(event.modifiers, 0);
}

TEST_F(ToolboxTest, KeysArriveAsTheirMessages)
{
    const struct {
        const char* name;
        int key;
        int held;
        uintptr_t message;
        int modifiers;
    } rows[] = {
        {"a letter", 'N', 0, 'n', 0},
        {"Ctrl+N", 'N', VK_CONTROL, 'n', controlKey},
        {"a digit", '7', 0, '7', 0},
        {"Return", VK_RETURN, 0, returnKey, 0},
        {"Backspace", VK_BACK, 0, backspaceKey, 0},
        {"Escape", VK_ESCAPE, 0, escapeKey, 0},
        {"Ctrl with keypad plus", VK_ADD, VK_CONTROL, '+', controlKey},
        {"Ctrl with plus", VK_OEM_PLUS, VK_CONTROL, '+', controlKey},
        {"plus alone", VK_ADD, 0, '+', 0},
        {"left", VK_LEFT, 0, leftArrowKey, 0},
        {"up with Shift", VK_UP, VK_SHIFT, upArrowKey, 0},
        {"right", VK_RIGHT, 0, rightArrowKey, 0},
        {"down", VK_DOWN, 0, downArrowKey, 0},
        {"F1", VK_F1, 0, 0x7A00, 0},
        {"F2", VK_F2, 0, 0x7800, 0},
        {"F3", VK_F3, 0, 0x6300, 0},
        {"F4", VK_F4, 0, 0x7600, 0},
        {"F5", VK_F5, 0, 0x6000, 0},
        {"F6", VK_F6, 0, 0x6100, 0},
        {"F8", VK_F8, 0, f8Key, 0},
        {"F9", VK_F9, 0, f9Key, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        if (row.held != 0) {
            ScriptKeyDown(row.held);
        }
        ScriptKey(row.key);
        if (row.held != 0) {
            ScriptKeyUp(row.held);
        }
        const std::vector<EventRecord> events = TakeEvents();
        ASSERT_EQ(events.size(), 1u) << "Ctrl and Shift alone are no events";
        EXPECT_EQ(events[0].what, keyDown);
        EXPECT_EQ(events[0].message, row.message);
        EXPECT_EQ(events[0].modifiers, row.modifiers);
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

TEST_F(ToolboxTest, ButtonsCarryTheirPlaceAndModifiers)
{
    const ScriptPoint place = OnScreen(30, 40);
    for (const int button : {hostLeftButton, hostRightButton}) {
        ScriptKeyDown(VK_SHIFT);
        ScriptKeyDown(VK_MENU);
        ScriptPress(place.x, place.y, button);
        ScriptKeyUp(VK_SHIFT);
        ScriptKeyUp(VK_MENU);
        ScriptKeyDown(VK_CONTROL);
        ScriptRelease();
        ScriptKeyUp(VK_CONTROL);
        const std::vector<EventRecord> events = TakeEvents(mDownMask | mUpMask);
        ASSERT_EQ(events.size(), 2u);
        EXPECT_EQ(events[0].what, mouseDown);
        EXPECT_EQ(events[0].modifiers, shiftKey | optionKey);
        EXPECT_EQ(events[0].where.h, place.x);
        EXPECT_EQ(events[0].where.v, place.y);
        EXPECT_EQ(events[1].what, mouseUp);
        EXPECT_EQ(events[1].modifiers, controlKey);
    }
}

TEST_F(ToolboxTest, MaskedEventsAreLost)
{
    const ScriptPoint place = OnScreen(30, 40);
    ScriptClick(place.x, place.y);
    ScriptText("a");
    EXPECT_TRUE(TakeEvents(0).empty());
    EXPECT_TRUE(TakeEvents().empty()) << "they are not kept for later";
    ScriptKey(VK_LEFT);
    ScriptKeyDown(VK_CONTROL);
    ScriptKey(VK_ADD);
    ScriptKeyUp(VK_CONTROL);
    EXPECT_EQ(TakeEvents(0).size(), 2u) << "mapped keys and Ctrl with plus come whatever the mask";
}

TEST_F(ToolboxTest, TheWheelTurnsUpOnlyForPositiveDeltas)
{
    const struct {
        int delta;
        int what;
    } rows[] = {{120, wheelUpEvt}, {1, wheelUpEvt}, {0, wheelDownEvt}, {-120, wheelDownEvt}};
    const ScriptPoint place = OnScreen(30, 40);
    ScriptMove(place.x, place.y);
    for (const auto& row : rows) {
        ScriptWheel(row.delta);
        const std::vector<EventRecord> events = TakeEvents(0);
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0].what, row.what);
        EXPECT_EQ(events[0].message, reinterpret_cast<uintptr_t>(shell.mapWindow));
        EXPECT_EQ(events[0].where.h, place.x);
    }
}

TEST_F(ToolboxTest, MovesAreEventsOnlyOutsideTheRegion)
{
    const HRGN region = CreateRectRgn(300, 200, 400, 300);
    ScriptMove(350, 250);
    EXPECT_TRUE(TakeEvents(everyEvent, region).empty());
    EXPECT_EQ(std::count(dispatchedMessages.begin(), dispatchedMessages.end(), WM_MOUSEMOVE), 1)
        << "inside it the window sets the cursor";
    ScriptMove(450, 250);
    std::vector<EventRecord> events = TakeEvents(everyEvent, region);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].what, mouseMovedEvt);
    EXPECT_EQ(events[0].message, 250u);
    EXPECT_EQ(events[0].where.h, 450);
    SetEmptyRgn(region);
    ScriptMove(350, 250);
    EXPECT_EQ(TakeEvents(everyEvent, region).size(), 1u);
    DeleteObject(region);
}

TEST_F(ToolboxTest, AMenuChoiceIsAPressInTheMenuBar)
{
    const HWND window = shell.mapWindow->window;
    PostMessageA(window, WM_COMMAND, MAKEWPARAM(305, 1), 0); // as an accelerator would
    ScriptMenu(305);
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

TEST(ToolboxClock, TicksAreSixtiethsOfASecond)
{
    HeadlessReset(); // the clock stands at 1000 milliseconds
    host = &headlessHost;
    EXPECT_EQ(TickCount(), 60u);
}

// ---- pointer trail ----

class TrailTest : public ToolboxTest {
  protected:
    static void Press(int h, int v, int delay = 0)
    {
        const ScriptPoint place = OnScreen(h, v);
        ScriptPress(place.x, place.y, hostLeftButton, delay);
    }

    static void Move(int h, int v, int delay = 0)
    {
        const ScriptPoint place = OnScreen(h, v);
        ScriptMove(place.x, place.y, delay);
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
        Move(150, 200, 30);
        Move(10, 10);
        Press(10, 10, rest);
        Move(20, 10);
        Move(30, 12);
        Move(20, 10);
        Move(40, 18);
        ScriptRelease(rest);
        Move(90, 30);
        Move(95, 30);
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
    for (const int h : {20, 30, 40, 30, 20, 30, 50}) {
        Move(h, 10);
    }
    ScriptRelease(200);
    Move(90, 30);
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
            Move(h, 40, i % 4 == 0 ? wait : 0);
            wanted += std::to_string(h) + ",40 ";
        }
        ScriptRelease(wait);
        Move(5, 5, 1);
        EXPECT_EQ(Follow(), wanted);
        TakeEvents();
    }
}

TEST_F(TrailTest, NothingOfAfterTheReleaseIsUsed)
{
    for (int delay = 0; delay < 7; delay++) { // whatever step of a look it falls into
        SCOPED_TRACE(delay);
        Press(10, 10, 5);
        Move(20, 10, 8 + delay);
        Move(33, 10, 1);
        Move(45, 10);
        ScriptRelease(0);
        Move(300, 10);
        Move(310, 10, 1);
        EXPECT_EQ(Follow(), "20,10 33,10 45,10 ");
        TakeEvents();
    }
}

TEST_F(TrailTest, ASecondPressDoesNotLengthenTheFirstTrail)
{
    Press(10, 10);
    Move(20, 10, 1);
    ScriptRelease(1);
    Press(50, 50, 1);
    Move(60, 60, 1);
    Move(70, 70, 300);
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
        const ScriptPoint place = OnScreen(70, 80);
        *x = place.x;
        *y = place.y;
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
    Move(200, 200, 1);
    Point point = {};
    int calls = 0;
    while (NextTrailPoint(&point) && calls < 10000) {
        EXPECT_TRUE(EqualPt(point, {10, 10}));
        calls++;
    }
    EXPECT_LT(calls, 10000);
}

TEST_F(TrailTest, TheRightButtonActsOnOnePlaceOnly)
{
    const ScriptPoint place = OnScreen(10, 10);
    ScriptPress(place.x, place.y, hostRightButton);
    Move(50, 10);
    EXPECT_EQ(Follow(), "");
    ScriptRelease();
    TakeEvents();
}

TEST_F(TrailTest, PositionsAreInThePortsCoordinates)
{
    SetOrigin(300, 500);
    Press(10, 10);
    Move(25, 12);
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
    EXPECT_EQ(shell.mapWindow->portRect.right, 640);
    EXPECT_EQ(shell.mapWindow->portRect.bottom, 360);
    SizeWindow(shell.mapWindow, 0, 0, 1);
    EXPECT_EQ(shell.mapWindow->portRect.right, 640);
    MoveWindowTo(shell.mapWindow, 150, 170, 1);
    EXPECT_EQ(OnScreen(0, 0).x, 150);
    EXPECT_EQ(OnScreen(0, 0).y, 170);
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

TEST_F(ToolboxTest, PartsOfADialogAreFoundByItsItems)
{
    ASSERT_EQ(RegisterWindowClasses(), 1);
    const Point place = {300, 300};
    const WindowPtr dialog = NewMockDialog(1, 200, 100, "", &place);
    ASSERT_NE(dialog, nullptr);
    AddDialogItem(dialog, 0, nullptr, "", 0, 0, 1, 0, closeBoxItem, 1, 0, 0);
    AddDialogItem(dialog, 0, nullptr, "", 0, 0, 1, 0, rightTitleBoxItem, 2, 0, 0);
    AddDialogItem(dialog, 0, nullptr, "", 0, 0, 1, 0, titleBarItem, 3, 0, 0);
    AddPushButton(dialog, 50, 50, 100, 70, "", 4);
    ShowWindowInactive(dialog);
    const struct {
        int h;
        int v;
        int part;
    } rows[] = {
        {308, 305, inGoAway}, {490, 310, inGoAway}, {400, 317, inDrag}, {400, 318, inContent}, {360, 360, inContent}};
    for (const auto& row : rows) {
        ScriptPress(row.h, row.v);
        ASSERT_TRUE(TakePress());
        WindowPtr found = nullptr;
        EXPECT_EQ(FindWindow(currentEvent.where, &found), row.part) << row.h << ", " << row.v;
        EXPECT_EQ(found, dialog);
        EXPECT_EQ(currentPort, shell.mapWindow);
        ScriptRelease();
        TakeEvents(0);
    }
    DisposeMockDialog(dialog);
}

class DraggingTest : public ToolboxTest {
  protected:
    void SetUp() override
    {
        ToolboxTest::SetUp();
        const Rect bounds = {300, 300, 400, 450};
        palette = NewWindow("ToolboxTestClass", nullptr, &bounds, "", 1, 0, FRONT_WINDOW, 0, 0);
        ASSERT_NE(palette, nullptr);
        SetPort(palette);
        ValidRect(nullptr);
    }

    void TearDown() override
    {
        DestroyTestWindow(palette);
        ToolboxTest::TearDown();
    }

    Point Place() const
    {
        Rect frame = {};
        GetWindowFrameRect(palette, &frame);
        EXPECT_EQ(frame.right - frame.left, 150);
        EXPECT_EQ(frame.bottom - frame.top, 100);
        return {frame.top, frame.left};
    }

    WindowPtr palette = nullptr;
};

TEST_F(DraggingTest, ADraggedWindowGoesWhereItsOutlineWas)
{
    ScriptPress(310, 305);
    ASSERT_TRUE(TakePress());
    ScriptMove(330, 300);
    ScriptText("a");
    ScriptMove(250, 290); // left of and above the window's own corner
    ScriptWait(100);
    ScriptCall([this] {
        EXPECT_EQ(headless.outline.size(), 4u);
        EXPECT_TRUE(EqualPt(Place(), {300, 300})) << "only the outline moves";
    });
    ScriptRelease();
    DragWindow(palette, currentEvent.where, &shell.screenRect);
    EXPECT_TRUE(EqualPt(Place(), {285, 240}));
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_TRUE(TakeEvents(keyDownMask).empty()) << "what came meanwhile is discarded";
    EXPECT_TRUE(headless.outline.empty());
}

TEST_F(DraggingTest, ADragWithoutItsReleaseEnds)
{
    InvalRect(nullptr); // paint requests keep coming
    DragWindow(palette, {305, 310}, &shell.screenRect);
    EXPECT_TRUE(EqualPt(Place(), {300, 300}));
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
    for (const int character : {int{'p'}, int{'e'}, int{'N'}, int{'l'}, int{'u'}, 0, -1, 300}) {
        EXPECT_EQ(MenuKey(character), 0u);
    }

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

} // namespace
