#include "mapdata/file_access.h"

#include <cstring>

namespace {

constexpr size_t pathLimit = 255;
constexpr UINT transferFailed = static_cast<UINT>(-1);
constexpr SECURITY_INFORMATION groupAndRights = GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;

int16_t LastErrorStatus()
{
    const int16_t status = static_cast<int16_t>(GetLastError());
    return status != 0 ? status : static_cast<int16_t>(ERROR_GEN_FAILURE);
}

// Folder + name, fewer characters than the limit.
bool BuildPath(const FileSpec* spec, char* path, size_t limit)
{
    const size_t folderLength = strlen(spec->folder);
    const size_t nameLength = strlen(spec->name);
    if (folderLength + nameLength >= limit) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return false;
    }
    memcpy(path, spec->folder, folderLength);
    memcpy(path + folderLength, spec->name, nameLength + 1);
    return true;
}

int16_t OpenPath(const FileSpec* spec, int mode, HFILE* file)
{
    char path[pathLimit + 1];
    if (!FullPath(spec, path)) {
        return ERROR_FILENAME_EXCED_RANGE;
    }
    const HFILE opened = _lopen(path, mode);
    if (opened == HFILE_ERROR) {
        return LastErrorStatus();
    }
    *file = opened;
    return 0;
}

int16_t TransferBytes(int direction, HFILE file, void* buffer, int32_t count)
{
    if (count < 0) {
        return -1;
    }
    int32_t bytesRead = 0;
    if (direction == readField) {
        return ReadFileBytes(file, buffer, count, &bytesRead);
    }
    return _lwrite(file, static_cast<const char*>(buffer), static_cast<UINT>(count)) == transferFailed ? -1 : 0;
}

int16_t ReadText(HFILE file, char* text)
{
    for (int i = 0; i < 256; i++) {
        int32_t bytesRead = 0;
        if (ReadFileBytes(file, text + i, 1, &bytesRead) != 0) {
            return -1;
        }
        if (bytesRead == 0) { // what came before the end of the file is the text; nothing leaves the old one
            if (i > 0) {
                text[i] = 0;
            }
            return 0;
        }
        if (text[i] == 0) {
            return 0;
        }
    }
    return -1;
}

int16_t TransferText(int direction, HFILE file, char* text)
{
    if (direction == readField) {
        return ReadText(file, text);
    }
    return TransferBytes(direction, file, text, static_cast<int32_t>(strlen(text) + 1));
}

// The length byte counts the characters behind it, up to 255.
int16_t TransferPascalText(int direction, HFILE file, uint8_t* text)
{
    if (direction != readField) {
        return TransferBytes(direction, file, text, text[0] + 1);
    }
    if (TransferBytes(direction, file, text, 1) != 0) {
        return -1;
    }
    return TransferBytes(direction, file, text + 1, text[0]);
}

int32_t FixedFieldSize(int typeCode)
{
    switch (typeCode) {
    case byteField:
        return 1;
    case wordField:
    case 28:
    case cellField:
        return 2;
    case 8:
    case 10:
        return 8;
    default:
        return 4;
    }
}

} // namespace

int16_t MakeFileSpec(const char* folder, const char* name, FileSpec* spec)
{
    if (strlen(folder) >= sizeof spec->folder || strlen(name) >= sizeof spec->name) {
        return ERROR_FILENAME_EXCED_RANGE;
    }
    // Either text may be the specification's own.
    memmove(spec->folder, folder, strlen(folder) + 1);
    memmove(spec->name, name, strlen(name) + 1);
    return 0;
}

bool FullPath(const FileSpec* spec, char* path)
{
    return BuildPath(spec, path, pathLimit);
}

int16_t OpenFileSpec(const FileSpec* spec, HFILE* file)
{
    return OpenPath(spec, OF_READWRITE, file);
}

int16_t OpenFileSpecRead(const FileSpec* spec, HFILE* file)
{
    return OpenPath(spec, OF_READ, file);
}

int16_t CreateFileSpec(const FileSpec* spec, HFILE* file)
{
    char path[pathLimit + 1];
    if (!FullPath(spec, path)) {
        return ERROR_FILENAME_EXCED_RANGE;
    }
    const HFILE created = _lcreat(path, 0);
    if (created == HFILE_ERROR) {
        return LastErrorStatus();
    }
    *file = created;
    return 0;
}

int16_t DeleteFileSpec(const FileSpec* spec)
{
    char path[MAX_PATH];
    if (!BuildPath(spec, path, sizeof path)) {
        return ERROR_FILENAME_EXCED_RANGE;
    }
    return DeleteFileA(path) ? 0 : LastErrorStatus();
}

int16_t RenameFileSpec(const FileSpec* spec, const char* newName)
{
    FileSpec target;
    char path[pathLimit + 1];
    char newPath[MAX_PATH];
    if (MakeFileSpec(spec->folder, newName, &target) != 0 || !FullPath(spec, path) ||
        !BuildPath(&target, newPath, sizeof newPath)) {
        return ERROR_FILENAME_EXCED_RANGE;
    }
    return MoveFileA(path, newPath) ? 0 : LastErrorStatus();
}

void ReadFileProtection(const FileSpec* spec, FileProtection* protection)
{
    char path[pathLimit + 1];
    protection->size = 0;
    if (!FullPath(spec, path) ||
        !GetFileSecurityA(path, groupAndRights, protection->bytes, sizeof protection->bytes, &protection->size)) {
        protection->size = 0;
    }
}

void SetFileProtection(const FileSpec* spec, FileProtection* protection)
{
    char path[pathLimit + 1];
    if (protection->size != 0 && FullPath(spec, path)) {
        SetFileSecurityA(path, groupAndRights, protection->bytes);
    }
}

void CloseFile(HFILE file)
{
    if (file != noFile) {
        _lclose(file);
    }
}

void SetFilePosition(HFILE file, int mode, int32_t offset)
{
    if (mode == 1) {
        SetFilePointer(reinterpret_cast<HANDLE>(static_cast<intptr_t>(file)), offset, nullptr, FILE_BEGIN);
    }
}

int16_t ReadFileBytes(HFILE file, void* buffer, int32_t count, int32_t* bytesRead)
{
    char* bytes = static_cast<char*>(buffer);
    *bytesRead = 0;
    while (*bytesRead < count) {
        const UINT moved = _lread(file, bytes + *bytesRead, static_cast<UINT>(count - *bytesRead));
        if (moved == transferFailed) {
            return -1;
        }
        if (moved == 0) {
            break;
        }
        *bytesRead += static_cast<int32_t>(moved);
    }
    return 0;
}

int16_t SyncFile(HFILE file)
{
    return FlushFileBuffers(reinterpret_cast<HANDLE>(static_cast<intptr_t>(file))) ? 0 : LastErrorStatus();
}

int16_t TransferField(int direction, int typeCode, HFILE file, void* buffer, int32_t count)
{
    switch (typeCode) {
    case textField:
        return TransferText(direction, file, static_cast<char*>(buffer));
    case pascalField:
        return TransferPascalText(direction, file, static_cast<uint8_t*>(buffer));
    case countedField:
        return TransferBytes(direction, file, buffer, count);
    default:
        return TransferBytes(direction, file, buffer, FixedFieldSize(typeCode));
    }
}
