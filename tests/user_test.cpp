// Windows, painting and messages of the platform layer.
#include "platform/user/region.h"
#include "tests/user_fixture.h"

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace usertest {
namespace {

int SignedLow(LPARAM word)
{
    return static_cast<int16_t>(LOWORD(static_cast<ULONG_PTR>(word)));
}

int SignedHigh(LPARAM word)
{
    return static_cast<int16_t>(HIWORD(static_cast<ULONG_PTR>(word)));
}

} // namespace

// ---- windows ----

TEST_F(User, FrameAndClientAreaAgreeInEveryCall)
{
    RECT frame, client;
    GetWindowRect(main, &frame);
    GetClientRect(main, &client);
    EXPECT_EQ(client.right, 800);
    EXPECT_EQ(client.bottom, 600);
    POINT origin = {0, 0};
    ClientToScreen(main, &origin);
    RECT adjusted = {origin.x, origin.y, origin.x + client.right, origin.y + client.bottom};
    AdjustWindowRect(&adjusted, WS_OVERLAPPEDWINDOW, TRUE);
    EXPECT_TRUE(EqualRect(&adjusted, &frame));
    RECT popup = {10, 10, 20, 20};
    AdjustWindowRect(&popup, WS_POPUP | WS_BORDER, FALSE);
    EXPECT_EQ(popup.right, 20);

    HWND panel = MakePanel(300, 200, 150, 90);
    POINT corner = {5, 6};
    MapWindowPoints(panel, main, &corner, 1);
    EXPECT_EQ(corner.x, 300 + 5 - origin.x);
    EXPECT_EQ(corner.y, 200 + 6 - origin.y);
    GetWindowRect(panel, &frame);
    EXPECT_EQ(frame.left, 300);
    EXPECT_EQ(frame.bottom, 290);
}

TEST_F(User, AnewPlaceAndSizeAreToldInOrderAndRightAtOnce)
{
    RECT atChange = {};
    react = [&](HWND window, UINT message, WPARAM, LPARAM, bool*) -> LRESULT {
        if (message == WM_WINDOWPOSCHANGED) {
            GetClientRect(window, &atChange);
        }
        return 0;
    };
    MoveWindow(main, 50, 60, 409, 356, TRUE);
    EXPECT_EQ(SeenMessages(main), (std::vector<UINT>{WM_WINDOWPOSCHANGED, WM_MOVE, WM_SIZE}));
    EXPECT_EQ(atChange.right, 409 - frameLeft - frameRight);
    EXPECT_EQ(atChange.bottom, 356 - frameTop - frameBottom);
    EXPECT_EQ(seen.back().lParam, MAKELPARAM(400, 300));
    EXPECT_EQ(Fake(main)->width, 400);
    EXPECT_EQ(Fake(main)->left, 50 + frameLeft);

    seen.clear();
    SetWindowPos(main, nullptr, 70, 60, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    EXPECT_EQ(SeenMessages(main), (std::vector<UINT>{WM_WINDOWPOSCHANGED, WM_MOVE}));
    seen.clear();
    SetWindowPos(main, nullptr, 70, 60, 409, 356, SWP_NOZORDER);
    EXPECT_TRUE(seen.empty()) << "nothing changed";
}

TEST_F(User, TrackSizesLimitTheProgramAndSizingLimitsTheUser)
{
    react = [&](HWND, UINT message, WPARAM, LPARAM lParam, bool* answered) -> LRESULT {
        if (message == WM_GETMINMAXINFO) {
            MINMAXINFO* info = reinterpret_cast<MINMAXINFO*>(lParam);
            info->ptMinTrackSize = {370, 300};
            info->ptMaxTrackSize = {1000, 900};
            *answered = true;
            return 0;
        }
        if (message == WM_SIZING) {
            RECT* frame = reinterpret_cast<RECT*>(lParam);
            frame->right = std::clamp(frame->right, frame->left + 500, frame->left + 1200);
            frame->bottom = std::clamp(frame->bottom, frame->top + 200, frame->top + 850);
            *answered = true;
            return 1;
        }
        return 0;
    };
    Drain();
    const int across = frameLeft + frameRight, down = frameTop + frameBottom;
    EXPECT_EQ(Fake(main)->limits, (std::array<int, 4>{500 - across, 300 - down, 1000 - across, 850 - down}));

    SetWindowPos(main, nullptr, 0, 0, 100, 5000, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(Fake(main)->width, 370 - across) << "the program may go below what a drag reaches";
    EXPECT_EQ(Fake(main)->height, 900 - down);
    Drain();
    EXPECT_EQ(Fake(main)->limits, (std::array<int, 4>{370 - across, 300 - down, 1000 - across, 900 - down}))
        << "never beyond the size that the window has";
}

TEST_F(User, AUserResizeKeepsThePictureAndFillsNewGroundWithGrey)
{
    HDC dc = GetDC(main);
    RECT all = {0, 0, 800, 600};
    HBRUSH green = CreateSolidBrush(RGB(0, 255, 0));
    FillRect(dc, &all, green);
    DeleteObject(green);
    Fake(main)->width = 900;
    Fake(main)->height = 500;
    Report(hostGeometry, main, 0);
    Report(hostGeometry, main, 0);
    MSG message;
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, UINT{WM_PAINT});
    EXPECT_EQ(SeenMessages(main), (std::vector<UINT>{WM_WINDOWPOSCHANGED, WM_SIZE}));
    const FakeWindow* shown = Fake(main);
    ASSERT_EQ(shown->pictureWidth, 900);
    ASSERT_EQ(shown->pictureHeight, 500);
    EXPECT_EQ(shown->pixels[499 * 900 + 799], 0x0000FF00U);
    EXPECT_EQ(shown->pixels[499 * 900 + 800], 0x00C0C0C0U);
    RECT update;
    EXPECT_TRUE(GetUpdateRect(main, &update, FALSE));
    EXPECT_EQ(update.right, 900);
    EXPECT_EQ(update.left, 0);

    // A panel's class does not ask for a whole redraw: only the new ground is to be painted.
    HWND panel = MakePanel(0, 0, 100, 100);
    SetWindowPos(panel, nullptr, 0, 0, 140, 100, SWP_NOMOVE | SWP_NOZORDER);
    GetUpdateRect(panel, &update, FALSE);
    EXPECT_EQ(update.left, 100);
    EXPECT_EQ(update.right, 140);
    ValidateRect(panel, nullptr);
    SetWindowPos(panel, nullptr, 0, 0, 200, 200, SWP_NOMOVE | SWP_NOZORDER | SWP_NOREDRAW);
    EXPECT_FALSE(GetUpdateRect(panel, nullptr, FALSE));
}

TEST_F(User, DestroyingAWindowTakesItsChildrenAndPopupsWithIt)
{
    HWND panel = MakePanel(10, 10, 50, 50);
    HWND bar = CreateWindowExA(0, "SCROLLBAR", "", WS_CHILD | WS_VISIBLE | SBS_VERT, 0, 0, 16, 100, main, nullptr,
                               nullptr, nullptr);
    EXPECT_TRUE(IsWindowVisible(bar));
    fake.events.push_back(PointerEvent(hostPointerDown, panel, 20, 20, hostLeftButton));
    PostMessageA(main, WM_CHAR, 'x', 0);
    SetCapture(panel);
    seen.clear();
    EXPECT_TRUE(DestroyWindow(main));
    EXPECT_EQ(SeenMessages(panel), (std::vector<UINT>{WM_DESTROY, WM_NCDESTROY}));
    EXPECT_EQ(SeenMessages(main), (std::vector<UINT>{WM_DESTROY, WM_NCDESTROY}));
    EXPECT_EQ(fake.captured, nullptr);
    EXPECT_TRUE(fake.windows.empty());
    EXPECT_TRUE(fake.bars.empty());
    for (HWND dead : {main, panel, bar, static_cast<HWND>(nullptr), reinterpret_cast<HWND>(1234)}) {
        RECT rect = {1, 2, 3, 4};
        POINT point = {};
        PAINTSTRUCT paint;
        char text[8];
        EXPECT_FALSE(IsWindow(dead));
        EXPECT_FALSE(DestroyWindow(dead));
        EXPECT_FALSE(ShowWindow(dead, SW_SHOW));
        EXPECT_FALSE(SetWindowPos(dead, HWND_TOP, 0, 0, 5, 5, 0));
        EXPECT_FALSE(GetClientRect(dead, &rect));
        EXPECT_FALSE(GetWindowRect(dead, &rect));
        EXPECT_FALSE(ClientToScreen(dead, &point));
        EXPECT_FALSE(InvalidateRect(dead, nullptr, FALSE));
        EXPECT_EQ(BeginPaint(dead, &paint), nullptr);
        EXPECT_EQ(GetWindowLongPtrA(dead, 0), 0);
        EXPECT_EQ(GetWindowTextA(dead, text, 8), 0);
        EXPECT_EQ(SendMessageA(dead, WM_CLOSE, 0, 0), 0);
        EXPECT_EQ(GetMenu(dead), nullptr);
        EXPECT_EQ(SetScrollInfo(dead, SB_CTL, nullptr, TRUE), 0);
    }
    EXPECT_TRUE(Drain().empty());
}

TEST_F(User, AWindowMayBeDestroyedFromInsideAnyOfItsMessages)
{
    for (UINT killer : {UINT{WM_CREATE}, UINT{WM_SIZE}, UINT{WM_MOVE}, UINT{WM_WINDOWPOSCHANGED}, UINT{WM_ERASEBKGND},
                        UINT{WM_GETMINMAXINFO}, UINT{WM_SIZING}, UINT{WM_ACTIVATEAPP}, UINT{WM_PAINT}}) {
        react = [&](HWND window, UINT message, WPARAM, LPARAM, bool*) -> LRESULT {
            if (message == killer) {
                DestroyWindow(window);
            }
            return 0;
        };
        HWND window = CreateWindowExA(0, "MainClass", "", WS_OVERLAPPEDWINDOW, 0, 0, 300, 300, nullptr, nullptr,
                                      nullptr, nullptr);
        ShowWindow(window, SW_SHOWNORMAL);
        MoveWindow(window, 5, 5, 310, 310, TRUE);
        PAINTSTRUCT paint;
        BeginPaint(window, &paint);
        InvalidateRect(window, nullptr, TRUE);
        UpdateWindow(window);
        Report(hostActivate, window, 1);
        Drain();
        EXPECT_FALSE(IsWindow(window)) << killer;
        if (!IsWindow(main)) {
            main = CreateWindowExA(0, "MainClass", "", WS_OVERLAPPEDWINDOW, 0, 0, 300, 300, nullptr, nullptr, nullptr,
                                   nullptr);
        }
        react = nullptr;
        Report(hostActivate, main, 0);
        Drain();
    }
}

TEST_F(User, PopupsStayAboveTheWindowThatOwnsThem)
{
    HWND first = MakePanel(0, 0, 50, 50);
    HWND second = MakePanel(10, 10, 50, 50);
    EXPECT_EQ(GetTopWindow(nullptr), second);
    for (int i = 0; i < 3; i++) {
        SetWindowPos(main, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    }
    EXPECT_EQ(Fake(main)->raised, 0);
    EXPECT_EQ(GetTopWindow(nullptr), second);
    SetWindowPos(first, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    EXPECT_EQ(Fake(first)->raised, 1);
    EXPECT_EQ(GetTopWindow(nullptr), first);
    SetWindowPos(main, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
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
    MSG message;
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, UINT{WM_NULL});
    for (int i = 0; i < 3; i++) {
        ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
        EXPECT_EQ(message.message, UINT{WM_PAINT});
    }
    EXPECT_FALSE(PeekMessageA(&message, nullptr, WM_KEYDOWN, WM_CHAR, PM_NOREMOVE)) << "the filter leaves it out";

    HDC dc = GetDC(main);
    SetWindowOrgEx(dc, 100, 200, nullptr);
    PAINTSTRUCT paint;
    BeginPaint(main, &paint);
    EXPECT_EQ(paint.hdc, dc);
    EXPECT_EQ(paint.rcPaint.left, 110);
    EXPECT_EQ(paint.rcPaint.top, 220);
    EXPECT_EQ(paint.rcPaint.right, 130);
    RECT everything = {0, 0, 2000, 2000};
    FillRect(dc, &everything, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    const uint32_t* pixels = Fake(main)->pixels;
    EXPECT_EQ(pixels[20 * 800 + 10], 0U);
    EXPECT_EQ(pixels[20 * 800 + 9], 0x00C0C0C0U);
    EXPECT_EQ(pixels[40 * 800 + 10], 0x00C0C0C0U);
    EndPaint(main, &paint);
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    FillRect(dc, &everything, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    EXPECT_EQ(pixels[40 * 800 + 10], 0U) << "outside of a paint nothing is clipped";
}

TEST_F(User, RegionsAreExactWhateverIsAddedAndTakenAway)
{
    constexpr int side = 24;
    std::mt19937 random(3);
    for (int round = 0; round < 200; round++) {
        Region region;
        bool model[side][side] = {};
        for (int step = 0; step < 12; step++) {
            RECT area = {static_cast<LONG>(random() % side), static_cast<LONG>(random() % side),
                         static_cast<LONG>(random() % (side + 1)), static_cast<LONG>(random() % (side + 1))};
            const bool add = random() % 3 != 0;
            add ? AddToRegion(region, area) : SubtractFromRegion(region, area);
            for (LONG y = area.top; y < area.bottom; y++) {
                for (LONG x = area.left; x < area.right; x++) {
                    model[y][x] = add;
                }
            }
        }
        int covered[side][side] = {};
        for (const RECT& part : region) {
            for (LONG y = part.top; y < part.bottom; y++) {
                for (LONG x = part.left; x < part.right; x++) {
                    covered[y][x]++;
                }
            }
        }
        for (int y = 0; y < side; y++) {
            for (int x = 0; x < side; x++) {
                ASSERT_EQ(covered[y][x], model[y][x] ? 1 : 0) << "round " << round;
            }
        }
    }
}

TEST_F(User, DrawingReachesTheScreenWhenTheProgramLooksAtTheDevices)
{
    Drain();
    POINT point;
    const std::vector<std::pair<const char*, std::function<void()>>> looks = {
        {"GetCursorPos", [&] { GetCursorPos(&point); }},
        {"GetAsyncKeyState", [] { GetAsyncKeyState(VK_LBUTTON); }},
        {"GdiFlush", [] { GdiFlush(); }},
        {"an idle PeekMessage", [&] { Drain(); }},
    };
    for (const auto& [name, look] : looks) {
        Fake(main)->presented.clear();
        SetPixel(GetDC(main), 7, 9, RGB(1, 2, 3));
        SetPixel(GetDC(main), 17, 19, RGB(1, 2, 3));
        EXPECT_TRUE(Fake(main)->presented.empty()) << name;
        look();
        ASSERT_EQ(Fake(main)->presented.size(), 1U) << name;
        const HostRect part = Fake(main)->presented[0];
        EXPECT_TRUE(part.left == 7 && part.top == 9 && part.right == 18 && part.bottom == 20) << name;
        look();
        EXPECT_EQ(Fake(main)->presented.size(), 1U) << name << ": nothing new was drawn";
    }
}

// ---- messages ----

TEST_F(User, PeekingWaitsOnlyWhenThereIsNothingToDo)
{
    MSG message;
    fake.waits.clear();
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(fake.waits, (std::vector<int>{0}));
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(fake.waits, (std::vector<int>{0, 0, 10}));
    fake.waits.clear();
    fake.events.push_back(PointerEvent(hostPointerDown, main, 150, 180, hostLeftButton));
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, UINT{WM_LBUTTONDOWN});
    EXPECT_EQ(fake.waits, (std::vector<int>{0}));
}

TEST_F(User, FiltersLeaveOtherMessagesInTheirOrder)
{
    HWND panel = MakePanel(500, 500, 60, 60);
    fake.events.push_back(PointerEvent(hostPointerDown, panel, 510, 510, hostLeftButton));
    fake.events.push_back(PointerEvent(hostPointerUp, panel, 510, 510, hostLeftButton));
    fake.events.push_back(PointerEvent(hostPointerDown, main, 200, 200, hostRightButton));
    MSG message;
    ASSERT_TRUE(PeekMessageA(&message, main, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, UINT{WM_RBUTTONDOWN});
    ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_LBUTTONUP, WM_LBUTTONUP, PM_REMOVE));
    EXPECT_EQ(message.message, UINT{WM_LBUTTONUP});
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, UINT{WM_LBUTTONDOWN});
}

TEST_F(User, MovesMergeInTheQueueButNotInTheHistory)
{
    for (int i = 0; i < 5; i++) {
        fake.events.push_back(PointerEvent(hostPointerMove, main, 200 + i, 210));
    }
    fake.events.push_back(PointerEvent(hostPointerDown, main, 204, 210, hostLeftButton));
    fake.events.push_back(PointerEvent(hostPointerMove, main, 205, 210));
    fake.events.push_back(PointerEvent(hostPointerUp, main, 207, 210, hostLeftButton));
    std::vector<UINT> messages;
    for (const MSG& message : Drain()) {
        messages.push_back(message.message);
    }
    EXPECT_EQ(messages, (std::vector<UINT>{WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_LBUTTONUP}));

    MOUSEMOVEPOINT from = {}, history[1024];
    const int count = GetMouseMovePointsEx(sizeof from, &from, history, 64, GMMP_USE_DISPLAY_POINTS);
    ASSERT_EQ(count, 7) << "six moves, and the release at a place of its own";
    EXPECT_EQ(history[0].x, 207);
    EXPECT_EQ(history[6].x, 200);
    EXPECT_LT(history[6].time, history[0].time);
    EXPECT_EQ(GetMouseMovePointsEx(sizeof from, &from, history, 1025, GMMP_USE_DISPLAY_POINTS), -1);
    for (int i = 0; i < 1100; i++) {
        fake.events.push_back(PointerEvent(hostPointerMove, main, i, 0));
    }
    GetAsyncKeyState(VK_LBUTTON);
    EXPECT_EQ(GetMouseMovePointsEx(sizeof from, &from, history, 1024, GMMP_USE_DISPLAY_POINTS), 1024);
    EXPECT_EQ(history[0].x, 1099);
    EXPECT_EQ(history[1023].x, 76);
}

TEST_F(User, ThePointerBelongsToTheCapturingWindow)
{
    HWND panel = MakePanel(300, 300, 60, 60);
    SetCapture(panel);
    EXPECT_EQ(fake.captured, reinterpret_cast<HostWindow*>(Fake(panel)));
    fake.events.push_back(PointerEvent(hostPointerMove, main, 250, 260));
    MSG message;
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.hwnd, panel);
    EXPECT_EQ(SignedLow(message.lParam), -50);
    EXPECT_EQ(SignedHigh(message.lParam), -40);
    EXPECT_EQ(message.pt.x, 250);
    ReleaseCapture();
    EXPECT_EQ(fake.captured, nullptr);

    HostEvent wheel = PointerEvent(hostWheel, main, 250, 260);
    wheel.delta = -120;
    wheel.modifiers = hostControl;
    fake.events.push_back(wheel);
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, UINT{WM_MOUSEWHEEL});
    EXPECT_EQ(static_cast<int16_t>(HIWORD(message.wParam)), -120);
    EXPECT_EQ(LOWORD(message.wParam), 8) << "Ctrl";
    EXPECT_EQ(SignedLow(message.lParam), 250);
}

TEST_F(User, KeysBecomeCharactersWhereTheyHaveOne)
{
    struct Case {
        int key;
        int character;
        unsigned modifiers;
        UINT message;
        BOOL translated;
        UINT following; // 0: none
    };
    const Case cases[] = {
        {'N', 14, hostControl, WM_KEYDOWN, TRUE, WM_CHAR},
        {'A', 'a', 0, WM_KEYDOWN, TRUE, WM_CHAR},
        {VK_F7, 0, 0, WM_KEYDOWN, FALSE, 0},
        {VK_DELETE, 0, hostShift, WM_KEYDOWN, FALSE, 0},
        {'L', 'l', hostAlt, WM_SYSKEYDOWN, FALSE, WM_SYSCHAR},
        {'Q', '@', hostAlt | hostControl, WM_KEYDOWN, TRUE, WM_CHAR},
        {VK_MENU, 0, 0, WM_SYSKEYDOWN, FALSE, 0},
    };
    for (const Case& entry : cases) {
        Key(hostKeyDown, entry.key, entry.character, entry.modifiers);
        Key(hostKeyDown, VK_HOME, 0, 0);
        MSG message;
        ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
        EXPECT_EQ(message.message, entry.message) << entry.key;
        EXPECT_EQ(message.wParam, static_cast<WPARAM>(entry.key));
        EXPECT_EQ(TranslateMessage(&message), entry.translated) << entry.key;
        ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
        if (entry.following) {
            EXPECT_EQ(message.message, entry.following) << "ahead of the key behind it";
            EXPECT_EQ(message.wParam, static_cast<WPARAM>(entry.character));
            ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
        }
        EXPECT_EQ(message.wParam, WPARAM{VK_HOME});
    }
    Key(hostKeyUp, 'L', 0, hostAlt);
    MSG message;
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, UINT{WM_SYSKEYUP});
}

