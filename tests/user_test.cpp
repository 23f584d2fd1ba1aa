// Windows, painting and messages of the platform layer.
#include "platform/user/region.h"
#include "tests/user_fixture.h"

#include <array>
#include <iterator>
#include <random>
#include <utility>

namespace {

constexpr int frameLeft = 4; // of a framed window with a menu on the headless host
constexpr int frameTop = 46;
constexpr int across = 8;
constexpr int down = 50;

void Fill(HDC dc, const RECT& rect, COLORREF colour)
{
    HBRUSH brush = CreateSolidBrush(colour);
    FillRect(dc, &rect, brush);
    DeleteObject(brush);
}

bool Equal(const RECT& first, const RECT& second)
{
    return EqualRect(&first, &second) != FALSE;
}

// Begins and ends a paint; the part that was to be painted.
RECT PaintedPart(HWND window)
{
    PAINTSTRUCT paint;
    BeginPaint(window, &paint);
    EndPaint(window, &paint);
    return paint.rcPaint;
}

// ---- windows ----

TEST_F(User, FrameAndClientAreaAgreeInEveryCall)
{
    RECT frame, client;
    GetWindowRect(main, &frame);
    GetClientRect(main, &client);
    EXPECT_TRUE(Equal(client, {0, 0, 800, 600}));
    POINT origin = {0, 0};
    ClientToScreen(main, &origin);
    RECT adjusted = {origin.x, origin.y, origin.x + client.right, origin.y + client.bottom};
    AdjustWindowRect(&adjusted, WS_OVERLAPPEDWINDOW, TRUE);
    EXPECT_TRUE(Equal(adjusted, frame));
    RECT popup = {10, 10, 20, 20};
    AdjustWindowRect(&popup, WS_POPUP | WS_BORDER, FALSE);
    EXPECT_EQ(popup.right, 20);

    HWND panel = MakePanel(300, 200, 150, 90);
    POINT corner = {5, 6};
    MapWindowPoints(panel, main, &corner, 1);
    EXPECT_EQ(corner.x, 300 + 5 - origin.x);
    EXPECT_EQ(corner.y, 200 + 6 - origin.y);
    GetWindowRect(panel, &frame);
    EXPECT_TRUE(Equal(frame, {300, 200, 450, 290}));
}

TEST_F(User, AnewPlaceAndSizeAreToldInOrderAndRightAtOnce)
{
    RECT atChange = {};
    react = [&](HWND window, UINT message, LPARAM, bool*) -> LRESULT {
        if (message == WM_WINDOWPOSCHANGED) {
            GetClientRect(window, &atChange);
        }
        return 0;
    };
    MoveWindow(main, 50, 70, 400 + across, 300 + down, TRUE);
    EXPECT_EQ(SeenMessages(main), (std::vector<UINT>{WM_WINDOWPOSCHANGED, WM_MOVE, WM_SIZE}));
    EXPECT_TRUE(Equal(atChange, {0, 0, 400, 300}));
    EXPECT_EQ(seen.back().lParam, MAKELPARAM(400, 300));
    EXPECT_EQ(Shown(main)->client.right, 50 + frameLeft + 400);
    EXPECT_EQ(Shown(main)->client.top, 70 + frameTop);

    seen.clear();
    SetWindowPos(main, nullptr, 90, 70, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    EXPECT_EQ(SeenMessages(main), (std::vector<UINT>{WM_WINDOWPOSCHANGED, WM_MOVE}));
    seen.clear();
    SetWindowPos(main, nullptr, 90, 70, 400 + across, 300 + down, SWP_NOZORDER);
    EXPECT_TRUE(seen.empty()) << "nothing changed";
}

TEST_F(User, TrackSizesLimitTheProgramAndSizingLimitsTheUser)
{
    react = [&](HWND, UINT message, LPARAM lParam, bool* answered) -> LRESULT {
        *answered = message == WM_GETMINMAXINFO || message == WM_SIZING;
        if (message == WM_GETMINMAXINFO) {
            MINMAXINFO* info = reinterpret_cast<MINMAXINFO*>(lParam);
            info->ptMinTrackSize = {370, 300};
            info->ptMaxTrackSize = {1000, 900};
        } else if (message == WM_SIZING) {
            RECT* frame = reinterpret_cast<RECT*>(lParam);
            frame->right = std::clamp(frame->right, frame->left + 500, frame->left + 1200);
            frame->bottom = std::clamp(frame->bottom, frame->top + 200, frame->top + 850);
        }
        return message == WM_SIZING ? 1 : 0;
    };
    const auto limits = [this] {
        const HeadlessWindow* shown = Shown(main);
        return std::array<int, 4>{shown->minWidth, shown->minHeight, shown->maxWidth, shown->maxHeight};
    };
    Report(hostGeometry, main); // limits are asked for after something happened
    Drain();
    EXPECT_EQ(limits(), (std::array<int, 4>{500 - across, 300 - down, 1000 - across, 850 - down}));
    SetWindowPos(main, nullptr, 0, 0, 100, 5000, SWP_NOMOVE | SWP_NOZORDER);
    RECT client;
    GetClientRect(main, &client);
    EXPECT_TRUE(Equal(client, {0, 0, 370 - across, 900 - down})) << "the program may go beyond what a drag reaches";
    Drain();
    EXPECT_EQ(limits(), (std::array<int, 4>{370 - across, 300 - down, 1000 - across, 900 - down}))
        << "never beyond the size that the window has";
}

TEST_F(User, AUserResizeKeepsThePictureAndFillsNewGroundWithGrey)
{
    Fill(GetDC(main), {0, 0, 800, 600}, RGB(0, 255, 0));
    ScriptResize(900, 500, 0);
    ScriptResize(900, 500, 0);
    EXPECT_EQ(Next().message, UINT{WM_PAINT});
    EXPECT_EQ(SeenMessages(main), (std::vector<UINT>{WM_WINDOWPOSCHANGED, WM_SIZE}));
    const HeadlessWindow* shown = Shown(main);
    ASSERT_TRUE(shown->pictureWidth == 900 && shown->pictureHeight == 500);
    EXPECT_EQ(shown->picture[499 * shown->pictureStride + 799], 0x0000FF00U);
    EXPECT_EQ(shown->picture[499 * shown->pictureStride + 800], 0x00C0C0C0U);
    EXPECT_TRUE(Equal(PaintedPart(main), {0, 0, 900, 500}));

    // A panel's class does not ask for a whole redraw: only the new ground is to be painted.
    HWND panel = MakePanel(0, 0, 100, 100);
    SetWindowPos(panel, nullptr, 0, 0, 140, 100, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_TRUE(Equal(PaintedPart(panel), {100, 0, 140, 100}));
    SetWindowPos(panel, nullptr, 0, 0, 200, 200, SWP_NOMOVE | SWP_NOZORDER | SWP_NOREDRAW);
    EXPECT_TRUE(Equal(PaintedPart(panel), {}));
}

TEST_F(User, DestroyingAWindowTakesItsChildrenAndPopupsWithIt)
{
    HWND panel = MakePanel(10, 10, 50, 50);
    HWND bar = MakeBar({0, 0, 16, 100});
    EXPECT_EQ(headless.bars.size(), 1U);
    ReportPointer(hostPointerDown, panel, 20, 20, hostLeftButton);
    PostMessageA(main, WM_CHAR, 'x', 0);
    SetCapture(panel);
    seen.clear();
    EXPECT_TRUE(DestroyWindow(main));
    EXPECT_EQ(SeenMessages(panel), (std::vector<UINT>{WM_DESTROY, WM_NCDESTROY}));
    EXPECT_EQ(SeenMessages(main), (std::vector<UINT>{WM_DESTROY, WM_NCDESTROY}));
    EXPECT_EQ(headless.captured, nullptr);
    EXPECT_TRUE(headless.windows.empty() && headless.bars.empty());
    for (HWND dead : {main, panel, bar, static_cast<HWND>(nullptr), reinterpret_cast<HWND>(1234)}) {
        RECT rect = {1, 2, 3, 4};
        POINT point = {};
        PAINTSTRUCT paint;
        char text[8];
        EXPECT_FALSE(IsWindow(dead) || DestroyWindow(dead) || ShowWindow(dead, SW_SHOW) ||
                     GetClientRect(dead, &rect) || SetWindowPos(dead, HWND_TOP, 0, 0, 5, 5, 0) ||
                     GetWindowRect(dead, &rect) || ClientToScreen(dead, &point) ||
                     InvalidateRect(dead, nullptr, FALSE));
        EXPECT_TRUE(BeginPaint(dead, &paint) == nullptr && GetMenu(dead) == nullptr);
        EXPECT_TRUE(GetWindowLongPtrA(dead, 0) == 0 && GetWindowTextA(dead, text, 8) == 0 &&
                    SendMessageA(dead, WM_CLOSE, 0, 0) == 0 && SetScrollInfo(dead, SB_CTL, nullptr, TRUE) == 0);
    }
    EXPECT_TRUE(Drain().empty());
}

TEST_F(User, AWindowMayBeDestroyedFromInsideAnyOfItsMessages)
{
    const auto make = [] {
        return CreateWindowExA(0, "MainClass", "", WS_OVERLAPPEDWINDOW, 0, 0, 300, 300, nullptr, nullptr, nullptr,
                               nullptr);
    };
    for (UINT killer : {UINT{WM_CREATE}, UINT{WM_SIZE}, UINT{WM_MOVE}, UINT{WM_WINDOWPOSCHANGED}, UINT{WM_ERASEBKGND},
                        UINT{WM_GETMINMAXINFO}, UINT{WM_SIZING}, UINT{WM_ACTIVATEAPP}, UINT{WM_PAINT}}) {
        react = [&](HWND window, UINT message, LPARAM, bool*) -> LRESULT {
            if (message == killer) {
                DestroyWindow(window);
            }
            return 0;
        };
        HWND window = make();
        ShowWindow(window, SW_SHOWNORMAL);
        MoveWindow(window, 5, 5, 310, 310, TRUE);
        PaintedPart(window);
        InvalidateRect(window, nullptr, TRUE);
        UpdateWindow(window);
        Report(hostActivate, window, 1);
        Drain();
        EXPECT_FALSE(IsWindow(window)) << killer;
        react = nullptr;
        if (!IsWindow(main)) {
            main = make();
        }
        Report(hostActivate, main, 0);
        Drain();
    }
}

TEST_F(User, PopupsStayAboveTheWindowThatOwnsThem)
{
    HWND first = MakePanel(0, 0, 50, 50);
    HWND second = MakePanel(10, 10, 50, 50);
    EXPECT_EQ(GetTopWindow(nullptr), second);
    const auto place = [](HWND window, HWND after) {
        SetWindowPos(window, after, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    };
    const int raised = headless.raises;
    place(main, HWND_NOTOPMOST);
    EXPECT_EQ(headless.raises, raised) << "it is where it belongs";
    EXPECT_EQ(GetTopWindow(nullptr), second);
    place(first, HWND_TOP);
    EXPECT_EQ(headless.windows.front(), Shown(first));
    EXPECT_EQ(GetTopWindow(nullptr), first);
    place(main, HWND_TOP);
    EXPECT_EQ(GetTopWindow(nullptr), first);
    ShowWindow(first, SW_HIDE);
    EXPECT_EQ(GetTopWindow(nullptr), second);
    DestroyWindow(second);
    EXPECT_EQ(GetTopWindow(nullptr), main);
}

// ---- painting ----

TEST_F(User, PaintRequestsComeLastAndAgainUntilValidated)
{
    RECT part = {10, 20, 30, 40};
    InvalidateRect(main, &part, FALSE);
    PostMessageA(main, WM_NULL, 0, 0);
    EXPECT_EQ(Next().message, UINT{WM_NULL});
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(Next().message, UINT{WM_PAINT});
    }
    MSG message;
    EXPECT_FALSE(PeekMessageA(&message, nullptr, WM_KEYDOWN, WM_CHAR, PM_NOREMOVE)) << "the filter leaves it out";

    HDC dc = GetDC(main);
    OffsetWindowOrgEx(dc, 100, 200, nullptr);
    PAINTSTRUCT paint;
    BeginPaint(main, &paint);
    EXPECT_EQ(paint.hdc, dc);
    EXPECT_TRUE(Equal(paint.rcPaint, {110, 220, 130, 240}));
    const RECT everything = {0, 0, 2000, 2000};
    Fill(dc, everything, 0);
    const uint32_t* row20 = Shown(main)->picture + 20 * Shown(main)->pictureStride;
    const uint32_t* row40 = Shown(main)->picture + 40 * Shown(main)->pictureStride;
    EXPECT_EQ(row20[10], 0U);
    EXPECT_EQ(row20[9], 0x00C0C0C0U);
    EXPECT_EQ(row40[10], 0x00C0C0C0U);
    EndPaint(main, &paint);
    EXPECT_EQ(Next().message, 0U);
    Fill(dc, everything, 0);
    EXPECT_EQ(row40[10], 0U) << "outside of a paint nothing is clipped";
}

TEST_F(User, RegionsAreExactWhateverIsAddedAndTakenAway)
{
    constexpr int side = 24;
    std::mt19937 random(3);
    for (int round = 0; round < 200; round++) {
        Region region;
        int model[side][side] = {};
        int covered[side][side] = {};
        const auto forEach = [](const RECT& area, auto change) {
            for (LONG y = area.top; y < area.bottom; y++) {
                for (LONG x = area.left; x < area.right; x++) {
                    change(y, x);
                }
            }
        };
        for (int step = 0; step < 12; step++) {
            RECT area = {static_cast<LONG>(random() % side), static_cast<LONG>(random() % side),
                         static_cast<LONG>(random() % (side + 1)), static_cast<LONG>(random() % (side + 1))};
            const bool add = random() % 3 != 0;
            add ? AddToRegion(region, area) : SubtractFromRegion(region, area);
            forEach(area, [&](LONG y, LONG x) { model[y][x] = add ? 1 : 0; });
        }
        for (const RECT& part : region) {
            forEach(part, [&](LONG y, LONG x) { covered[y][x]++; });
        }
        ASSERT_TRUE(std::equal(&model[0][0], &model[0][0] + side * side, &covered[0][0])) << "round " << round;
    }
}

TEST_F(User, DrawingReachesTheScreenWhenTheProgramLooksAtTheDevices)
{
    POINT point;
    const std::vector<std::pair<const char*, std::function<void()>>> looks = {
        {"GetCursorPos", [&] { GetCursorPos(&point); }},
        {"GetAsyncKeyState", [] { GetAsyncKeyState(VK_LBUTTON); }},
        {"GdiFlush", [] { GdiFlush(); }},
        {"an idle PeekMessage", [&] { Drain(); }},
    };
    for (const auto& [name, look] : looks) {
        headless.presentCount = 0;
        Fill(GetDC(main), {7, 9, 8, 10}, RGB(1, 2, 3));
        Fill(GetDC(main), {17, 19, 18, 20}, RGB(1, 2, 3));
        EXPECT_EQ(headless.presentCount, 0) << name;
        look();
        EXPECT_EQ(headless.presentCount, 1) << name;
        const HostRect part = Shown(main)->presented;
        EXPECT_TRUE(part.left == 7 && part.top == 9 && part.right == 18 && part.bottom == 20) << name;
        look();
        EXPECT_EQ(headless.presentCount, 1) << name << ": nothing new was drawn";
    }
    ScriptPoint place = HeadlessClientOrigin();
    EXPECT_EQ(HeadlessPixel(place.x + 17, place.y + 19), 0x010203U);
    Fill(GetDC(main), {17, 19, 18, 20}, 0);
    EXPECT_EQ(HeadlessPixel(place.x + 17, place.y + 19), 0x010203U) << "not yet";
}

// ---- messages ----

TEST_F(User, PeekingWaitsOnlyWhenThereIsNothingToDo)
{
    static std::vector<int> waits;
    Host listening = headlessHost;
    listening.pump = [](int wait) {
        waits.push_back(wait);
        headlessHost.pump(wait);
    };
    host = &listening;
    waits.clear();
    MSG message;
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(waits, (std::vector<int>{0}));
    EXPECT_EQ(Next().message, 0U);
    EXPECT_EQ(waits, (std::vector<int>{0, 0, 10}));
    waits.clear();
    ReportPointer(hostPointerDown, main, 150, 180, hostLeftButton);
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(Next().message, UINT{WM_LBUTTONDOWN});
    EXPECT_EQ(waits, (std::vector<int>{0}));

    // A poll handles no message and yields when nothing is new.
    Report(hostCloseRequest, main);
    seen.clear();
    waits.clear();
    for (int i = 0; i < 50; i++) {
        GetAsyncKeyState(VK_LBUTTON);
    }
    EXPECT_TRUE(seen.empty() && IsWindow(main));
    EXPECT_GE(std::count(waits.begin(), waits.end(), 1), 40);
}

TEST_F(User, MovesMergeInTheQueueButNotInTheHistory)
{
    for (int i = 0; i < 5; i++) {
        ReportPointer(hostPointerMove, main, 200 + i, 210);
    }
    ReportPointer(hostPointerDown, main, 204, 210, hostLeftButton);
    ReportPointer(hostPointerMove, main, 205, 210);
    ReportPointer(hostPointerUp, main, 207, 210, hostLeftButton);
    for (const UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_LBUTTONUP, 0}) {
        EXPECT_EQ(Next().message, message);
    }
    MOUSEMOVEPOINT from = {}, history[1024];
    const auto read = [&](int count) {
        return GetMouseMovePointsEx(sizeof from, &from, history, count, GMMP_USE_DISPLAY_POINTS);
    };
    ASSERT_EQ(read(64), 7) << "six moves, and the release at a place of its own";
    EXPECT_EQ(history[0].x, 207);
    EXPECT_EQ(history[6].x, 200);
    EXPECT_LT(history[6].time, history[0].time);
    EXPECT_EQ(read(1025), -1);
    for (int i = 0; i < 1100; i++) {
        ReportPointer(hostPointerMove, main, i, 0);
    }
    GetAsyncKeyState(VK_LBUTTON);
    EXPECT_EQ(read(1024), 1024);
    EXPECT_EQ(history[0].x, 1099);
    EXPECT_EQ(history[1023].x, 76);
}

TEST_F(User, KeysBecomeCharactersWhereTheyHaveOne)
{
    const struct {
        int key;
        int character;
        unsigned modifiers;
        UINT message;
        BOOL translated;
        UINT following; // 0: none
    } cases[] = {
        {'N', 14, hostControl, WM_KEYDOWN, TRUE, WM_CHAR},
        {'A', 'a', 0, WM_KEYDOWN, TRUE, WM_CHAR},
        {VK_F7, 0, 0, WM_KEYDOWN, FALSE, 0},
        {VK_DELETE, 0, hostShift, WM_KEYDOWN, FALSE, 0},
        {'L', 'l', hostAlt, WM_SYSKEYDOWN, FALSE, WM_SYSCHAR},
        {'Q', '@', hostAlt | hostControl, WM_KEYDOWN, TRUE, WM_CHAR},
        {VK_MENU, 0, 0, WM_SYSKEYDOWN, FALSE, 0},
    };
    for (const auto& entry : cases) {
        ReportKey(hostKeyDown, entry.key, entry.character, entry.modifiers);
        ReportKey(hostKeyDown, VK_HOME, 0, 0);
        MSG message = Next();
        EXPECT_EQ(message.message, entry.message) << entry.key;
        EXPECT_EQ(message.wParam, static_cast<WPARAM>(entry.key));
        EXPECT_EQ(TranslateMessage(&message), entry.translated) << entry.key;
        message = Next();
        if (entry.following != 0) {
            EXPECT_EQ(message.message, entry.following) << "ahead of the key behind it";
            EXPECT_EQ(message.wParam, static_cast<WPARAM>(entry.character));
            message = Next();
        }
        EXPECT_EQ(message.wParam, WPARAM{VK_HOME});
    }
    ReportKey(hostKeyUp, 'L', 0, hostAlt);
    EXPECT_EQ(Next().message, UINT{WM_SYSKEYUP});
}

TEST_F(User, KeyStatesAreThoseOfTheMessageTakenLastOrOfTheDeviceNow)
{
    ReportKey(hostKeyDown, VK_SHIFT, 0, 0);
    HostEvent press = Pointer(hostPointerDown, main, 200, 200, hostLeftButton);
    press.modifiers = hostShift;
    press.buttons = hostLeftButton;
    HeadlessReport(press);
    ReportKey(hostKeyUp, VK_SHIFT, 0, hostShift);
    headless.modifiers = hostControl;
    Next();
    EXPECT_LT(GetKeyState(VK_SHIFT), 0);
    EXPECT_EQ(GetKeyState(VK_LBUTTON), 0);
    MSG message;
    PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);
    EXPECT_EQ(GetKeyState(VK_LBUTTON), 0) << "looked at, not taken";
    Next();
    EXPECT_LT(GetKeyState(VK_LBUTTON), 0);
    Next();
    EXPECT_EQ(GetKeyState(VK_SHIFT), 0);
    EXPECT_EQ(GetKeyState(VK_CONTROL), 0);
    EXPECT_LT(GetAsyncKeyState(VK_CONTROL), 0);
    EXPECT_EQ(GetAsyncKeyState(VK_LBUTTON), 0);
}

TEST_F(User, ClosingGoesToItsWindowAndMayBeRefused)
{
    HWND panel = MakePanel(0, 0, 40, 40);
    react = [&](HWND, UINT message, LPARAM, bool* answered) -> LRESULT {
        *answered = message == WM_CLOSE;
        return 0;
    };
    Report(hostCloseRequest, panel);
    Drain();
    EXPECT_EQ(SeenMessages(panel), (std::vector<UINT>{WM_CLOSE}));
    EXPECT_TRUE(IsWindow(main) && IsWindow(panel));
    react = nullptr;
    Report(hostCloseRequest, main);
    Drain();
    EXPECT_FALSE(IsWindow(main) || IsWindow(panel));
}

TEST_F(User, TheProgramHearsOfItsActivationOnlyWhenItChanges)
{
    HWND panel = MakePanel(0, 0, 40, 40);
    const auto heard = [&] {
        Drain();
        std::string text;
        for (const Seen& entry : seen) {
            if (entry.message == WM_ACTIVATEAPP) {
                text += std::string(entry.window == main ? "m" : "p") + (entry.wParam != 0 ? "1" : "0");
            }
        }
        seen.clear();
        return text;
    };
    Report(hostActivate, main, 0);
    EXPECT_EQ(heard(), "p0m0");
    EXPECT_EQ(GetForegroundWindow(), nullptr);
    Report(hostActivate, main, 1);
    EXPECT_EQ(heard(), "p1m1");
    EXPECT_EQ(GetForegroundWindow(), main);
    Report(hostActivate, main, 0);
    Report(hostActivate, panel, 1);
    EXPECT_EQ(heard(), "");
    EXPECT_EQ(GetForegroundWindow(), panel);
}

// ---- the headless host itself ----

TEST_F(User, AProgramThatNeverEndsIsAskedToCloseAndThenEnded)
{
    const auto waitForEver = [] {
        HostEvent event;
        while (true) {
            headlessHost.pump(10);
            while (headlessHost.nextEvent(&event) != 0) {
            }
        }
    };
    EXPECT_EXIT(waitForEver(), testing::ExitedWithCode(3), "20 requests to close");
    EXPECT_EXIT(while (true) headlessHost.buttons(), testing::ExitedWithCode(3), "still polls the devices");
}

} // namespace
