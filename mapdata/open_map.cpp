#include "dialogs/modal.h"
#include "mapdata/data_file.h"
#include "mapdata/failure.h"
#include "mapdata/file_paths.h"
#include "mapdata/map_commands.h"
#include "mapdata/rescue.h"
#include "toolbox/offscreen.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

#include <algorithm>
#include <cstring>

namespace {

int16_t ReadDataFile()
{
    currentMap.record = {}; // a file that ends early must not take over what an earlier attempt read
    if (ReadMapHeader(currentMap.openDataFile) != 0) {
        CloseMapDataFile();
        MessageAlert(0, 0, alertSound, unreadableDataFileText);
        return 1;
    }
    if (AllocateCellColumns() != 0) {
        return 1;
    }
    if (ReadMapCells(currentMap.openDataFile) != 0) {
        TellFailure(mapFailedText, GetLastError());
        ReleaseCellColumns();
        return 1;
    }
    return 0;
}

// Brings view and window back to the state without a map, so that the next attempt starts as the first one did.
void ForgetMapView()
{
    ReleaseMapResources();
    LoadInterfaceBitmap();
    shell.mapShown = 0;
    for (HWND* bar : {&view.verticalScrollBar, &view.horizontalScrollBar}) {
        if (*bar != nullptr) {
            DestroyWindow(*bar);
            *bar = nullptr;
        }
    }
    view.hasScrollBars = 0;
    if (shell.mapWindow != nullptr) {
        view.viewRect = shell.mapWindow->portRect;
    }
    InvalidateMapRect(nullptr);
    PaintMapWindow();
}

int16_t MakeMapImage()
{
    DisposeGWorld(view.mapImage);
    view.mapImage = nullptr;
    return NewGWorld(&view.mapImage, 32, &currentMap.record.mapRect, nullptr, nullptr, 0);
}

void SetMapTitle()
{
    char title[textBufferSize] = "Kestrel Map Tool ";
    char version[textBufferSize] = "";
    MakeVersionText(version);
    AppendText(title, version);
    AppendDash(title);
    AppendText(title, currentMap.dataFileSpec.name);
    SetWTitle(shell.mapWindow, title);
}

bool LoadChosenMap(const MapFiles& files, bool rescued)
{
    if (shell.mapShown) {
        return false; // it was opened by its command key under the question about a rescue copy, and stays
    }
    TakeMapFiles(files);
    return (rescued || (OpenMapDataFile() == 0 && ReadDataFile() == 0)) && FinishMapLoad() == 0;
}

} // namespace

void OpenMapCommand()
{
    ClearFailure();
    MapFiles files;
    CloseMapDataFile();
    const bool chosen = ChooseMapDataFile(&files) == 0;
    const bool rescued = chosen && UseRescueCopyForBrokenFile(&files.data) != 0;
    if (!chosen || !LoadChosenMap(files, rescued)) {
        ForgetFailedMap();
    } else if (rescued) {
        NoteBrokenFileReplaced();
    } else {
        NoteMapOpened();
        OfferRescueCopy();
    }
    AdjustMenus();
    InitCursor();
}

int16_t ChooseMapDataFile(MapFiles* files)
{
    if (!ChooseFileSpec("Select a map...", "Map dat file (*.dat)\0*.dat\0", &files->data)) {
        return 1;
    }
    const int number = MapNumberInName(files->data.name);
    if (number == 0) {
        FileNameRuleAlert(1, files->data.name);
        return 1;
    }
    files->art = files->data;
    const bool namesArt = ReplaceMapFileType(files->art.name, "bmp");
    if (!namesArt || GetFileAttributesA(files->art.name) == INVALID_FILE_ATTRIBUTES) {
        char expectedName[textBufferSize] = "";
        ArtFileNameForID(number, expectedName);
        char message[textBufferSize] = "Could not find a map art file named: ";
        AppendText(message, expectedName);
        MessageAlert(0, 0, alertSound, 0, 0, message);
        return 1;
    }
    return 0;
}

int16_t OpenMapDataFile()
{
    if (OpenFileSpecRead(&currentMap.dataFileSpec, &currentMap.openDataFile) != 0) {
        MessageAlert(0, 0, alertSound, dataFileNotOpenedText);
        return 1;
    }
    return 0;
}

int16_t FinishMapLoad()
{
    if (shell.mapWindow == nullptr || shell.mapWindow->window == nullptr) {
        ReleaseCellColumns();
        return 1;
    }
    const Rect& mapRect = currentMap.record.mapRect;
    view.viewRect.right = std::min(view.viewRect.right, mapRect.right);
    view.viewRect.bottom = std::min(view.viewRect.bottom, mapRect.bottom);
    SizeWindow(shell.mapWindow, std::max(view.viewRect.right - view.viewRect.left, 1),
               std::max(view.viewRect.bottom - view.viewRect.top, 1), 1);
    const int16_t imageStatus = MakeMapImage();
    if (imageStatus != 0) {
        ForgetMapView();
        TellFailure(mapFailedText, ERROR_NOT_ENOUGH_MEMORY);
        return imageStatus;
    }
    FitWindowToMap();
    CreateScrollBarsIfNeeded();
    if (ComposeMapImage() != 0) {
        const DWORD reason = GetLastError();
        ForgetMapView();
        TellFailure(artFailedText, reason);
        return 1;
    }
    SetMapTitle();
    shell.mapShown = 1;
    InvalidateMapRect(nullptr);
    PaintMapWindow();
    return 0;
}

void ForgetFailedMap()
{
    if (shell.mapShown) {
        return;
    }
    CloseMapDataFile();
    ReleaseCellColumns();
    const int modified = currentMap.mapModified;
    currentMap = {};
    currentMap.mapModified = modified;
}
