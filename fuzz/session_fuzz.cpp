// A session of the real program. The first byte chooses how it begins, the second the terrain; then three bytes a
// step: what the user does, and two numbers for where or how much. At the end the user answers whatever is open,
// saves and quits.
#include "app/application.h"
#include "app/commands.h"
#include "dialogs/modal.h"
#include "fuzz/session_world.h"
#include "fuzz/targets.h"
#include "platform/host/headless/headless.h"
#include "platform/kernel/test_hooks.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr size_t mostSteps = 80;
constexpr int mostAnswers = 200; // of the closing questions
constexpr int settleTime = 60;

SessionWorld world;

// ---- steps ----

const DialogItem* PushButton(WindowPtr dialog, const std::string& text)
{
    const DialogItem* item = dialog->firstItem;
    while (item != nullptr && !(item->kind == pushButtonItem && text == item->text)) {
        item = item->next;
    }
    return item;
}

void ClickItem(WindowPtr dialog, const DialogItem* item)
{
    const HeadlessWindow* popup = HeadlessPopup();
    if (dialog == nullptr || item == nullptr || popup == nullptr) {
        return;
    }
    ScriptClick(popup->client.left + (item->rect.left + item->rect.right) / 2,
                popup->client.top + (item->rect.top + item->rect.bottom) / 2);
}

void ClickNthItem(int number)
{
    const WindowPtr dialog = TopSessionDialog();
    const DialogItem* item = dialog != nullptr ? dialog->firstItem : nullptr;
    for (int i = dialog != nullptr ? number % std::max<int>(dialog->itemCount, 1) : 0; item != nullptr && i > 0;
         i--) {
        item = item->next;
    }
    ClickItem(dialog, item);
}

void PlayStep(int kind, int a, int b)
{
    constexpr int keys[] = {VK_RETURN, VK_ESCAPE, VK_TAB,    VK_BACK, VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN,
                            VK_F1 + 7, VK_F1 + 8, VK_DELETE, VK_HOME, VK_END,  '0',      '7',   'A'};
    constexpr int modifierKeys[] = {VK_SHIFT, VK_MENU, VK_CONTROL};
    const int x = a * headless.screenWidth / 256;
    const int y = b * headless.screenHeight / 256;
    switch (kind % 18) {
    case 0:
        return ScriptPress(x, y);
    case 1:
        return ScriptMove(x, y);
    case 2:
        return ScriptRelease();
    case 3:
        return ScriptClick(x, y, b % 8 == 0 ? hostRightButton : hostLeftButton);
    case 4:
    case 5:
        return ScriptCall([=] { ClickNthItem(a); });
    case 6:
        return ScriptKey(keys[static_cast<size_t>(a) % std::size(keys)]);
    case 7:
        return ScriptKeyDown(modifierKeys[a % 3]);
    case 8:
        return ScriptKeyUp(modifierKeys[a % 3]);
    case 9:
        return ScriptControl("notsmqr"[a % 7]);
    case 10:
    case 11:
        return ScriptMenu(commandTable[a % commandCount].command);
    case 12:
        return ScriptWheel((a - 128) * 4);
    case 13:
        return ScriptResize(a * 8, b * 8);
    case 14:
        return ScriptMoveFrame(a * 8 - 512, b * 8 - 512);
    case 15:
        return ScriptScroll(a & 1, (a >> 1) % 9, b * 16 - 1024);
    case 16:
        return ScriptText(std::to_string(a * (b % 5)).c_str());
    default:
        if (a < 8) {
            return ScriptClose();
        }
        return a < 16    ? ScriptActivate(b & 1)
               : a < 160 ? ScriptFile(SessionFileName(world, b).c_str())
                         : ScriptWait(b);
    }
}

// ---- the end ----

enum EndStage { answerQuestions, confirmSave, compareFile, confirmQuit, endReached };

void EndSession(EndStage stage, int answersLeft);

