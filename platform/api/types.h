// The Windows base types, widths as on 64-bit Windows: LONG and DWORD are 32 bits, pointers and the message words 64.
#pragma once

#include <cstddef>
#include <cstdint>

typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int16_t SHORT;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef unsigned int UINT;
typedef int BOOL;
typedef char CHAR;
typedef CHAR* LPSTR;
typedef const CHAR* LPCSTR;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;
typedef intptr_t LONG_PTR;
typedef uintptr_t ULONG_PTR;
typedef uintptr_t UINT_PTR;
typedef size_t SIZE_T;
typedef WORD ATOM;
typedef DWORD COLORREF;
typedef int HFILE;
typedef LONG HRESULT;

typedef void* HANDLE;
typedef HANDLE HGLOBAL;
typedef HANDLE HRSRC;
typedef void* HGDIOBJ;
typedef struct HINSTANCE__* HINSTANCE;
typedef HINSTANCE HMODULE;
typedef struct HWND__* HWND;
typedef struct HMENU__* HMENU;
typedef struct HACCEL__* HACCEL;
typedef struct HICON__* HICON;
typedef struct HCURSOR__* HCURSOR;
typedef struct HDC__* HDC;
typedef struct HBITMAP__* HBITMAP;
typedef struct HPEN__* HPEN;
typedef struct HBRUSH__* HBRUSH;
typedef struct HFONT__* HFONT;
typedef struct HPALETTE__* HPALETTE;
typedef struct HRGN__* HRGN;

#define CALLBACK
#define WINAPI
#define TRUE 1
#define FALSE 0
#define MAX_PATH 260

typedef LRESULT(CALLBACK* WNDPROC)(HWND, UINT, WPARAM, LPARAM);

typedef struct tagPOINT {
    LONG x;
    LONG y;
} POINT, *LPPOINT;

typedef struct tagSIZE {
    LONG cx;
    LONG cy;
} SIZE, *LPSIZE;

typedef struct tagRECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
} RECT, *LPRECT;

constexpr WORD LOWORD(ULONG_PTR word)
{
    return static_cast<WORD>(word & 0xFFFF);
}

constexpr WORD HIWORD(ULONG_PTR word)
{
    return static_cast<WORD>((word >> 16) & 0xFFFF);
}

constexpr DWORD MAKELONG(WORD low, WORD high)
{
    return static_cast<DWORD>(low) | static_cast<DWORD>(high) << 16;
}

constexpr WPARAM MAKEWPARAM(int low, int high)
{
    return MAKELONG(static_cast<WORD>(low), static_cast<WORD>(high));
}

constexpr LPARAM MAKELPARAM(int low, int high)
{
    return static_cast<LPARAM>(MAKELONG(static_cast<WORD>(low), static_cast<WORD>(high)));
}

constexpr COLORREF RGB(int red, int green, int blue)
{
    return static_cast<COLORREF>(red & 0xFF) | static_cast<COLORREF>(green & 0xFF) << 8 |
           static_cast<COLORREF>(blue & 0xFF) << 16;
}

// A colour that the selected palette resolves; on a true-colour surface it is the plain RGB.
constexpr COLORREF PALETTERGB(int red, int green, int blue)
{
    return 0x02000000 | RGB(red, green, blue);
}

constexpr BYTE GetRValue(COLORREF colour)
{
    return static_cast<BYTE>(colour & 0xFF);
}

constexpr BYTE GetGValue(COLORREF colour)
{
    return static_cast<BYTE>((colour >> 8) & 0xFF);
}

constexpr BYTE GetBValue(COLORREF colour)
{
    return static_cast<BYTE>((colour >> 16) & 0xFF);
}

// A resource number in the place of a resource name.
inline LPSTR MAKEINTRESOURCEA(int number)
{
    return reinterpret_cast<LPSTR>(static_cast<ULONG_PTR>(static_cast<WORD>(number)));
}
