// Open files: a small table of handles, each with one buffer that holds either bytes read ahead or bytes still to be
// written. The position that the program sees is kept here; the system's own is moved only when a transfer needs it.
#include "platform/api/kernel.h"
#include "platform/kernel/paths.h"
#include "platform/kernel/system_calls.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr size_t bufferSize = 65536;
constexpr int firstHandle = 3; // 0 means "no file" to the program
constexpr int mostFiles = 64;

enum BufferUse { bufferEmpty, bufferReadAhead, bufferToWrite };

struct OpenFile {
    bool inUse = false;
    int descriptor = -1;
    bool readable = false;
    bool writable = false;
    bool writeFailed = false; // bytes that _lwrite had accepted are lost
    off_t position = 0;       // as the program sees it
    off_t systemPosition = 0; // as the system sees it
    BufferUse use = bufferEmpty;
    off_t bufferStart = 0; // position in the file of the buffer's first byte
    size_t bufferUsed = 0;
    std::vector<uint8_t> buffer;
    std::string folder; // absolute
};

OpenFile files[mostFiles];

template <typename Call>
auto RetryInterrupted(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

OpenFile* FileOf(HFILE handle)
{
    int index = handle - firstHandle;
    if (handle < firstHandle || index >= mostFiles || !files[index].inUse) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return &files[index];
}

bool MoveSystemPosition(OpenFile& file, off_t position)
{
    if (file.systemPosition == position) {
        return true;
    }
    if (systemCalls.seek(file.descriptor, position, SEEK_SET) != position) {
        return false;
    }
    file.systemPosition = position;
    return true;
}

// A write that the system takes only in part is continued; it fails when the rest cannot be written either.
bool WriteThrough(OpenFile& file, const uint8_t* bytes, size_t count)
{
    while (count > 0) {
        ssize_t written = RetryInterrupted([&] { return systemCalls.write(file.descriptor, bytes, count); });
        if (written <= 0) {
            SetLastError(written == 0 ? ERROR_DISK_FULL : ErrorFromErrno(errno, ERROR_WRITE_FAULT));
            return false;
        }
        file.systemPosition += written;
        bytes += written;
        count -= static_cast<size_t>(written);
    }
    return true;
}

// Reads until count bytes or the end of the file; -1 on failure.
ssize_t ReadThrough(OpenFile& file, uint8_t* bytes, size_t count)
{
    size_t total = 0;
    while (total < count) {
        ssize_t got =
            RetryInterrupted([&] { return systemCalls.read(file.descriptor, bytes + total, count - total); });
        if (got < 0) {
            SetLastError(ErrorFromErrno(errno, ERROR_READ_FAULT));
            return -1;
        }
        if (got == 0) {
            break;
        }
        file.systemPosition += got;
        total += static_cast<size_t>(got);
    }
    return static_cast<ssize_t>(total);
}

// Writes gathered bytes. On failure they are lost, and the handle remembers that until it is closed.
bool WriteGathered(OpenFile& file)
{
    if (file.use != bufferToWrite) {
        return true;
    }
    file.use = bufferEmpty;
    if (!MoveSystemPosition(file, file.bufferStart)) {
        SetLastError(ErrorFromErrno(errno, ERROR_WRITE_FAULT));
        file.writeFailed = true;
    } else if (!WriteThrough(file, file.buffer.data(), file.bufferUsed)) {
        file.writeFailed = true;
    }
    file.bufferUsed = 0;
    return !file.writeFailed;
}

std::string FolderOf(const char* path)
{
    const char* slash = strrchr(path, '/');
    std::string folder = slash ? std::string(path, static_cast<size_t>(slash - path) + 1) : std::string();
    if (path[0] == '/') {
        return folder;
    }
    char current[PATH_MAX];
    if (!getcwd(current, sizeof current)) {
        return slash ? folder : std::string(".");
    }
    return std::string(current) + "/" + folder;
}

// Only regular files are opened. The kind is looked at before the open, because opening a FIFO or a device can act on
// it, and after it, because the name may have changed its file in between.
HFILE OpenPath(LPCSTR path, int flags, bool readable, bool writable)
{
    char resolved[MAX_PATH];
    if (!ResolvePath(path, resolved, sizeof resolved)) {
        return HFILE_ERROR;
    }
    int index = 0;
    while (index < mostFiles && files[index].inUse) {
        index++;
    }
    if (index == mostFiles) {
        SetLastError(ERROR_TOO_MANY_OPEN_FILES);
        return HFILE_ERROR;
    }
    struct stat status;
    if (systemCalls.stat(resolved, &status) == 0 && !S_ISREG(status.st_mode)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return HFILE_ERROR;
    }
    int descriptor =
        RetryInterrupted([&] { return systemCalls.open(resolved, flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666); });
    if (descriptor < 0) {
        SetErrorForPath(resolved, ERROR_READ_FAULT);
        return HFILE_ERROR;
    }
    if (systemCalls.statOpen(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        systemCalls.close(descriptor);
        SetLastError(ERROR_ACCESS_DENIED);
        return HFILE_ERROR;
    }
    OpenFile& file = files[index];
    file = OpenFile();
    file.inUse = true;
    file.descriptor = descriptor;
    file.readable = readable;
    file.writable = writable;
    file.folder = FolderOf(resolved);
    return index + firstHandle;
}

bool SyncFolder(const std::string& folder)
{
    int descriptor =
        RetryInterrupted([&] { return systemCalls.open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0); });
    if (descriptor < 0) {
        if (errno == EACCES || errno == EPERM) {
            return true; // a folder that may be written but not read cannot be synced; the file is written all the
                         // same
        }
        SetLastError(ErrorFromErrno(errno, ERROR_WRITE_FAULT));
        return false;
    }
    // Some file systems have nothing to sync for a folder and say so with EINVAL.
    bool synced = RetryInterrupted([&] { return systemCalls.fsync(descriptor); }) == 0 || errno == EINVAL ||
                  errno == EOPNOTSUPP;
    if (!synced) {
        SetLastError(ErrorFromErrno(errno, ERROR_WRITE_FAULT));
    }
    systemCalls.close(descriptor);
    return synced;
}

} // namespace

