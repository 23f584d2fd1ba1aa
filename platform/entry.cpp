// The program's start on a desktop other than Windows: opens the window system and runs the Windows entry point.
#include "platform/api/kernel.h"
#include "platform/api/user.h"
#include "platform/host/host.h"
#include "platform/host/qt/qt_host.h"
#include "platform/kernel/heap.h"
#include "platform/user/platform_reset.h"

#include <csignal>

int main()
{
    signal(SIGXFSZ, SIG_IGN); // a write beyond the limit of file sizes fails like one to a full disk
    KeepMemoryReserve();
    WatchCrashes();
    host = &qtHost;
    if (host->start() != 0) {
        return 1;
    }
    char noArguments[] = "";
    const int result = WinMain(GetModuleHandleA(nullptr), nullptr, noArguments, SW_SHOWNORMAL);
    PlatformReset();
    host->stop();
    return result;
}
