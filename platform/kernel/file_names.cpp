// Calls on files by name: delete, rename, attributes.
#include "platform/api/kernel.h"
#include "platform/kernel/paths.h"
#include "platform/kernel/system_calls.h"

#include <cerrno>
#include <cstring>

namespace {

// A folder, or a file with the read-only attribute: neither is deleted or replaced.
bool IsProtected(const struct stat& status)
{
    return (FileAttributesOf(status) & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0;
}

// Renames where the file system cannot refuse an existing target by itself: makes an empty file of that name, which
// no other can be in the way of, and replaces that. Neither name ever stands for the other's file.
int RenameOverOwnFile(const char* from, const char* to)
{
    if (RetryInterrupted([&] { return systemCalls.makeFile(to, 0600); }) != 0) {
        return -1;
    }
    if (RetryInterrupted([&] { return systemCalls.rename(from, to); }) == 0) {
        return 0;
    }
    const int reason = errno;
    RetryInterrupted([&] { return systemCalls.unlink(to); });
    errno = reason;
    return -1;
}

} // namespace

BOOL WINAPI DeleteFileA(LPCSTR path)
{
    char resolved[MAX_PATH];
    if (!ResolvePath(path, resolved, sizeof resolved)) {
        return FALSE;
    }
    struct stat status;
    if (StatPath(resolved, &status) == 0 && IsProtected(status)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    if (RetryInterrupted([&] { return systemCalls.unlink(resolved); }) != 0) {
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
    const bool sourceKnown = StatPath(source, &sourceStatus) == 0;
    if (!sourceKnown && KnownMissing()) {
        SetErrorForPath(source, ERROR_READ_FAULT);
        return FALSE;
    }
    // Where the system does not tell of either, the rename itself finds out; it replaces nothing.
    // The target may be there under another letter case. The same file is: its name may change its case.
    bool sameFile = false;
    if (StatPath(target, &targetStatus) == 0) {
        sameFile = sourceKnown && sourceStatus.st_dev == targetStatus.st_dev &&
                   sourceStatus.st_ino == targetStatus.st_ino && SameFileName(source, target);
        if (!sameFile) {
            SetLastError(ERROR_ALREADY_EXISTS);
            return FALSE;
        }
    }
    const char* newPath = sameFile ? to : target;
    int result = RetryInterrupted([&] { return systemCalls.renameNoReplace(source, newPath); });
    if (result != 0 && (errno == EINVAL || errno == ENOSYS)) {
        result = RenameOverOwnFile(source, newPath);
    }
    if (result != 0) {
        SetErrorForPath(newPath, ERROR_WRITE_FAULT);
        return FALSE;
    }
    return TRUE;
}

BOOL WINAPI MoveFileExA(LPCSTR from, LPCSTR to, DWORD flags)
{
    if (flags == 0) {
        return MoveFileA(from, to);
    }
    if (flags != MOVEFILE_REPLACE_EXISTING) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    char source[MAX_PATH];
    char target[MAX_PATH];
    if (!ResolvePath(from, source, sizeof source) || !ResolvePath(to, target, sizeof target)) {
        return FALSE;
    }
    struct stat status;
    if (StatPath(target, &status) == 0 && IsProtected(status)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    const char* newPath = strcmp(source, target) == 0 ? to : target; // a name may change its letter case
    if (RetryInterrupted([&] { return systemCalls.rename(source, newPath); }) == 0) {
        return TRUE;
    }
    const int reason = errno;
    const bool sourceIsThere = StatPath(source, &status) == 0;
    errno = reason;
    SetErrorForPath(sourceIsThere ? newPath : source, ERROR_WRITE_FAULT);
    return FALSE;
}

DWORD WINAPI GetFileAttributesA(LPCSTR path)
{
    char resolved[MAX_PATH];
    if (!ResolvePath(path, resolved, sizeof resolved)) {
        return INVALID_FILE_ATTRIBUTES;
    }
    struct stat status;
    if (StatPath(resolved, &status) != 0) {
        SetErrorForPath(resolved, ERROR_READ_FAULT);
        return INVALID_FILE_ATTRIBUTES;
    }
    return FileAttributesOf(status);
}
