// Dialogs and their items: made, found, read, set and disposed of.
#include "dialogs/item_drawing.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr DWORD dialogWindowStyle = WS_POPUP | WS_BORDER;

HWND NewDialogWindow(int left, int top, int width, int height)
{
    const HWND owner = shell.mapWindow != nullptr ? shell.mapWindow->window : nullptr;
    const HWND window = CreateWindowExA(0, "WMockDialogClass", "", dialogWindowStyle, left, top, width, height, owner,
                                        nullptr, shell.appInstance, nullptr);
    if (window != nullptr) {
        constexpr UINT orderOnly = SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE;
        SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, orderOnly);
        SetWindowPos(window, HWND_NOTOPMOST, 0, 0, 0, 0, orderOnly);
    }
    return window;
}

template <typename Record>
Record* NewZeroFilled()
{
    const HGLOBAL block = GlobalAlloc(GHND, sizeof(Record));
    return block != nullptr ? static_cast<Record*>(GlobalLock(block)) : nullptr;
}

void FreeBlock(void* address)
{
    const HGLOBAL block = GlobalHandle(address);
    GlobalUnlock(block);
    GlobalFree(block);
}

// What AddDialogItem is given for an item of a kind.
struct KindLook {
    int kind;
    int rectCount; // more than two make a press tracked
    COLORREF colour;
    int textStyle;
};

constexpr KindLook kindLooks[] = {
    {checkBoxItem, 5, 0, stylePlain}, // the colour is the state
    {staticTextItem, 1, dialogTextColour, styleBold},
    {editTextItem, 1, editTextColour, styleBold},
    {pushButtonItem, 3, dialogTextColour, stylePlain},
};

KindLook LookOfKind(int kind)
{
    for (const KindLook& look : kindLooks) {
        if (look.kind == kind) {
            return look;
        }
    }
    return {kind, 0, dialogTextColour, stylePlain};
}

// In the interface bitmap, in the order in which an item takes them: states 0, 2, 1, 3.
constexpr Rect checkBoxImages[] = {
    MakeRect(344, 225, 362, 239),
    MakeRect(344, 238, 362, 252),
    MakeRect(325, 225, 343, 239),
    MakeRect(325, 238, 343, 252),
};

void PlaceItem(DialogItem* item, int rectCount, const Rect* rects, int textH, int textV)
{
    const Rect& port = item->dialog->portRect;
    switch (item->kind) {
    case closeBoxItem:
        item->rect = MakeRect(8, 5, 17, 14);
        item->sound = 0;
        break;
    case rightTitleBoxItem:
        item->rect = MakeRect(port.right - 17, 5, port.right - 8, 14);
        item->sound = 0;
        break;
    case titleBarItem:
        item->rect = MakeRect(port.left, port.top, port.right, port.top + 18);
        item->sound = 0;
        break;
    default:
        if (rectCount >= 1) {
            item->rect = rects[0];
        }
        break;
    }
    if (item->kind == checkBoxItem) {
        const bool labelAtBox = textH == 0 && textV == 0;
        item->textH = static_cast<int16_t>(labelAtBox ? item->rect.right + 4 : textH);
        item->textV = static_cast<int16_t>(labelAtBox ? item->rect.bottom - 2 : textV);
    }
    constexpr int imageStates[] = {0, 2, 1, 3};
    for (int i = 1; i < rectCount && i <= static_cast<int>(std::size(imageStates)); i++) {
        item->images[imageStates[i - 1]] = rects[i];
    }
}

void AppendItem(WindowPtr dialog, DialogItem* item)
{
    DialogItem** end = &dialog->firstItem;
    while (*end != nullptr) {
        end = &(*end)->next;
    }
    *end = item;
    dialog->itemCount++;
    item->number = dialog->itemCount;
}

DialogItem* AddStandardButton(WindowPtr dialog, int left, int top, int right, int bottom, TextID textID,
                              int32_t itemID)
{
    char text[textBufferSize];
    GetText(text, textID);
    return AddItem(dialog, {pushButtonItem, MakeRect(left, top, right, bottom), text, itemID});
}

