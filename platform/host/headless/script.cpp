#include "platform/host/headless/headless_internal.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <optional>

namespace headlesshost {
namespace {

enum VirtualKey {
    keyBack = 0x08,
    keyTab = 0x09,
    keyReturn = 0x0D,
    keyShift = 0x10,
    keyControl = 0x11,
    keyMenu = 0x12,
    keyEscape = 0x1B,
    keySpace = 0x20,
    keyAdd = 0x6B,
};

constexpr int waitsBeforeClose = 200; // empty waits before the program is asked to close
constexpr int closeRequestLimit = 20;
constexpr int looksBeforeEnd = 200000;    // looks at the devices after the last step
constexpr int stillPumpsBeforeTick = 100; // pumps without a wait that leave the clock alone

struct Step {
    uint32_t due;
    std::function<void()> act;
};

struct ScriptState {
    std::deque<Step> steps;
    uint32_t lastDue = 0;
    size_t insertAt = 0; // steps appended by a running call go before the rest
    bool inCall = false;
    std::deque<std::optional<std::string>> files;
    HeadlessWindow* pressed = nullptr; // took the press of the button that is held
    unsigned delivered = 0;            // held buttons whose press a window took
    int idleWaits = 0;
    int closeRequests = 0;
    int idleLooks = 0;
    int stillPumps = 0;
};

ScriptState script;

// A key of the US keyboard: what it gives alone and with Shift.
struct KeyRow {
    int virtualKey;
    char plain;
    char shifted;
};

constexpr KeyRow keyTable[] = {
    {'0', '0', ')'},   {'1', '1', '!'},  {'2', '2', '@'},   {'3', '3', '#'},      {'4', '4', '$'},  {'5', '5', '%'},
    {'6', '6', '^'},   {'7', '7', '&'},  {'8', '8', '*'},   {'9', '9', '('},      {0xBA, ';', ':'}, {0xBB, '=', '+'},
    {0xBC, ',', '<'},  {0xBD, '-', '_'}, {0xBE, '.', '>'},  {0xBF, '/', '?'},     {0xC0, '`', '~'}, {0xDB, '[', '{'},
    {0xDC, '\\', '|'}, {0xDD, ']', '}'}, {0xDE, '\'', '"'}, {keySpace, ' ', ' '},
};

int ModifierOf(int virtualKey)
{
    switch (virtualKey) {
    case keyShift:
        return hostShift;
    case keyControl:
        return hostControl;
    case keyMenu:
        return hostAlt;
    default:
        return 0;
    }
}

int CharacterOf(int virtualKey, unsigned modifiers)
{
    const bool shift = modifiers & hostShift;
    const bool letter = virtualKey >= 'A' && virtualKey <= 'Z';
    if (modifiers & hostControl) {
        if (letter) {
            return virtualKey - 'A' + 1;
        }
        return virtualKey == keyReturn ? 10 : virtualKey == keyEscape ? 27 : virtualKey == keySpace ? 32 : 0;
    }
    if (letter) {
        return shift ? virtualKey : virtualKey - 'A' + 'a';
    }
    if (virtualKey == keyBack || virtualKey == keyTab || virtualKey == keyReturn || virtualKey == keyEscape) {
        return virtualKey;
    }
    if (virtualKey == keyAdd) {
        return '+';
    }
    for (const KeyRow& row : keyTable) {
        if (row.virtualKey == virtualKey) {
            return shift ? row.shifted : row.plain;
        }
    }
    return 0;
}

void Append(int delay, std::function<void()> act)
{
    const uint32_t wait = static_cast<uint32_t>(delay > 0 ? delay : 0);
    if (script.inCall) {
        // The clock stands at the call: its own steps follow it, the rest of the script waits for them.
        uint32_t before = script.insertAt > 0 ? script.steps[script.insertAt - 1].due : headless.now;
        script.steps.insert(script.steps.begin() + static_cast<std::ptrdiff_t>(script.insertAt),
                            {before + wait, std::move(act)});
        script.insertAt++;
        for (size_t i = script.insertAt; i < script.steps.size(); i++) {
            script.steps[i].due += wait;
        }
        script.lastDue = script.steps.back().due;
        return;
    }
    if (script.steps.empty() && script.lastDue < headless.now) {
        script.lastDue = headless.now;
    }
    script.lastDue += wait;
    script.steps.push_back({script.lastDue, std::move(act)});
}

// A captured pointer belongs to the captor, a held one to the window that got the press.
HeadlessWindow* PointerTarget()
{
    if (headless.captured != nullptr) {
        return reinterpret_cast<HeadlessWindow*>(headless.captured);
    }
    if (headless.buttons != 0 && (script.pressed != nullptr)) {
        return script.pressed;
    }
    return headless.buttons == script.delivered ? WindowUnderPointer() : nullptr;
}

void PressButton(int button)
{
    const unsigned mask = static_cast<unsigned>(button);
    HeadlessWindow* target = PointerTarget();
    headless.buttons |= mask;
    if (target == nullptr) {
        return;
    }
    script.pressed = target;
    PutOnTop(target);
    script.delivered |= mask;
    HostEvent event = EventOfNow(hostPointerDown, target);
    event.button = button;
    QueueEvent(event);
}

void ReleaseButtons()
{
    for (int button : {hostLeftButton, hostRightButton}) {
        const unsigned mask = static_cast<unsigned>(button);
        if (!(headless.buttons & mask)) {
            continue;
        }
        const HeadlessWindow* target = PointerTarget();
        headless.buttons &= ~mask;
        if ((target != nullptr) && (script.delivered & mask)) {
            HostEvent event = EventOfNow(hostPointerUp, target);
            event.button = button;
            QueueEvent(event);
        }
        script.delivered &= ~mask;
    }
    script.pressed = nullptr;
}

void KeyTo(int virtualKey, bool down)
{
    const unsigned modifier = static_cast<unsigned>(ModifierOf(virtualKey));
    if (down) {
        headless.modifiers |= modifier;
    } else {
        headless.modifiers &= ~modifier;
    }
    const HeadlessWindow* window = KeyboardWindow();
    if (window == nullptr) {
        return;
    }
    HostEvent event = EventOfNow(down ? hostKeyDown : hostKeyUp, window);
    event.key = virtualKey;
    event.character = down ? CharacterOf(virtualKey, headless.modifiers) : 0;
    QueueEvent(event);
}

void ChooseCommand(int command)
{
    const HeadlessMenuItem* item = HeadlessMenuCommand(command);
    const HeadlessMenuItem* title = item != nullptr ? HeadlessMenuTitle(item->menu) : nullptr;
    const HeadlessWindow* window = FirstFrame();
    if ((item == nullptr) || (title == nullptr) || !item->enabled || !title->enabled || (window == nullptr) ||
        !window->visible) {
        headless.refusedChoices++;
        return;
    }
    HostEvent event = EventOfNow(hostMenuChoice, window);
    event.code = command;
    QueueEvent(event);
}

int Bounded(int value, int minimum, int maximum)
{
    if (maximum > 0 && value > maximum) {
        value = maximum;
    }
    return value < minimum ? minimum : value;
}

void ResizeByUser(int width, int height)
{
    HeadlessWindow* window = FirstFrame();
    if (window == nullptr) {
        return;
    }
    SetClientSize(window, Bounded(width, window->minWidth, window->maxWidth),
                  Bounded(height, window->minHeight, window->maxHeight));
    QueueEvent(EventOfNow(hostGeometry, window));
}

void RunStep()
{
    Step step = std::move(script.steps.front());
    script.steps.pop_front();
    if (headless.now < step.due) {
        headless.now = step.due;
    }
    script.idleWaits = 0;
    script.closeRequests = 0;
    script.idleLooks = 0;
    step.act();
}

[[noreturn]] void EndStuckProgram(const char* how)
{
    const HeadlessWindow* frame = FirstFrame();
    std::fprintf(
        stderr,
        "headless host: the script ended, but the program %s (window \"%s\", %d windows, %u ms on the clock)\n", how,
        frame != nullptr ? frame->title.c_str() : "", static_cast<int>(headless.windows.size()), headless.now);
    std::_Exit(3);
}

// Nothing is left to happen: the user loses patience and closes the window.
void IdleWait()
{
    if (++script.idleWaits < waitsBeforeClose) {
        return;
    }
    script.idleWaits = 0;
    if (script.closeRequests++ >= closeRequestLimit) {
        EndStuckProgram("still waits for events after 20 requests to close");
    }
    headless.impatience++;
    if (const HeadlessWindow* frame = FirstFrame()) {
        QueueEvent(EventOfNow(hostCloseRequest, frame));
    }
}

} // namespace

void ResetScript()
{
    script = {};
}

void Advance(uint32_t milliseconds)
{
    const uint32_t until = headless.now + milliseconds;
    while (!script.steps.empty() && script.steps.front().due <= until) {
        RunStep();
    }
    if (headless.now < until) {
        headless.now = until;
    }
}

void Look()
{
    script.stillPumps = 0;
    if (script.steps.empty() && ++script.idleLooks > looksBeforeEnd) {
        EndStuckProgram("still polls the devices");
    }
    Advance(1);
}

void Pump(int waitMilliseconds)
{
    script.idleLooks = 0;
    Advance(0);
    if (EventsWaiting()) {
        return;
    }
    if (waitMilliseconds <= 0) {
        // A loop that only pumps would stop the clock for ever.
        if (++script.stillPumps <= stillPumpsBeforeTick) {
            return;
        }
        waitMilliseconds = 1;
    } else {
        script.stillPumps = 0;
    }
    const uint32_t wait = static_cast<uint32_t>(waitMilliseconds);
    if (script.steps.empty()) {
        headless.now += wait;
        IdleWait();
        return;
    }
    const uint32_t untilNext = script.steps.front().due - headless.now;
    Advance(untilNext < wait ? untilNext : wait);
}

void ForgetPress(const HeadlessWindow* window)
{
    if (script.pressed == window) {
        script.pressed = nullptr;
    }
}

void MovePointer(int x, int y)
{
    if (headless.pointer.x == x && headless.pointer.y == y) {
        return;
    }
    headless.pointer = {x, y};
    if (const HeadlessWindow* window = PointerTarget()) {
        QueueEvent(EventOfNow(hostPointerMove, window));
    }
}

bool TakeFileAnswer(std::string* path)
{
    if (script.files.empty() || headless.sessionEnded) {
        return false;
    }
    const std::optional<std::string> answer = script.files.front();
    script.files.pop_front();
    *path = answer.value_or("");
    return answer.has_value();
}

} // namespace headlesshost

