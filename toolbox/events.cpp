#include "toolbox/events.h"

#include "toolbox/conversions.h"
#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

namespace {

void ButtonEvent(EventRecord* event, int32_t mask);
void WheelEvent(EventRecord* event);
void MoveEvent(EventRecord* event, HRGN mouseRegion);
void CharacterEvent(EventRecord* event, int32_t mask);
void KeyEvent(EventRecord* event, int32_t mask);
void SystemKeyReleased(EventRecord* event);
void CommandEvent(EventRecord* event);

uint32_t lastMessageTime;

// With nothing to do for a while the loops turn a few times a second, which is as fast as a dialog needs to be back
// on top. The read-out follows the pointer, which tells nothing while it is outside the program's windows.
bool StaysQuiet()
{
    constexpr int32_t quietAfter = 300;
    constexpr DWORD quietWait = 200;
    return !shell.cursorReadoutOn && static_cast<int32_t>(GetTickCount() - lastMessageTime) >= quietAfter &&
           MsgWaitForMultipleObjectsEx(0, nullptr, quietWait, QS_ALLINPUT, MWMO_INPUTAVAILABLE) == WAIT_TIMEOUT;
}

} // namespace

int32_t WaitNextEvent(int32_t mask, EventRecord* event, uint32_t, HRGN mouseRegion)
{
    KeepRescueCopy();
    *event = {};
    MSG& message = event->platformMessage;
    if (StaysQuiet() || !PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        message = {};
        return nullEvent;
    }
    lastMessageTime = GetTickCount();
    event->where = PointFrom(message.pt);
    event->when = GetTickCount();
    // The bars track the pointer themselves and report scrolling to the map window's procedure.
    if (message.hwnd != nullptr &&
        (message.hwnd == view.horizontalScrollBar || message.hwnd == view.verticalScrollBar)) {
        DispatchMessageA(&message);
        return nullEvent;
    }
    switch (message.message) {
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_RBUTTONUP:
        ButtonEvent(event, mask);
        break;
    case WM_MOUSEWHEEL:
        WheelEvent(event);
        break;
    case WM_MOUSEMOVE:
        MoveEvent(event, mouseRegion);
        break;
    case WM_PAINT:
        event->what = updateEvt;
        event->message = reinterpret_cast<uintptr_t>(WindowRecord(message.hwnd));
        break;
    case WM_CHAR:
        CharacterEvent(event, mask);
        break;
    case WM_KEYDOWN:
        KeyEvent(event, mask);
        break;
    case WM_SYSKEYUP:
        SystemKeyReleased(event);
        break;
    case WM_COMMAND:
        CommandEvent(event);
        break;
    case WM_QUIT:
        break;
    default:
        DispatchMessageA(&message);
        break;
    }
    return event->what;
}

// ---- pointer ----

