// The process, its clock and the debugger's line.
#include "platform/api/kernel.h"
#include "platform/host/host.h"
#include "platform/kernel/heap.h"

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

namespace {

LPTOP_LEVEL_EXCEPTION_FILTER exceptionFilter = nullptr;

void CallExceptionFilter()
{
    exceptionFilter(nullptr);
}

} // namespace

LPTOP_LEVEL_EXCEPTION_FILTER WINAPI SetUnhandledExceptionFilter(LPTOP_LEVEL_EXCEPTION_FILTER filter)
{
    const LPTOP_LEVEL_EXCEPTION_FILTER previous = exceptionFilter;
    exceptionFilter = filter;
    lastFunction = filter != nullptr ? CallExceptionFilter : nullptr;
    return previous;
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
