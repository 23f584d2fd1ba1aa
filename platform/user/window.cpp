// Window classes, creation, destruction, showing and z-order.
#include "platform/user/state.h"

#include <algorithm>
#include <cstring>
#include <strings.h>

UserState user;

namespace {

bool IsNumber(LPCSTR name)
{
    return reinterpret_cast<uintptr_t>(name) <= 0xFFFF;
}

const WindowClass* FindClass(LPCSTR name)
{
    if (!name || IsNumber(name)) {
        return nullptr;
    }
    for (const std::unique_ptr<WindowClass>& entry : user.classes) {
        if (strcasecmp(entry->name.c_str(), name) == 0) {
            return entry.get();
        }
    }
    return nullptr;
}

// The class that is there without registration.
const WindowClass* ScrollBarClass()
{
    if (!FindClass("SCROLLBAR")) {
        WNDCLASSEXA record = {};
        record.lpfnWndProc = DefWindowProcA;
        record.lpszClassName = "SCROLLBAR";
        RegisterClassExA(&record);
    }
    return FindClass("SCROLLBAR");
}

HostWindow* OwnersHostWindow(const Window& window)
{
    const Window* owner = Lookup(window.owner);
    return owner ? owner->hostWindow : nullptr;
}

// Makes the host's window for a client area; position hostDefaultPlace where the program left it to the system.
bool MakeHostWindow(Window& window, int frameLeft, int frameTop)
{
    HostWindowRequest request = {};
    request.kind = window.kind == framedWindow ? hostFramedWindow : hostPopupWindow;
    request.owner = OwnersHostWindow(window);
    request.left = frameLeft;
    request.top = frameTop;
    request.clientWidth = window.width;
    request.clientHeight = window.height;
    request.noClose = (window.windowClass->record.style & CS_NOCLOSE) != 0;
    request.title = window.title.c_str();
    window.hostWindow = host->createWindow(&request, window.handle);
    if (!window.hostWindow) {
        return false;
    }
    if (window.menu) {
        AttachMenu(window);
    }
    ShowIcons(window);
    RefreshPlace(window);
    HostGeometry geometry = {};
    host->windowGeometry(window.hostWindow, &geometry);
    if (geometry.clientWidth > 0 && geometry.clientHeight > 0) {
        window.width = geometry.clientWidth;
        window.height = geometry.clientHeight;
    }
    ResizePicture(window);
    return true;
}

// A pop-up is owned by the top-level window given as its parent, or else by the first framed window, so that it stays
// above that.
HWND OwnerOfPopup(HWND parent)
{
    const Window* owner = Lookup(parent);
    while (owner && !IsTopLevel(*owner)) {
        owner = Lookup(owner->parent);
    }
    if (!owner) {
        owner = FirstFramedWindow();
    }
    return owner ? owner->handle : nullptr;
}

void DefaultSize(int* width, int* height)
{
    int screenWidth = 0;
    int screenHeight = 0;
    host->screenSize(&screenWidth, &screenHeight);
    *width = std::min(800, screenWidth * 9 / 10);
    *height = std::min(600, screenHeight * 9 / 10);
}

void SendSizeAndMove(HWND handle)
{
    Window* window = Lookup(handle);
    if (!window) {
        return;
    }
    window->firstShowPending = false;
    SendMessageA(handle, WM_SIZE, 0, MAKELPARAM(window->width, window->height));
    window = Lookup(handle);
    if (window) {
        RefreshPlace(*window);
        SendMessageA(handle, WM_MOVE, 0, MAKELPARAM(window->left, window->top));
    }
}

void RemoveWindow(HWND handle)
{
    std::erase(user.zOrder, handle);
    std::erase_if(user.windows, [&](const std::unique_ptr<Window>& window) { return window->handle == handle; });
}

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
    if (window.hostWindow) {
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
    if (!handle) {
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
        if (bar && window->hostBar == bar) {
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

ATOM WINAPI RegisterClassExA(const WNDCLASSEXA* record)
{
    if (!record || !record->lpszClassName || IsNumber(record->lpszClassName) || !record->lpfnWndProc ||
        record->cbWndExtra < 0 || record->cbWndExtra > 4096) {
        SetLastError(ERROR_GEN_FAILURE);
        return 0;
    }
    if (FindClass(record->lpszClassName)) {
        SetLastError(ERROR_ALREADY_EXISTS);
        return 0;
    }
    auto entry = std::make_unique<WindowClass>();
    entry->record = *record;
    entry->name = record->lpszClassName;
    entry->record.lpszClassName = entry->name.c_str();
    if (!IsNumber(record->lpszMenuName)) {
        entry->menuName = record->lpszMenuName;
        entry->record.lpszMenuName = entry->menuName.c_str();
    }
    user.classes.push_back(std::move(entry));
    return static_cast<ATOM>(0xC000 + user.classes.size());
}

BOOL WINAPI GetClassInfoA(HINSTANCE, LPCSTR name, WNDCLASSA* record)
{
    const WindowClass* found = FindClass(name);
    if (!found || !record) {
        return FALSE;
    }
    const WNDCLASSEXA& from = found->record;
    *record = {from.style, from.lpfnWndProc, from.cbClsExtra,    from.cbWndExtra,   from.hInstance,
               from.hIcon, from.hCursor,     from.hbrBackground, from.lpszMenuName, from.lpszClassName};
    return TRUE;
}

HWND WINAPI CreateWindowExA(DWORD, LPCSTR className, LPCSTR title, DWORD style, int x, int y, int width, int height,
                            HWND parent, HMENU menuOrId, HINSTANCE, LPVOID parameter)
{
    const WindowClass* windowClass = FindClass(className);
    if (!windowClass && className && !IsNumber(className) && strcasecmp(className, "SCROLLBAR") == 0) {
        windowClass = ScrollBarClass();
    }
    if (!windowClass || !host) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    auto made = std::make_unique<Window>();
    Window& window = *made;
    const HWND handle = reinterpret_cast<HWND>(user.nextHandle);
    window.handle = handle;
    window.windowClass = windowClass;
    window.style = style;
    window.title = title ? title : "";
    window.extra.assign(static_cast<size_t>(windowClass->record.cbWndExtra), 0);
    if (style & WS_CHILD) {
        if (!Lookup(parent)) {
            SetLastError(ERROR_INVALID_HANDLE);
            return nullptr;
        }
        window.parent = parent;
        window.kind = windowClass == FindClass("SCROLLBAR") ? scrollBarWindow : childWindow;
    } else if (style & WS_POPUP) {
        window.kind = popupWindow;
        window.owner = OwnerOfPopup(parent);
    }
    user.nextHandle += 4;

    int frameLeft = x == CW_USEDEFAULT ? hostDefaultPlace : x;
    int frameTop = x == CW_USEDEFAULT ? hostDefaultPlace : y;
    if (window.kind == framedWindow && width == CW_USEDEFAULT) {
        DefaultSize(&window.width, &window.height);
    } else {
        // Before the window has been shown, its frame is taken to have the widths of the first framed window.
        RECT frame = {0, 0, 0, 0};
        AdjustWindowRect(&frame, style, windowClass->record.lpszMenuName != nullptr);
        const int least = (style & WS_CHILD) ? 0 : 1;
        window.width = std::max(least, (width == CW_USEDEFAULT ? 0 : width) - (frame.right - frame.left));
        window.height = std::max(least, (width == CW_USEDEFAULT ? 0 : height) - (frame.bottom - frame.top));
    }
    window.left = x == CW_USEDEFAULT ? 0 : x;
    window.top = x == CW_USEDEFAULT ? 0 : y;
    user.windows.push_back(std::move(made));
    if (IsTopLevel(window)) {
        window.menu = menuOrId ? menuOrId : LoadMenuOfClass(*windowClass);
        window.firstShowPending = window.kind == framedWindow;
        if (!MakeHostWindow(window, frameLeft, frameTop)) {
            DestroyMenuOf(window);
            RemoveWindow(handle);
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
        Raise(window);
    }

    // The leading fields of the CREATESTRUCT that Windows sends: only the creation parameter is of use here.
    const LPVOID createParameters[1] = {parameter};
    if (SendMessageA(handle, WM_CREATE, 0, reinterpret_cast<LPARAM>(createParameters)) == -1) {
        DestroyWindow(handle);
    }
    Window* alive = Lookup(handle);
    if (alive && !alive->firstShowPending) {
        SendSizeAndMove(handle);
    }
    alive = Lookup(handle);
    if (alive && (style & WS_VISIBLE)) {
        ShowWindow(handle, SW_SHOWNORMAL);
    }
    return Lookup(handle) ? handle : nullptr;
}

BOOL WINAPI DestroyWindow(HWND handle)
{
    Window* window = Lookup(handle);
    if (!window || window->destroying) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    window->destroying = true;
    for (HWND owned : WindowsBelonging(handle, &Window::owner)) {
        DestroyWindow(owned);
    }
    window = Lookup(handle);
    if (window->visible && window->hostWindow) {
        host->showWindow(window->hostWindow, hostHide);
        window->visible = false;
    }
    SendMessageA(handle, WM_DESTROY, 0, 0);
    for (HWND child : WindowsBelonging(handle, &Window::parent)) {
        DestroyWindow(child);
    }
    SendMessageA(handle, WM_NCDESTROY, 0, 0);
    ReleaseWindow(*Lookup(handle));
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

BOOL WINAPI IsWindowVisible(HWND handle)
{
    const Window* window = Lookup(handle);
    return window && window->visible && (!window->parent || IsWindowVisible(window->parent));
}

BOOL WINAPI SetWindowTextA(HWND handle, LPCSTR text)
{
    Window* window = Lookup(handle);
    if (!window) {
        return FALSE;
    }
    window->title = text ? text : "";
    if (window->hostWindow) {
        host->setTitle(window->hostWindow, window->title.c_str());
    }
    return TRUE;
}

int WINAPI GetWindowTextA(HWND handle, LPSTR buffer, int size)
{
    if (!buffer || size <= 0) {
        return 0;
    }
    const Window* window = Lookup(handle);
    size_t length = window ? std::min(window->title.size(), static_cast<size_t>(size) - 1) : 0;
    if (window) {
        memcpy(buffer, window->title.data(), length);
    }
    buffer[length] = 0;
    return static_cast<int>(length);
}

LONG_PTR WINAPI GetWindowLongPtrA(HWND handle, int index)
{
    const Window* window = Lookup(handle);
    LONG_PTR value = 0;
    if (window && index >= 0 && static_cast<size_t>(index) + sizeof value <= window->extra.size()) {
        memcpy(&value, window->extra.data() + index, sizeof value);
    }
    return value;
}

LONG_PTR WINAPI SetWindowLongPtrA(HWND handle, int index, LONG_PTR value)
{
    Window* window = Lookup(handle);
    LONG_PTR previous = GetWindowLongPtrA(handle, index);
    if (window && index >= 0 && static_cast<size_t>(index) + sizeof value <= window->extra.size()) {
        memcpy(window->extra.data() + index, &value, sizeof value);
    }
    return previous;
}

BOOL WINAPI ShowWindow(HWND handle, int how)
{
    Window* window = Lookup(handle);
    if (!window || window->destroying) {
        return FALSE;
    }
    const BOOL wasVisible = window->visible;
    const bool show = how != SW_HIDE;
    window->visible = show;
    if (window->kind == scrollBarWindow) {
        SyncScrollBar(*window);
        return wasVisible;
    }
    if (!window->hostWindow || (!show && !wasVisible)) {
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
        if (record && record->owner == handle) {
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

HWND WINAPI GetTopWindow(HWND parent)
{
    for (HWND handle : user.zOrder) {
        const Window* window = Lookup(handle);
        if (!parent && window && window->visible && !window->destroying) {
            return handle;
        }
    }
    return nullptr;
}

HWND WINAPI GetForegroundWindow()
{
    return Lookup(user.foreground) ? user.foreground : nullptr;
}

HWND WINAPI SetCapture(HWND handle)
{
    HWND previous = user.capture;
    const Window* window = Lookup(handle);
    if (!window || !window->hostWindow) {
        return previous;
    }
    user.capture = handle;
    host->capturePointer(window->hostWindow);
    return previous;
}

BOOL WINAPI ReleaseCapture()
{
    if (user.capture) {
        user.capture = nullptr;
        host->capturePointer(nullptr);
    }
    return TRUE;
}

HWND WINAPI GetCapture()
{
    return user.capture;
}
