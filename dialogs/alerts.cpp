#include "dialogs/item_drawing.h"
#include "dialogs/modal.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

namespace {

constexpr int answerYes = 1;
constexpr int answerNo = 2;

// A dialog whose text stands above its buttons. It grows downwards when the text needs more room; height becomes the
// height that it got.
struct TextBlock {
    int margin;
    int room; // below the text
};

WindowPtr NewTextDialog(int width, int* height, const char* text, const TextBlock& block)
{
    const WindowPtr dialog = NewMockDialog(0, width, *height, "", nullptr);
    if (dialog == nullptr) {
        return nullptr;
    }
    const int needed = StaticTextHeight(dialog, text, width - 2 * block.margin) + block.margin + block.room;
    if (needed > *height) {
        *height = needed;
        SizeWindow(dialog, width, needed, 0);
    }
    return dialog;
}

// The first of the buttons added so far becomes the default item. Short memory may have left one out: an alert whose
// buttons would carry wrong numbers is declined at once.
void SetDefaultButton(WindowPtr dialog, int buttonCount)
{
    dialog->defaultItem = dialog->itemCount == buttonCount ? dialog->firstItem : nullptr;
}

// Runs the dialog until one of its first buttons is hit, which is returned; 0 when the program is to end.
int RunUntilButton(WindowPtr dialog, int buttonCount)
{
    int32_t itemHit = 0;
    int32_t itemID = 0;
    while (RunDialogStep(dialog, &itemHit, &itemID)) {
        if (itemHit >= 1 && itemHit <= buttonCount) {
            return itemHit;
        }
    }
    return 0;
}

constexpr TextBlock messageBlock = {10, 40};

void AddMessage(WindowPtr dialog, int width, int height, const char* text, const TextBlock& block)
{
    const Rect place = MakeRect(block.margin, block.margin, width - block.margin, height - block.room);
    AddItem(dialog, {staticTextItem, place, text});
}

void AddAnswerButton(WindowPtr dialog, int left, int height, TextID textID, int32_t itemID)
{
    char text[textBufferSize];
    GetText(text, textID);
    AddItem(dialog, {pushButtonItem, MakeRect(left, height - 30, left + 50, height - 10), text, itemID});
}

void TakeText(char* buffer, bool fromTable, int list, int index, const char* text)
{
    buffer[0] = 0;
    if (fromTable) {
        GetIndString(buffer, list, index);
    } else if (text != nullptr) {
        CopyText(text, buffer);
    }
}

} // namespace

void MessageAlert(int width, int height, int sound, int list, int index, const char* text)
{
    InitCursor();
    DisableMenuTitles();
    if (width == 0 && height == 0) {
        width = 240;
        height = 138;
    }
    char message[textBufferSize];
    TakeText(message, index != 0, list, index, text);
    const WindowPtr dialog = NewTextDialog(width, &height, message, messageBlock);
    if (dialog == nullptr) {
        AdjustMenus();
        return;
    }
    AddOKButton(dialog, width - 60, height - 30, width - 10, height - 10);
    SetDefaultButton(dialog, 1);
    AddMessage(dialog, width, height, message, messageBlock);
    if (sound != 0) {
        PlaySoundResource(sound);
    }
    ShowWindowInactive(dialog);
    DrawMockDialog(dialog, true);
    RunUntilButton(dialog, 1);
    AdjustMenus();
    DisposeMockDialog(dialog);
    PaintMapWindow();
}

void MessageAlert(int width, int height, int sound, TextID text)
{
    MessageAlert(width, height, sound, ListOf(text), IndexOf(text), nullptr);
}

int YesNoAlert(int width, int height, int list, int index, const char* text)
{
    DisableAllMenus();
    if (shell.mapWindow != nullptr) {
        DrawMenuBar(shell.mapWindow->window);
    }
    if (width == 0 && height == 0) {
        width = 354;
        height = 108;
    }
    char question[textBufferSize];
    TakeText(question, list != 0, list, index, text);
    const WindowPtr dialog = NewTextDialog(width, &height, question, messageBlock);
    if (dialog == nullptr) {
        AdjustMenus();
        return 0;
    }
    AddAnswerButton(dialog, width - 60, height, yesButtonText, answerYes);
    AddAnswerButton(dialog, width - 120, height, noButtonText, answerNo);
    SetDefaultButton(dialog, 2);
    AddMessage(dialog, width, height, question, messageBlock);
    ShowWindowInactive(dialog);
    DrawMockDialog(dialog, false);
    const int answer = RunUntilButton(dialog, 2);
    AdjustMenus();
    DisposeMockDialog(dialog);
    return answer == answerYes;
}

int YesNoAlert(int width, int height, TextID text)
{
    return YesNoAlert(width, height, ListOf(text), IndexOf(text), nullptr);
}

int TwoButtonAlert(const char* message, const char* firstText, const char* secondText)
{
    constexpr int width = 271;
    constexpr TextBlock block = {6, 32};
    constexpr int narrowButton = 68;
    constexpr int secondRight = 205;
    InitCursor();
    int height = 79;
    const WindowPtr dialog = NewTextDialog(width, &height, message, block);
    if (dialog == nullptr) {
        return 0;
    }
    const int top = height - 30;
    int firstLeft = 57;
    int buttonWidth = narrowButton;
    const int firstTextWidth = ButtonTextWidth(dialog, firstText);
    if (firstTextWidth > narrowButton) {
        firstLeft = 10;
        buttonWidth = firstTextWidth + 10;
    }
    AddItem(dialog,
            {pushButtonItem, MakeRect(firstLeft, top, firstLeft + buttonWidth, top + 20), firstText, okItemID});
    int secondLeft = secondRight - narrowButton;
    const int secondTextWidth = ButtonTextWidth(dialog, secondText);
    if (secondTextWidth > buttonWidth) {
        secondLeft = secondRight - (secondTextWidth + 10);
    }
    AddItem(dialog, {pushButtonItem, MakeRect(secondLeft, top, secondRight, top + 20), secondText, cancelItemID});
    SetDefaultButton(dialog, 2);
    AddMessage(dialog, width, height, message, block);
    ShowWindowInactive(dialog);
    DrawMockDialog(dialog, true);
    PlaySoundResource(refusalSound);
    PlaySoundResource(refusalSound);
    const int button = RunUntilButton(dialog, 2);
    DisposeMockDialog(dialog);
    return button != 0 ? button : 2;
}

void MemoryAlert()
{
    char message[textBufferSize];
    char quitText[textBufferSize];
    char continueText[textBufferSize];
    GetText(message, memoryErrorText);
    GetText(quitText, quitButtonText);
    GetText(continueText, continueButtonText);
    if (TwoButtonAlert(message, quitText, continueText) == 1) {
        RequestQuit();
    }
}
