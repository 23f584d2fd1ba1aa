// The one door to the Windows API. On Windows it is the system's own headers; everywhere else platform/ implements
// the subset that the program uses, under the same names and with the behaviour that the Windows documentation
// states. Where a call departs from that documentation, its declaration says so.
#pragma once

#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <commdlg.h>
#include <mmsystem.h>
#include <shellapi.h>
#include <shlobj.h>
#include <stdlib.h>
#include <windows.h>
#undef FindWindow

#else

#include "platform/api/gdi.h"
#include "platform/api/kernel.h"
#include "platform/api/shell.h"
#include "platform/api/types.h"
#include "platform/api/user.h"

#endif
