// The system calls of the file layer in one table, so that a test can make any of them fail. They return what the
// system returns: -1 with errno on failure.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

struct SystemCalls {
    int (*open)(const char* path, int flags, mode_t mode);
    int (*close)(int descriptor);
    ssize_t (*read)(int descriptor, void* buffer, size_t count);
    ssize_t (*readAt)(int descriptor, void* buffer, size_t count, off_t offset);
    ssize_t (*write)(int descriptor, const void* buffer, size_t count);
    off_t (*seek)(int descriptor, off_t offset, int from);
    int (*fsync)(int descriptor);
    int (*stat)(const char* path, struct stat* status);
    int (*statOpen)(int descriptor, struct stat* status);
    int (*unlink)(const char* path);
    int (*link)(const char* from, const char* to);
    int (*rename)(const char* from, const char* to);
    int (*renameNoReplace)(const char* from, const char* to); // EEXIST when the target exists
};

extern SystemCalls systemCalls;
const SystemCalls& RealSystemCalls();

// Translates an errno value to the ERROR_ code that the Windows API reports. ioFault is the code for EIO.
unsigned ErrorFromErrno(int number, unsigned ioFault);
// Sets the last error for a failed call on a path: tells a missing folder from a missing file. Uses errno.
void SetErrorForPath(const char* path, unsigned ioFault);
