// A plain window of the Toolbox as the map window, on the headless host, for the tests of the Toolbox.
#pragma once

#include "platform/host/headless/headless.h"
#include "platform/user/platform_reset.h"
#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

#include <gtest/gtest.h>
#include <vector>

inline std::vector<UINT> dispatchedMessages;

inline LRESULT CALLBACK RecordingProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    dispatchedMessages.push_back(message);
    return DefWindowProcA(window, message, wParam, lParam);
}

class ToolboxTest : public testing::Test {
  protected:
    void SetUp() override
    {
        PlatformReset();
        HeadlessReset(1000, 800);
        host = &headlessHost;
        ASSERT_EQ(host->start(), 0);
        shell = {};
        view = {};
        shell.appInstance = GetModuleHandleA(nullptr);
        SetRect(&shell.screenRect, 0, 0, 1000, 800);
        WNDCLASSEXA record = {};
        record.cbSize = sizeof record;
        record.style = CS_OWNDC;
        record.lpfnWndProc = RecordingProcedure;
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
        TakeEvents();
        ValidRect(nullptr);
        dispatchedMessages.clear();
    }

    void TearDown() override
    {
        DestroyTestWindow(shell.mapWindow);
        SetPort(nullptr);
        shell = {};
        view = {};
        PlatformReset();
        HeadlessReset();
    }

    static void DestroyTestWindow(WindowPtr port)
    {
        if (port != nullptr) {
            const HWND window = port->window;
            ReleaseWindowPort(port);
            DestroyWindow(window);
        }
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

    static COLORREF PixelAt(int h, int v)
    {
        return GetPixel(currentPort->dc, h, v);
    }
};