using namespace headlesshost;

void ScriptMove(int x, int y, int delay)
{
    Append(delay, [=] { MovePointer(x, y); });
}

void ScriptPress(int x, int y, int button, int delay)
{
    Append(delay, [=] {
        MovePointer(x, y);
        PressButton(button);
    });
}

void ScriptRelease(int delay)
{
    Append(delay, ReleaseButtons);
}

void ScriptClick(int x, int y, int button, int delay)
{
    ScriptPress(x, y, button, delay);
    ScriptRelease(delay);
}

void ScriptDrag(std::initializer_list<ScriptPoint> points, int delay)
{
    bool pressed = false;
    for (const ScriptPoint& point : points) {
        if (pressed) {
            ScriptMove(point.x, point.y, delay);
        } else {
            ScriptPress(point.x, point.y, hostLeftButton, delay);
        }
        pressed = true;
    }
    ScriptRelease(delay);
}

void ScriptWheel(int delta, int delay)
{
    Append(delay, [=] {
        // Over a scroll bar, too, the wheel is the window's.
        HeadlessWindow* window = WindowUnderPointer();
        if (window == nullptr) {
            window = FirstFrame();
        }
        if (window == nullptr) {
            return;
        }
        HostEvent event = EventOfNow(hostWheel, window);
        event.delta = delta;
        QueueEvent(event);
    });
}

