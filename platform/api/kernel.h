// Files, folders, memory blocks, resources, ticks and dates (KERNEL32).
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

#define INVALID_HANDLE_VALUE ((HANDLE)(LONG_PTR)-1)

#define OF_READ 0x0000
#define OF_READWRITE 0x0002
#define OF_SHARE_EXCLUSIVE 0x0010
#define FILE_BEGIN 0

#define ERROR_SUCCESS 0
#define ERROR_FILE_NOT_FOUND 2
#define ERROR_PATH_NOT_FOUND 3
#define ERROR_TOO_MANY_OPEN_FILES 4
#define ERROR_ACCESS_DENIED 5
#define ERROR_INVALID_HANDLE 6
#define ERROR_NOT_ENOUGH_MEMORY 8
#define ERROR_INVALID_DATA 13
#define ERROR_NO_MORE_FILES 18
#define ERROR_WRITE_PROTECT 19
#define ERROR_WRITE_FAULT 29
#define ERROR_READ_FAULT 30
#define ERROR_GEN_FAILURE 31
#define ERROR_SHARING_VIOLATION 32
#define ERROR_INVALID_PARAMETER 87
#define ERROR_DISK_FULL 112
#define ERROR_INSUFFICIENT_BUFFER 122
#define ERROR_INVALID_NAME 123
#define ERROR_NEGATIVE_SEEK 131
#define ERROR_ALREADY_EXISTS 183
#define ERROR_FILENAME_EXCED_RANGE 206
#define ERROR_FILE_TOO_LARGE 223
#define ERROR_DISK_QUOTA_EXCEEDED 1295
#define ERROR_CANT_RESOLVE_FILENAME 1921

#define _MAX_DRIVE 3
#define _MAX_DIR 256
#define _MAX_FNAME 256
#define _MAX_EXT 256

DWORD WINAPI GetLastError();
void WINAPI SetLastError(DWORD code);

// Opens an existing file with OF_READ or OF_READWRITE; a folder cannot be opened. HFILE_ERROR on failure.
// With OF_SHARE_EXCLUSIVE it fails with ERROR_SHARING_VIOLATION while another handle of any process holds the file
// so; the hold ends with the handle, at the latest with the process. Departs from Windows: only exclusive opens
// exclude each other, an open without that flag succeeds, and so do renaming and deleting.
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
// Only FILE_BEGIN, and no high word. The handle is an HFILE cast to HANDLE.
DWORD WINAPI SetFilePointer(HANDLE file, LONG offset, LONG* offsetHigh, DWORD method);
// Writes what the handle holds back, then syncs the file and the folder that holds it. FALSE when any of it failed.
BOOL WINAPI FlushFileBuffers(HANDLE file);
BOOL WINAPI DeleteFileA(LPCSTR path);
// Renames; fails with ERROR_ALREADY_EXISTS when the target exists.
BOOL WINAPI MoveFileA(LPCSTR from, LPCSTR to);
// With MOVEFILE_REPLACE_EXISTING a file at the target is replaced in one step: whoever looks finds the old or the new
// one. ERROR_ACCESS_DENIED where the target is a folder or read-only. With flags 0 as MoveFileA; no other flag.
#define MOVEFILE_REPLACE_EXISTING 0x00000001
BOOL WINAPI MoveFileExA(LPCSTR from, LPCSTR to, DWORD flags);
DWORD WINAPI GetFileAttributesA(LPCSTR path);
// Who may read and write a file, for giving another file the same: its group and its list of rights together, in a
// descriptor that only these two calls read. Departs from Windows: the rights are those of owner, group and others.
// Where the group may not be given, what it may do becomes what others may, and setting still succeeds; the owner of
// a file keeps the right to write it.
typedef DWORD SECURITY_INFORMATION;
typedef LPVOID PSECURITY_DESCRIPTOR;
#define GROUP_SECURITY_INFORMATION 0x00000002
#define DACL_SECURITY_INFORMATION 0x00000004
BOOL WINAPI GetFileSecurityA(LPCSTR path, SECURITY_INFORMATION wanted, PSECURITY_DESCRIPTOR descriptor, DWORD size,
                             DWORD* sizeNeeded);