TEST_F(User, KeyStatesAreThoseOfTheMessageTakenLastOrOfTheDeviceNow)
{
    Key(hostKeyDown, VK_SHIFT, 0, 0);
    HostEvent press = PointerEvent(hostPointerDown, main, 200, 200, hostLeftButton);
    press.modifiers = hostShift;
    press.buttons = hostLeftButton;
    fake.events.push_back(press);
    Key(hostKeyUp, VK_SHIFT, 0, hostShift);
    fake.modifiers = hostControl;
    MSG message;
    PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);
    EXPECT_LT(GetKeyState(VK_SHIFT), 0);
    EXPECT_EQ(GetKeyState(VK_LBUTTON), 0);
    PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);
    EXPECT_EQ(GetKeyState(VK_LBUTTON), 0) << "looked at, not taken";
    PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);
    EXPECT_LT(GetKeyState(VK_LBUTTON), 0);
    PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);
    EXPECT_EQ(GetKeyState(VK_SHIFT), 0);
    EXPECT_EQ(GetKeyState(VK_CONTROL), 0);
    EXPECT_LT(GetAsyncKeyState(VK_CONTROL), 0);
    EXPECT_EQ(GetAsyncKeyState(VK_LBUTTON), 0);
}

TEST_F(User, PollingHandlesNoMessageAndYieldsWhenNothingIsNew)
{
    Report(hostCloseRequest, main, 0);
    fake.events.push_back(PointerEvent(hostPointerDown, main, 200, 200, hostLeftButton));
    fake.buttons = hostLeftButton;
    seen.clear();
    EXPECT_LT(GetAsyncKeyState(VK_LBUTTON), 0);
    EXPECT_TRUE(seen.empty());
    EXPECT_TRUE(IsWindow(main));
    fake.waits.clear();
    for (int i = 0; i < 50; i++) {
        GetAsyncKeyState(VK_LBUTTON);
    }
    EXPECT_GE(std::count(fake.waits.begin(), fake.waits.end(), 1), 40);
    // The button goes up while the poll waits: the answer and the queue both know.
    fake.onPump = [&] {
        if (fake.waits.back() == 1 && fake.buttons) {
            fake.buttons = 0;
            fake.events.push_back(PointerEvent(hostPointerUp, main, 222, 200, hostLeftButton));
        }
    };
    int polls = 0;
    while (GetAsyncKeyState(VK_LBUTTON) < 0 && polls < 1000) {
        polls++;
    }
    EXPECT_LT(polls, 1000);
    MOUSEMOVEPOINT from = {}, newest;
    ASSERT_EQ(GetMouseMovePointsEx(sizeof from, &from, &newest, 1, GMMP_USE_DISPLAY_POINTS), 1);
    EXPECT_EQ(newest.x, 222);
}

