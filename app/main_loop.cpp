#include "app/application.h"
#include "app/map_window.h"
#include "mapdata/rescue_files.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"
#include "toolbox/windows.h"

#include <cstdlib>

namespace {

constexpr int wheelStep = 80;

void RouteEvent()
{
    switch (currentEvent.what) {
    case mouseDown:
        DoMouseDown();
        break;
    case keyDown:
        DoKeyDown();
        break;
    case updateEvt:
        DoUpdate();
        break;
    case wheelDownEvt:
        if (shell.mapShown) {
            ScrollMap(1, 0, wheelStep);
        }
        break;
    case wheelUpEvt:
        if (shell.mapShown) {
            ScrollMap(1, 0, -wheelStep);
        }
        break;
    default:
        break;
    }
}

} // namespace

namespace {

// Also called where the window system ends the program without returning to the loop.
void EndRescueCopies()
{
    KeepLastRescueCopy();
    ReleaseRescueFolder();
}

// Memory was refused where nobody could be told.
LONG WINAPI KeepWorkAtTheEnd(EXCEPTION_POINTERS*)
{
    KeepLastRescueCopy();
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int)
{
    shell.appInstance = instance;
    [[maybe_unused]] static const int registered = std::atexit(EndRescueCopies);
    SetUnhandledExceptionFilter(KeepWorkAtTheEnd);
    if (RegisterWindowClasses() == 0) {
        shell.startUpFailed = 1;
        shell.quitRequested = 1;
    } else {
        shell.quitRequested = 0;
        InitApplication();
    }
    const int status = shell.startUpFailed ? 1 : 0;
    if (status != 0) {
        OutputDebugStringA("Kestrel Map Tool could not start: its window or its resources could not be made.\n");
    }
    RunMainLoop();
    EndRescueCopies();
    CloseFile(currentMap.openDataFile);
    currentMap.openDataFile = noFile;
    ShutdownApplication();
    return status;
}

void RunMainLoop()
{
    while (shell.quitRequested == 0) {
        if (WaitNextEvent(everyEvent, &currentEvent, 0, nullptr) != nullEvent) {
            RouteEvent();
        }
        UpdateCursorReadout();
    }
}

void DoMouseDown()
{
    WindowPtr window = nullptr;
    switch (FindWindow(currentEvent.where, &window)) {
    case inMenuBar:
        DoMenuCommand(MenuSelect(currentEvent.where));
        break;
    case inContent:
        if (window != nullptr && window == shell.mapWindow && !HandleContentClick() && !HandleContentClick()) {
            RefusalSound();
        }
        break;
    case inDrag:
        DragWindow(window, currentEvent.where, &shell.screenRect);
        break;
    case inGrow:
        if (window != nullptr && window == shell.mapWindow) {
            DoGrow();
        }
        break;
    default:
        break;
    }
}

void DoKeyDown()
{
    const uint32_t message = static_cast<uint32_t>(currentEvent.message);
    if (message > 0xFF) {
        DoFunctionKey(message);
    } else if (currentEvent.modifiers & controlKey) {
        DoMenuCommand(MenuKey(static_cast<int>(message)));
    } else {
        HandleMapKey(message);
    }
}

void DoUpdate()
{
    const WindowPtr window = reinterpret_cast<WindowPtr>(currentEvent.message);
    if (window != nullptr && window == shell.mapWindow) {
        PaintMapWindow();
    } else {
        BeginUpdate(window);
        EndUpdate(window);
    }
}
