// Calls on files by name: delete, rename, attributes.
#include "platform/api/kernel.h"
#include "platform/kernel/paths.h"
#include "platform/kernel/system_calls.h"

#include <cerrno>

namespace {

// Write permission for nobody is what the read-only attribute is on Windows.
bool IsReadOnly(const struct stat& status)
{
    return (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

// Renames where the file system cannot refuse an existing target by itself: through a second link, which never
// replaces anything, and where there are no links by looking first.
int RenameByLink(const char* from, const char* to)
{
    if (systemCalls.link(from, to) == 0) {
        if (systemCalls.unlink(from) == 0) {
            return 0;
        }
        int reason = errno;
        systemCalls.unlink(to);
        errno = reason;
        return -1;
    }
    if (errno == EEXIST) {
        return -1;
    }
    struct stat status;
    if (systemCalls.stat(to, &status) == 0) {
        errno = EEXIST;
        return -1;
    }
    return systemCalls.rename(from, to);
}

} // namespace

BOOL WINAPI DeleteFileA(LPCSTR path)
{
    char resolved[MAX_PATH];
    if (!ResolvePath(path, resolved, sizeof resolved)) {
        return FALSE;
    }
    struct stat status;
    if (systemCalls.stat(resolved, &status) == 0 && (S_ISDIR(status.st_mode) || IsReadOnly(status))) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    if (systemCalls.unlink(resolved) != 0) {
        SetErrorForPath(resolved, ERROR_WRITE_FAULT);
        return FALSE;
    }
    return TRUE;
}

BOOL WINAPI MoveFileA(LPCSTR from, LPCSTR to)
{
    char source[MAX_PATH];
    char target[MAX_PATH];
    if (!ResolvePath(from, source, sizeof source) || !ResolvePath(to, target, sizeof target)) {
        return FALSE;
    }
    struct stat sourceStatus;
    struct stat targetStatus;
    if (systemCalls.stat(source, &sourceStatus) != 0) {
        SetErrorForPath(source, ERROR_READ_FAULT);
        return FALSE;
    }
    // The target may be there under another letter case. The same file is: its name may change its case.
    bool sameFile = false;
    if (systemCalls.stat(target, &targetStatus) == 0) {
        sameFile = sourceStatus.st_dev == targetStatus.st_dev && sourceStatus.st_ino == targetStatus.st_ino &&
                   SameFileName(source, target);
        if (!sameFile) {
            SetLastError(ERROR_ALREADY_EXISTS);
            return FALSE;
        }
    }
    const char* newPath = sameFile ? to : target;
    int result = systemCalls.renameNoReplace(source, newPath);
    if (result != 0 && (errno == EINVAL || errno == ENOSYS)) {
        result = RenameByLink(source, newPath);
    }
    if (result != 0) {
        SetErrorForPath(newPath, ERROR_WRITE_FAULT);
        return FALSE;
    }
    return TRUE;
}

DWORD WINAPI GetFileAttributesA(LPCSTR path)
{
    char resolved[MAX_PATH];
    if (!ResolvePath(path, resolved, sizeof resolved)) {
        return INVALID_FILE_ATTRIBUTES;
    }
    struct stat status;
    if (systemCalls.stat(resolved, &status) != 0) {
        SetErrorForPath(resolved, ERROR_READ_FAULT);
        return INVALID_FILE_ATTRIBUTES;
    }
    DWORD attributes = S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : 0;
    if (IsReadOnly(status)) {
        attributes |= FILE_ATTRIBUTE_READONLY;
    }
    return attributes ? attributes : FILE_ATTRIBUTE_NORMAL;
}
