// Who may read and write a file.
#include "platform/api/kernel.h"
#include "platform/kernel/paths.h"
#include "platform/kernel/system_calls.h"

#include <cerrno>
#include <cstring>

namespace {

constexpr SECURITY_INFORMATION groupAndRights = GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
constexpr mode_t rightsBits = 0777;

struct Descriptor {
    mode_t rights;
    gid_t group;
};

bool Find(LPCSTR path, SECURITY_INFORMATION wanted, char* resolved, struct stat* status)
{
    if (wanted != groupAndRights) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    if (!ResolvePath(path, resolved, MAX_PATH)) {
        return false;
    }
    if (StatPath(resolved, status) != 0) {
        SetErrorForPath(resolved, ERROR_READ_FAULT);
        return false;
    }
    return true;
}

} // namespace

BOOL WINAPI GetFileSecurityA(LPCSTR path, SECURITY_INFORMATION wanted, PSECURITY_DESCRIPTOR descriptor, DWORD size,
                             DWORD* sizeNeeded)
{
    char resolved[MAX_PATH];
    struct stat status;
    if (!Find(path, wanted, resolved, &status)) {
        return FALSE;
    }
    const Descriptor found = {status.st_mode & rightsBits, status.st_gid};
    *sizeNeeded = sizeof found;
    if (size < sizeof found) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    memcpy(descriptor, &found, sizeof found);
    return TRUE;
}

BOOL WINAPI SetFileSecurityA(LPCSTR path, SECURITY_INFORMATION given, PSECURITY_DESCRIPTOR descriptor)
{
    char resolved[MAX_PATH];
    struct stat status;
    if (!Find(path, given, resolved, &status)) {
        return FALSE;
    }
    Descriptor wanted;
    memcpy(&wanted, descriptor, sizeof wanted);
    mode_t rights = wanted.rights | S_IWUSR;
    if (status.st_gid != wanted.group &&
        RetryInterrupted([&] { return systemCalls.changeGroup(resolved, wanted.group); }) != 0) {
        rights = (rights & ~mode_t{S_IRWXG}) | (rights & S_IRWXO) << 3; // the group is another one than was meant
    }
    if ((status.st_mode & rightsBits) != rights &&
        RetryInterrupted([&] { return systemCalls.changeMode(resolved, rights); }) != 0) {
        SetErrorForPath(resolved, ERROR_WRITE_FAULT);
        return FALSE;
    }
    return TRUE;
}
