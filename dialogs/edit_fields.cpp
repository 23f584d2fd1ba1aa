// How edit fields become active and take keys.
#include "dialogs/item_drawing.h"
#include "toolbox/events.h"
#include "toolbox/shell_door.h"

#include <cstring>

namespace {

constexpr size_t longestEntry = 63;

void RemoveLastCharacter(DialogItem* field)
{
    WindowPtr dialog = field->dialog;
    const size_t length = strlen(field->text);
    if (dialog->typedCount == 0) {
        field->text[0] = 0;
    } else if (length > 0) {
        field->text[length - 1] = 0;
        dialog->typedCount--;
    }
}

void AppendCharacter(DialogItem* field, char character)
{
    const bool isDigit = character >= '0' && character <= '9';
    if (character == 0 || (field->digitsOnly && !isDigit)) {
        return;
    }
    WindowPtr dialog = field->dialog;
    if (dialog->typedCount == 0) {
        field->text[0] = 0; // the first key replaces the old value
    }
    const size_t length = strlen(field->text);
    field->text[length] = character;
    field->text[length + 1] = 0;
    dialog->typedCount++;

    // Shown at once; the next paint brings the active field's colours back.
    Rect inside = field->rect;
    OutsetRect(&inside, -1, -1);
    const SavedDrawing saved = BeginDrawing(dialog);
    DrawTextInBox(field->text, &inside, field->textColor, editIdleColour, field->textSize, field->textStyle, 1);
    EndDrawing(saved);
}

} // namespace

void ActivateEditItem(WindowPtr dialog, DialogItem* item)
{
    DialogItem* active = dialog->activeEditItem;
    if (active == item) {
        return;
    }
    if (active != nullptr) {
        InvalidateWindowRect(dialog, &active->rect);
    }
    dialog->activeEditItem = item;
    dialog->typedCount = 0;
    InvalidateWindowRect(dialog, &item->rect);
}

void EditItemKey(WindowPtr dialog, int character, int32_t* itemHit, int32_t* itemID)
{
    DialogItem* field = dialog->activeEditItem;
    if (field == nullptr) {
        return;
    }
    *itemHit = field->number;
    *itemID = field->itemID;
    Rect inside = field->rect;
    OutsetRect(&inside, -1, -1);
    InvalidateWindowRect(dialog, &inside);
    if (strlen(field->text) >= longestEntry) {
        return;
    }
    switch (character) {
    case backspaceKey:
        RemoveLastCharacter(field);
        break;
    case enterKey:
    case returnKey:
        dialog->typedCount = 0;
        dialog->activeEditItem = nullptr;
        break;
    default:
        AppendCharacter(field, static_cast<char>(character));
        break;
    }
}
