// What the host reports, as messages; and the state of keys, buttons and pointer.
#include "platform/kernel/heap.h"
#include "platform/user/state.h"

#include <algorithm>
#include <chrono>

namespace {

constexpr size_t historyLength = 1024;
constexpr int pollMicroseconds = 1000;

// The low word of a mouse message's first parameter.
enum MouseKeys { mouseKeyLeft = 1, mouseKeyRight = 2, mouseKeyShift = 4, mouseKeyControl = 8 };

struct PollTime {
    std::chrono::steady_clock::time_point time;
    uint64_t collected = 0;
};

PollTime lastPoll[256];

HWND HandleOf(const HostEvent& event)
{
    return static_cast<HWND>(event.token);
}

int MouseKeysOf(const HostEvent& event)
{
    return ((event.buttons & hostLeftButton) ? mouseKeyLeft : 0) |
           ((event.buttons & hostRightButton) ? mouseKeyRight : 0) |
           ((event.modifiers & hostShift) ? mouseKeyShift : 0) |
           ((event.modifiers & hostControl) ? mouseKeyControl : 0);
}

UINT ButtonMessage(const HostEvent& event)
{
    const bool down = event.kind == hostPointerDown;
    switch (event.button) {
    case hostLeftButton:
        return down ? WM_LBUTTONDOWN : WM_LBUTTONUP;
    case hostRightButton:
        return down ? WM_RBUTTONDOWN : WM_RBUTTONUP;
    default:
        return WM_NULL;
    }
}

bool PointerMessage(const HostEvent& event, MSG* message)
{
    const Window* window = Lookup(Lookup(user.capture) != nullptr ? user.capture : HandleOf(event));
    message->message = event.kind == hostPointerMove ? WM_MOUSEMOVE : ButtonMessage(event);
    if ((window == nullptr) || message->message == WM_NULL) {
        return false;
    }
    const POINT origin = ClientOrigin(*window);
    message->hwnd = window->handle;
    message->wParam = static_cast<WPARAM>(MouseKeysOf(event));
    message->lParam = MAKELPARAM(event.screenX - origin.x, event.screenY - origin.y);
    return true;
}

// Bits 16 to 23, the scan code on Windows, carry the key's character, from which TranslateMessage makes WM_CHAR.
bool KeyMessage(const HostEvent& event, MSG* message)
{
    const bool down = event.kind == hostKeyDown;
    const bool alt = (event.modifiers & hostAlt) != 0;
    const bool control = (event.modifiers & hostControl) != 0;
    const bool system = (alt && !control) || event.key == VK_MENU || event.key == VK_F10;
    const Window* window = Lookup(HandleOf(event));
    if (window == nullptr) {
        window = FirstFramedWindow();
    }
    if (window == nullptr) {
        return false;
    }
    message->hwnd = window->handle;
    message->message =
        static_cast<UINT>(down ? (system ? WM_SYSKEYDOWN : WM_KEYDOWN) : (system ? WM_SYSKEYUP : WM_KEYUP));
    message->wParam = static_cast<WPARAM>(event.key);
    message->lParam = 1 | static_cast<LPARAM>(event.character & 0xFF) << 16 | (alt ? LPARAM{1} << 29 : 0) |
                      (down ? 0 : LPARAM{3} << 30);
    return true;
}

bool MenuMessage(const HostEvent& event, MSG* message)
{
    const Window* window = Lookup(HandleOf(event));
    if ((window == nullptr) || window->kind != framedWindow) {
        window = FirstFramedWindow();
    }
    if ((window == nullptr) || !IsMenuChoiceEnabled(window->menu, static_cast<UINT>(event.code))) {
        return false;
    }
    message->hwnd = window->handle;
    message->message = WM_COMMAND;
    message->wParam = static_cast<WPARAM>(event.code & 0xFFFF);
    return true;
}

void Remember(const HostEvent& event)
{
    std::vector<MOUSEMOVEPOINT>& history = user.moveHistory;
    const bool isMove = event.kind == hostPointerMove;
    if (!isMove && !history.empty() && history.back().x == event.screenX && history.back().y == event.screenY) {
        return;
    }
    if (history.size() == historyLength) {
        history.erase(history.begin());
    }
    history.push_back({event.screenX, event.screenY, event.time, 0});
}

bool Supersedes(const HostEvent& event, const HostEvent& waiting)
{
    if (event.kind != waiting.kind || event.token != waiting.token) {
        return false;
    }
    return event.kind == hostPointerMove || event.kind == hostGeometry ||
           (event.kind == hostScroll && event.bar == waiting.bar && event.code == SB_THUMBTRACK &&
            waiting.code == SB_THUMBTRACK);
}

void Enqueue(const HostEvent& event)
{
    switch (event.kind) {
    case hostPointerDown:
    case hostPointerUp:
    case hostPointerMove:
        Remember(event);
        break;
    case hostKeyDown:
    case hostKeyUp:
        user.keyDownNow[event.key & 0xFF] = event.kind == hostKeyDown;
        break;
    case hostActivate:
        // Losing the focus from one of our windows to another is no news for the program.
        std::erase_if(user.input, [](const HostEvent& waiting) { return waiting.kind == hostActivate; });
        break;
    case hostSessionEnd:
        user.sessionEnds = true;
        return;
    default:
        break;
    }
    if (!user.input.empty() && Supersedes(event, user.input.back())) {
        user.input.back() = event;
    } else {
        user.input.push_back(event);
    }
}

void TakeActivation(const HostEvent& event)
{
    const bool active = event.code != 0;
    const Window* window = Lookup(HandleOf(event));
    if (active && (window != nullptr)) {
        SetForeground(window->handle);
    } else if (!active) {
        SetForeground(nullptr);
    }
    if (active == user.programActive) {
        return;
    }
    user.programActive = active;
    const std::vector<HWND> handles = user.zOrder;
    for (HWND handle : handles) {
        SendMessageA(handle, WM_ACTIVATEAPP, active, 0);
    }
}

} // namespace

