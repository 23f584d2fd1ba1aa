// Window classes, and the creation of windows.
#include "platform/kernel/heap.h"
#include "platform/user/state.h"

#include <algorithm>
#include <strings.h>

// ---- classes ----

namespace {

bool IsNumber(LPCSTR name)
{
    return reinterpret_cast<uintptr_t>(name) <= 0xFFFF;
}

const WindowClass* FindClass(LPCSTR name)
{
    if ((name == nullptr) || IsNumber(name)) {
        return nullptr;
    }
    for (const std::unique_ptr<WindowClass>& entry : user.classes) {
        if (strcasecmp(entry->name.c_str(), name) == 0) {
            return entry.get();
        }
    }
    return nullptr;
}

} // namespace

ATOM WINAPI RegisterClassExA(const WNDCLASSEXA* record)
{
    if ((record == nullptr) || (record->lpszClassName == nullptr) || IsNumber(record->lpszClassName) ||
        !record->lpfnWndProc || record->cbWndExtra < 0 || record->cbWndExtra > 4096) {
        SetLastError(ERROR_GEN_FAILURE);
        return 0;
    }
    if (FindClass(record->lpszClassName) != nullptr) {
        SetLastError(ERROR_ALREADY_EXISTS);
        return 0;
    }
    const bool kept = WithMemory([&] {
        auto entry = std::make_unique<WindowClass>();
        entry->record = *record;
        entry->name = record->lpszClassName;
        entry->record.lpszClassName = entry->name.c_str();
        if (!IsNumber(record->lpszMenuName)) {
            entry->menuName = record->lpszMenuName;
            entry->record.lpszMenuName = entry->menuName.c_str();
        }
        user.classes.push_back(std::move(entry));
    });
    if (!kept) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    return static_cast<ATOM>(0xC000 + user.classes.size());
}

BOOL WINAPI GetClassInfoA(HINSTANCE, LPCSTR name, WNDCLASSA* record)
{
    const WindowClass* found = FindClass(name);
    if ((found == nullptr) || (record == nullptr)) {
        return FALSE;
    }
    const WNDCLASSEXA& from = found->record;
    *record = {from.style, from.lpfnWndProc, from.cbClsExtra,    from.cbWndExtra,   from.hInstance,
               from.hIcon, from.hCursor,     from.hbrBackground, from.lpszMenuName, from.lpszClassName};
    return TRUE;
}

// ---- creation ----

