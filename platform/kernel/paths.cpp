#include "platform/kernel/paths.h"

#include "platform/api/kernel.h"
#include "platform/kernel/system_calls.h"

#include <climits>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

// The lower-case form of the byte at text; previous is the byte before it. The capitals of Latin-1 are 0xC3 0x80 to
// 0x9E in UTF-8, their small letters 0x20 further; 0x97 is the multiplication sign.
unsigned char FoldedByte(unsigned char previous, unsigned char byte)
{
    if (byte >= 'A' && byte <= 'Z') {
        return static_cast<unsigned char>(byte + 0x20);
    }
    if (previous == 0xC3 && byte >= 0x80 && byte <= 0x9E && byte != 0x97) {
        return static_cast<unsigned char>(byte + 0x20);
    }
    return byte;
}

} // namespace

bool SameFileName(const char* first, const char* second)
{
    unsigned char previous = 0;
    for (size_t i = 0;; i++) {
        unsigned char a = static_cast<unsigned char>(first[i]);
        unsigned char b = static_cast<unsigned char>(second[i]);
        if (FoldedByte(previous, a) != FoldedByte(previous, b)) {
            return false;
        }
        if (a == 0) {
            return true;
        }
        previous = a;
    }
}

bool MatchesPattern(const char* pattern, const char* name)
{
    unsigned char previous = 0; // the byte of the name before this one; of the pattern it is the same where it counts
    const char* star = nullptr; // the pattern behind the last '*', and the name's rest that it is tried on
    const char* rest = nullptr;
    while (*name != 0) {
        const unsigned char wanted = static_cast<unsigned char>(*pattern);
        const unsigned char byte = static_cast<unsigned char>(*name);
        if (wanted == '*') {
            star = ++pattern;
            rest = name;
            continue;
        }
        if (wanted == '?' || FoldedByte(previous, wanted) == FoldedByte(previous, byte)) {
            pattern++;
            name++;
            while (wanted == '?' && (static_cast<unsigned char>(*name) & 0xC0) == 0x80) {
                name++; // the rest of one character
            }
            previous = static_cast<unsigned char>(name[-1]);
            continue;
        }
        if (star == nullptr) {
            return false;
        }
        name = ++rest;
        previous = static_cast<unsigned char>(name[-1]);
        pattern = star;
    }
    while (*pattern == '*') {
        pattern++;
    }
    return *pattern == 0;
}

bool ResolvePath(const char* path, char* resolved, size_t size)
{
    size_t length = path != nullptr ? strnlen(path, MAX_PATH) : 0;
    if (length == 0) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return false;
    }
    if (length >= MAX_PATH || length >= size) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return false;
    }
    memcpy(resolved, path, length + 1);

    struct stat status;
    if (StatPath(path, &status) == 0) {
        return true;
    }
    const char* slash = strrchr(path, '/');
    const char* name = slash != nullptr ? slash + 1 : path;
    if (name[0] == 0) {
        return true;
    }
    std::string folder = slash != nullptr ? std::string(path, static_cast<size_t>(name - path)) : std::string("./");
    DIR* entries = RetryInterrupted([&] { return systemCalls.openFolder(folder.c_str()); });
    if (entries == nullptr) {
        return true;
    }
    // Folding never changes a name's length, so the entry fits where the name was.
    char* resolvedName = resolved + (name - path);
    bool found = false;
    while (const dirent* entry = RetryInterrupted([&] { return systemCalls.readFolder(entries); })) {
        if (SameFileName(entry->d_name, name) && (!found || strcmp(entry->d_name, resolvedName) < 0)) {
            strcpy(resolvedName, entry->d_name);
            found = true;
        }
    }
    systemCalls.closeFolder(entries);
    return true;
}

void _splitpath(const char* path, char* drive, char* folder, char* name, char* extension)
{
    auto Store = [](char* buffer, size_t size, const char* from, const char* to) {
        if (buffer == nullptr) {
            return;
        }
        size_t length = static_cast<size_t>(to - from);
        if (length >= size) {
            length = 0;
        }
        memcpy(buffer, from, length);
        buffer[length] = 0;
    };
    const char* text = path != nullptr ? path : "";
    const char* end = text + strlen(text);
    const char* slash = strrchr(text, '/');
    const char* nameStart = slash != nullptr ? slash + 1 : text;
    const char* dot = strrchr(nameStart, '.');
    const char* nameEnd = dot != nullptr ? dot : end;
    Store(drive, _MAX_DRIVE, text, text);
    Store(folder, _MAX_DIR, text, nameStart);
    Store(name, _MAX_FNAME, nameStart, nameEnd);
    Store(extension, _MAX_EXT, nameEnd, end);
}

DWORD WINAPI GetCurrentDirectoryA(DWORD size, LPSTR buffer)
{
    char folder[PATH_MAX];
    if (getcwd(folder, sizeof folder) == nullptr) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return 0;
    }
    size_t length = strlen(folder);
    if ((buffer == nullptr) || length >= size) {
        return static_cast<DWORD>(length + 1);
    }
    memcpy(buffer, folder, length + 1);
    return static_cast<DWORD>(length);
}

BOOL WINAPI SetCurrentDirectoryA(LPCSTR path)
{
    char resolved[MAX_PATH];
    if (!ResolvePath(path, resolved, sizeof resolved)) {
        return FALSE;
    }
    if (chdir(resolved) != 0) {
        SetErrorForPath(resolved, ERROR_GEN_FAILURE);
        return FALSE;
    }
    return TRUE;
}

DWORD WINAPI GetModuleFileNameA(HMODULE module, LPSTR buffer, DWORD size)
{
    if ((buffer == nullptr) || size == 0 || ((module != nullptr) && module != GetModuleHandleA(nullptr))) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    char path[PATH_MAX];
    ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    if (length < 0 || length >= static_cast<ssize_t>(sizeof path)) {
        SetLastError(ERROR_GEN_FAILURE);
        return 0;
    }
    // A name that does not fit is cut, and the buffer's size returned, as Windows does.
    size_t kept = static_cast<size_t>(length) < size ? static_cast<size_t>(length) : size - 1;
    memcpy(buffer, path, kept);
    buffer[kept] = 0;
    return kept < static_cast<size_t>(length) ? size : static_cast<DWORD>(kept);
}