void ScriptKey(int virtualKey, int delay)
{
    ScriptKeyDown(virtualKey, delay);
    ScriptKeyUp(virtualKey, delay);
}

void ScriptKeyDown(int virtualKey, int delay)
{
    Append(delay, [=] { KeyTo(virtualKey, true); });
}

void ScriptKeyUp(int virtualKey, int delay)
{
    Append(delay, [=] { KeyTo(virtualKey, false); });
}

void ScriptControl(char letter, int delay)
{
    ScriptKeyDown(keyControl, delay);
    ScriptKey(std::toupper(static_cast<unsigned char>(letter)), delay);
    ScriptKeyUp(keyControl, delay);
}

void ScriptText(const char* text, int delay)
{
    for (; *text; text++) {
        const char character = *text == '\n' ? '\r' : *text;
        int key = 0;
        bool shift = false;
        if (std::isalpha(static_cast<unsigned char>(character))) {
            key = std::toupper(static_cast<unsigned char>(character));
            shift = key == character;
        } else if (character < ' ') {
            key = static_cast<unsigned char>(character);
        }
        for (const KeyRow& row : keyTable) {
            if (key == 0 && (row.plain == character || row.shifted == character)) {
                key = row.virtualKey;
                shift = row.plain != character;
            }
        }
        if (shift) {
            ScriptKeyDown(keyShift, delay);
        }
        ScriptKey(key, delay);
        if (shift) {
            ScriptKeyUp(keyShift, delay);
        }
    }
}

