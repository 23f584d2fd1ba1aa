// Windows, messages, painting, menus, scroll bars, cursors and outlines of the platform layer, over a small host that
// records what it is asked for and reports the events that a test gives it.
#include "platform/host/host.h"
#include "platform/platform.h"
#include "platform/user/platform_reset.h"
#include "platform/user/region.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

// ---- the recording host ----

struct FakeWindow {
    HostWindowRequest request = {};
    void* token = nullptr;
    int left = 0; // client area on the screen
    int top = 0;
    int width = 0;
    int height = 0;
    int shown = hostHide;
    int raised = 0;
    int placed = 0;
    std::array<int, 4> limits = {};
    const uint32_t* pixels = nullptr;
    int pictureWidth = 0;
    int pictureHeight = 0;
    std::vector<HostRect> presented;
    std::map<std::pair<int, int>, std::pair<int, int>> menuStates;
    std::vector<HostMenuItem> menu;
};

struct FakeBar {
    HostRect place = {};
    int vertical = 0;
    int minimum = 0;
    int highest = 0;
    int page = 0;
    int position = 0;
};

struct FakeState {
    std::vector<std::unique_ptr<FakeWindow>> windows;
    std::vector<std::unique_ptr<FakeBar>> bars;
    std::deque<HostEvent> events;
    std::vector<int> waits;
    std::function<void()> onPump;
    uint32_t clock = 1000;
    int pointerX = 0;
    int pointerY = 0;
    unsigned buttons = 0;
    unsigned modifiers = 0;
    HostWindow* captured = nullptr;
    int cursorCalls = 0;
    int cursorKind = hostCursorArrow;
    int hotX = 0;
    int hotY = 0;
    std::vector<uint32_t> cursorPixels;
    int outlineCalls = 0;
    std::vector<HostSegment> outline;
    std::string chosenFile;
    std::string askedPattern;
    std::string askedFolder;
    std::string openedDocument;
    uint32_t soundSize = 0;
};

FakeState fake;

// Frame widths that the window manager of this host gives to shown framed windows; the menu bar is in the top one.
constexpr int frameLeft = 4, frameTop = 50, frameRight = 5, frameBottom = 6;

FakeWindow* Fake(HostWindow* window)
{
    return reinterpret_cast<FakeWindow*>(window);
}

FakeWindow* Fake(HWND handle)
{
    for (const std::unique_ptr<FakeWindow>& window : fake.windows) {
        if (window->token == handle)
            return window.get();
    }
    return nullptr;
}

bool HasFrame(const FakeWindow* window)
{
    return window->request.kind == hostFramedWindow && window->shown != hostHide;
}

void PlaceFrame(FakeWindow* window, int left, int top)
{
    window->left = left + (HasFrame(window) ? frameLeft : 0);
    window->top = top + (HasFrame(window) ? frameTop : 0);
}

