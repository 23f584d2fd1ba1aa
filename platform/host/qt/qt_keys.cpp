// Qt's keys as Windows virtual keys and characters.
#include "platform/host/qt/qt_internal.h"
#include "platform/host/qt/qt_server.h"

#include <string_view>

namespace qthost {
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
    keyDelete = 0x2E,
    keyNumpad0 = 0x60,
    keyAdd = 0x6B,
    keyF1 = 0x70,
    keyOemPlus = 0xBB,
    keyOem4 = 0xDB,
    keyOem5 = 0xDC,
    keyOem6 = 0xDD,
    keyPacket = 0xE7, // a character without a key of its own
};

struct KeyRow {
    int qtKey;
    int virtualKey;
};

constexpr KeyRow keyTable[] = {
    {Qt::Key_Backspace, keyBack},  {Qt::Key_Tab, keyTab},          {Qt::Key_Backtab, keyTab},
    {Qt::Key_Return, keyReturn},   {Qt::Key_Enter, keyReturn},     {Qt::Key_Shift, keyShift},
    {Qt::Key_Control, keyControl}, {Qt::Key_Alt, keyMenu},         {Qt::Key_Meta, keyMenu},
    {Qt::Key_Super_L, keyMenu},    {Qt::Key_Super_R, keyMenu},     {Qt::Key_Pause, 0x13},
    {Qt::Key_CapsLock, 0x14},      {Qt::Key_Escape, keyEscape},    {Qt::Key_Space, keySpace},
    {Qt::Key_PageUp, 0x21},        {Qt::Key_PageDown, 0x22},       {Qt::Key_End, 0x23},
    {Qt::Key_Home, 0x24},          {Qt::Key_Left, 0x25},           {Qt::Key_Up, 0x26},
    {Qt::Key_Right, 0x27},         {Qt::Key_Down, 0x28},           {Qt::Key_Print, 0x2C},
    {Qt::Key_Insert, 0x2D},        {Qt::Key_Delete, keyDelete},    {Qt::Key_Menu, 0x5D},
    {Qt::Key_NumLock, 0x90},       {Qt::Key_ScrollLock, 0x91},     {Qt::Key_Plus, keyOemPlus},
    {Qt::Key_Equal, keyOemPlus},   {Qt::Key_Semicolon, 0xBA},      {Qt::Key_Colon, 0xBA},
    {Qt::Key_Comma, 0xBC},         {Qt::Key_Less, 0xBC},           {Qt::Key_Minus, 0xBD},
    {Qt::Key_Underscore, 0xBD},    {Qt::Key_Period, 0xBE},         {Qt::Key_Greater, 0xBE},
    {Qt::Key_Slash, 0xBF},         {Qt::Key_Question, 0xBF},       {Qt::Key_QuoteLeft, 0xC0},
    {Qt::Key_AsciiTilde, 0xC0},    {Qt::Key_BracketLeft, keyOem4}, {Qt::Key_BraceLeft, keyOem4},
    {Qt::Key_Backslash, keyOem5},  {Qt::Key_Bar, keyOem5},         {Qt::Key_BracketRight, keyOem6},
    {Qt::Key_BraceRight, keyOem6}, {Qt::Key_Apostrophe, 0xDE},     {Qt::Key_QuoteDbl, 0xDE},
};

constexpr KeyRow keypadTable[] = {
    {Qt::Key_Asterisk, 0x6A}, {Qt::Key_Plus, keyAdd}, {Qt::Key_Minus, 0x6D},      {Qt::Key_Period, 0x6E},
    {Qt::Key_Comma, 0x6E},    {Qt::Key_Slash, 0x6F},  {Qt::Key_Enter, keyReturn},
};

constexpr int firstDigitScanCode = 10; // the X11 code of the key "1", followed by "2" to "9" and "0"

// The places of the letters on a keyboard, each row from the X11 code of its first key.
constexpr struct {
    unsigned firstScanCode;
    std::string_view letters;
} letterRows[] = {{24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};

int heldKeys[256]; // virtual key by scan code, 0 for up
const Window* heldIn = nullptr;

int Find(const KeyRow* rows, size_t count, int qtKey)
{
    for (size_t i = 0; i < count; i++) {
        if (rows[i].qtKey == qtKey) {
            return rows[i].virtualKey;
        }
    }
    return 0;
}

int VirtualKeyOf(const QKeyEvent* event)
{
    const int key = CommandKeyOf(event);
    if (event->modifiers() & Qt::KeypadModifier) {
        if (key >= Qt::Key_0 && key <= Qt::Key_9) {
            return keyNumpad0 + key - Qt::Key_0;
        }
        if (const int found = Find(keypadTable, std::size(keypadTable), key)) {
            return found;
        }
    }
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9)) {
        return key;
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24) {
        return keyF1 + key - Qt::Key_F1;
    }
    if (key == Qt::Key_Plus || key == Qt::Key_Equal) {
        return keyOemPlus;
    }
    // "!" and its neighbours belong to the digit that is on their key.
    const int digit = static_cast<int>(event->nativeScanCode()) - firstDigitScanCode;
    if (digit >= 0 && digit < 10 && !event->text().isEmpty()) {
        return '0' + (digit + 1) % 10;
    }
    return Find(keyTable, std::size(keyTable), key);
}

