// The message queue: taking, dispatching, translating, posting, and what a window does by default.
#include "platform/kernel/heap.h"
#include "platform/user/state.h"

#include <algorithm>

namespace {

constexpr int idleWaitMilliseconds = 10;
constexpr uint32_t busyPresentMilliseconds = 15; // drawing shows at least this often while messages keep coming
constexpr size_t mostPosted = 10000;

struct MessageFilter {
    HWND window;
    UINT first;
    UINT last;
};

bool Matches(const MessageFilter& filter, const MSG& message)
{
    if ((filter.window != nullptr) && filter.window != message.hwnd) {
        return false;
    }
    if (filter.first == 0 && filter.last == 0) {
        return true;
    }
    return message.message >= filter.first && message.message <= filter.last;
}

// Takes the first waiting message that the filter lets through. What reaches the window procedures directly is
// delivered when its turn comes, or when it stands behind messages that the filter holds back; the end of the session
// is delivered before everything else.
bool TakeQueued(const MessageFilter& filter, bool remove, MSG* message)
{
    if (user.sessionEnds && !user.zOrder.empty()) {
        user.sessionEnds = false;
        DeliverSessionEnd();
    }
    for (size_t i = 0; i < user.posted.size(); i++) {
        if (!Matches(filter, user.posted[i])) {
            continue;
        }
        *message = user.posted[i];
        if (remove) {
            user.posted.erase(user.posted.begin() + static_cast<ptrdiff_t>(i));
        }
        return true;
    }
    size_t i = 0;
    while (i < user.input.size()) {
        const HostEvent event = user.input[i];
        const auto place = user.input.begin() + static_cast<ptrdiff_t>(i);
        if (IsSentEvent(event)) {
            user.input.erase(place);
            DeliverSentEvent(event);
            return TakeQueued(filter, remove, message); // the procedure may have changed the queue
        }
        MSG made = {};
        if (!MessageOfEvent(event, &made)) {
            user.input.erase(place);
        } else if (Matches(filter, made)) {
            *message = made;
            if (remove) {
                user.input.erase(place);
                TakeKeyState(event);
            }
            return true;
        } else {
            i++;
        }
    }
    return false;
}

bool MakePaint(const MessageFilter& filter, MSG* message)
{
    const Window* window = WindowToPaint(filter.window);
    if (window == nullptr) {
        return false;
    }
    MSG made = {};
    made.hwnd = window->handle;
    made.message = WM_PAINT;
    if (!Matches(filter, made)) {
        return false;
    }
    made.time = host->ticks();
    int x = 0;
    int y = 0;
    host->pointer(&x, &y);
    made.pt = {x, y};
    *message = made;
    return true;
}

void SendPlacement(HWND handle, const WINDOWPOS& position)
{
    const Window* window = Lookup(handle);
    if (!(position.flags & keptClientPlace)) {
        const POINT origin = ClientOrigin(*window);
        SendMessageA(handle, WM_MOVE, 0, MAKELPARAM(origin.x, origin.y));
    }
    window = Lookup(handle);
    if ((window != nullptr) && !(position.flags & keptClientSize)) {
        SendMessageA(handle, WM_SIZE, 0, MAKELPARAM(window->width, window->height));
    }
}

bool MessageWaits()
{
    return user.sessionEnds || !user.posted.empty() || !user.input.empty() || WindowToPaint(nullptr) != nullptr;
}

BOOL Given()
{
    user.limitsMayDiffer = true;
    return TRUE;
}

} // namespace

BOOL WINAPI PeekMessageA(LPMSG message, HWND window, UINT first, UINT last, UINT remove)
{
    if ((message == nullptr) || (host == nullptr)) {
        return FALSE;
    }
    const MessageFilter filter = {window, first, last};
    const bool take = (remove & PM_REMOVE) != 0;
    if (host->ticks() - user.lastPresent >= busyPresentMilliseconds) {
        PresentAll();
    }
    if (TakeQueued(filter, take, message)) {
        return Given();
    }
    CollectEvents(0);
    if (TakeQueued(filter, take, message) || MakePaint(filter, message)) {
        return Given();
    }
    if (!take) {
        return FALSE;
    }
    if (user.limitsMayDiffer) {
        user.limitsMayDiffer = false;
        UpdateSizeLimits();
    }
    PresentAll();
    CollectEvents(idleWaitMilliseconds);
    return TakeQueued(filter, take, message) || MakePaint(filter, message) ? Given() : FALSE;
}

DWORD WINAPI MsgWaitForMultipleObjectsEx(DWORD count, const HANDLE*, DWORD milliseconds, DWORD wakeMask, DWORD flags)
{
    if (host == nullptr || count != 0 || wakeMask != QS_ALLINPUT || flags != MWMO_INPUTAVAILABLE) {
        return WAIT_FAILED;
    }
    if (!MessageWaits()) {
        PresentAll();
        CollectEvents(static_cast<int>(std::min<DWORD>(milliseconds, INT32_MAX)));
    }
    return MessageWaits() ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

LRESULT WINAPI DispatchMessageA(const MSG* message)
{
    return message != nullptr ? SendMessageA(message->hwnd, message->message, message->wParam, message->lParam) : 0;
}

BOOL WINAPI TranslateMessage(const MSG* message)
{
    if ((message == nullptr) || (message->message != WM_KEYDOWN && message->message != WM_SYSKEYDOWN)) {
        return FALSE;
    }
    const WPARAM character = static_cast<WPARAM>((message->lParam >> 16) & 0xFF);
    if (character == 0) {
        return FALSE;
    }
    const bool plain = message->message == WM_KEYDOWN;
    MSG made = *message;
    made.message = plain ? WM_CHAR : WM_SYSCHAR;
    made.wParam = character;
    user.posted.push_back(made);
    return plain;
}

LRESULT WINAPI SendMessageA(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    const Window* window = Lookup(handle);
    return window != nullptr ? CallProcedure(*window, message, wParam, lParam) : 0;
}

BOOL WINAPI PostMessageA(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (((handle != nullptr) && (Lookup(handle) == nullptr)) || user.posted.size() >= mostPosted ||
        (host == nullptr)) {
        return FALSE;
    }
    int x = 0;
    int y = 0;
    host->pointer(&x, &y);
    return WithMemory([&] { user.posted.push_back({handle, message, wParam, lParam, host->ticks(), {x, y}}); });
}

LRESULT WINAPI DefWindowProcA(HWND handle, UINT message, WPARAM, LPARAM lParam)
{
    if (Lookup(handle) == nullptr) {
        return 0;
    }
    switch (message) {
    case WM_CLOSE:
        DestroyWindow(handle);
        return 0;
    case WM_QUERYENDSESSION:
        return TRUE;
    case WM_PAINT: {
        PAINTSTRUCT paint;
        BeginPaint(handle, &paint);
        EndPaint(handle, &paint);
        return 0;
    }
    case WM_WINDOWPOSCHANGED:
        if (lParam) {
            SendPlacement(handle, *reinterpret_cast<const WINDOWPOS*>(lParam));
        }
        return 0;
    default:
        return 0;
    }
}

void DropMessagesOf(HWND handle)
{
    std::erase_if(user.posted, [&](const MSG& message) { return message.hwnd == handle; });
    std::erase_if(user.input, [&](const HostEvent& event) { return event.token == handle; });
}