namespace {

// The class that is there without registration.
const WindowClass* ScrollBarClass()
{
    if (FindClass("SCROLLBAR") == nullptr) {
        WNDCLASSEXA record = {};
        record.lpfnWndProc = DefWindowProcA;
        record.lpszClassName = "SCROLLBAR";
        RegisterClassExA(&record);
    }
    return FindClass("SCROLLBAR");
}

const WindowClass* ClassToUse(LPCSTR name)
{
    const bool isScrollBar = (name != nullptr) && !IsNumber(name) && strcasecmp(name, "SCROLLBAR") == 0;
    return isScrollBar ? ScrollBarClass() : FindClass(name);
}

HostWindow* OwnersHostWindow(const Window& window)
{
    const Window* owner = Lookup(window.owner);
    return owner != nullptr ? owner->hostWindow : nullptr;
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
    if (window.hostWindow == nullptr) {
        return false;
    }
    if (window.menu != nullptr) {
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
    return window.picture.pixels != nullptr;
}

// A pop-up is owned by the top-level window given as its parent, or else by the first framed window, so that it stays
// above that.
HWND OwnerOfPopup(HWND parent)
{
    const Window* owner = Lookup(parent);
    while ((owner != nullptr) && !IsTopLevel(*owner)) {
        owner = Lookup(owner->parent);
    }
    if (owner == nullptr) {
        owner = FirstFramedWindow();
    }
    return owner != nullptr ? owner->handle : nullptr;
}

void DefaultSize(int* width, int* height)
{
    int screenWidth = 0;
    int screenHeight = 0;
    host->screenSize(&screenWidth, &screenHeight);
    *width = std::min(800, screenWidth * 9 / 10);
    *height = std::min(600, screenHeight * 9 / 10);
}

// False when a child window has no parent.
bool SetKindAndRelations(Window& window, HWND parent)
{
    if (window.style & WS_CHILD) {
        window.kind = window.windowClass == FindClass("SCROLLBAR") ? scrollBarWindow : childWindow;
        window.parent = parent;
        return Lookup(parent) != nullptr;
    }
    if (window.style & WS_POPUP) {
        window.kind = popupWindow;
        window.owner = OwnerOfPopup(parent);
    }
    return true;
}

// Position and size are those of the frame, as CreateWindowExA takes them.
void SetClientArea(Window& window, int x, int y, int width, int height)
{
    const bool anyPlace = x == CW_USEDEFAULT;
    const bool anySize = width == CW_USEDEFAULT;
    window.left = anyPlace ? 0 : x;
    window.top = anyPlace ? 0 : y;
    if (anySize && window.kind == framedWindow) {
        DefaultSize(&window.width, &window.height);
        return;
    }
    // Before the window has been shown, its frame is taken to have the widths of the first framed window.
    RECT frame = {0, 0, 0, 0};
    AdjustWindowRect(&frame, window.style, window.windowClass->record.lpszMenuName != nullptr);
    const int least = IsTopLevel(window) ? 1 : 0;
    window.width = std::max(least, (anySize ? 0 : width) - (frame.right - frame.left));
    window.height = std::max(least, (anySize ? 0 : height) - (frame.bottom - frame.top));
}

// Gives a top-level window its menu and the host's window.
bool OpenOnHost(Window& window, HMENU menu, int x, int y)
{
    const bool anyPlace = x == CW_USEDEFAULT;
    window.menu = menu != nullptr ? menu : LoadMenuOfClass(*window.windowClass);
    window.firstShowPending = window.kind == framedWindow;
    if (!MakeHostWindow(window, anyPlace ? hostDefaultPlace : x, anyPlace ? hostDefaultPlace : y)) {
        DestroyMenuOf(window);
        return false;
    }
    Raise(window);
    return true;
}

// The messages of a new window, each of which may destroy it.
void AnnounceCreation(HWND handle, LPVOID parameter)
{
    // The leading fields of the CREATESTRUCT that Windows sends: only the creation parameter is of use here.
    const LPVOID createParameters[1] = {parameter};
    if (SendMessageA(handle, WM_CREATE, 0, reinterpret_cast<LPARAM>(createParameters)) == -1) {
        DestroyWindow(handle);
    }
    const Window* window = Lookup(handle);
    if ((window != nullptr) && !window->firstShowPending) {
        SendSizeAndMove(handle);
    }
    window = Lookup(handle);
    if ((window != nullptr) && (window->style & WS_VISIBLE)) {
        ShowWindow(handle, SW_SHOWNORMAL);
    }
}

} // namespace

HWND WINAPI CreateWindowExA(DWORD, LPCSTR className, LPCSTR title, DWORD style, int x, int y, int width, int height,
                            HWND parent, HMENU menuOrId, HINSTANCE, LPVOID parameter)
{
    const WindowClass* windowClass = ClassToUse(className);
    if ((windowClass == nullptr) || (host == nullptr)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    const HWND handle = reinterpret_cast<HWND>(user.nextHandle);
    user.nextHandle += 4;
    bool related = true;
    const bool made = WithMemory([&] {
        user.windows.push_back(std::make_unique<Window>());
        Window& window = *user.windows.back();
        window.handle = handle;
        window.windowClass = windowClass;
        window.style = style;
        window.title = title != nullptr ? title : "";
        window.extra.assign(static_cast<size_t>(windowClass->record.cbWndExtra), 0);
        related = SetKindAndRelations(window, parent);
        SetClientArea(window, x, y, width, height);
    });
    Window* window = Lookup(handle);
    bool opened = made && related;
    if (opened && IsTopLevel(*window)) {
        opened = false;
        WithMemory([&] { opened = OpenOnHost(*window, menuOrId, x, y); });
    }
    if (!opened) {
        RemoveWindow(handle);
        SetLastError(related ? ERROR_NOT_ENOUGH_MEMORY : ERROR_INVALID_HANDLE);
        return nullptr;
    }
    AnnounceCreation(handle, parameter);
    return Lookup(handle) != nullptr ? handle : nullptr;
}
