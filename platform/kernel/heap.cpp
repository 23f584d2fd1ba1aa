#include "platform/kernel/heap.h"

#include "platform/kernel/system_calls.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <initializer_list>
#include <new>
#include <unistd.h>

void (*lastFunction)() = nullptr;

namespace {

constexpr unsigned long lastReserveSize = 1ul << 20;

void* reserve = nullptr;
void* lastReserve = nullptr;

void AtRefusal()
{
    if (!GiveUpMemoryReserve()) {
        throw std::bad_alloc();
    }
}

// Nobody caught what a refused allocation threw. Whatever fails from here on ends the process where it stands.
[[noreturn]] void EndProcess()
{
    static bool ending = false;
    if (!ending) {
        ending = true;
        fputs("Kestrel Map Tool: there is no memory left, the program ends.\n", stderr);
        free(lastReserve);
        lastReserve = nullptr;
        if (lastFunction != nullptr) {
            lastFunction();
        }
    }
    _Exit(EXIT_FAILURE);
}

} // namespace

namespace {

// The handlers are gone by now, so that a second crash ends the process, and so does the alarm.
void AtCrash(int number)
{
    alarm(3);
    if (lastFunction != nullptr) {
        lastFunction();
    }
    raise(number);
}

} // namespace

void WatchCrashes()
{
    alignas(16) static char stack[256 << 10]; // the program's own may be what ran out
    const stack_t other = {stack, 0, sizeof stack};
    sigaltstack(&other, nullptr);
    struct sigaction action = {};
    action.sa_handler = AtCrash;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER | SA_ONSTACK);
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        sigaction(number, &action, nullptr);
    }
}

void KeepMemoryReserve()
{
    if (reserve != nullptr) {
        return;
    }
    std::set_new_handler(AtRefusal);
    std::set_terminate(EndProcess);
    reserve = systemCalls.allocate(1, memoryReserveSize);
    if (lastReserve == nullptr) {
        lastReserve = systemCalls.allocate(1, lastReserveSize);
    }
}

bool GiveUpMemoryReserve()
{
    const bool had = reserve != nullptr;
    free(reserve);
    reserve = nullptr;
    return had;
}

bool memory::Run(void (*work)(void*), void* context)
{
    try {
        work(context);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}
