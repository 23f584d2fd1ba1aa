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
int RunUntilButton(WindowPtr dialog, int buttonCount, bool keepOnTop)
{
    int32_t itemHit = 0;
    int32_t itemID = 0;
    while (RunDialogStep(dialog, &itemHit, &itemID)) {
        if (keepOnTop) {
            KeepOnTop(dialog);
        }
        if (itemHit >= 1 && itemHit <= buttonCount) {
            return itemHit;
        }
    }
    return 0;
}

constexpr TextBlock messageBlock = {10, 40};

void AddMessage(WindowPtr dialog, int width, int height, const char* text)
{
    AddStaticText(dialog, messageBlock.margin, messageBlock.margin, width - messageBlock.margin,
                  height - messageBlock.room, text);
}

void AddAnswerButton(WindowPtr dialog, int left, int height, int index, int32_t itemID)
{
    char text[textBufferSize];
    GetIndString(text, 15000, index);
    AddPushButton(dialog, left, height - 30, left + 50, height - 10, text, itemID);
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
    WindowPtr savedPort = nullptr;
    GetPort(&savedPort);
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
    AddMessage(dialog, width, height, message);
    if (sound != 0) {
        PlaySoundResource(sound);
    }
    ShowWindowInactive(dialog);
    DrawMockDialog(dialog, true);
    RunUntilButton(dialog, 1, false);
    AdjustMenus();
    DisposeMockDialog(dialog);
    SetPort(savedPort);
    PaintMapWindow();
}

int YesNoAlert(int width, int height, int list, int index, const char* text)
{
    WindowPtr savedPort = nullptr;
    GetPort(&savedPort);
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
    AddAnswerButton(dialog, width - 60, height, 68, answerYes);
    AddAnswerButton(dialog, width - 120, height, 69, answerNo);
    SetDefaultButton(dialog, 2);
    AddMessage(dialog, width, height, question);
    ShowWindowInactive(dialog);
    DrawMockDialog(dialog, false);
    const int answer = RunUntilButton(dialog, 2, true);
    AdjustMenus();
    DisposeMockDialog(dialog);
    SetPort(savedPort);
    return answer == answerYes;
}

int TwoButtonAlert(const char* message, const char* firstText, const char* secondText)
{
    constexpr int width = 271;
    constexpr TextBlock block = {6, 32};
    constexpr int narrowButton = 68;
    constexpr int secondRight = 205;
    WindowPtr savedPort = nullptr;
    GetPort(&savedPort);
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
    AddPushButton(dialog, firstLeft, top, firstLeft + buttonWidth, top + 20, firstText, okItemID);
    int secondLeft = secondRight - narrowButton;
    const int secondTextWidth = ButtonTextWidth(dialog, secondText);
    if (secondTextWidth > buttonWidth) {
        secondLeft = secondRight - (secondTextWidth + 10);
    }
    AddPushButton(dialog, secondLeft, top, secondRight, top + 20, secondText, cancelItemID);
    SetDefaultButton(dialog, 2);
    AddStaticText(dialog, block.margin, block.margin, width - block.margin, height - block.room, message);
    ShowWindowInactive(dialog);
    DrawMockDialog(dialog, true);
    PlaySoundResource(refusalSound);
    PlaySoundResource(refusalSound);
    const int button = RunUntilButton(dialog, 2, false);
    DisposeMockDialog(dialog);
    SetPort(savedPort);
    return button != 0 ? button : 2;
}

void MemoryAlert()
{
    char message[textBufferSize];
    char quitText[textBufferSize];
    char continueText[textBufferSize];
    GetIndString(message, 15000, 18);
    GetIndString(quitText, 6000, 15);
    GetIndString(continueText, 6000, 14);
    if (TwoButtonAlert(message, quitText, continueText) == 1) {
        RequestQuit();
    }
}