void ScriptMenu(int command, int delay)
{
    Append(delay, [=] { ChooseCommand(command); });
}

void ScriptResize(int clientWidth, int clientHeight, int delay)
{
    Append(delay, [=] { ResizeByUser(clientWidth, clientHeight); });
}

void ScriptMoveFrame(int left, int top, int delay)
{
    Append(delay, [=] {
        if (HeadlessWindow* window = FirstFrame()) {
            SetFramePlace(window, left, top);
            QueueEvent(EventOfNow(hostGeometry, window));
        }
    });
}

void ScriptClose(int delay)
{
    Append(delay, [] {
        if (const HeadlessWindow* window = FirstFrame()) {
            QueueEvent(EventOfNow(hostCloseRequest, window));
        }
    });
}

void ScriptSessionEnd(int delay)
{
    Append(delay, [] {
        headless.sessionEnded = 1;
        QueueEvent(EventOfNow(hostSessionEnd, nullptr));
    });
}

void ScriptActivate(int active, int delay)
{
    Append(delay, [=] {
        HostEvent event = EventOfNow(hostActivate, FirstFrame());
        event.code = active;
        QueueEvent(event);
    });
}

void ScriptScroll(int vertical, int code, int position, int delay)
{
    Append(delay, [=] {
        const HeadlessBar* bar = HeadlessScrollBar(vertical);
        if (bar == nullptr) {
            return;
        }
        HostEvent event = EventOfNow(hostScroll, FirstFrame());
        event.bar = bar->bar;
        event.code = code;
        event.position = position;
        QueueEvent(event);
    });
}

void ScriptCall(std::function<void()> call, int delay)
{
    Append(delay, [call = std::move(call)] {
        script.inCall = true;
        script.insertAt = 0;
        call();
        script.inCall = false;
    });
}

void ScriptWait(int milliseconds)
{
    Append(milliseconds, [] {});
}

void ScriptFile(const char* path)
{
    script.files.emplace_back(path);
}

void ScriptFileCancel()
{
    script.files.emplace_back(std::nullopt);
}

int HeadlessStepsLeft()
{
    return static_cast<int>(script.steps.size());
}