DialogItem* FindItem(WindowPtr dialog, int32_t itemID, int number)
{
    return itemID != 0 ? FindItemByID(dialog, itemID) : FindItemByNumber(dialog, number);
}

} // namespace

WindowPtr NewMockDialog(int frameStyle, int width, int height, const char* title, const Point* topLeft)
{
    const Rect& screen = shell.screenRect;
    const Point centred = MakePoint(screen.left + (screen.right - screen.left - width) / 2,
                                    screen.top + (screen.bottom - screen.top - height) / 2);
    const Point corner = topLeft != nullptr ? *topLeft : centred;
    const WindowPtr dialog = NewPortRecord();
    if (dialog == nullptr) {
        return nullptr;
    }
    const HWND window = NewDialogWindow(corner.h, corner.v, width, height);
    if (window == nullptr) {
        FreePortRecord(dialog);
        return nullptr;
    }
    PrepareWindowPort(dialog, window);
    // Where pop-ups have a border the window still has to grow by it.
    SizeWindow(dialog, width, height, 0);
    MoveWindowTo(dialog, corner.h, corner.v, 0);

    const SavedPort saved = UsePort(dialog);
    SetPortFont(fontTimesBold, 12, styleBold);
    TextForeColor(PALETTERGB(0, 0, 0));
    BackColor(dialogBackColour);
    RestorePort(saved);

    if (title != nullptr && title[0] != 0) {
        SetWTitle(dialog, title);
    }
    dialog->frameStyle = static_cast<uint8_t>(frameStyle);
    return dialog;
}

DialogItem* AddDialogItem(WindowPtr dialog, int rectCount, const Rect* rects, const char* text, int textH, int textV,
                          int visible, COLORREF colour, int kind, int32_t itemID, int textStyle, int textSize)
{
    DialogItem* item = dialog != nullptr ? NewZeroFilled<DialogItem>() : nullptr;
    if (item == nullptr) {
        return nullptr;
    }
    item->dialog = dialog;
    item->dc = dialog->dc;
    item->clickable = kind != staticTextItem;
    item->visible = visible != 0;
    item->kind = static_cast<uint8_t>(kind);
    item->itemID = itemID;
    item->sound = kind != staticTextItem ? refusalSound : 0;
    item->textColor = dialogTextColour;
    item->backColor = dialogBackColour;
    item->tracksMouse = rectCount > 2;
    if (kind == checkBoxItem || kind == staticTextItem || kind == editTextItem) {
        item->textStyle = static_cast<uint8_t>(textStyle);
        item->textSize = static_cast<uint8_t>(textSize);
    }
    if (kind == checkBoxItem) {
        item->state = static_cast<uint8_t>(colour);
    } else if (kind == staticTextItem || kind == editTextItem) {
        item->textColor = colour;
    }
    PlaceItem(item, rectCount, rects, textH, textV);
    if (text != nullptr) {
        CopyText(text, item->text);
    }
    AppendItem(dialog, item);
    return item;
}

DialogItem* AddItem(WindowPtr dialog, const DialogItemSpec& spec)
{
    constexpr int textSize = 10;
    const KindLook look = LookOfKind(spec.kind);
    Rect rects[1 + std::size(checkBoxImages)] = {spec.place};
    if (spec.kind == checkBoxItem) {
        std::copy(std::begin(checkBoxImages), std::end(checkBoxImages), rects + 1);
    }
    DialogItem* item = AddDialogItem(dialog, look.rectCount, rects, spec.text, 0, 0, 1, look.colour, spec.kind,
                                     spec.itemID, look.textStyle, textSize);
    if (item != nullptr) {
        item->digitsOnly = spec.digitsOnly;
    }
    return item;
}

DialogItem* AddOKButton(WindowPtr dialog, int left, int top, int right, int bottom)
{
    return AddStandardButton(dialog, left, top, right, bottom, okButtonText, okItemID);
}

