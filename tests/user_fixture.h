// What the tests of the window layer share: a small host that records what it is asked for and reports the events
// that a test gives it, and a program with two window classes whose procedure records what it hears.
#pragma once

#include "platform/host/host.h"
#include "platform/platform.h"
#include "platform/user/platform_reset.h"

#include <array>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace usertest {

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

extern FakeState fake;
extern const Host fakeHost;

// Frame widths that the window manager of this host gives to shown framed windows; the menu bar is in the top one.
inline constexpr int frameLeft = 4, frameTop = 50, frameRight = 5, frameBottom = 6;

FakeWindow* Fake(HostWindow* window);
FakeWindow* Fake(HWND handle); // null when the host has no window for it

// ---- the program under the layer ----

struct Seen {
    HWND window;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

extern std::vector<Seen> seen; // all but the questions for sizes
// Sets the flag when it has answered; all else gets the default handling.
extern std::function<LRESULT(HWND, UINT, WPARAM, LPARAM, bool*)> react;

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
std::vector<UINT> SeenMessages(HWND window);

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

} // namespace usertest
