#include "mapdata/file_paths.h"

#include "mapdata/failure.h"
#include "mapdata/map_commands.h"
#include "toolbox/drawing.h"
#include "toolbox/shell_door.h"

#include <cstring>

int ShowFileDialog(WindowPtr owner, const char* title, const char* filter, int filterIndex, char* pathBuffer,
                   const char* initialFolder, int changeFolder)
{
    char fileTitle[MAX_PATH] = "";
    OPENFILENAMEA request = {};
    request.lStructSize = sizeof request;
    request.hwndOwner = owner != nullptr ? owner->window : nullptr;
    request.hInstance = shell.appInstance;
    request.lpstrFilter = filter;
    request.nFilterIndex = static_cast<DWORD>(filterIndex);
    request.lpstrFile = pathBuffer;
    request.nMaxFile = MAX_PATH;
    request.lpstrFileTitle = fileTitle;
    request.nMaxFileTitle = MAX_PATH;
    request.lpstrInitialDir = initialFolder;
    request.lpstrTitle = title;
    request.Flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT;
    if (changeFolder == 0) {
        request.Flags |= OFN_NOCHANGEDIR;
    }
    const BOOL chosen = GetOpenFileNameA(&request);
    if (owner != nullptr) {
        DrawMenuBar(owner->window);
    }
    return chosen ? 1 : 0;
}

bool ChooseFileSpec(const char* title, const char* filter, FileSpec* spec)
{
    char path[MAX_PATH] = "";
    char folder[MAX_PATH] = "";
    if (GetCurrentDirectoryA(sizeof folder, folder) >= sizeof folder) {
        folder[0] = 0;
    }
    if (!ShowFileDialog(shell.mapWindow, title, filter, 1, path, folder, 1)) {
        if (CommDlgExtendedError() == FNERR_BUFFERTOOSMALL) {
            TellFailure(choiceFailedText, ERROR_FILENAME_EXCED_RANGE);
        }
        return false;
    }
    char base[_MAX_FNAME] = "";
    char extension[_MAX_EXT] = "";
    _splitpath(path, nullptr, nullptr, base, extension);
    char name[_MAX_FNAME + _MAX_EXT] = "";
    strcat(strcat(name, base), extension);
    // What stands before the name is drive and folder, whatever its length.
    path[strlen(path) - strlen(name)] = 0;
    return MakeFileSpec(path, name, spec) == 0; // a path that the dialog took fits
}

bool ReplaceMapFileType(char* name, const char* type)
{
    constexpr size_t typeStart = 8;
    const size_t typeLength = strlen(type);
    if (strlen(name) < typeStart + typeLength) {
        return false;
    }
    memcpy(name + typeStart, type, typeLength);
    return true;
}
