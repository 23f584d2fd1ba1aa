#include "platform/kernel/system_calls.h"

#include "platform/api/kernel.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

int OpenFile(const char* path, int flags, mode_t mode)
{
    return open(path, flags, mode);
}

int StatFile(const char* path, struct stat* status)
{
    return stat(path, status);
}

int RenameNoReplace(const char* from, const char* to)
{
    return renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
}

void* MapPages(size_t size)
{
    return mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
}

int MakeFile(const char* path, mode_t mode)
{
    return mknod(path, S_IFREG | mode, 0); // takes no descriptor, so it works when there are none left
}

int ChangeGroup(const char* path, gid_t group)
{
    return chown(path, static_cast<uid_t>(-1), group);
}

constexpr SystemCalls realSystemCalls = {OpenFile,        close,    read,        pread,    write,   lseek,
                                         ftruncate,       fsync,    StatFile,    fstat,    unlink,  rename,
                                         RenameNoReplace, chmod,    ChangeGroup, MakeFile, mkdir,   opendir,
                                         readdir,         closedir, flock,       calloc,   MapPages};

DWORD lastError = ERROR_SUCCESS;

} // namespace

SystemCalls systemCalls = realSystemCalls;

const SystemCalls& RealSystemCalls()
{
    return realSystemCalls;
}

int StatPath(const char* path, struct stat* status)
{
    return RetryInterrupted([&] { return systemCalls.stat(path, status); });
}

bool KnownMissing()
{
    return errno == ENOENT || errno == ENOTDIR;
}

unsigned ErrorFromErrno(int number, unsigned ioFault)
{
    switch (number) {
    case 0:
        return ERROR_SUCCESS;
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case ELOOP:
        return ERROR_CANT_RESOLVE_FILENAME;
    case EMFILE:
    case ENFILE:
        return ERROR_TOO_MANY_OPEN_FILES;
    case EACCES:
    case EPERM:
    case EISDIR:
    case ENXIO:
        return ERROR_ACCESS_DENIED;
    case EROFS:
        return ERROR_WRITE_PROTECT;
    case EBADF:
        return ERROR_INVALID_HANDLE;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case EBUSY:
    case ETXTBSY:
        return ERROR_SHARING_VIOLATION;
    case EEXIST:
    case ENOTEMPTY:
        return ERROR_ALREADY_EXISTS;
    case ENOSPC:
        return ERROR_DISK_FULL;
    case EDQUOT:
        return ERROR_DISK_QUOTA_EXCEEDED;
    case EFBIG:
        return ERROR_FILE_TOO_LARGE;
    case ENAMETOOLONG:
        return ERROR_FILENAME_EXCED_RANGE;
    case EIO:
        return ioFault;
    default:
        return ERROR_GEN_FAILURE;
    }
}

void SetErrorForPath(const char* path, unsigned ioFault)
{
    int number = errno;
    DWORD code = ErrorFromErrno(number, ioFault);
    const char* slash = strrchr(path, '/');
    if (number == ENOENT && (slash != nullptr) && slash != path) {
        struct stat status;
        std::string folder(path, static_cast<size_t>(slash - path));
        if (StatPath(folder.c_str(), &status) != 0) {
            code = ERROR_PATH_NOT_FOUND;
        }
    }
    SetLastError(code);
}

unsigned FileAttributesOf(const struct stat& status)
{
    DWORD attributes = S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : 0;
    if ((status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) {
        attributes |= FILE_ATTRIBUTE_READONLY;
    }
    return attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL;
}

DWORD WINAPI GetLastError()
{
    return lastError;
}

void WINAPI SetLastError(DWORD code)
{
    lastError = code;
}