TEST_F(User, ClosingGoesToItsWindowAndMayBeRefused)
{
    HWND panel = MakePanel(0, 0, 40, 40);
    bool refuse = true;
    react = [&](HWND, UINT message, WPARAM, LPARAM, bool* answered) -> LRESULT {
        *answered = message == WM_CLOSE && refuse;
        return 0;
    };
    Report(hostCloseRequest, panel, 0);
    Drain();
    EXPECT_EQ(std::count_if(seen.begin(), seen.end(),
                            [&](const Seen& entry) { return entry.message == WM_CLOSE && entry.window == panel; }),
              1);
    EXPECT_TRUE(IsWindow(main) && IsWindow(panel));
    refuse = false;
    Report(hostCloseRequest, main, 0);
    Drain();
    EXPECT_FALSE(IsWindow(main));
    EXPECT_FALSE(IsWindow(panel));
}

TEST_F(User, TheProgramHearsOfItsActivationOnlyWhenItChanges)
{
    HWND panel = MakePanel(0, 0, 40, 40);
    auto Heard = [&] {
        std::string heard;
        for (const Seen& entry : seen) {
            if (entry.message == WM_ACTIVATEAPP) {
                heard += std::string(entry.window == main ? "m" : "p") + (entry.wParam ? "1" : "0");
            }
        }
        seen.clear();
        return heard;
    };
    Report(hostActivate, main, 1);
    Drain();
    EXPECT_EQ(Heard(), "p1m1");
    EXPECT_EQ(GetForegroundWindow(), main);
    Report(hostActivate, main, 0);
    Report(hostActivate, panel, 1);
    Drain();
    EXPECT_EQ(Heard(), "");
    EXPECT_EQ(GetForegroundWindow(), panel);
    Report(hostActivate, panel, 0);
    Drain();
    EXPECT_EQ(Heard(), "p0m0");
    EXPECT_EQ(GetForegroundWindow(), nullptr);
}

} // namespace usertest
