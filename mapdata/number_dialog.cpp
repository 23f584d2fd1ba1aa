#include "mapdata/number_dialog.h"

#include "dialogs/modal.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

#include <algorithm>

namespace {

constexpr int fieldLeft = 10;
constexpr int labelLeft = 45;
constexpr int rowHeight = 20;

void AddNumberField(WindowPtr dialog, int width, const NumberField& field)
{
    char text[textBufferSize] = "";
    NumToString(field.value, text);
    if (field.kind == editedNumber) {
        AddItem(dialog, {.kind = editTextItem,
                         .place = MakeRect(fieldLeft, field.top, fieldLeft + 30, field.top + 15),
                         .text = text,
                         .itemID = field.itemID,
                         .digitsOnly = true});
    } else {
        AddItem(dialog, {staticTextItem, MakeRect(fieldLeft, field.top, labelLeft, field.top + rowHeight), text,
                         field.itemID});
    }
    GetText(text, field.label);
    AddItem(dialog, {staticTextItem, MakeRect(labelLeft, field.top, width - 10, field.top + rowHeight), text});
}

// Takes the numbers over; returns the first field that is outside its limits, or null.
const NumberField* TakeNumbers(WindowPtr dialog, NumberField* fields, int fieldCount)
{
    for (int i = 0; i < fieldCount; i++) {
        fields[i].value = GetItemValue(dialog, fields[i].itemID, 0);
    }
    const NumberField* end = fields + fieldCount;
    const NumberField* wrong = std::find_if_not(fields, fields + fieldCount, [](const NumberField& field) {
        return field.value >= field.least && field.value <= field.greatest;
    });
    return wrong != end ? wrong : nullptr;
}

} // namespace

int RunNumberDialog(int width, int height, const char* heading, NumberField* fields, int fieldCount)
{
    DisableMenuTitles();
    const WindowPtr dialog = NewMockDialog(0, width, height, "", nullptr);
    if (dialog == nullptr) {
        return 0;
    }
    dialog->defaultItem = AddOKButton(dialog, width - 60, height - 30, width - 10, height - 10);
    AddCancelButton(dialog, width - 130, height - 30, width - 70, height - 10);
    if (heading != nullptr) {
        AddItem(dialog, {staticTextItem, MakeRect(10, 10, width - 10, 30), heading});
    }
    for (int i = 0; i < fieldCount; i++) {
        AddNumberField(dialog, width, fields[i]);
    }
    ShowWindowInactive(dialog);
    DrawMockDialog(dialog, true);

    int accepted = 0;
    int32_t itemHit = 0;
    int32_t itemID = 0;
    while (RunDialogStep(dialog, &itemHit, &itemID) && itemID != cancelItemID) {
        if (itemID != okItemID) {
            continue;
        }
        const NumberField* wrong = TakeNumbers(dialog, fields, fieldCount);
        if (wrong == nullptr) {
            accepted = 1;
            break;
        }
        MessageAlert(0, 0, alertSound, wrong->error);
        DisableMenuTitles();
        if (wrong->kind == editedNumber) {
            SelectEditItem(dialog, wrong->itemID, 0);
        }
    }
    DisposeMockDialog(dialog);
    return accepted;
}
