// Files, memory blocks, resources, ticks (KERNEL32).
//
// Paths are UTF-8 and use the separator '/'. Where the exact file is not there, every call matches the last component
// of the path without regard to ASCII and Latin-1 letter case, as a Windows file system would. Paths of MAX_PATH
// characters or more are refused with ERROR_FILENAME_EXCED_RANGE. Interrupted system calls are retried.
#pragma once

#include "platform/api/types.h"

#define HFILE_ERROR ((HFILE)-1)
#define INVALID_FILE_ATTRIBUTES ((DWORD)-1)
#define INVALID_SET_FILE_POINTER ((DWORD)-1)
#define FILE_ATTRIBUTE_READONLY 0x00000001
#define FILE_ATTRIBUTE_DIRECTORY 0x00000010
#define FILE_ATTRIBUTE_NORMAL 0x00000080

#define OF_READ 0x0000
#define OF_WRITE 0x0001
#define OF_READWRITE 0x0002
#define FILE_BEGIN 0
#define FILE_CURRENT 1
#define FILE_END 2

#define ERROR_SUCCESS 0
#define ERROR_FILE_NOT_FOUND 2
#define ERROR_PATH_NOT_FOUND 3
#define ERROR_TOO_MANY_OPEN_FILES 4
#define ERROR_ACCESS_DENIED 5
#define ERROR_INVALID_HANDLE 6
#define ERROR_NOT_ENOUGH_MEMORY 8
#define ERROR_WRITE_FAULT 29
#define ERROR_READ_FAULT 30
#define ERROR_GEN_FAILURE 31
#define ERROR_SHARING_VIOLATION 32
#define ERROR_FILE_EXISTS 80
#define ERROR_DISK_FULL 112
#define ERROR_NEGATIVE_SEEK 131
#define ERROR_ALREADY_EXISTS 183
#define ERROR_FILENAME_EXCED_RANGE 206

#define _MAX_DRIVE 3
#define _MAX_DIR 256
#define _MAX_FNAME 256
#define _MAX_EXT 256

DWORD WINAPI GetLastError();
void WINAPI SetLastError(DWORD code);

// Opens an existing file with OF_READ, OF_WRITE or OF_READWRITE; a folder cannot be opened. HFILE_ERROR on failure.
HFILE WINAPI _lopen(LPCSTR path, int mode);
// Creates a file for reading and writing, or empties the one that is there. The attributes argument must be 0
// (normal).
HFILE WINAPI _lcreat(LPCSTR path, int attributes);
// Reads up to count bytes at the file position; returns the bytes read, 0 at the end, (UINT)-1 on failure.
UINT WINAPI _lread(HFILE file, LPVOID buffer, UINT count);
// Writes count bytes at the file position; returns count, or (UINT)-1 on failure. Departs from Windows: a write that
// only part of the disk could take is a failure, and small writes may wait in the handle until the next positioning,
// flush or close, which then reports or, for close, swallows their failure.
UINT WINAPI _lwrite(HFILE file, LPCSTR buffer, UINT count);
// Closes the file. Returns 0, or HFILE_ERROR when gathered writes failed or the handle is none.
HFILE WINAPI _lclose(HFILE file);
// Only FILE_BEGIN, FILE_CURRENT and FILE_END; the high word pointer may be null. The handle is an HFILE cast to
// HANDLE.
DWORD WINAPI SetFilePointer(HANDLE file, LONG offset, PLONG offsetHigh, DWORD method);
// Writes what the handle holds back, then syncs the file and the folder that holds it. FALSE when any of it failed.
BOOL WINAPI FlushFileBuffers(HANDLE file);
BOOL WINAPI DeleteFileA(LPCSTR path);
// Renames; fails with ERROR_ALREADY_EXISTS when the target exists.
BOOL WINAPI MoveFileA(LPCSTR from, LPCSTR to);
DWORD WINAPI GetFileAttributesA(LPCSTR path);
// Returns the length without the zero byte, or the size needed when the buffer is too small.
DWORD WINAPI GetCurrentDirectoryA(DWORD size, LPSTR buffer);
BOOL WINAPI SetCurrentDirectoryA(LPCSTR path);
// The program's own path through its real location (links resolved). module must be null or the program's instance.
DWORD WINAPI GetModuleFileNameA(HMODULE module, LPSTR buffer, DWORD size);
HMODULE WINAPI GetModuleHandleA(LPCSTR name);
// Splits a path; the drive is always empty here, the folder ends with '/', the extension begins with '.'. Any of the
// buffers may be null; each holds at most its _MAX_ size, longer parts are left empty.
void _splitpath(const char* path, char* drive, char* folder, char* name, char* extension);

#define GMEM_MOVEABLE 0x0002
#define GMEM_ZEROINIT 0x0040
#define GHND (GMEM_MOVEABLE | GMEM_ZEROINIT)

HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T size);
LPVOID WINAPI GlobalLock(HGLOBAL block);
BOOL WINAPI GlobalUnlock(HGLOBAL block);
// The block that a locked address belongs to; null when the address is none that GlobalLock returned.
HGLOBAL WINAPI GlobalHandle(LPCVOID address);
HGLOBAL WINAPI GlobalFree(HGLOBAL block);

#define RT_CURSOR MAKEINTRESOURCEA(1)
#define RT_BITMAP MAKEINTRESOURCEA(2)
#define RT_ICON MAKEINTRESOURCEA(3)
#define RT_MENU MAKEINTRESOURCEA(4)
#define RT_STRING MAKEINTRESOURCEA(6)

// Resources are embedded in the program; the data stay readable as long as it runs and need no release.
HRSRC WINAPI FindResourceA(HMODULE module, LPCSTR name, LPCSTR type);
HGLOBAL WINAPI LoadResource(HMODULE module, HRSRC resource);
LPVOID WINAPI LockResource(HGLOBAL data);
DWORD WINAPI SizeofResource(HMODULE module, HRSRC resource);
BOOL WINAPI FreeResource(HGLOBAL data);

DWORD WINAPI GetTickCount();
// One line on standard error (on Windows it goes to the debugger).
void WINAPI OutputDebugStringA(LPCSTR text);
