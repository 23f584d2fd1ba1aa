#include "dialogs/modal.h"
#include "toolbox/events.h"
#include "toolbox/menus.h"
#include "toolbox/shell_door.h"

namespace {

struct Outcome {
    int32_t itemHit;
    int32_t itemID;
};

constexpr Outcome nothing = {0, 0};
constexpr Outcome closeHit = {1, 1};

Outcome Code(int32_t code)
{
    return {code, code};
}

Outcome HitOf(const DialogItem* item)
{
    return item != nullptr ? Outcome{item->number, item->itemID} : nothing;
}

void DispatchCommand(uint32_t menuResult)
{
    if (menuResult != 0) {
        DoMenuCommand(menuResult);
    }
}

bool HasCloseBox(WindowPtr dialog)
{
    const DialogItem* first = dialog->firstItem;
    return first != nullptr && (first->kind == closeBoxItem || first->kind == rightTitleBoxItem);
}

Outcome HandleDialogClick(WindowPtr dialog)
{
    Point point = currentEvent.where;
    GlobalToLocal(&point);
    DialogItem* item = nullptr;
    if (!FindItemAt(point, dialog, &item)) {
        return Code(missedClickCode);
    }
    switch (item->kind) {
    case closeBoxItem:
    case rightTitleBoxItem:
        return closeHit;
    case titleBarItem:
        return Code(dragCode);
    case editTextItem:
        ActivateEditItem(dialog, item);
        return nothing;
    default:
        break;
    }
    if (item->tracksMouse) {
        return TrackButton(item) ? HitOf(item) : nothing;
    }
    PressItem(item);
    return HitOf(item);
}

Outcome HandleMouseDown(WindowPtr dialog)
{
    WindowPtr window = nullptr;
    switch (FindWindow(currentEvent.where, &window)) {
    case inMenuBar:
        DispatchCommand(MenuSelect(currentEvent.where));
        return nothing;
    case inContent:
        if (window == dialog) {
            return HandleDialogClick(dialog);
        }
        if (window != nullptr && window == shell.mapWindow) {
            return Code(mapClickCode);
        }
        DispatchMessageA(&currentEvent.platformMessage);
        return nothing;
    case inDrag:
        return Code(dragCode);
    case inGoAway:
        return window == dialog ? closeHit : nothing;
    default:
        return nothing;
    }
}

bool IsAnswer(WindowPtr dialog, int character, bool control)
{
    if (control) {
        return character == 'W' || character == 'w';
    }
    return character == escapeKey || character == returnKey || character == enterKey ||
           (dialog->activeEditItem != nullptr && character != tabKey);
}

// A dialog that the user does not see comes up first; what was typed until then was meant for something else.
void ShowInsteadOfAnswering(WindowPtr dialog)
{
    BringToTop(dialog);
    MSG message = {};
    while (PeekMessageA(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE)) {
    }
}

Outcome HandleKey(WindowPtr dialog)
{
    const int character = static_cast<int>(currentEvent.message & 0xFF);
    const bool control = (currentEvent.modifiers & controlKey) != 0;
    if (IsAnswer(dialog, character, control) && !IsInSight(dialog)) {
        ShowInsteadOfAnswering(dialog);
        return nothing;
    }
    if (character == escapeKey || (control && (character == 'W' || character == 'w'))) {
        return HasCloseBox(dialog) ? closeHit : nothing;
    }
    if (control) {
        DispatchCommand(MenuKey(character));
        return nothing;
    }
    if (character == tabKey) {
        return nothing;
    }
    if (dialog->activeEditItem != nullptr) {
        Outcome outcome = nothing;
        EditItemKey(dialog, character, &outcome.itemHit, &outcome.itemID);
        return outcome;
    }
    if (character == returnKey || character == enterKey) {
        return HitOf(dialog->defaultItem);
    }
    return Code(keyCode);
}

Outcome HandleUpdate(WindowPtr dialog)
{
    const WindowPtr window = reinterpret_cast<WindowPtr>(currentEvent.message);
    if (window == dialog) {
        DrawMockDialog(dialog, true);
        return Code(dialogUpdateCode);
    }
    if (window != nullptr && window == shell.mapWindow) {
        return Code(mapUpdateCode);
    }
    DispatchMessageA(&currentEvent.platformMessage);
    return nothing;
}

Outcome HandleEvent(WindowPtr dialog)
{
    switch (currentEvent.what) {
    case mouseDown:
        return HandleMouseDown(dialog);
    case mouseUp:
        return Code(mouseUpCode);
    case keyDown:
        return HandleKey(dialog);
    case updateEvt:
        return HandleUpdate(dialog);
    case mouseMovedEvt:
        return Code(mouseMovedCode);
    case wheelUpEvt:
    case wheelDownEvt:
        return Code(currentEvent.what);
    default:
        return nothing;
    }
}

} // namespace

void ModalDialogStep(WindowPtr dialog, int32_t* itemHit, int32_t* itemID, HRGN mouseRegion)
{
    constexpr uint32_t sleepTicks = 5;
    const SavedPort saved = UsePort(dialog);
    const bool taken = WaitNextEvent(everyEvent, &currentEvent, sleepTicks, mouseRegion) != nullEvent;
    const Outcome outcome = taken ? HandleEvent(dialog) : nothing;
    *itemHit = outcome.itemHit;
    *itemID = outcome.itemID;
    RestorePort(saved);
}

bool RunDialogStep(WindowPtr dialog, int32_t* itemHit, int32_t* itemID)
{
    if (dialog->defaultItem == nullptr) {
        return false;
    }
    ModalDialogStep(dialog, itemHit, itemID, nullptr);
    if (*itemHit == mapUpdateCode) {
        PaintMapWindow();
    }
    KeepOnTop(dialog);
    return shell.quitRequested == 0;
}
