// Windows after their creation: destruction, title, showing, order and capture.
#include "platform/kernel/heap.h"
#include "platform/user/state.h"

#include <algorithm>
#include <cstring>

UserState user;

namespace {

// Gives up everything that the window holds outside its record.
void ReleaseWindow(Window& window)
{
    if (user.capture == window.handle) {
        ReleaseCapture();
    }
    DropMessagesOf(window.handle);
    window.visible = false;
    if (window.kind == scrollBarWindow) {
        SyncScrollBar(window);
    }
    if (window.hostWindow != nullptr) {
        host->destroyWindow(window.hostWindow);
    }
    window.hostWindow = nullptr;
    ReleasePicture(window);
    DestroyMenuOf(window);
}

std::vector<HWND> WindowsBelonging(HWND handle, HWND Window::*relation)
{
    std::vector<HWND> found;
    for (const std::unique_ptr<Window>& window : user.windows) {
        if ((*window).*relation == handle) {
            found.push_back(window->handle);
        }
    }
    return found;
}

} // namespace

Window* Lookup(HWND handle)
{
    if (handle == nullptr) {
        return nullptr;
    }
    for (const std::unique_ptr<Window>& window : user.windows) {
        if (window->handle == handle) {
            return window.get();
        }
    }
    return nullptr;
}

Window* LookupBar(const HostScrollBar* bar)
{
    for (const std::unique_ptr<Window>& window : user.windows) {
        if ((bar != nullptr) && window->hostBar == bar) {
            return window.get();
        }
    }
    return nullptr;
}

bool IsTopLevel(const Window& window)
{
    return window.kind == framedWindow || window.kind == popupWindow;
}

Window* FirstFramedWindow()
{
    for (const std::unique_ptr<Window>& window : user.windows) {
        if (window->kind == framedWindow && !window->destroying) {
            return window.get();
        }
    }
    return nullptr;
}

LRESULT CallProcedure(const Window& window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return window.windowClass->record.lpfnWndProc(window.handle, message, wParam, lParam);
}

void SendSizeAndMove(HWND handle)
{
    Window* window = Lookup(handle);
    if (window == nullptr) {
        return;
    }
    window->firstShowPending = false;
    SendMessageA(handle, WM_SIZE, 0, MAKELPARAM(window->width, window->height));
    window = Lookup(handle);
    if (window != nullptr) {
        RefreshPlace(*window);
        SendMessageA(handle, WM_MOVE, 0, MAKELPARAM(window->left, window->top));
    }
}

void RemoveWindow(HWND handle)
{
    if (Window* window = Lookup(handle)) {
        ReleaseWindow(*window);
    }
    std::erase(user.zOrder, handle);
    std::erase_if(user.windows, [&](const std::unique_ptr<Window>& window) { return window->handle == handle; });
}

BOOL WINAPI DestroyWindow(HWND handle)
{
    Window* window = Lookup(handle);
    if ((window == nullptr) || window->destroying) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    window->destroying = true;
    for (HWND owned : WindowsBelonging(handle, &Window::owner)) {
        DestroyWindow(owned);
    }
    window = Lookup(handle);
    if (window->visible && (window->hostWindow != nullptr)) {
        host->showWindow(window->hostWindow, hostHide);
        window->visible = false;
    }
    SendMessageA(handle, WM_DESTROY, 0, 0);
    for (HWND child : WindowsBelonging(handle, &Window::parent)) {
        DestroyWindow(child);
    }
    SendMessageA(handle, WM_NCDESTROY, 0, 0);
    RemoveWindow(handle);
    if (user.foreground == handle) {
        SetForeground(user.programActive ? GetTopWindow(nullptr) : nullptr);
    }
    return TRUE;
}

BOOL WINAPI IsWindow(HWND handle)
{
    return Lookup(handle) != nullptr;
}

BOOL WINAPI SetWindowTextA(HWND handle, LPCSTR text)
{
    Window* window = Lookup(handle);
    if (window == nullptr) {
        return FALSE;
    }
    if (!WithMemory([&] { window->title = text != nullptr ? text : ""; })) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    if (window->hostWindow != nullptr) {
        host->setTitle(window->hostWindow, window->title.c_str());
    }
    return TRUE;
}

int WINAPI GetWindowTextA(HWND handle, LPSTR buffer, int size)
{
    if ((buffer == nullptr) || size <= 0) {
        return 0;
    }
    const Window* window = Lookup(handle);
    size_t length = window != nullptr ? std::min(window->title.size(), static_cast<size_t>(size) - 1) : 0;
    if (window != nullptr) {
        memcpy(buffer, window->title.data(), length);
    }
    buffer[length] = 0;
    return static_cast<int>(length);
}