void Then(EndStage stage, int answersLeft)
{
    ScriptCall([=] { EndSession(stage, answersLeft); }, settleTime);
}

// Declines what is open; a palette closes with Escape.
void AnswerTopDialog(WindowPtr dialog)
{
    for (const char* text : {"Cancel", "No", "OK", "Continue"}) {
        if (const DialogItem* button = PushButton(dialog, text)) {
            return ClickItem(dialog, button);
        }
    }
    ScriptKey(VK_ESCAPE);
}

// The dialog on top may not be the one whose turn it is: presses where the lowest of the others can be seen, which
// raises it.
void RaiseAnotherDialog()
{
    for (size_t i = headless.windows.size(); i-- > 1;) {
        const HeadlessWindow* window = headless.windows[i];
        if (window->kind != hostPopupWindow || !window->visible) {
            continue;
        }
        for (const int x : {window->client.left + 2, window->client.right - 3}) {
            for (const int y : {window->client.top + 2, window->client.bottom - 3}) {
                if (host->windowAt(x, y) == window->handle) {
                    return ScriptClick(x, y);
                }
            }
        }
    }
}

void EndSession(EndStage stage, int answersLeft)
{
    const WindowPtr dialog = TopSessionDialog();
    CheckSession(&world);
    switch (stage) {
    case answerQuestions:
        if (dialog != nullptr && answersLeft > 0) {
            answersLeft % 4 == 0 ? RaiseAnotherDialog() : AnswerTopDialog(dialog);
            return Then(answerQuestions, answersLeft - 1);
        }
        if (dialog != nullptr) {
            NoteFault(&world, "a dialog that no answer ends");
        }
        CheckSessionAtRest(&world);
        ScriptKey(VK_ESCAPE); // the window may still wait for the press that moves it by hand
        ScriptMenu(shell.mapShown ? 104 : 106);
        return Then(shell.mapShown ? confirmSave : confirmQuit, 0);
    case confirmSave:
        ClickItem(dialog, dialog != nullptr ? PushButton(dialog, "Yes") : nullptr);
        return Then(compareFile, 0);
    case compareFile:
        CompareSavedFile(&world);
        ScriptMenu(106);
        return Then(confirmQuit, 0);
    case confirmQuit:
        for (const char* text : {"No Save", "Yes"}) {
            ClickItem(dialog, dialog != nullptr ? PushButton(dialog, text) : nullptr);
        }
        return Then(endReached, 0);
    case endReached:
        return NoteFault(&world, "the program does not end");
    }
}

} // namespace

std::string FuzzSession(const uint8_t* bytes, size_t size)
{
    if (size < 2) {
        return {};
    }
    BeginSession(&world, bytes[0], bytes[1]);
    const int blocks = GlobalBlocksInUse();
    if ((bytes[0] & 3) != 3) {
        ScriptFile(SessionFileName(world, (bytes[0] & 3) == 2 ? 1 : 0).c_str());
        ScriptMenu((bytes[0] & 3) == 2 ? 101 : 102);
        ScriptWait(settleTime);
    }
    const size_t steps = std::min((size - 2) / 3, mostSteps);
    for (size_t i = 0; i < steps; i++) {
        const uint8_t* step = bytes + 2 + 3 * i;
        PlayStep(step[0], step[1], step[2]);
        ScriptCall([] { CheckSession(&world); });
    }
    ScriptRelease();
    for (const int key : {VK_SHIFT, VK_MENU, VK_CONTROL}) {
        ScriptKeyUp(key);
    }
    Then(answerQuestions, mostAnswers);

    char noArguments[] = "";
    if (WinMain(GetModuleHandleA(nullptr), nullptr, noArguments, SW_SHOWNORMAL) != 0) {
        NoteFault(&world, "the program did not start");
    }
    if (GlobalBlocksInUse() != blocks) {
        NoteFault(&world, "memory blocks were not freed");
    }
    return EndSessionWorld(&world);
}