BOOL WINAPI SetFileSecurityA(LPCSTR path, SECURITY_INFORMATION given, PSECURITY_DESCRIPTOR descriptor);
// Returns the length without the zero byte, or the size needed when the buffer is too small.
DWORD WINAPI GetCurrentDirectoryA(DWORD size, LPSTR buffer);
BOOL WINAPI SetCurrentDirectoryA(LPCSTR path);
// The program's own path through its real location (links resolved). module must be null or the program's instance.
DWORD WINAPI GetModuleFileNameA(HMODULE module, LPSTR buffer, DWORD size);
HMODULE WINAPI GetModuleHandleA(LPCSTR name);
// Splits a path; the drive is always empty here, the folder ends with '/', the extension begins with '.'. Any of the
// buffers may be null; each holds at most its _MAX_ size, longer parts are left empty.
void _splitpath(const char* path, char* drive, char* folder, char* name, char* extension);

typedef struct _SECURITY_ATTRIBUTES {
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
} SECURITY_ATTRIBUTES, *LPSECURITY_ATTRIBUTES;

// Makes one folder. attributes must be null. Departs from Windows, where the rights are those of the folder around
// it: the new folder is open to the user alone, as everything in a user's profile is there.
BOOL WINAPI CreateDirectoryA(LPCSTR path, LPSECURITY_ATTRIBUTES attributes);

typedef struct _FILETIME { // units of 100 nanoseconds since the begin of 1601, UTC
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
} FILETIME, *LPFILETIME;

typedef struct _WIN32_FIND_DATAA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime; // 0, unknown
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    CHAR cFileName[MAX_PATH];
    CHAR cAlternateFileName[14]; // empty
} WIN32_FIND_DATAA, *LPWIN32_FIND_DATAA;

// The files and folders whose names match the last component of the path, in no particular order: '*' stands for any
// characters or none, '?' for one. Without either it describes that one file. INVALID_HANDLE_VALUE on failure,
// ERROR_FILE_NOT_FOUND when nothing matches; at the end FindNextFileA fails with ERROR_NO_MORE_FILES, with another
// error where the folder cannot be read on. 16 searches at a time; each needs its FindClose.
// Departs from Windows: "." and ".." are left out, "*.*" asks for a dot, there are no short names. Links are
// followed; what a pattern finds but cannot be looked at, such as a link to nothing, is left out.
HANDLE WINAPI FindFirstFileA(LPCSTR path, LPWIN32_FIND_DATAA data);
BOOL WINAPI FindNextFileA(HANDLE search, LPWIN32_FIND_DATAA data);
BOOL WINAPI FindClose(HANDLE search);

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

// Resources are embedded in the program; the data stay readable as long as it runs and need no release.
HRSRC WINAPI FindResourceA(HMODULE module, LPCSTR name, LPCSTR type);
HGLOBAL WINAPI LoadResource(HMODULE module, HRSRC resource);
LPVOID WINAPI LockResource(HGLOBAL data);
DWORD WINAPI SizeofResource(HMODULE module, HRSRC resource);
BOOL WINAPI FreeResource(HGLOBAL data);

DWORD WINAPI GetTickCount();
DWORD WINAPI GetCurrentProcessId();

typedef struct _SYSTEMTIME {
    WORD wYear;
    WORD wMonth;     // from 1
    WORD wDayOfWeek; // 0 is Sunday
    WORD wDay;       // from 1
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
} SYSTEMTIME, *LPSYSTEMTIME;

void WINAPI GetLocalTime(LPSYSTEMTIME time);
// Shifts by what the local clock differs from UTC now, daylight saving time included, whatever it was at that time.
BOOL WINAPI FileTimeToLocalFileTime(const FILETIME* time, LPFILETIME local);
BOOL WINAPI FileTimeToSystemTime(const FILETIME* time, LPSYSTEMTIME parts);
// What ends the program without its doing: here a crash, or memory that is refused and that no call can refuse to its
// caller. The filter is called once, just before the process ends; information may be null. A second call replaces
// the first.
struct EXCEPTION_POINTERS;
typedef LONG(WINAPI* LPTOP_LEVEL_EXCEPTION_FILTER)(EXCEPTION_POINTERS* information);
constexpr LONG EXCEPTION_EXECUTE_HANDLER = 1;
LPTOP_LEVEL_EXCEPTION_FILTER WINAPI SetUnhandledExceptionFilter(LPTOP_LEVEL_EXCEPTION_FILTER filter);
// One line on standard error (on Windows it goes to the debugger).
void WINAPI OutputDebugStringA(LPCSTR text);