namespace {

bool KeyHeld(int key)
{
    return GetKeyState(key) < 0;
}

uint16_t HeldModifiers()
{
    const int held = (KeyHeld(VK_CONTROL) ? controlKey : 0) | (KeyHeld(VK_SHIFT) ? shiftKey : 0) |
                     (KeyHeld(VK_MENU) ? optionKey : 0);
    return static_cast<uint16_t>(held);
}

void ButtonEvent(EventRecord* event, int32_t mask)
{
    const MSG& message = event->platformMessage;
    const bool pressed = message.message == WM_LBUTTONDOWN || message.message == WM_RBUTTONDOWN;
    if ((mask & (pressed ? mDownMask : mUpMask)) == 0) {
        return;
    }
    POINT position = MessagePoint(message.lParam);
    MapWindowPoints(message.hwnd, HWND_DESKTOP, &position, 1);
    event->what = pressed ? mouseDown : mouseUp;
    event->where = PointFrom(position);
    event->modifiers = HeldModifiers();
}

void WheelEvent(EventRecord* event)
{
    const auto delta = static_cast<int16_t>(HIWORD(event->platformMessage.wParam));
    event->what = delta > 0 ? wheelUpEvt : wheelDownEvt;
    event->message = reinterpret_cast<uintptr_t>(WindowRecord(event->platformMessage.hwnd));
}

void MoveEvent(EventRecord* event, HRGN mouseRegion)
{
    constexpr uintptr_t mouseMovedMessage = 250;
    POINT position = {};
    if (mouseRegion != nullptr && GetCursorPos(&position) && !PtInRegion(mouseRegion, position.x, position.y)) {
        event->what = mouseMovedEvt;
        event->message = mouseMovedMessage;
        currentEvent.where = PointFrom(position);
        return;
    }
    DispatchMessageA(&event->platformMessage);
}

// ---- keys ----

const struct {
    UINT virtualKey;
    uintptr_t message;
} keyMessages[] = {
    {VK_LEFT, leftArrowKey}, {VK_UP, upArrowKey}, {VK_RIGHT, rightArrowKey}, {VK_DOWN, downArrowKey}, {VK_F1, 0x7A00},
    {VK_F2, 0x7800},         {VK_F3, 0x6300},     {VK_F4, 0x7600},           {VK_F5, 0x6000},         {VK_F6, 0x6100},
    {VK_F8, f8Key},          {VK_F9, f9Key},
};

void SetKeyDown(EventRecord* event, uintptr_t message, int modifiers)
{
    event->what = keyDown;
    event->message = message;
    event->modifiers = static_cast<uint16_t>(modifiers);
}

void CharacterEvent(EventRecord* event, int32_t mask)
{
    // With Ctrl a letter arrives as its place in the alphabet.
    constexpr uintptr_t controlToLetter = 96;
    if ((mask & keyDownMask) == 0) {
        return;
    }
    const uintptr_t character = event->platformMessage.wParam;
    if (KeyHeld(VK_CONTROL)) {
        SetKeyDown(event, character + controlToLetter, controlKey);
    } else {
        SetKeyDown(event, character, 0);
    }
}

void KeyEvent(EventRecord* event, int32_t mask)
{
    const MSG& message = event->platformMessage;
    if ((message.wParam == VK_ADD || message.wParam == VK_OEM_PLUS) && KeyHeld(VK_CONTROL)) {
        SetKeyDown(event, '+', controlKey);
        return;
    }
    for (const auto& entry : keyMessages) {
        if (entry.virtualKey == message.wParam) {
            SetKeyDown(event, entry.message, 0);
            return;
        }
    }
    if (TranslateMessage(&message)) {
        DispatchMessageA(&message); // the character, if there is one, follows as WM_CHAR
        return;
    }
    // With Ctrl the keypad's operators have no character, and their codes are those of letters.
    const bool isOperator = message.wParam >= VK_MULTIPLY && message.wParam <= VK_DIVIDE;
    if ((mask & keyDownMask) != 0 && message.wParam != VK_CONTROL && message.wParam != VK_SHIFT && !isOperator) {
        SetKeyDown(event, message.wParam, HeldModifiers() & ~optionKey);
    }
}

void SystemKeyReleased(EventRecord* event)
{
    if (event->platformMessage.wParam == 'L') {
        SetKeyDown(event, 'L', controlKey | optionKey);
    } else {
        DispatchMessageA(&event->platformMessage);
    }
}

// ---- commands ----

// A menu choice becomes a press, which the part finder places in the menu bar.
void CommandEvent(EventRecord* event)
{
    const MSG& message = event->platformMessage;
    if (HIWORD(message.wParam) == 0) {
        event->what = mouseDown;
    } else {
        DefWindowProcA(message.hwnd, message.message, message.wParam, message.lParam);
    }
}

} // namespace

// ---- clock and button ----

uint32_t TickCount()
{
    return static_cast<uint32_t>(GetTickCount() * 0.06);
}

int StillDown()
{
    return GetAsyncKeyState(VK_LBUTTON) < 0 ? 1 : 0;
}

bool PressHasEnded(PressWatch* watch, bool held, bool releaseSeen)
{
    constexpr uint32_t graceMilliseconds = 60;
    if (held || releaseSeen) {
        watch->graceBegun = false;
        return releaseSeen;
    }
    const uint32_t now = GetTickCount();
    if (!watch->graceBegun) {
        *watch = {true, now};
    }
    return now - watch->upSince > graceMilliseconds;
}