bool CollectEvents(int waitMilliseconds)
{
    KeepMemoryReserve();
    host->pump(waitMilliseconds);
    HostEvent event = {};
    bool any = false;
    while (host->nextEvent(&event)) {
        Enqueue(event);
        user.collected++;
        user.limitsMayDiffer = true;
        any = true;
    }
    return any;
}

bool MessageOfEvent(const HostEvent& event, MSG* message)
{
    *message = {};
    message->time = event.time;
    message->pt = {event.screenX, event.screenY};
    switch (event.kind) {
    case hostPointerDown:
    case hostPointerUp:
    case hostPointerMove:
        return PointerMessage(event, message);
    case hostWheel:
        message->hwnd = HandleOf(event);
        message->message = WM_MOUSEWHEEL;
        message->wParam = MAKEWPARAM(MouseKeysOf(event), event.delta);
        message->lParam = MAKELPARAM(event.screenX, event.screenY);
        return IsWindow(message->hwnd);
    case hostKeyDown:
    case hostKeyUp:
        return KeyMessage(event, message);
    case hostMenuChoice:
        return MenuMessage(event, message);
    default:
        return false;
    }
}

bool IsSentEvent(const HostEvent& event)
{
    return event.kind == hostScroll || event.kind == hostGeometry || event.kind == hostCloseRequest ||
           event.kind == hostActivate;
}

void DeliverSentEvent(const HostEvent& event)
{
    const Window* window = Lookup(HandleOf(event));
    switch (event.kind) {
    case hostScroll: {
        const Window* bar = LookupBar(event.bar);
        if (bar == nullptr) {
            return;
        }
        SendMessageA(bar->parent, (bar->style & SBS_VERT) ? WM_VSCROLL : WM_HSCROLL,
                     MAKEWPARAM(event.code, event.position), reinterpret_cast<LPARAM>(bar->handle));
        return;
    }
    case hostGeometry:
        HandleHostGeometry(HandleOf(event));
        return;
    case hostCloseRequest:
        if (window != nullptr) {
            SendMessageA(window->handle, WM_CLOSE, 0, 0);
        }
        return;
    case hostActivate:
        TakeActivation(event);
        return;
    default:
        return;
    }
}