Host MakeFakeHost()
{
    Host filled = {};
    filled.start = [] { return 0; };
    filled.stop = [] {};
    filled.screenSize = [](int* width, int* height) {
        *width = 1280;
        *height = 1024;
    };
    filled.pump = [](int wait) {
        fake.waits.push_back(wait);
        if (fake.onPump)
            fake.onPump();
        if (fake.events.empty())
            fake.clock += static_cast<uint32_t>(wait);
    };
    filled.nextEvent = [](HostEvent* event) {
        if (fake.events.empty())
            return 0;
        *event = fake.events.front();
        fake.events.pop_front();
        return 1;
    };
    filled.createWindow = [](const HostWindowRequest* request, void* token) {
        fake.windows.push_back(std::make_unique<FakeWindow>());
        FakeWindow* window = fake.windows.back().get();
        window->request = *request;
        window->token = token;
        window->width = request->clientWidth;
        window->height = request->clientHeight;
        PlaceFrame(window, request->left == hostDefaultPlace ? 100 : request->left,
                   request->left == hostDefaultPlace ? 120 : request->top);
        return reinterpret_cast<HostWindow*>(window);
    };
    filled.destroyWindow = [](HostWindow* window) {
        std::erase_if(fake.windows, [&](const auto& live) { return live.get() == Fake(window); });
    };
    filled.placeWindow = [](HostWindow* handle, int left, int top, int width, int height) {
        FakeWindow* window = Fake(handle);
        window->placed++;
        if (left != hostDefaultPlace)
            PlaceFrame(window, left, top);
        if (width != 0 || height != 0) {
            window->width = width;
            window->height = height;
        }
    };
    filled.showWindow = [](HostWindow* window, int how) { Fake(window)->shown = how; };
    filled.raiseWindow = [](HostWindow* window) { Fake(window)->raised++; };
    filled.windowGeometry = [](HostWindow* handle, HostGeometry* geometry) {
        const FakeWindow* window = Fake(handle);
        const bool frame = HasFrame(window);
        const int right = window->left + window->width;
        const int bottom = window->top + window->height;
        *geometry = {window->left,
                     window->top,
                     window->width,
                     window->height,
                     {window->left - (frame ? frameLeft : 0), window->top - (frame ? frameTop : 0),
                      right + (frame ? frameRight : 0), bottom + (frame ? frameBottom : 0)}};
    };
    filled.limitSize = [](HostWindow* window, int minWidth, int minHeight, int maxWidth, int maxHeight) {
        Fake(window)->limits = {minWidth, minHeight, maxWidth, maxHeight};
    };
    filled.setTitle = [](HostWindow*, const char*) {};
    filled.setIcons = [](HostWindow*, const HostImage*, int) {};
    filled.setPicture = [](HostWindow* window, const uint32_t* pixels, int width, int height, int) {
        Fake(window)->pixels = pixels;
        Fake(window)->pictureWidth = width;
        Fake(window)->pictureHeight = height;
    };
    filled.present = [](HostWindow* window, const HostRect* part) { Fake(window)->presented.push_back(*part); };
    filled.buildMenu = [](HostWindow* window, const HostMenuItem* items, int count) {
        Fake(window)->menu.assign(items, items + count);
    };
    filled.setMenuItem = [](HostWindow* window, int menu, int item, int enabled, int checked) {
        Fake(window)->menuStates[{menu, item}] = {enabled, checked};
    };
    filled.createScrollBar = [](HostWindow*, int vertical, const HostRect* place) {
        fake.bars.push_back(std::make_unique<FakeBar>());
        fake.bars.back()->place = *place;
        fake.bars.back()->vertical = vertical;
        return reinterpret_cast<HostScrollBar*>(fake.bars.back().get());
    };
    filled.destroyScrollBar = [](HostScrollBar* bar) {
        std::erase_if(fake.bars, [&](const auto& live) { return live.get() == reinterpret_cast<FakeBar*>(bar); });
    };
    filled.setScrollBar = [](HostScrollBar* handle, int minimum, int highest, int page, int position) {
        FakeBar* bar = reinterpret_cast<FakeBar*>(handle);
        bar->minimum = minimum;
        bar->highest = highest;
        bar->page = page;
        bar->position = position;
    };
    filled.pointer = [](int* x, int* y) {
        *x = fake.pointerX;
        *y = fake.pointerY;
    };
    filled.buttons = [] { return fake.buttons; };
    filled.modifiers = [] { return fake.modifiers; };
    filled.warpPointer = [](int x, int y) {
        fake.pointerX = x;
        fake.pointerY = y;
    };
    filled.capturePointer = [](HostWindow* window) { fake.captured = window; };
    filled.setCursor = [](int kind, const HostImage* image, int hotX, int hotY) {
        fake.cursorCalls++;
        fake.cursorKind = kind;
        fake.hotX = hotX;
        fake.hotY = hotY;
        if (image)
            fake.cursorPixels.assign(image->pixels, image->pixels + image->width * image->height);
    };
    filled.showOutline = [](const HostSegment* segments, int count) {
        fake.outlineCalls++;
        fake.outline.assign(segments, segments + count);
    };
    filled.chooseFile = [](const HostFileRequest* request, char* path, int size) {
        fake.askedPattern = request->filterPattern;
        fake.askedFolder = request->folder;
        strncpy(path, fake.chosenFile.c_str(), static_cast<size_t>(size) - 1);
        return fake.chosenFile.empty() ? 0 : 1;
    };
    filled.playSound = [](const uint8_t*, uint32_t size) { fake.soundSize = size; };
    filled.beep = [] {};
    filled.openDocument = [](const char* path) {
        fake.openedDocument = path;
        return 0;
    };
    filled.ticks = [] { return fake.clock; };
    return filled;
}