HFILE WINAPI _lopen(LPCSTR path, int mode)
{
    switch (mode & 3) {
    case OF_READ:
        return OpenPath(path, O_RDONLY, true, false);
    case OF_WRITE:
        return OpenPath(path, O_WRONLY, false, true);
    case OF_READWRITE:
        return OpenPath(path, O_RDWR, true, true);
    default:
        SetLastError(ERROR_ACCESS_DENIED);
        return HFILE_ERROR;
    }
}

HFILE WINAPI _lcreat(LPCSTR path, int attributes)
{
    if (attributes != 0) {
        SetLastError(ERROR_ACCESS_DENIED);
        return HFILE_ERROR;
    }
    return OpenPath(path, O_RDWR | O_CREAT | O_TRUNC, true, true);
}

UINT WINAPI _lread(HFILE handle, LPVOID buffer, UINT count)
{
    constexpr UINT failed = static_cast<UINT>(-1);
    OpenFile* file = FileOf(handle);
    if (!file) {
        return failed;
    }
    if (!file->readable || (!buffer && count > 0)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return failed;
    }
    if (!WriteGathered(*file)) {
        return failed;
    }
    uint8_t* destination = static_cast<uint8_t*>(buffer);
    size_t wanted = count;
    while (wanted > 0) {
        off_t ahead = file->bufferStart + static_cast<off_t>(file->bufferUsed) - file->position;
        if (file->use == bufferReadAhead && file->position >= file->bufferStart && ahead > 0) {
            size_t taken = wanted < static_cast<size_t>(ahead) ? wanted : static_cast<size_t>(ahead);
            memcpy(destination, file->buffer.data() + (file->position - file->bufferStart), taken);
            destination += taken;
            wanted -= taken;
            file->position += static_cast<off_t>(taken);
            continue;
        }
        if (!MoveSystemPosition(*file, file->position)) {
            SetLastError(ErrorFromErrno(errno, ERROR_READ_FAULT));
            return failed;
        }
        if (wanted >= bufferSize) {
            ssize_t got = ReadThrough(*file, destination, wanted);
            if (got < 0) {
                return failed;
            }
            file->position += got;
            wanted -= static_cast<size_t>(got);
            break;
        }
        file->buffer.resize(bufferSize);
        file->use = bufferEmpty;
        ssize_t got = ReadThrough(*file, file->buffer.data(), bufferSize);
        if (got < 0) {
            return failed;
        }
        if (got == 0) {
            break;
        }
        file->use = bufferReadAhead;
        file->bufferStart = file->position;
        file->bufferUsed = static_cast<size_t>(got);
    }
    return count - static_cast<UINT>(wanted);
}

