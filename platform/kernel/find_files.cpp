// Looking through a folder. A search keeps the folder open until FindClose; a name without '*' and '?' needs none.
#include "platform/api/kernel.h"
#include "platform/kernel/file_time.h"
#include "platform/kernel/paths.h"
#include "platform/kernel/system_calls.h"

#include <cerrno>
#include <cstring>
#include <string>

namespace {

constexpr int mostSearches = 16;

struct Search {
    bool inUse = false;
    DIR* entries = nullptr; // null behind the only match of an exact name
    std::string folder;     // with its '/', or empty for the current one
    std::string pattern;
};

Search searches[mostSearches];

HANDLE HandleOf(int index)
{
    return reinterpret_cast<HANDLE>(static_cast<intptr_t>(index + 1));
}

Search* SearchOf(HANDLE handle)
{
    const intptr_t number = reinterpret_cast<intptr_t>(handle);
    if (number < 1 || number > mostSearches || !searches[number - 1].inUse) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return &searches[number - 1];
}

bool Describe(const std::string& path, const char* name, WIN32_FIND_DATAA* data)
{
    struct stat status;
    if (StatPath(path.c_str(), &status) != 0 || strlen(name) >= sizeof data->cFileName) {
        return false;
    }
    *data = {};
    data->dwFileAttributes = FileAttributesOf(status);
    data->ftLastAccessTime = FileTimeOf(status.st_atim);
    data->ftLastWriteTime = FileTimeOf(status.st_mtim);
    if (S_ISREG(status.st_mode)) {
        const uint64_t size = static_cast<uint64_t>(status.st_size);
        data->nFileSizeHigh = static_cast<DWORD>(size >> 32);
        data->nFileSizeLow = static_cast<DWORD>(size);
    }
    strcpy(data->cFileName, name);
    return true;
}

bool FindNext(const Search& search, WIN32_FIND_DATAA* data)
{
    while (search.entries != nullptr) {
        const dirent* entry = RetryInterrupted([&] { return systemCalls.readFolder(search.entries); });
        if (entry == nullptr && errno != 0) {
            SetLastError(ErrorFromErrno(errno, ERROR_READ_FAULT));
            return false;
        }
        if (entry == nullptr) {
            break;
        }
        const char* name = entry->d_name;
        const bool isDots = strcmp(name, ".") == 0 || strcmp(name, "..") == 0;
        if (!isDots && MatchesPattern(search.pattern.c_str(), name) && Describe(search.folder + name, name, data)) {
            return true;
        }
    }
    SetLastError(ERROR_NO_MORE_FILES);
    return false;
}

bool FindExactly(LPCSTR path, WIN32_FIND_DATAA* data)
{
    char resolved[MAX_PATH];
    if (!ResolvePath(path, resolved, sizeof resolved)) {
        return false;
    }
    const char* slash = strrchr(resolved, '/');
    if (!Describe(resolved, slash != nullptr ? slash + 1 : resolved, data)) {
        SetErrorForPath(resolved, ERROR_READ_FAULT);
        return false;
    }
    return true;
}

bool FindFirst(LPCSTR path, Search& search, WIN32_FIND_DATAA* data)
{
    const char* slash = strrchr(path, '/');
    const char* pattern = slash != nullptr ? slash + 1 : path;
    if (*pattern == 0) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return false;
    }
    if (strpbrk(pattern, "*?") == nullptr) {
        return FindExactly(path, data);
    }
    search.folder.assign(path, pattern);
    search.pattern = pattern;
    const std::string folder = search.folder.empty() ? "." : search.folder;
    search.entries = RetryInterrupted([&] { return systemCalls.openFolder(folder.c_str()); });
    if (search.entries == nullptr) {
        SetLastError(errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno, ERROR_READ_FAULT));
        return false;
    }
    if (!FindNext(search, data)) {
        if (GetLastError() == ERROR_NO_MORE_FILES) {
            SetLastError(ERROR_FILE_NOT_FOUND);
        }
        systemCalls.closeFolder(search.entries);
        return false;
    }
    return true;
}

} // namespace

HANDLE WINAPI FindFirstFileA(LPCSTR path, WIN32_FIND_DATAA* data)
{
    if (path == nullptr || data == nullptr || path[0] == 0) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    if (strnlen(path, MAX_PATH) == MAX_PATH) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return INVALID_HANDLE_VALUE;
    }
    int index = 0;
    while (index < mostSearches && searches[index].inUse) {
        index++;
    }
    if (index == mostSearches) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return INVALID_HANDLE_VALUE;
    }
    Search search;
    if (!FindFirst(path, search, data)) {
        return INVALID_HANDLE_VALUE;
    }
    search.inUse = true;
    searches[index] = search;
    return HandleOf(index);
}

BOOL WINAPI FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* data)
{
    const Search* search = SearchOf(handle);
    return search != nullptr && data != nullptr && FindNext(*search, data) ? TRUE : FALSE;
}

BOOL WINAPI FindClose(HANDLE handle)
{
    Search* search = SearchOf(handle);
    if (search == nullptr) {
        return FALSE;
    }
    if (search->entries != nullptr) {
        systemCalls.closeFolder(search->entries);
    }
    *search = Search();
    return TRUE;
}