const Host fakeHost = MakeFakeHost();

// ---- the program under the layer ----

struct Seen {
    HWND window;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

std::vector<Seen> seen;
std::function<LRESULT(HWND, UINT, WPARAM, LPARAM, bool*)> react; // sets the flag when it has answered

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_GETMINMAXINFO && message != WM_SIZING)
        seen.push_back({window, message, wParam, lParam});
    bool answered = false;
    const LRESULT answer = react ? react(window, message, wParam, lParam, &answered) : 0;
    return answered ? answer : DefWindowProcA(window, message, wParam, lParam);
}

std::vector<UINT> SeenMessages(HWND window)
{
    std::vector<UINT> messages;
    for (const Seen& entry : seen) {
        if (entry.window == window)
            messages.push_back(entry.message);
    }
    return messages;
}

class User : public ::testing::Test {
  protected:
    void SetUp() override
    {
        before = host;
        fake = FakeState();
        host = &fakeHost;
        react = nullptr;
        WNDCLASSEXA record = {};
        record.style = CS_OWNDC | CS_HREDRAW | CS_VREDRAW | CS_NOCLOSE;
        record.lpfnWndProc = Procedure;
        record.cbWndExtra = sizeof(void*);
        record.lpszClassName = "MainClass";
        record.lpszMenuName = "E_WKestrelMainMenu";
        ASSERT_NE(RegisterClassExA(&record), 0);
        record.style = CS_OWNDC;
        record.lpszMenuName = nullptr;
        record.lpszClassName = "PanelClass";
        ASSERT_NE(RegisterClassExA(&record), 0);
        main = CreateWindowExA(0, "MainClass", "Main", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                               CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(main, nullptr);
        ShowWindow(main, SW_SHOWNORMAL);
        ValidateRect(main, nullptr);
        seen.clear();
    }

    void TearDown() override
    {
        PlatformReset();
        EXPECT_TRUE(fake.windows.empty());
        EXPECT_TRUE(fake.bars.empty());
        host = before;
    }

    HWND MakePanel(int x, int y, int width, int height)
    {
        HWND panel = CreateWindowExA(0, "PanelClass", "", WS_POPUP | WS_BORDER, x, y, width, height, nullptr, nullptr,
                                     nullptr, nullptr);
        ShowWindow(panel, SW_SHOW);
        ValidateRect(panel, nullptr);
        seen.clear();
        return panel;
    }

    HostEvent PointerEvent(int kind, HWND window, int x, int y, int button = 0)
    {
        HostEvent event = {};
        event.kind = kind;
        event.token = window;
        event.screenX = x;
        event.screenY = y;
        event.button = button;
        event.time = ++fake.clock;
        return event;
    }

    void Key(int kind, int key, int character, unsigned modifiers)
    {
        HostEvent event = {};
        event.kind = kind;
        event.token = main;
        event.key = key;
        event.character = character;
        event.modifiers = modifiers;
        fake.events.push_back(event);
    }

    void Report(int kind, HWND window, int code)
    {
        HostEvent event = {};
        event.kind = kind;
        event.token = window;
        event.code = code;
        fake.events.push_back(event);
    }

    // Takes everything that waits, as a program's loop does; paint requests are validated.
    std::vector<MSG> Drain()
    {
        std::vector<MSG> taken;
        MSG message;
        while (taken.size() < 1000 && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            taken.push_back(message);
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        return taken;
    }

    const Host* before = nullptr;
    HWND main = nullptr;
};

int SignedLow(LPARAM word)
{
    return static_cast<int16_t>(LOWORD(static_cast<ULONG_PTR>(word)));
}

int SignedHigh(LPARAM word)
{
    return static_cast<int16_t>(HIWORD(static_cast<ULONG_PTR>(word)));
}

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
        if (message == WM_WINDOWPOSCHANGED)
            GetClientRect(window, &atChange);
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
            if (message == killer)
                DestroyWindow(window);
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
    for (int i = 0; i < 3; i++)
        SetWindowPos(main, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
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
                for (LONG x = area.left; x < area.right; x++)
                    model[y][x] = add;
            }
        }
        int covered[side][side] = {};
        for (const RECT& part : region) {
            for (LONG y = part.top; y < part.bottom; y++) {
                for (LONG x = part.left; x < part.right; x++)
                    covered[y][x]++;
            }
        }
        for (int y = 0; y < side; y++) {
            for (int x = 0; x < side; x++)
                ASSERT_EQ(covered[y][x], model[y][x] ? 1 : 0) << "round " << round;
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
    for (int i = 0; i < 5; i++)
        fake.events.push_back(PointerEvent(hostPointerMove, main, 200 + i, 210));
    fake.events.push_back(PointerEvent(hostPointerDown, main, 204, 210, hostLeftButton));
    fake.events.push_back(PointerEvent(hostPointerMove, main, 205, 210));
    fake.events.push_back(PointerEvent(hostPointerUp, main, 207, 210, hostLeftButton));
    std::vector<UINT> messages;
    for (const MSG& message : Drain())
        messages.push_back(message.message);
    EXPECT_EQ(messages, (std::vector<UINT>{WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_LBUTTONUP}));

    MOUSEMOVEPOINT from = {}, history[64];
    const int count = GetMouseMovePointsEx(sizeof from, &from, history, 64, GMMP_USE_DISPLAY_POINTS);
    ASSERT_EQ(count, 7) << "six moves, and the release at a place of its own";
    EXPECT_EQ(history[0].x, 207);
    EXPECT_EQ(history[6].x, 200);
    EXPECT_LT(history[6].time, history[0].time);
    EXPECT_EQ(GetMouseMovePointsEx(sizeof from, &from, history, 65, GMMP_USE_DISPLAY_POINTS), -1);
    for (int i = 0; i < 100; i++)
        fake.events.push_back(PointerEvent(hostPointerMove, main, i, 0));
    GetAsyncKeyState(VK_LBUTTON);
    EXPECT_EQ(GetMouseMovePointsEx(sizeof from, &from, history, 64, GMMP_USE_DISPLAY_POINTS), 64);
    EXPECT_EQ(history[0].x, 99);
    EXPECT_EQ(history[63].x, 36);
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
    for (int i = 0; i < 50; i++)
        GetAsyncKeyState(VK_LBUTTON);
    EXPECT_GE(std::count(fake.waits.begin(), fake.waits.end(), 1), 40);
    // The button goes up while the poll waits: the answer and the queue both know.
    fake.onPump = [&] {
        if (fake.waits.back() == 1 && fake.buttons) {
            fake.buttons = 0;
            fake.events.push_back(PointerEvent(hostPointerUp, main, 222, 200, hostLeftButton));
        }
    };
    int polls = 0;
    while (GetAsyncKeyState(VK_LBUTTON) < 0 && polls < 1000)
        polls++;
    EXPECT_LT(polls, 1000);
    MOUSEMOVEPOINT from = {}, newest;
    ASSERT_EQ(GetMouseMovePointsEx(sizeof from, &from, &newest, 1, GMMP_USE_DISPLAY_POINTS), 1);
    EXPECT_EQ(newest.x, 222);
}

TEST_F(User, ClosingGoesToTheFramedWindowAndMayBeRefused)
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
                            [&](const Seen& entry) { return entry.message == WM_CLOSE && entry.window == main; }),
              1);
    EXPECT_TRUE(IsWindow(main));
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
            if (entry.message == WM_ACTIVATEAPP)
                heard += std::string(entry.window == main ? "m" : "p") + (entry.wParam ? "1" : "0");
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