void DeliverSessionEnd()
{
    const std::vector<HWND> handles = user.zOrder;
    for (const UINT message : {WM_QUERYENDSESSION, WM_ENDSESSION}) {
        for (const HWND handle : handles) {
            SendMessageA(handle, message, message == WM_ENDSESSION ? TRUE : 0, ENDSESSION_CRITICAL);
        }
    }
}

void TakeKeyState(const HostEvent& event)
{
    user.keyModifiers = event.modifiers;
    user.keyButtons = event.buttons;
    if (event.kind != hostKeyDown && event.kind != hostKeyUp) {
        return;
    }
    const bool down = event.kind == hostKeyDown;
    user.keyDown[event.key & 0xFF] = down;
    // The event of a modifier key itself tells what was held before it.
    unsigned bit = event.key == VK_SHIFT     ? hostShift
                   : event.key == VK_CONTROL ? hostControl
                   : event.key == VK_MENU    ? hostAlt
                                             : 0;
    user.keyModifiers = down ? user.keyModifiers | bit : user.keyModifiers & ~bit;
}

namespace {

// The device that knows a key: the pointer's buttons or the modifiers; all other keys are known from their events.
bool IsHeld(int key, unsigned (*buttons)(), unsigned (*modifiers)(), const bool* keys)
{
    switch (key) {
    case VK_LBUTTON:
        return (buttons() & hostLeftButton) != 0;
    case VK_RBUTTON:
        return (buttons() & hostRightButton) != 0;
    case VK_SHIFT:
        return (modifiers() & hostShift) != 0;
    case VK_CONTROL:
        return (modifiers() & hostControl) != 0;
    case VK_MENU:
        return (modifiers() & hostAlt) != 0;
    default:
        return key >= 0 && key < 256 && keys[key];
    }
}

bool IsHeldNow(int key)
{
    return IsHeld(key, host->buttons, host->modifiers, user.keyDownNow);
}

unsigned TakenButtons()
{
    return user.keyButtons;
}

unsigned TakenModifiers()
{
    return user.keyModifiers;
}

constexpr SHORT heldState = static_cast<SHORT>(0x8000);

} // namespace

SHORT WINAPI GetKeyState(int key)
{
    return IsHeld(key, TakenButtons, TakenModifiers, user.keyDown) ? heldState : 0;
}

SHORT WINAPI GetAsyncKeyState(int key)
{
    if (host == nullptr) {
        return 0;
    }
    PresentAll();
    // The state is read before the events are collected: when it says that a button is up, its release and every
    // position before that are in the queue and in the history.
    bool held = IsHeldNow(key);
    CollectEvents(0);
    PollTime& previous = lastPoll[key & 0xFF];
    const auto now = std::chrono::steady_clock::now();
    if (user.collected == previous.collected && now - previous.time < std::chrono::microseconds(pollMicroseconds)) {
        // A loop that polls for nothing new leaves the processor to others for a moment.
        host->pump(1);
        held = IsHeldNow(key);
        CollectEvents(0);
    }
    previous.time = std::chrono::steady_clock::now();
    previous.collected = user.collected;
    return held ? heldState : 0;
}

BOOL WINAPI GetCursorPos(LPPOINT point)
{
    if ((point == nullptr) || (host == nullptr)) {
        return FALSE;
    }
    PresentAll();
    int x = 0;
    int y = 0;
    host->pointer(&x, &y);
    *point = {x, y};
    return TRUE;
}

BOOL WINAPI SetCursorPos(int x, int y)
{
    if (host == nullptr) {
        return FALSE;
    }
    PresentAll();
    host->warpPointer(x, y);
    return TRUE;
}

int WINAPI GetMouseMovePointsEx(UINT size, MOUSEMOVEPOINT* point, MOUSEMOVEPOINT* buffer, int count, DWORD)
{
    if (size != sizeof(MOUSEMOVEPOINT) || (point == nullptr) || (buffer == nullptr) || count < 0 ||
        count > static_cast<int>(historyLength)) {
        return -1;
    }
    const int kept = std::min(count, static_cast<int>(user.moveHistory.size()));
    std::copy_n(user.moveHistory.rbegin(), kept, buffer);
    return kept;
}
