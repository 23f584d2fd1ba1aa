#include "dialogs/modal.h"
#include "mapdata/data_file.h"
#include "mapdata/failure.h"
#include "mapdata/map_commands.h"
#include "mapdata/rescue.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

#include <iterator>

namespace {

// Whatever the commands before did: a save writes neither the art nor another map's file, nor any that is no map's.
bool TargetIsThisMaps()
{
    const FileSpec& target = currentMap.dataFileSpec;
    return EqualString(target.folder, currentMap.ownFileSpec.folder, 1, 1) &&
           EqualString(target.name, currentMap.ownFileSpec.name, 1, 1) &&
           !EqualString(target.name, currentMap.artFileSpec.name, 0, 1) && MapNumberInName(target.name) != 0;
}

// Renames the data file to its backup name, over an older backup if need be. The save goes on in any case. 0, also
// for a new map, which has no data file yet; otherwise why there is no backup.
int16_t MakeBackup()
{
    FileSpec backup = currentMap.dataFileSpec;
    AppendText(backup.name, "_old");
    if (EqualString(backup.name, currentMap.dataFileSpec.name, 1, 1)) {
        return ERROR_FILENAME_EXCED_RANGE; // the longer name does not fit
    }
    int16_t status = RenameFileSpec(&currentMap.dataFileSpec, backup.name);
    if (status == 0) {
        return 0;
    }
    const bool isNew = status == ERROR_FILE_NOT_FOUND;
    const int16_t deleted = DeleteFileSpec(&backup);
    if (deleted == 0) {
        status = RenameFileSpec(&currentMap.dataFileSpec, backup.name);
    } else if (status == ERROR_ALREADY_EXISTS) {
        status = deleted;
    }
    return isNew ? int16_t{0} : status;
}

int16_t CreateTarget()
{
    const FileSpec* target = &currentMap.dataFileSpec;
    HFILE created = noFile;
    if (CreateFileSpec(target, &created) != 0) {
        DeleteFileSpec(target);
        const int16_t status = CreateFileSpec(target, &created);
        if (status != 0) {
            return status;
        }
    }
    CloseFile(created); // the map is written through a second handle
    return 0;
}

struct QuitButton {
    int left;
    int right;
    TextID textID;
    int32_t itemID;
};

// Save and No Save share an ID, their numbers tell them apart.
constexpr QuitButton quitButtons[] = {
    {170, 230, saveButtonText, okItemID},
    {100, 160, noSaveButtonText, okItemID},
    {30, 90, cancelButtonText, cancelItemID},
};

enum QuitAnswer { saveAnswer = 1, noSaveAnswer = 2, cancelAnswer = 3 };

} // namespace

SaveStatus WriteMapFiles(BackupRule rule)
{
    CloseMapDataFile();
    SaveStatus status;
    FileProtection protection;
    if (currentMap.record.mapID == currentMap.loadedMapID) {
        ReadFileProtection(&currentMap.dataFileSpec, &protection);
        status.backup = rule != noBackup ? static_cast<DWORD>(MakeBackup()) : 0;
        if (status.backup != 0 && rule == backupRequired) {
            return status;
        }
    } else {
        DataFileNameForID(currentMap.record.mapID, currentMap.dataFileSpec.name);
        currentMap.ownFileSpec = currentMap.dataFileSpec;
        ReadFileProtection(&currentMap.dataFileSpec, &protection);
    }
    status.create = static_cast<DWORD>(CreateTarget());
    if (status.create != 0) {
        return status;
    }
    status.open = static_cast<DWORD>(OpenFileSpec(&currentMap.dataFileSpec, &currentMap.openDataFile));
    if (status.open != 0) {
        return status;
    }
    SetFileProtection(&currentMap.dataFileSpec, &protection); // before there is anything to read
    if (WriteMapData(currentMap.openDataFile) != 0) {
        const DWORD reason = GetLastError();
        status.write = reason != 0 ? reason : ERROR_GEN_FAILURE;
    }
    CloseMapDataFile();
    return status;
}

int16_t SaveMap(bool confirm)
{
    if (confirm && !YesNoAlert(240, 100, saveQuestionText)) {
        return 1;
    }
    ClearFailure();
    if (!TargetIsThisMaps()) {
        TellFailure(saveFailedText, ERROR_INVALID_NAME);
        return 1;
    }
    NoteSavingBegins();
    const SaveStatus status = WriteMapFiles(backupIfPossible);
    if (status.open != 0) {
        MessageAlert(0, 0, alertSound, newFileNotOpenedText);
        return 1;
    }
    if (const DWORD reason = status.create != 0 ? status.create : status.write; reason != 0) {
        TellFailure(saveFailedText, reason);
        return 1;
    }
    currentMap.mapModified = 0;
    NoteMapSaved();
    if (status.backup != 0) {
        TellFailure(noBackupText, status.backup);
    }
    return 0;
}

int AskSaveBeforeQuit()
{
    if (!currentMap.mapModified) {
        return noSaveAnswer;
    }
    const WindowPtr dialog = NewMockDialog(0, 240, 70, "", nullptr);
    if (dialog == nullptr) {
        return 0;
    }
    char text[textBufferSize];
    for (const QuitButton& button : quitButtons) {
        GetText(text, button.textID);
        AddItem(dialog, {pushButtonItem, MakeRect(button.left, 40, button.right, 60), text, button.itemID});
    }
    // With a button missing for want of memory the numbers would tell the wrong answer.
    if (dialog->itemCount != std::size(quitButtons)) {
        DisposeMockDialog(dialog);
        return 0;
    }
    dialog->defaultItem = dialog->firstItem;
    GetText(text, saveBeforeQuitQuestionText);
    AddItem(dialog, {staticTextItem, MakeRect(10, 10, 230, 30), text});

    ShowWindowInactive(dialog);
    DrawMockDialog(dialog, false);
    int answer = cancelAnswer;
    int32_t itemHit = 0;
    int32_t itemID = 0;
    while (RunDialogStep(dialog, &itemHit, &itemID)) {
        if (itemHit >= saveAnswer && itemHit <= cancelAnswer) {
            answer = itemHit;
            break;
        }
    }
    DisposeMockDialog(dialog);
    PaintMapWindow();
    return answer;
}

void QuitCommand()
{
    if (currentMap.mapModified) {
        const int answer = AskSaveBeforeQuit();
        if (answer == saveAnswer) {
            SaveMap(false);
        } else if (answer == noSaveAnswer) {
            DropRescueCopy();
        }
        if (answer == saveAnswer || answer == noSaveAnswer) {
            RequestQuit();
        }
    } else if (YesNoAlert(200, 70, quitQuestionText)) {
        RequestQuit();
    }
    PaintMapWindow();
}