// ---- menus and scroll bars ----

TEST_F(User, TheMenuBarComesFromTheResourcesAndDisabledItemsAreNeverChosen)
{
    HMENU bar = GetMenu(main);
    ASSERT_EQ(GetMenuItemCount(bar), 4);
    HMENU file = GetSubMenu(bar, 0);
    EXPECT_EQ(GetMenuItemCount(file), 6);
    char text[64];
    GetMenuStringA(file, 0, text, sizeof text, MF_BYPOSITION);
    EXPECT_EQ(std::string(text).substr(0, 10), "New Map...");
    EXPECT_NE(std::string(text).find("\tCtrl+N"), std::string::npos);
    EXPECT_TRUE(GetMenuState(file, 2, MF_BYPOSITION) & MF_SEPARATOR);
    EXPECT_EQ(GetMenuState(file, 99, MF_BYPOSITION), static_cast<UINT>(-1));
    EXPECT_EQ(Fake(main)->menu[1].command, 101);

    auto Chosen = [&](int command) {
        Report(hostMenuChoice, main, command);
        for (const MSG& message : Drain()) {
            if (message.message == WM_COMMAND)
                return static_cast<int>(message.wParam);
        }
        return 0;
    };
    EXPECT_EQ(Chosen(101), 101);
    EXPECT_EQ(EnableMenuItem(file, 0, MF_BYPOSITION | MF_GRAYED), MF_ENABLED);
    EXPECT_EQ((Fake(main)->menuStates[{0, 0}]), std::make_pair(0, 0));
    EXPECT_EQ(Chosen(101), 0);
    EXPECT_EQ(Chosen(102), 102);
    EnableMenuItem(bar, 0, MF_BYPOSITION | MF_GRAYED);
    EXPECT_EQ((Fake(main)->menuStates[{0, -1}]), std::make_pair(0, 0));
    EXPECT_EQ(Chosen(102), 0) << "the title is gray";
    EXPECT_TRUE(LOWORD(GetMenuState(bar, 0, MF_BYPOSITION)) & MF_GRAYED);
    EXPECT_EQ(Chosen(999), 0);

    HMENU views = GetSubMenu(bar, 2);
    EXPECT_EQ(CheckMenuItem(views, 304, MF_BYCOMMAND | MF_CHECKED), DWORD{MF_UNCHECKED});
    EXPECT_EQ(CheckMenuItem(bar, 304, MF_BYCOMMAND | MF_CHECKED), DWORD{MF_CHECKED}) << "found from the bar too";
    Fake(main)->menuStates.clear();
    CheckMenuItem(views, 304, MF_BYCOMMAND | MF_CHECKED);
    EXPECT_TRUE(Fake(main)->menuStates.empty()) << "the host hears of changes only";
}

