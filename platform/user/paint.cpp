// Update regions: what of a window has to be painted, in client coordinates.
#include "platform/user/state.h"

#include <algorithm>

void InvalidateArea(Window& window, const RECT& area, bool erase)
{
    if (window.kind == scrollBarWindow) {
        return; // paints itself
    }
    RECT box = ClientBox(window);
    AddToRegion(window.update, {std::max(area.left, box.left), std::max(area.top, box.top),
                                std::min(area.right, box.right), std::min(area.bottom, box.bottom)});
    window.erasePending = (window.erasePending || erase) && !window.update.empty();
}

Window* WindowToPaint(HWND filter)
{
    for (HWND handle : user.zOrder) {
        Window* window = Lookup(handle);
        if ((window != nullptr) && window->visible && !window->destroying && !window->update.empty() &&
            ((filter == nullptr) || filter == handle)) {
            return window;
        }
    }
    return nullptr;
}

HDC WINAPI BeginPaint(HWND handle, PAINTSTRUCT* paint)
{
    Window* window = Lookup(handle);
    if ((window == nullptr) || (paint == nullptr)) {
        return nullptr;
    }
    *paint = {};
    ResizePicture(*window); // there may be memory now that was refused before
    HDC dc = DCOfWindow(*window);
    paint->hdc = dc;
    paint->rcPaint = RegionBox(window->update);
    SetClipOfDC(dc, window->update.data(), static_cast<int>(window->update.size()));
    window->update.clear();
    bool erase = window->erasePending;
    window->erasePending = false;
    DPtoLP(dc, reinterpret_cast<LPPOINT>(&paint->rcPaint), 2);
    if (erase) {
        paint->fErase = SendMessageA(handle, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0) == 0;
    }
    return dc;
}

BOOL WINAPI EndPaint(HWND handle, const PAINTSTRUCT* paint)
{
    Window* window = Lookup(handle);
    if ((window == nullptr) || (paint == nullptr)) {
        return FALSE;
    }
    ClearClipOfDC(DCOfWindow(*window));
    return TRUE;
}

BOOL WINAPI InvalidateRect(HWND handle, const RECT* rect, BOOL erase)
{
    Window* window = Lookup(handle);
    if (window == nullptr) {
        return FALSE;
    }
    InvalidateArea(*window, rect != nullptr ? *rect : ClientBox(*window), erase != FALSE);
    return TRUE;
}

BOOL WINAPI ValidateRect(HWND handle, const RECT* rect)
{
    Window* window = Lookup(handle);
    if (window == nullptr) {
        return FALSE;
    }
    SubtractFromRegion(window->update, rect != nullptr ? *rect : ClientBox(*window));
    window->erasePending = window->erasePending && !window->update.empty();
    return TRUE;
}

BOOL WINAPI UpdateWindow(HWND handle)
{
    Window* window = Lookup(handle);
    if (window == nullptr) {
        return FALSE;
    }
    if (window->visible && !window->update.empty()) {
        SendMessageA(handle, WM_PAINT, 0, 0);
    }
    return TRUE;
}
