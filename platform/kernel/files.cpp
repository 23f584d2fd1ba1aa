// Open files: a small table of handles, each with one buffer that holds either bytes read ahead or bytes still to be
// written. The position that the program sees is kept here; the system's own is moved only when a transfer needs it.
#include "platform/api/kernel.h"
#include "platform/kernel/paths.h"
#include "platform/kernel/system_calls.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <unistd.h>

namespace {

constexpr size_t bufferSize = 65536;
constexpr int firstHandle = 3; // 0 means "no file" to the program
constexpr int mostFiles = 64;

constexpr int accessBits = 0x0003;
constexpr int shareBits = 0x0070;

enum BufferUse { bufferEmpty, bufferReadAhead, bufferToWrite };

struct OpenFile {
    bool inUse = false;
    int descriptor = -1;
    bool writable = false;
    bool writeFailed = false; // bytes that _lwrite had accepted are lost
    off_t position = 0;       // as the program sees it
    off_t systemPosition = 0; // as the system sees it
    BufferUse use = bufferEmpty;
    off_t bufferStart = 0; // position in the file of the buffer's first byte
    size_t bufferUsed = 0;
    std::string folder; // absolute
};

OpenFile files[mostFiles];
uint8_t buffers[mostFiles][bufferSize]; // a page costs something only once it is used; nothing here can be refused

uint8_t* BufferOf(const OpenFile& file)
{
    return buffers[&file - files];
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
    } else if (!WriteThrough(file, BufferOf(file), file.bufferUsed)) {
        file.writeFailed = true;
    }
    file.bufferUsed = 0;
    return !file.writeFailed;
}

std::string FolderOf(const char* path)
{
    const char* slash = strrchr(path, '/');
    std::string folder = slash != nullptr ? std::string(path, static_cast<size_t>(slash - path) + 1) : std::string();
    if (path[0] == '/') {
        return folder;
    }
    char current[PATH_MAX];
    if (getcwd(current, sizeof current) == nullptr) {
        return slash != nullptr ? folder : std::string(".");
    }
    return std::string(current) + "/" + folder;
}

// Takes the file for this handle alone. The lock is the open file's: it goes with the descriptor, whatever ends it.
bool LockOpenFile(int descriptor)
{
    if (RetryInterrupted([&] { return systemCalls.lock(descriptor, LOCK_EX | LOCK_NB); }) == 0) {
        return true;
    }
    SetLastError(errno == EWOULDBLOCK ? ERROR_SHARING_VIOLATION : ErrorFromErrno(errno, ERROR_READ_FAULT));
    return false;
}

enum OpenChoice { asItIs, exclusively, emptied };

// What is left to do with a file that is open. False with the last error set.
bool MakeReady(int descriptor, OpenChoice choice)
{
    struct stat status;
    if (RetryInterrupted([&] { return systemCalls.statOpen(descriptor, &status); }) != 0) {
        SetLastError(ErrorFromErrno(errno, ERROR_READ_FAULT));
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return false;
    }
    if (choice == exclusively) {
        return LockOpenFile(descriptor);
    }
    if (choice == emptied && status.st_size != 0 &&
        RetryInterrupted([&] { return systemCalls.truncate(descriptor, 0); }) != 0) {
        SetLastError(ErrorFromErrno(errno, ERROR_WRITE_FAULT));
        return false;
    }
    return true;
}

// Only regular files are opened. The kind is looked at before the open, because opening a FIFO or a device can act on
// it, and after it, because the name may have changed its file in between. Nothing is lost until that is known: only
// then the file is emptied.
HFILE OpenPath(LPCSTR path, int flags, OpenChoice choice)
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
    if (StatPath(resolved, &status) == 0 && !S_ISREG(status.st_mode)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return HFILE_ERROR;
    }
    int descriptor =
        RetryInterrupted([&] { return systemCalls.open(resolved, flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666); });
    if (descriptor < 0) {
        SetErrorForPath(resolved, ERROR_READ_FAULT);
        return HFILE_ERROR;
    }
    if (!MakeReady(descriptor, choice)) {
        systemCalls.close(descriptor);
        return HFILE_ERROR;
    }
    OpenFile& file = files[index];
    file = OpenFile();
    file.inUse = true;
    file.descriptor = descriptor;
    file.writable = (flags & O_ACCMODE) == O_RDWR;
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
    const bool exclusive = (mode & shareBits) == OF_SHARE_EXCLUSIVE;
    const int access = mode & accessBits;
    if (access != OF_READ && access != OF_READWRITE) {
        SetLastError(ERROR_ACCESS_DENIED);
        return HFILE_ERROR;
    }
    return OpenPath(path, access == OF_READ ? O_RDONLY : O_RDWR, exclusive ? exclusively : asItIs);
}

HFILE WINAPI _lcreat(LPCSTR path, int attributes)
{
    if (attributes != 0) {
        SetLastError(ERROR_ACCESS_DENIED);
        return HFILE_ERROR;
    }
    return OpenPath(path, O_RDWR | O_CREAT, emptied);
}

