// Open-file dialog (COMDLG32), document opener and user's folders (SHELL32), sound (WINMM).
#pragma once

#include "platform/api/types.h"

#define OFN_OVERWRITEPROMPT 0x00000002
#define OFN_HIDEREADONLY 0x00000004
#define OFN_NOCHANGEDIR 0x00000008

typedef struct tagOFNA {
    DWORD lStructSize;
    HWND hwndOwner;
    HINSTANCE hInstance;
    LPCSTR lpstrFilter; // pairs of text and pattern, each zero-terminated, the list closed by an empty text
    LPSTR lpstrCustomFilter;
    DWORD nMaxCustFilter;
    DWORD nFilterIndex; // counts from 1
    LPSTR lpstrFile;
    DWORD nMaxFile;
    LPSTR lpstrFileTitle;
    DWORD nMaxFileTitle;
    LPCSTR lpstrInitialDir;
    LPCSTR lpstrTitle;
    DWORD Flags;
    WORD nFileOffset;
    WORD nFileExtension;
    LPCSTR lpstrDefExt;
} OPENFILENAMEA;

// Lets the user choose one existing file. FALSE when the user cancelled or the path does not fit the buffer;
// CommDlgExtendedError then tells which: 0 or FNERR_BUFFERTOOSMALL.
BOOL WINAPI GetOpenFileNameA(OPENFILENAMEA* request);
#define FNERR_BUFFERTOOSMALL 0x3003
DWORD WINAPI CommDlgExtendedError();

// Only the verb "open", which hands the document to the desktop's own opener and returns at once. A relative file
// name is looked for in the folder given. The result is above 32 when an opener was started.
HINSTANCE WINAPI ShellExecuteA(HWND owner, LPCSTR verb, LPCSTR file, LPCSTR parameters, LPCSTR folder, int show);

#define S_OK ((HRESULT)0x00000000)
#define E_FAIL ((HRESULT)0x80004005)
#define E_INVALIDARG ((HRESULT)0x80070057)
#define SUCCEEDED(result) (((HRESULT)(result)) >= 0)
#define FAILED(result) (((HRESULT)(result)) < 0)
#define CSIDL_LOCAL_APPDATA 0x001C
#define CSIDL_FLAG_CREATE 0x8000
#define SHGFP_TYPE_CURRENT 0

// The path of a folder of the user, without a '/' at its end, into a buffer of MAX_PATH characters. Only
// CSIDL_LOCAL_APPDATA, alone or with CSIDL_FLAG_CREATE, which makes it where it is missing; token null and flags
// SHGFP_TYPE_CURRENT: all else is E_INVALIDARG. It is $XDG_STATE_HOME when that is absolute, else
// $HOME/.local/state. E_FAIL, with the reason in GetLastError, where neither is set, the path is MAX_PATH long, or
// the folder is not there or cannot be made.
HRESULT WINAPI SHGetFolderPathA(HWND owner, int csidl, HANDLE token, DWORD flags, LPSTR path);

#define SND_ASYNC 0x0001
#define SND_NODEFAULT 0x0002
#define SND_NOSTOP 0x0010
#define SND_RESOURCE 0x00040004

// Plays a "WAVE" resource of the module to its end, or with no name stops what plays. Silent and prompt where there
// is no such resource or no sound device.
BOOL WINAPI PlaySoundA(LPCSTR name, HMODULE module, DWORD flags);
BOOL WINAPI sndPlaySoundA(LPCSTR name, UINT flags); // only with no name
