// The system calls of the file layer, and what gives memory outside the C++ heap, in one table, so that a test can
// make any of them fail. They return what the system returns: -1 with errno on failure.
#pragma once

#include <cerrno>
#include <dirent.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <type_traits>

struct SystemCalls {
    int (*open)(const char* path, int flags, mode_t mode);
    int (*close)(int descriptor);
    ssize_t (*read)(int descriptor, void* buffer, size_t count);
    ssize_t (*readAt)(int descriptor, void* buffer, size_t count, off_t offset);
    ssize_t (*write)(int descriptor, const void* buffer, size_t count);
    off_t (*seek)(int descriptor, off_t offset, int from);
    int (*truncate)(int descriptor, off_t size);
    int (*fsync)(int descriptor);
    int (*stat)(const char* path, struct stat* status);
    int (*statOpen)(int descriptor, struct stat* status);
    int (*unlink)(const char* path);
    int (*rename)(const char* from, const char* to);
    int (*renameNoReplace)(const char* from, const char* to); // EEXIST when the target exists
    int (*changeMode)(const char* path, mode_t mode);
    int (*changeGroup)(const char* path, gid_t group);
    int (*makeFile)(const char* path, mode_t mode); // empty; EEXIST when the name is taken
    int (*makeFolder)(const char* path, mode_t mode);
    DIR* (*openFolder)(const char* path); // null on failure
    dirent* (*readFolder)(DIR* folder);   // null at the end, and with errno on failure
    int (*closeFolder)(DIR* folder);
    int (*lock)(int descriptor, int operation);
    void* (*allocate)(size_t count, size_t size); // zero-filled; null on failure
    void* (*mapPages)(size_t size);               // zero-filled; MAP_FAILED on failure
};

extern SystemCalls systemCalls;
const SystemCalls& RealSystemCalls();

// Makes a call again while it is interrupted, but not for ever. errno is 0 before each attempt.
template <typename Call>
auto RetryInterrupted(Call call)
{
    constexpr int mostAttempts = 100;
    for (int attempt = 1;; attempt++) {
        errno = 0;
        const auto result = call();
        bool failed = false;
        if constexpr (std::is_pointer_v<decltype(call())>) {
            failed = result == nullptr;
        } else {
            failed = result == -1;
        }
        if (!failed || errno != EINTR || attempt == mostAttempts) {
            return result;
        }
    }
}

// 0 or -1, as stat.
int StatPath(const char* path, struct stat* status);
// After a failed StatPath: whether there is no such file, as far as the system knows.
bool KnownMissing();

// Translates an errno value to the ERROR_ code that the Windows API reports. ioFault is the code for EIO.
unsigned ErrorFromErrno(int number, unsigned ioFault);
// Sets the last error for a failed call on a path: tells a missing folder from a missing file. Uses errno.
void SetErrorForPath(const char* path, unsigned ioFault);
// The FILE_ATTRIBUTE_ bits of a file. Write permission for nobody is what the read-only attribute is on Windows.
unsigned FileAttributesOf(const struct stat& status);
