// The procedures of two window classes that are registered although this program makes no window of either.
#include "toolbox/resources.h"
#include "toolbox/windows.h"

LRESULT CALLBACK ScrollSubWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WindowPtr record = WindowRecord(window);
    switch (message) {
    case WM_PAINT:
        if (record != nullptr && record->drawProcedure != nullptr) {
            PAINTSTRUCT paint = {};
            BeginPaint(window, &paint);
            record->drawProcedure(window);
            EndPaint(window, &paint);
            return 0;
        }
        break;
    case WM_VSCROLL:
        if (record != nullptr && record->scrollProcedure != nullptr) {
            record->scrollProcedure(window, wParam);
            return 0;
        }
        break;
    case WM_MOUSEMOVE:
        RestoreCursor();
        return 0;
    case WM_DESTROY:
        ReleaseWindowPort(record);
        break;
    default:
        break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

LRESULT CALLBACK InfoWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_PAINT: {
        PAINTSTRUCT paint = {};
        BeginPaint(window, &paint);
        EndPaint(window, &paint);
        return 0;
    }
    case WM_ERASEBKGND:
        return 1;
    case WM_MOUSEMOVE:
        RestoreCursor();
        return 0;
    case WM_DESTROY:
        ReleaseWindowPort(WindowRecord(window));
        break;
    default:
        break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
