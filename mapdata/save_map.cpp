#include "dialogs/modal.h"
#include "mapdata/data_file.h"
#include "mapdata/map_commands.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

#include <iterator>

namespace {

// Renames the data file to its backup name, over an older backup if need be. A failure is not reported: a new map has
// no data file yet, and the save goes on in any case.
void MakeBackup()
{
    FileSpec backup = currentMap.dataFileSpec;
    AppendText(backup.name, "_old");
    if (EqualString(backup.name, currentMap.dataFileSpec.name, 1, 1)) {
        return; // the longer name does not fit
    }
    if (RenameFileSpec(&currentMap.dataFileSpec, backup.name) != 0 && DeleteFileSpec(&backup) == 0) {
        RenameFileSpec(&currentMap.dataFileSpec, backup.name);
    }
}

int16_t CreateTarget()
{
    const FileSpec* target = &currentMap.dataFileSpec;
    HFILE created = noFile;
    if (CreateFileSpec(target, &created) != 0) {
        DeleteFileSpec(target);
        if (CreateFileSpec(target, &created) != 0) {
            return 1;
        }
    }
    CloseFile(created); // the map is written through a second handle
    return 0;
}

struct QuitButton {
    int left;
    int right;
    int list;
    int index;
    int32_t itemID;
};

// Save and No Save share an ID, their numbers tell them apart.
constexpr QuitButton quitButtons[] = {
    {170, 230, 15000, 138, okItemID},
    {100, 160, 15000, 139, okItemID},
    {30, 90, 6000, 44, cancelItemID},
};

enum QuitAnswer { saveAnswer = 1, noSaveAnswer = 2, cancelAnswer = 3 };

} // namespace

int16_t SaveMap(bool confirm)
{
    if (confirm && !YesNoAlert(240, 100, 15000, 137, nullptr)) {
        return 1;
    }
    CloseMapDataFile();
    if (currentMap.record.mapID == currentMap.loadedMapID) {
        MakeBackup();
    } else {
        DataFileNameForID(currentMap.record.mapID, currentMap.dataFileSpec.name);
    }
    if (CreateTarget() != 0) {
        return 1;
    }
    if (OpenFileSpec(&currentMap.dataFileSpec, &currentMap.openDataFile) != 0) {
        MessageAlert(0, 0, alertSound, 15000, 136, nullptr);
        return 1;
    }
    const int16_t status = WriteMapData(currentMap.openDataFile);
    CloseMapDataFile();
    if (status == 0) {
        currentMap.mapModified = 0;
    }
    return status;
}

int AskSaveBeforeQuit()
{
    if (!currentMap.mapModified) {
        return noSaveAnswer;
    }
    WindowPtr savedPort = nullptr;
    GetPort(&savedPort);
    const WindowPtr dialog = NewMockDialog(0, 240, 70, "", nullptr);
    if (dialog == nullptr) {
        return 0;
    }
    char text[textBufferSize];
    for (const QuitButton& button : quitButtons) {
        GetIndString(text, button.list, button.index);
        AddPushButton(dialog, button.left, 40, button.right, 60, text, button.itemID);
    }
    // With a button missing for want of memory the numbers would tell the wrong answer.
    dialog->defaultItem = dialog->itemCount == std::size(quitButtons) ? dialog->firstItem : nullptr;
    GetIndString(text, 15000, 140);
    AddStaticText(dialog, 10, 10, 230, 30, text);

    ShowWindowInactive(dialog);
    DrawMockDialog(dialog, false);
    int answer = cancelAnswer;
    int32_t itemHit = 0;
    int32_t itemID = 0;
    while (RunDialogStep(dialog, &itemHit, &itemID)) {
        KeepOnTop(dialog);
        if (itemHit >= saveAnswer && itemHit <= cancelAnswer) {
            answer = itemHit;
            break;
        }
    }
    DisposeMockDialog(dialog);
    SetPort(savedPort);
    PaintMapWindow();
    return answer;
}

void QuitCommand()
{
    if (currentMap.mapModified) {
        const int answer = AskSaveBeforeQuit();
        if (answer == saveAnswer) {
            SaveMap(false);
        }
        if (answer == saveAnswer || answer == noSaveAnswer) {
            RequestQuit();
        }
    } else if (YesNoAlert(200, 70, 4000, 17, nullptr)) {
        RequestQuit();
    }
    PaintMapWindow();
}
