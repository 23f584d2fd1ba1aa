// Making folders.
#include "platform/api/kernel.h"
#include "platform/kernel/paths.h"
#include "platform/kernel/system_calls.h"

#include <cerrno>

BOOL WINAPI CreateDirectoryA(LPCSTR path, LPSECURITY_ATTRIBUTES attributes)
{
    constexpr mode_t forTheUserAlone = 0700;
    char resolved[MAX_PATH];
    if (attributes != nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!ResolvePath(path, resolved, sizeof resolved)) {
        return FALSE;
    }
    if (RetryInterrupted([&] { return systemCalls.makeFolder(resolved, forTheUserAlone); }) == 0) {
        return TRUE;
    }
    // What is missing is a folder on the way to the new one.
    SetLastError(errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno, ERROR_WRITE_FAULT));
    return FALSE;
}
