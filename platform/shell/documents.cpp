// The open-file dialog and the document opener.
#include "platform/api/gdi.h"
#include "platform/api/kernel.h"
#include "platform/api/shell.h"
#include "platform/host/host.h"
#include "platform/user/state.h"

#include <climits>
#include <cstring>
#include <string>

namespace {

struct FileFilter {
    const char* text = "";
    const char* pattern = "*";
};

// The pair with this number, counting from 1; the first one where there is none with it.
FileFilter ChosenFilter(const char* list, DWORD index)
{
    FileFilter chosen;
    for (DWORD number = 1; (list != nullptr) && *list; number++) {
        const char* pattern = list + strlen(list) + 1;
        if (number == 1 || number == index) {
            chosen = {list, pattern};
        }
        list = pattern + strlen(pattern) + 1;
    }
    return chosen;
}

HostWindow* HostWindowOf(HWND handle)
{
    const Window* window = Lookup(handle);
    return window != nullptr ? window->hostWindow : nullptr;
}

DWORD dialogError = 0;

} // namespace

DWORD WINAPI CommDlgExtendedError()
{
    return dialogError;
}

BOOL WINAPI GetOpenFileNameA(OPENFILENAMEA* request)
{
    if ((host == nullptr) || (request == nullptr) || (request->lpstrFile == nullptr) || request->nMaxFile == 0) {
        return FALSE;
    }
    GdiFlush();
    dialogError = 0;
    char current[PATH_MAX] = "";
    GetCurrentDirectoryA(sizeof current, current);
    const FileFilter filter = ChosenFilter(request->lpstrFilter, request->nFilterIndex);
    HostFileRequest question = {};
    question.owner = HostWindowOf(request->hwndOwner);
    question.title = request->lpstrTitle != nullptr ? request->lpstrTitle : "Open";
    question.filterText = filter.text;
    question.filterPattern = filter.pattern;
    question.folder = request->lpstrInitialDir != nullptr ? request->lpstrInitialDir : current;
    char path[PATH_MAX] = "";
    if (!host->chooseFile(&question, path, sizeof path)) {
        return FALSE;
    }
    const size_t length = strnlen(path, sizeof path);
    if (length == 0 || length >= request->nMaxFile || length >= sizeof path) {
        dialogError = FNERR_BUFFERTOOSMALL;
        return FALSE;
    }

    memcpy(request->lpstrFile, path, length + 1);
    const char* slash = strrchr(path, '/');
    const char* name = slash != nullptr ? slash + 1 : path;
    const char* dot = strrchr(name, '.');
    request->nFileOffset = static_cast<WORD>(name - path);
    request->nFileExtension = dot != nullptr ? static_cast<WORD>(dot + 1 - path) : 0;
    if ((request->lpstrFileTitle != nullptr) && request->nMaxFileTitle > 0) {
        const size_t nameLength = strlen(name);
        const size_t kept = nameLength < request->nMaxFileTitle ? nameLength : request->nMaxFileTitle - 1;
        memcpy(request->lpstrFileTitle, name, kept);
        request->lpstrFileTitle[kept] = 0;
    }
    if (!(request->Flags & OFN_NOCHANGEDIR) && (slash != nullptr)) {
        SetCurrentDirectoryA(std::string(path, slash > path ? static_cast<size_t>(slash - path) : 1).c_str());
    }
    return TRUE;
}

HINSTANCE WINAPI ShellExecuteA(HWND, LPCSTR verb, LPCSTR file, LPCSTR, LPCSTR folder, int)
{
    auto Answer = [](uintptr_t number) { return reinterpret_cast<HINSTANCE>(number); };
    constexpr uintptr_t noOpener = 31;
    constexpr uintptr_t opened = 33;
    if ((host == nullptr) || (file == nullptr) || ((verb != nullptr) && strcmp(verb, "open") != 0)) {
        return Answer(noOpener);
    }
    std::string path = file;
    if (file[0] != '/' && (folder != nullptr) && folder[0]) {
        path = folder;
        if (path.back() != '/') {
            path += '/';
        }
        path += file;
    }
    if (GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
        return Answer(ERROR_FILE_NOT_FOUND);
    }
    return Answer(host->openDocument(path.c_str()) == 0 ? opened : noOpener);
}
