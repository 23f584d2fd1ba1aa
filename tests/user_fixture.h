// What the tests of the window layer share: the headless host, told of events one by one, and a program with two
// window classes whose procedure records what it hears.
#pragma once

#include "platform/host/headless/headless.h"
#include "platform/platform.h"
#include "platform/user/platform_reset.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

struct Seen {
    HWND window;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

inline std::vector<Seen> seen; // all but the questions for sizes
// Sets the flag when it has answered; all else gets the default handling.
inline std::function<LRESULT(HWND, UINT, LPARAM, bool*)> react;

inline LRESULT CALLBACK SeeingProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_GETMINMAXINFO && message != WM_SIZING) {
        seen.push_back({window, message, wParam, lParam});
    }
    bool answered = false;
    const LRESULT answer = react ? react(window, message, lParam, &answered) : 0;
    return answered ? answer : DefWindowProcA(window, message, wParam, lParam);
}

class User : public testing::Test {
  protected:
    void SetUp() override
    {
        HeadlessReset();
        host = &headlessHost;
        react = nullptr;
        Register("MainClass", CS_OWNDC | CS_HREDRAW | CS_VREDRAW | CS_NOCLOSE, "E_WKestrelMainMenu");
        Register("PanelClass", CS_OWNDC, nullptr);
        main = CreateWindowExA(0, "MainClass", "Main", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                               CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(main, nullptr);
        ShowWindow(main, SW_SHOWNORMAL);
        ValidateRect(main, nullptr);
        Drain();
        seen.clear();
    }

    void TearDown() override
    {
        host = &headlessHost; // a test's own host is gone by now
        PlatformReset();
        EXPECT_TRUE(headless.windows.empty() && headless.bars.empty());
    }

    static void Register(const char* name, UINT style, const char* menu)
    {
        WNDCLASSEXA record = {};
        record.style = style;
        record.lpfnWndProc = SeeingProcedure;
        record.cbWndExtra = sizeof(void*);
        record.lpszClassName = name;
        record.lpszMenuName = menu;
        ASSERT_NE(RegisterClassExA(&record), 0);
    }

    static HWND MakePanel(int x, int y, int width, int height)
    {
        HWND panel = CreateWindowExA(0, "PanelClass", "", WS_POPUP | WS_BORDER, x, y, width, height, nullptr, nullptr,
                                     nullptr, nullptr);
        ShowWindow(panel, SW_SHOW);
        ValidateRect(panel, nullptr);
        seen.clear();
        return panel;
    }

    HWND MakeBar(const RECT& place) const // a vertical one
    {
        return CreateWindowExA(0, "SCROLLBAR", "", WS_CHILD | WS_VISIBLE | SBS_VERT, place.left, place.top,
                               place.right - place.left, place.bottom - place.top, main, nullptr, nullptr, nullptr);
    }

    // The host's window, null when there is none.
    static HeadlessWindow* Shown(HWND handle)
    {
        const auto found = std::find_if(headless.windows.begin(), headless.windows.end(),
                                        [=](const HeadlessWindow* window) { return window->token == handle; });
        return found != headless.windows.end() ? *found : nullptr;
    }

    // ---- events ----

    static HostEvent Event(int kind, HWND window)
    {
        HostEvent event = {};
        event.kind = kind;
        event.token = window;
        event.time = ++headless.now;
        return event;
    }

    static HostEvent Pointer(int kind, HWND window, int x, int y, int button = 0)
    {
        HostEvent event = Event(kind, window);
        event.screenX = x;
        event.screenY = y;
        event.button = button;
        return event;
    }

    static void ReportPointer(int kind, HWND window, int x, int y, int button = 0)
    {
        HeadlessReport(Pointer(kind, window, x, y, button));
    }

    void ReportKey(int kind, int key, int character, unsigned modifiers) const
    {
        HostEvent event = Event(kind, main);
        event.key = key;
        event.character = character;
        event.modifiers = modifiers;
        HeadlessReport(event);
    }

    static void Report(int kind, HWND window, int code = 0)
    {
        HostEvent event = Event(kind, window);
        event.code = code;
        HeadlessReport(event);
    }

    // ---- messages ----

    static std::vector<UINT> SeenMessages(HWND window)
    {
        std::vector<UINT> messages;
        for (const Seen& entry : seen) {
            if (entry.window == window) {
                messages.push_back(entry.message);
            }
        }
        return messages;
    }

    // The next message, taken; none is one of zeros.
    static MSG Next(HWND window = nullptr, UINT only = 0)
    {
        MSG message = {};
        PeekMessageA(&message, window, only, only, PM_REMOVE);
        return message;
    }

    // Takes everything that waits, as a program's loop does; paint requests are validated.
    static std::vector<MSG> Drain()
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

    HWND main = nullptr;
};
