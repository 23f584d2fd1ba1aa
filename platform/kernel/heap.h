// What happens when the system has no memory left. A reserve is kept for that moment: the first allocation that is
// refused gives it up and is tried again, which is enough for an alert, a rescue copy and a save. It is taken again
// as soon as there is room. What is refused after that is refused to the caller where its call can say so
// (WithMemory); anywhere else the program's last function runs and the process ends.
#pragma once

constexpr unsigned long memoryReserveSize = 6ul << 20; // three pictures of a window of ordinary size

// Watches over the heap from here on, and takes the reserve unless it is there. Nearly free when it is.
void KeepMemoryReserve();
// Gives the reserve up; false when that was done before.
bool GiveUpMemoryReserve();

namespace memory {
bool Run(void (*work)(void*), void* context);
}

// Carries out work that the system may refuse memory for; false when it did. The work must leave whole what it was
// changing, and must not call the program's own procedures, which do not expect to be left in the middle.
template <typename Work>
bool WithMemory(Work work)
{
    return memory::Run([](void* context) { (*static_cast<Work*>(context))(); }, &work);
}

// Called once, with the process about to end for want of memory; a last, smaller reserve is free then. May be null.
extern void (*lastFunction)();
// From here on it is also called when the process crashes, which then ends as it would have. It has three seconds.
void WatchCrashes();