DialogItem* AddCancelButton(WindowPtr dialog, int left, int top, int right, int bottom)
{
    return AddStandardButton(dialog, left, top, right, bottom, cancelButtonText, cancelItemID);
}

void DisposeMockDialog(WindowPtr dialog)
{
    if (dialog == nullptr) {
        return;
    }
    while (dialog->firstItem != nullptr) {
        DialogItem* item = dialog->firstItem;
        dialog->firstItem = item->next;
        FreeBlock(item);
    }
    const HWND window = dialog->window;
    if (window == nullptr) {
        FreePortRecord(dialog);
        return;
    }
    ReleaseWindowPort(dialog);
    DestroyWindow(window);
}

int FindItemAt(Point point, WindowPtr dialog, DialogItem** item)
{
    *item = nullptr;
    if (dialog == nullptr) {
        return 0;
    }
    DialogItem* candidate = dialog->firstItem;
    while (candidate != nullptr && !(candidate->clickable && PtInRect(point, &candidate->rect))) {
        candidate = candidate->next;
    }
    *item = candidate;
    return candidate != nullptr;
}

int DialogItemKind(const DialogItem* item)
{
    return item->kind;
}

DialogItem* FindItemByID(WindowPtr dialog, int32_t itemID)
{
    DialogItem* item = dialog != nullptr ? dialog->firstItem : nullptr;
    while (item != nullptr && item->itemID != itemID) {
        item = item->next;
    }
    return item;
}

DialogItem* FindItemByNumber(WindowPtr dialog, int number)
{
    DialogItem* item = dialog != nullptr ? dialog->firstItem : nullptr;
    while (item != nullptr && item->number != number) {
        item = item->next;
    }
    return item;
}

void SelectEditItem(WindowPtr dialog, int32_t itemID, int number)
{
    DialogItem* item = FindItem(dialog, itemID, number);
    if (item == nullptr || item->kind != editTextItem) {
        return;
    }
    if (dialog->activeEditItem != nullptr && dialog->activeEditItem != item) {
        InvalidateWindowRect(dialog, &dialog->activeEditItem->rect);
    }
    dialog->activeEditItem = item;
    InvalidateWindowRect(dialog, &item->rect);
}

int32_t GetItemValue(WindowPtr dialog, int32_t itemID, int number)
{
    const DialogItem* item = FindItem(dialog, itemID, number);
    int32_t value = 0;
    if (item != nullptr) {
        StringToNum(item->text, &value);
    }
    return value;
}

void SetItemState(WindowPtr dialog, int32_t itemID, int number, int state)
{
    DialogItem* item = FindItem(dialog, itemID, number);
    if (item != nullptr && item->state != state) {
        item->state = static_cast<uint8_t>(state);
        InvalidateWindowRect(dialog, &item->rect);
    }
}

bool ItemStateIs(WindowPtr dialog, int32_t itemID, int number, int state)
{
    const DialogItem* item = FindItem(dialog, itemID, number);
    return item != nullptr && item->state == state;
}

int GetItemState(WindowPtr dialog, int32_t itemID, int number)
{
    const DialogItem* item = FindItem(dialog, itemID, number);
    return item != nullptr ? item->state : 0;
}

void ToggleItem(WindowPtr dialog, int32_t itemID, int number)
{
    SetItemState(dialog, itemID, number, GetItemState(dialog, itemID, number) == 1 ? 0 : 1);
}

LRESULT CALLBACK DialogWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WindowPtr dialog = WindowRecord(window);
    switch (message) {
    case WM_PAINT:
        if (dialog != nullptr) {
            DrawMockDialog(dialog, true);
            return 0;
        }
        break;
    case WM_DESTROY:
        // When the system closes the map window its dialogs go with it; their owners' loops end and dispose of them.
        if (dialog != nullptr) {
            DetachWindowPort(dialog);
        }
        break;
    case WM_CLOSE:
        // Never destroys the window under its owner's loop: as Escape, which closes a palette and nothing else.
        PostMessageA(window, WM_CHAR, VK_ESCAPE, 0);
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_MOUSEMOVE:
        RestoreCursor();
        return 0;
    default:
        break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
