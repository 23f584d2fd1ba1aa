// Files by folder and name, and one routine that moves a typed field between memory and an open file. Every operation
// returns a status and shows nothing; callers choose the message.
#pragma once

#include "platform/platform.h"

struct FileSpec {
    char folder[260]; // ends with the path separator
    char name[260];   // with its extension
};

constexpr HFILE noFile = 0;

int16_t MakeFileSpec(const char* folder, const char* name, FileSpec* spec);
// Status: 0, or the system's error code cut to 16 bits. A full path of 255 characters or more is refused; a file may
// be renamed to, and deleted under, as long a path as the system takes, so that every map has room for its backup's
// name.
int16_t OpenFileSpec(const FileSpec* spec, HFILE* file);     // existing, for reading and writing
int16_t OpenFileSpecRead(const FileSpec* spec, HFILE* file); // existing, for reading
int16_t CreateFileSpec(const FileSpec* spec, HFILE* file);   // new or emptied
int16_t DeleteFileSpec(const FileSpec* spec);
int16_t RenameFileSpec(const FileSpec* spec, const char* newName); // within the folder
// Folder + name; false, with the last error set, when it does not fit 255 characters. path: 256 bytes.
bool FullPath(const FileSpec* spec, char* path);

// Who may read and write a file, as the system has it; size 0 when it cannot be told.
struct FileProtection {
    DWORD size = 0;
    alignas(8) uint8_t bytes[2048];
};

void ReadFileProtection(const FileSpec* spec, FileProtection* protection);
void SetFileProtection(const FileSpec* spec, FileProtection* protection); // as far as the system allows
void CloseFile(HFILE file);                                               // noFile is ignored
// Mode 1: offset bytes from the start; any other mode does nothing.
void SetFilePosition(HFILE file, int mode, int32_t offset);

// Reads up to count bytes and tells how many there were before the file's end. 0, or -1 when the system reported an
// error.
int16_t ReadFileBytes(HFILE file, void* buffer, int32_t count, int32_t* bytesRead);
// Brings everything written so far, and the folder's entry of the file, to the disk.
int16_t SyncFile(HFILE file);

enum TransferDirection { readField = -1, writeField = 0 };
enum FieldType { byteField = 1, wordField = 2, textField = 6, pascalField = 7, countedField = 22, cellField = 37 };

// 0, or -1 when the system reported an error. A read at the end of the file succeeds and moves nothing. A text is
// read up to and including its zero byte, at most 256 bytes; one without it there is a failure.
int16_t TransferField(int direction, int typeCode, HFILE file, void* buffer, int32_t count);