namespace {

constexpr UINT transferFailed = static_cast<UINT>(-1);

size_t BytesAhead(const OpenFile& file)
{
    const off_t end = file.bufferStart + static_cast<off_t>(file.bufferUsed);
    const bool inside = file.use == bufferReadAhead && file.position >= file.bufferStart && file.position < end;
    return inside ? static_cast<size_t>(end - file.position) : 0;
}

size_t TakeFromBuffer(OpenFile& file, uint8_t* destination, size_t wanted)
{
    const size_t taken = std::min(wanted, BytesAhead(file));
    if (taken > 0) {
        memcpy(destination, BufferOf(file) + (file.position - file.bufferStart), taken);
        file.position += static_cast<off_t>(taken);
    }
    return taken;
}

// Reads at the program's position until count bytes or the end of the file; -1 on failure.
ssize_t ReadAtPosition(OpenFile& file, uint8_t* bytes, size_t count)
{
    if (!MoveSystemPosition(file, file.position)) {
        SetLastError(ErrorFromErrno(errno, ERROR_READ_FAULT));
        return -1;
    }
    return ReadThrough(file, bytes, count);
}

bool FillBuffer(OpenFile& file)
{
    file.use = bufferEmpty;
    const ssize_t got = ReadAtPosition(file, BufferOf(file), bufferSize);
    if (got < 0) {
        return false;
    }
    file.use = bufferReadAhead;
    file.bufferStart = file.position;
    file.bufferUsed = static_cast<size_t>(got);
    return true;
}

} // namespace

UINT WINAPI _lread(HFILE handle, LPVOID buffer, UINT count)
{
    OpenFile* file = FileOf(handle);
    if (file == nullptr) {
        return transferFailed;
    }
    if ((buffer == nullptr) && count > 0) {
        SetLastError(ERROR_ACCESS_DENIED);
        return transferFailed;
    }
    if (!WriteGathered(*file)) {
        return transferFailed;
    }
    uint8_t* destination = static_cast<uint8_t*>(buffer);
    const size_t taken = TakeFromBuffer(*file, destination, count);
    const size_t missing = count - taken;
    if (missing >= bufferSize) {
        const ssize_t got = ReadAtPosition(*file, destination + taken, missing);
        if (got < 0) {
            return transferFailed;
        }
        file->position += got;
        return static_cast<UINT>(taken + static_cast<size_t>(got));
    }
    if (missing > 0 && !FillBuffer(*file)) {
        return transferFailed;
    }
    return static_cast<UINT>(taken + TakeFromBuffer(*file, destination + taken, missing));
}

namespace {

bool WriteAtPosition(OpenFile& file, const uint8_t* bytes, size_t count)
{
    if (!MoveSystemPosition(file, file.position)) {
        SetLastError(ErrorFromErrno(errno, ERROR_WRITE_FAULT));
        return false;
    }
    const bool written = WriteThrough(file, bytes, count);
    file.position = file.systemPosition;
    return written;
}

// The buffer must have room for them.
void Gather(OpenFile& file, const uint8_t* bytes, size_t count)
{
    if (file.use != bufferToWrite) {
        file.use = bufferToWrite;
        file.bufferStart = file.position;
        file.bufferUsed = 0;
    }
    memcpy(BufferOf(file) + file.bufferUsed, bytes, count);
    file.bufferUsed += count;
    file.position += static_cast<off_t>(count);
}

} // namespace

UINT WINAPI _lwrite(HFILE handle, LPCSTR buffer, UINT count)
{
    OpenFile* file = FileOf(handle);
    if (file == nullptr) {
        return transferFailed;
    }
    if (!file->writable || ((buffer == nullptr) && count > 0)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return transferFailed;
    }
    if (file->writeFailed) {
        SetLastError(ERROR_WRITE_FAULT);
        return transferFailed;
    }
    const uint8_t* source = reinterpret_cast<const uint8_t*>(buffer);
    if (file->bufferUsed + count > bufferSize && !WriteGathered(*file)) {
        return transferFailed;
    }
    if (count >= bufferSize) {
        file->use = bufferEmpty;
        return WriteAtPosition(*file, source, count) ? count : transferFailed;
    }
    if (count > 0) {
        Gather(*file, source, count);
    }
    return count;
}

HFILE WINAPI _lclose(HFILE handle)
{
    OpenFile* file = FileOf(handle);
    if (file == nullptr) {
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

DWORD WINAPI SetFilePointer(HANDLE handle, LONG offset, LONG* offsetHigh, DWORD method)
{
    OpenFile* file = FileOf(static_cast<HFILE>(reinterpret_cast<intptr_t>(handle)));
    if ((file == nullptr) || !WriteGathered(*file)) {
        return INVALID_SET_FILE_POINTER;
    }
    if (method != FILE_BEGIN || (offsetHigh != nullptr)) {
        SetLastError(ERROR_GEN_FAILURE);
        return INVALID_SET_FILE_POINTER;
    }
    if (offset < 0) {
        SetLastError(ERROR_NEGATIVE_SEEK);
        return INVALID_SET_FILE_POINTER;
    }
    file->position = offset;
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(offset);
}

BOOL WINAPI FlushFileBuffers(HANDLE handle)
{
    OpenFile* file = FileOf(static_cast<HFILE>(reinterpret_cast<intptr_t>(handle)));
    if (file == nullptr) {
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
