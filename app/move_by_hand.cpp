#include "app/application.h"
#include "app/map_window.h"
#include "mapdata/map_record.h"
#include "toolbox/drawing.h"
#include "toolbox/resources.h"
#include "toolbox/windows.h"

namespace {

constexpr int visibleRest = 50; // how much of the window stays on the screen at its right and bottom

// Waits for the press that takes hold of the window; false when a key ended the wait. The press may lie on the map or
// on the status strip below it.
bool WaitForGrab(Point* grab)
{
    const Rect& map = currentMap.record.mapRect;
    const Rect target = MakeRect(map.left, map.top, map.right, map.bottom + statusStripHeight);
    while (shell.quitRequested == 0 && MapWindowExists()) {
        switch (WaitNextEvent(everyEvent, &currentEvent, 0, nullptr)) {
        case mouseDown: {
            Point point = currentEvent.where;
            GlobalToLocal(&point);
            if (PtInRect(point, &target)) {
                *grab = currentEvent.where;
                return true;
            }
            RefusalSound();
            break;
        }
        case keyDown:
            return false;
        case updateEvt:
            DoUpdate();
            break;
        default:
            break;
        }
    }
    return false;
}

bool PlaceIsAllowed(const Rect* place)
{
    const Rect& screen = shell.screenRect;
    return place->left >= screen.left && place->left < screen.right - visibleRest && place->top >= screen.top &&
           place->top < screen.bottom - visibleRest;
}

// Carries the outline with the pointer until the button is up, then moves the window there. Candidates that would
// leave the screen are refused and the pointer is put back to the grabbed spot.
void CarryWindow(Point grab)
{
    const HWND window = shell.mapWindow->window;
    Rect place;
    GetWindowFrameRect(shell.mapWindow, &place);
    const int offsetH = grab.h - place.left;
    const int offsetV = grab.v - place.top;
    SetCursorPos(place.left + offsetH, place.top + offsetV);
    SetCapture(window);
    ScreenOutline(&place);
    PressWatch watch = {};
    for (;;) {
        MSG message = {};
        const bool taken = PeekMessageA(&message, window, 0, 0, PM_REMOVE);
        if (!MapWindowExists()) {
            ScreenOutline(&place);
            return;
        }
        const bool held = StillDown() != 0;
        if (PressHasEnded(&watch, held, taken && message.message == WM_LBUTTONUP)) {
            break;
        }
        if (!taken && !held) {
            continue; // only the release is still to come
        }
        Point pointer;
        GetMouse(&pointer);
        Point origin = grab;
        GlobalToLocal(&origin);
        const int dh = pointer.h - origin.h;
        const int dv = pointer.v - origin.v;
        if (dh == 0 && dv == 0) {
            continue;
        }
        Rect candidate = place;
        OffsetRect(&candidate, dh, dv);
        if (PlaceIsAllowed(&candidate)) {
            ScreenOutline(&place);
            place = candidate;
            ScreenOutline(&place);
            grab = MakePoint(grab.h + dh, grab.v + dv);
        }
        SetCursorPos(place.left + offsetH, place.top + offsetV);
    }
    ScreenOutline(&place);
    MoveWindow(window, place.left, place.top, place.right - place.left, place.bottom - place.top, TRUE);
    ReleaseCapture();
}

} // namespace

void MoveMapWindowByHand(Point click)
{
    SetStatusText(1, movePromptText);
    const SavedPort saved = UsePort(shell.mapWindow);
    SetCursorById(moveWindowCursor);
    Point grab = click;
    const bool grabbed = WaitForGrab(&grab);
    InitCursor();
    ClearStatusText();
    if (!shell.mapShown) {
        InvalidateMapRect(nullptr); // the grow box picture reaches above the strip
    }
    if (grabbed) {
        CarryWindow(grab);
    }
    RestorePort(saved);
}