TEST_F(User, ScrollBarsHoldTheirPositionInRangeAndTellTheirParent)
{
    HWND bar = CreateWindowExA(0, "SCROLLBAR", "", WS_CHILD | WS_VISIBLE | SBS_VERT, 784, -1, 16, 567, main, nullptr,
                               nullptr, nullptr);
    ASSERT_EQ(fake.bars.size(), 1U);
    EXPECT_EQ(fake.bars[0]->place.bottom, 566);
    SCROLLINFO info = {sizeof info, SIF_RANGE | SIF_PAGE | SIF_POS, 0, 1000, 300, 5000, 0};
    EXPECT_EQ(SetScrollInfo(bar, SB_CTL, &info, TRUE), 701) << "nMax - nPage + 1";
    EXPECT_EQ(fake.bars[0]->highest, 701);
    EXPECT_EQ(fake.bars[0]->position, 701);
    info.fMask = SIF_POS;
    info.nPos = -20;
    EXPECT_EQ(SetScrollInfo(bar, SB_CTL, &info, TRUE), 0);
    info = {sizeof info, SIF_PAGE | SIF_RANGE, 0, 100, 4000000000U, 0, 0};
    EXPECT_EQ(SetScrollInfo(bar, SB_CTL, &info, TRUE), 0);
    info = {sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
    ASSERT_TRUE(GetScrollInfo(bar, SB_CTL, &info));
    EXPECT_EQ(info.nPage, 101U);

    HostEvent event = {};
    event.kind = hostScroll;
    event.token = main;
    event.code = SB_THUMBTRACK;
    event.bar = reinterpret_cast<HostScrollBar*>(fake.bars[0].get());
    for (int position : {100, 200, 345}) {
        event.position = position;
        fake.events.push_back(event);
    }
    seen.clear();
    EXPECT_TRUE(Drain().empty()) << "sent, not posted";
    ASSERT_EQ(seen.size(), 1U) << "only where the thumb is now counts";
    EXPECT_EQ(seen[0].message, UINT{WM_VSCROLL});
    EXPECT_EQ(seen[0].wParam, MAKEWPARAM(SB_THUMBTRACK, 345));
    EXPECT_EQ(seen[0].lParam, reinterpret_cast<LPARAM>(bar));
    fake.events.push_back(event);
    DestroyWindow(bar);
    seen.clear();
    Drain();
    EXPECT_TRUE(seen.empty()) << "the bar is gone";
}

// ---- cursors, outlines ----

TEST_F(User, CursorsComeFromTheResourcesAndReachTheHostOnlyWhenTheyChange)
{
    HCURSOR arrow = LoadCursorA(nullptr, IDC_ARROW);
    EXPECT_FALSE(DestroyCursor(arrow));
    SetCursor(arrow);
    const int calls = fake.cursorCalls;
    SetCursor(arrow);
    EXPECT_EQ(fake.cursorCalls, calls);
    HCURSOR cross = LoadCursorA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(11776));
    ASSERT_NE(cross, nullptr);
    EXPECT_EQ(SetCursor(cross), arrow);
    EXPECT_EQ(fake.cursorKind, int{hostCursorImage});
    EXPECT_EQ(fake.hotX, 15);
    EXPECT_EQ(fake.hotY, 14);
    ASSERT_EQ(fake.cursorPixels.size(), 32U * 32U);
    EXPECT_EQ(fake.cursorPixels[0], 0U) << "transparent at the corner";
    EXPECT_TRUE(std::any_of(fake.cursorPixels.begin(), fake.cursorPixels.end(),
                            [](uint32_t pixel) { return pixel >> 24 == 0xFF; }));
    EXPECT_TRUE(DestroyCursor(cross));
    EXPECT_FALSE(DestroyCursor(cross));
    HCURSOR again = LoadCursorA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(11776));
    SetCursor(again);
    EXPECT_EQ(fake.cursorCalls, calls + 2) << "another cursor, whatever its address";
    EXPECT_EQ(LoadCursorA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(5)), nullptr);
    EXPECT_NE(LoadIconA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(128)), nullptr);
    EXPECT_NE(LoadImageA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(1), IMAGE_ICON, 16, 16, LR_DEFAULTCOLOR),
              nullptr);
    EXPECT_EQ(LoadImageA(nullptr, "/no/such.bmp", IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE), nullptr);
}

