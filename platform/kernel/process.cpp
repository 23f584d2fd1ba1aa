// The process, its clock and the debugger's line.
#include "platform/api/kernel.h"
#include "platform/host/host.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <unistd.h>

DWORD WINAPI GetTickCount()
{
    if (host != nullptr) {
        return host->ticks();
    }
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<DWORD>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                              static_cast<uint64_t>(now.tv_nsec) / 1000000);
}

DWORD WINAPI GetCurrentProcessId()
{
    return static_cast<DWORD>(getpid());
}

void WINAPI OutputDebugStringA(LPCSTR text)
{
    if (text == nullptr) {
        return;
    }
    size_t length = strlen(text);
    fputs(text, stderr);
    if (length == 0 || text[length - 1] != '\n') {
        fputc('\n', stderr);
    }
}
