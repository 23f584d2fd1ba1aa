// The clock and the debugger's line.
#include "platform/api/kernel.h"
#include "platform/host/host.h"

#include <cstdio>
#include <cstring>
#include <ctime>

DWORD WINAPI GetTickCount()
{
    if (host) {
        return host->ticks();
    }
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<DWORD>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                              static_cast<uint64_t>(now.tv_nsec) / 1000000);
}

void WINAPI OutputDebugStringA(LPCSTR text)
{
    if (!text) {
        return;
    }
    size_t length = strlen(text);
    fputs(text, stderr);
    if (length == 0 || text[length - 1] != '\n') {
        fputc('\n', stderr);
    }
}