void DrawOutline(HDC dc, int left, int top, int right, int bottom)
{
    const int previous = SetROP2(dc, R2_NOT);
    MoveToEx(dc, left, top, nullptr);
    LineTo(dc, right, top);
    LineTo(dc, right, bottom);
    LineTo(dc, left, bottom);
    LineTo(dc, left, top);
    SetROP2(dc, previous);
}

TEST_F(User, AnOutlineDrawnTwiceIsGoneAndNothingShowsInBetween)
{
    HDC dc = GetDC(nullptr);
    DrawOutline(dc, 10, 20, 110, 220);
    EXPECT_EQ(fake.outlineCalls, 0);
    GdiFlush();
    ASSERT_EQ(fake.outline.size(), 4U);
    int pixels = 0;
    for (const HostSegment& segment : fake.outline)
        pixels += segment.x1 - segment.x0 + segment.y1 - segment.y0 + 1;
    EXPECT_EQ(pixels, 2 * 100 + 2 * 200) << "every pixel of the rectangle once";
    DrawOutline(dc, 10, 20, 110, 220);
    DrawOutline(dc, 15, 20, 115, 220);
    EXPECT_EQ(fake.outlineCalls, 1);
    GetAsyncKeyState(VK_LBUTTON);
    EXPECT_EQ(fake.outlineCalls, 2);
    DrawOutline(dc, 15, 20, 115, 220);
    Drain();
    EXPECT_TRUE(fake.outline.empty());

    // Two sides, each closed with its end pixel by a slanted line of one pixel.
    SetROP2(dc, R2_NOT);
    MoveToEx(dc, 0, 300, nullptr);
    LineTo(dc, 400, 300);
    LineTo(dc, 401, 301);
    MoveToEx(dc, 400, 300, nullptr);
    LineTo(dc, 400, 0);
    LineTo(dc, 401, 1);
    GdiFlush();
    ASSERT_EQ(fake.outline.size(), 2U);
    bool corner = false;
    for (const HostSegment& segment : fake.outline)
        corner = corner || (segment.x1 == 400 && segment.y1 == 300);
    EXPECT_TRUE(corner);
}