// Control leaves characters to the letters and to a few keys more, as a Windows keyboard does: the digits, for
// example, have none, though X11 has some for them.
int CharacterWithControl(int virtualKey)
{
    if (virtualKey >= 'A' && virtualKey <= 'Z') {
        return virtualKey - 'A' + 1;
    }
    switch (virtualKey) {
    case keyReturn:
        return 10;
    case keyBack:
        return 127;
    case keySpace:
        return 32;
    case keyEscape:
    case keyOem4:
        return 27;
    case keyOem5:
        return 28;
    case keyOem6:
        return 29;
    default:
        return 0;
    }
}

int CharacterOf(const QKeyEvent* event, int virtualKey)
{
    if (event->modifiers() & Qt::ControlModifier) {
        return CharacterWithControl(virtualKey);
    }
    if (virtualKey == keyTab || virtualKey == keyReturn || virtualKey == keyEscape || virtualKey == keyBack) {
        return virtualKey;
    }
    if (virtualKey == keyDelete) {
        return 0;
    }
    const QString text = event->text();
    return text.isEmpty() || text.at(0).unicode() > 0xFF ? 0 : text.at(0).unicode();
}

unsigned ModifierOf(int virtualKey)
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

} // namespace

unsigned HostModifiersOf(Qt::KeyboardModifiers modifiers)
{
    unsigned result = 0;
    if (modifiers & Qt::ShiftModifier) {
        result |= hostShift;
    }
    if (modifiers & Qt::ControlModifier) {
        result |= hostControl;
    }
    if (modifiers & (Qt::AltModifier | Qt::MetaModifier)) {
        result |= hostAlt;
    }
    return result;
}

int CommandKeyOf(const QKeyEvent* event)
{
    const int key = event->key();
    const bool isLetter = key >= Qt::Key_A && key <= Qt::Key_Z;
    if (isLetter || !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) {
        return key;
    }
    for (const auto& row : letterRows) {
        const unsigned place = event->nativeScanCode() - row.firstScanCode;
        if (place < row.letters.size() && !LayoutHasLatinLetters(event->nativeModifiers())) {
            return row.letters[place];
        }
    }
    return key;
}

void QueueKey(Window* window, const QKeyEvent* event)
{
    const bool down = event->type() == QEvent::KeyPress;
    const unsigned scanCode = event->nativeScanCode() & 0xFF;
    // Qt tells the releases of key repeats only while the next press is already there; the keyboard itself knows.
    if (!down && (event->isAutoRepeat() || KeyIsDown(scanCode))) {
        return;
    }
    int& held = heldKeys[scanCode];
    HostEvent out = EventOfNow(down ? hostKeyDown : hostKeyUp, window);
    out.modifiers = HostModifiersOf(event->modifiers());
    if (down) {
        out.key = VirtualKeyOf(event);
        out.character = CharacterOf(event, out.key);
        if (out.key == 0 && out.character == 0) {
            return;
        }
        if (out.key == 0) {
            out.key = keyPacket;
        }
        held = out.key;
        heldIn = window;
        // X11 reports the modifiers as they were before the key.
        out.modifiers |= ModifierOf(out.key);
    } else {
        // Layout and Shift may have changed meanwhile, and the press may have gone to a menu or a dialog.
        if (held == 0) {
            return;
        }
        out.key = held;
        held = 0;
        out.modifiers &= ~ModifierOf(out.key);
    }
    QueueEvent(out);
}

void ReleaseHeldKeys()
{
    bool windowLives = false;
    for (const Window* window : windows) {
        windowLives = windowLives || window == heldIn;
    }
    for (int& held : heldKeys) {
        if (held != 0 && windowLives) {
            HostEvent event = EventOfNow(hostKeyUp, heldIn);
            event.key = held;
            event.modifiers = 0;
            QueueEvent(event);
        }
        held = 0;
    }
}

} // namespace qthost