UINT WINAPI _lwrite(HFILE handle, LPCSTR buffer, UINT count)
{
    constexpr UINT failed = static_cast<UINT>(-1);
    OpenFile* file = FileOf(handle);
    if (!file) {
        return failed;
    }
    if (!file->writable || (!buffer && count > 0)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return failed;
    }
    if (file->writeFailed) {
        SetLastError(ERROR_WRITE_FAULT);
        return failed;
    }
    if (count == 0) {
        return 0;
    }
    const uint8_t* source = reinterpret_cast<const uint8_t*>(buffer);
    if (file->use == bufferToWrite && file->bufferUsed + count > bufferSize && !WriteGathered(*file)) {
        return failed;
    }
    if (count >= bufferSize) {
        file->use = bufferEmpty;
        if (!MoveSystemPosition(*file, file->position)) {
            SetLastError(ErrorFromErrno(errno, ERROR_WRITE_FAULT));
            return failed;
        }
        bool written = WriteThrough(*file, source, count);
        file->position = file->systemPosition;
        return written ? count : failed;
    }
    if (file->use != bufferToWrite) {
        file->buffer.resize(bufferSize);
        file->use = bufferToWrite;
        file->bufferStart = file->position;
        file->bufferUsed = 0;
    }
    memcpy(file->buffer.data() + file->bufferUsed, source, count);
    file->bufferUsed += count;
    file->position += count;
    return count;
}

HFILE WINAPI _lclose(HFILE handle)
{
    OpenFile* file = FileOf(handle);
    if (!file) {
        return HFILE_ERROR;
    }
    bool good = WriteGathered(*file) && !file->writeFailed;
    // The descriptor is gone even when close reports an interruption, so it is not tried again.
    if (systemCalls.close(file->descriptor) != 0 && errno != EINTR) {
        SetLastError(ErrorFromErrno(errno, ERROR_WRITE_FAULT));
        good = good && !file->writable;
    }
    *file = OpenFile();
    return good ? 0 : HFILE_ERROR;
}

DWORD WINAPI SetFilePointer(HANDLE handle, LONG offset, PLONG offsetHigh, DWORD method)
{
    OpenFile* file = FileOf(static_cast<HFILE>(reinterpret_cast<intptr_t>(handle)));
    if (!file || !WriteGathered(*file)) {
        return INVALID_SET_FILE_POINTER;
    }
    int64_t distance = offset;
    if (offsetHigh) {
        distance = static_cast<int64_t>(static_cast<uint64_t>(static_cast<uint32_t>(*offsetHigh)) << 32 |
                                        static_cast<uint32_t>(offset));
    }
    int64_t base = 0;
    if (method == FILE_CURRENT) {
        base = file->position;
    } else if (method == FILE_END) {
        off_t end = systemCalls.seek(file->descriptor, 0, SEEK_END);
        if (end < 0) {
            SetLastError(ErrorFromErrno(errno, ERROR_READ_FAULT));
            return INVALID_SET_FILE_POINTER;
        }
        file->systemPosition = end;
        base = end;
    } else if (method != FILE_BEGIN) {
        SetLastError(ERROR_GEN_FAILURE);
        return INVALID_SET_FILE_POINTER;
    }
    int64_t position = 0;
    if (__builtin_add_overflow(base, distance, &position) || position < 0) {
        SetLastError(ERROR_NEGATIVE_SEEK);
        return INVALID_SET_FILE_POINTER;
    }
    file->position = position;
    if (offsetHigh) {
        *offsetHigh = static_cast<LONG>(position >> 32);
    }
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(position);
}

BOOL WINAPI FlushFileBuffers(HANDLE handle)
{
    OpenFile* file = FileOf(static_cast<HFILE>(reinterpret_cast<intptr_t>(handle)));
    if (!file) {
        return FALSE;
    }
    if (!file->writable) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    if (file->writeFailed) {
        SetLastError(ERROR_WRITE_FAULT);
        return FALSE;
    }
    if (!WriteGathered(*file)) {
        return FALSE;
    }
    if (RetryInterrupted([&] { return systemCalls.fsync(file->descriptor); }) != 0) {
        SetLastError(ErrorFromErrno(errno, ERROR_WRITE_FAULT));
        file->writeFailed = true; // the system may have dropped the bytes, a later fsync would not tell
        return FALSE;
    }
    return SyncFolder(file->folder);
}