LONG_PTR WINAPI GetWindowLongPtrA(HWND handle, int index)
{
    const Window* window = Lookup(handle);
    LONG_PTR value = 0;
    if ((window != nullptr) && index >= 0 && static_cast<size_t>(index) + sizeof value <= window->extra.size()) {
        memcpy(&value, window->extra.data() + index, sizeof value);
    }
    return value;
}

LONG_PTR WINAPI SetWindowLongPtrA(HWND handle, int index, LONG_PTR value)
{
    Window* window = Lookup(handle);
    LONG_PTR previous = GetWindowLongPtrA(handle, index);
    if ((window != nullptr) && index >= 0 && static_cast<size_t>(index) + sizeof value <= window->extra.size()) {
        memcpy(window->extra.data() + index, &value, sizeof value);
    }
    return previous;
}

BOOL WINAPI ShowWindow(HWND handle, int how)
{
    Window* window = Lookup(handle);
    if ((window == nullptr) || window->destroying) {
        return FALSE;
    }
    const BOOL wasVisible = window->visible;
    const bool show = how != SW_HIDE;
    window->visible = show;
    if (window->kind == scrollBarWindow) {
        SyncScrollBar(*window);
        return wasVisible;
    }
    if ((window->hostWindow == nullptr) || (!show && !wasVisible)) {
        return wasVisible;
    }
    const bool activate = how != SW_SHOWNOACTIVATE;
    if (!show) {
        host->showWindow(window->hostWindow, hostHide);
        if (user.foreground == handle) {
            SetForeground(user.programActive ? GetTopWindow(nullptr) : nullptr);
        }
        return wasVisible;
    }
    if (!wasVisible) {
        // The picture is there before the window is, so that nothing else ever shows in it.
        window->picture.dirty = ClientBox(*window);
        InvalidateArea(*window, ClientBox(*window), true);
        if (activate || window->kind == popupWindow) {
            Raise(*window);
        }
    }
    host->showWindow(window->hostWindow, activate ? hostShowActive : hostShowInactive);
    if (activate && window->kind == framedWindow) {
        SetForeground(handle);
    }
    PresentAll();
    if (window->firstShowPending) {
        SendSizeAndMove(handle);
    }
    HandleHostGeometry(handle);
    UpdateSizeLimits();
    return wasVisible;
}

// Puts the window at the top of the program's own order, with the pop-ups that it owns above it.
void Raise(Window& window)
{
    HWND handle = window.handle;
    std::vector<HWND> owned;
    for (HWND other : user.zOrder) {
        const Window* record = Lookup(other);
        if ((record != nullptr) && record->owner == handle) {
            owned.push_back(other);
        }
    }
    std::erase_if(user.zOrder, [&](HWND other) {
        return other == handle || std::find(owned.begin(), owned.end(), other) != owned.end();
    });
    user.zOrder.insert(user.zOrder.begin(), handle);
    user.zOrder.insert(user.zOrder.begin(), owned.begin(), owned.end());
}

void SetForeground(HWND handle)
{
    user.foreground = handle;
}

namespace {

HWND HandleOf(const HostWindow* hostWindow)
{
    for (const std::unique_ptr<Window>& window : user.windows) {
        if (hostWindow != nullptr && window->hostWindow == hostWindow) {
            return window->handle;
        }
    }
    return nullptr;
}

} // namespace

HWND WINAPI GetTopWindow(HWND parent)
{
    // A window manager raises what is clicked, and tells nobody.
    const HWND top = host != nullptr ? HandleOf(host->topWindow()) : nullptr;
    if (const auto place = std::find(user.zOrder.begin(), user.zOrder.end(), top); place != user.zOrder.end()) {
        std::rotate(user.zOrder.begin(), place, place + 1);
    }
    for (HWND handle : user.zOrder) {
        const Window* window = Lookup(handle);
        if ((parent == nullptr) && (window != nullptr) && window->visible && !window->destroying) {
            return handle;
        }
    }
    return nullptr;
}

HWND WINAPI WindowFromPoint(POINT place)
{
    return host != nullptr ? HandleOf(host->windowAt(place.x, place.y)) : nullptr;
}

HWND WINAPI GetForegroundWindow()
{
    return Lookup(user.foreground) != nullptr ? user.foreground : nullptr;
}

HWND WINAPI SetCapture(HWND handle)
{
    HWND previous = user.capture;
    const Window* window = Lookup(handle);
    if ((window == nullptr) || (window->hostWindow == nullptr)) {
        return previous;
    }
    user.capture = handle;
    host->capturePointer(window->hostWindow);
    return previous;
}

BOOL WINAPI ReleaseCapture()
{
    if (user.capture != nullptr) {
        user.capture = nullptr;
        host->capturePointer(nullptr);
    }
    return TRUE;
}