// ---- shell ----

TEST_F(User, AChosenFileArrivesWithItsPartsWhenItFits)
{
    namespace fs = std::filesystem;
    const fs::path before_ = fs::current_path();
    const fs::path folder = fs::temp_directory_path() / "user-test-files";
    fs::create_directories(folder);
    fake.chosenFile = (folder / "Map001c.dat").string();
    char path[256] = "", title[64] = "";
    OPENFILENAMEA request = {};
    request.lStructSize = sizeof request;
    request.lpstrFilter = "Map dat file (*.dat)\0*.dat\0Map bmp file (*.bmp)\0*.bmp\0";
    request.nFilterIndex = 2;
    request.lpstrFile = path;
    request.nMaxFile = sizeof path;
    request.lpstrFileTitle = title;
    request.nMaxFileTitle = sizeof title;
    EXPECT_TRUE(GetOpenFileNameA(&request));
    EXPECT_EQ(path, fake.chosenFile);
    EXPECT_STREQ(title, "Map001c.dat");
    EXPECT_STREQ(path + request.nFileOffset, "Map001c.dat");
    EXPECT_STREQ(path + request.nFileExtension, "dat");
    EXPECT_EQ(fake.askedPattern, "*.bmp");
    EXPECT_EQ(fake.askedFolder, before_.string());
    EXPECT_EQ(fs::current_path(), fs::canonical(folder));
    fs::current_path(before_);

    strcpy(path, "kept");
    request.nMaxFile = 5;
    EXPECT_FALSE(GetOpenFileNameA(&request));
    EXPECT_STREQ(path, "kept");
    request.nMaxFile = sizeof path;
    fake.chosenFile.clear();
    EXPECT_FALSE(GetOpenFileNameA(&request));
    EXPECT_STREQ(path, "kept");
    EXPECT_EQ(fs::current_path(), before_);

    std::ofstream(folder / "guide.pdf") << "x";
    const HINSTANCE opened = ShellExecuteA(main, "open", "guide.pdf", nullptr, folder.c_str(), SW_SHOW);
    EXPECT_GT(reinterpret_cast<uintptr_t>(opened), 32U);
    EXPECT_EQ(fake.openedDocument, (folder / "guide.pdf").string());
    const HINSTANCE missing = ShellExecuteA(main, "open", "none.pdf", nullptr, folder.c_str(), SW_SHOW);
    EXPECT_LE(reinterpret_cast<uintptr_t>(missing), 32U);
    fs::remove_all(folder);
}

TEST_F(User, SoundsArePlayedFromTheResourcesAndMissingOnesAreSilent)
{
    EXPECT_TRUE(PlaySoundA(MAKEINTRESOURCEA(128), GetModuleHandleA(nullptr), SND_RESOURCE | SND_NODEFAULT));
    EXPECT_GT(fake.soundSize, 44U);
    fake.soundSize = 0;
    EXPECT_FALSE(PlaySoundA(MAKEINTRESOURCEA(127), GetModuleHandleA(nullptr), SND_RESOURCE | SND_NODEFAULT));
    EXPECT_TRUE(PlaySoundA(nullptr, nullptr, 0));
    EXPECT_TRUE(sndPlaySoundA(nullptr, SND_ASYNC));
    EXPECT_EQ(fake.soundSize, 0U);
}

} // namespace
