#include "toolbox/conversions.h"
#include "toolbox/drawing.h"
#include "toolbox/events.h"

#include <algorithm>

namespace {

// The system keeps this many of the pointer's last positions, or at least so few, and then refuses to give more.
constexpr int historySize = 1024;
constexpr int leastHistorySize = 64;

struct TrailEntry {
    POINT position; // screen
    uint32_t time;
};

struct {
    bool following; // false once the release is known, or from the start when there is nothing to follow
    PressWatch watch;
    TrailEntry press;
    // The newest entry of the history that was taken, and how many entries of the history were alike: several can
    // carry the same position and millisecond.
    bool hasMark;
    TrailEntry mark;
    int markCount;
    POINT last; // given last
    TrailEntry waiting[historySize + 2];
    int waitingCount;
    int waitingNext;
} trail;

bool SamePosition(const POINT& first, const POINT& second)
{
    return first.x == second.x && first.y == second.y;
}

bool SameEntry(const TrailEntry& first, const TrailEntry& second)
{
    return SamePosition(first.position, second.position) && first.time == second.time;
}

// Milliseconds from the second time to the first; the clock may have turned over between them.
int32_t TimeAfter(uint32_t first, uint32_t second)
{
    return static_cast<int32_t>(first - second);
}

} // namespace

// ---- the system's history ----

struct History {
    TrailEntry entries[historySize]; // newest first
    int count;
};

namespace {

History ReadHistory()
{
    History history = {};
    POINT pointer = {};
    GetCursorPos(&pointer);
    // The history holds the low 16 bits of coordinates, which are negative on a second screen to the left.
    MOUSEMOVEPOINT newest = {static_cast<uint16_t>(pointer.x), static_cast<uint16_t>(pointer.y), 0, 0};
    MOUSEMOVEPOINT points[historySize];
    int count = GetMouseMovePointsEx(sizeof(MOUSEMOVEPOINT), &newest, points, historySize, GMMP_USE_DISPLAY_POINTS);
    if (count < 0) {
        count =
            GetMouseMovePointsEx(sizeof(MOUSEMOVEPOINT), &newest, points, leastHistorySize, GMMP_USE_DISPLAY_POINTS);
    }
    history.count = std::clamp(count, 0, historySize);
    for (int i = 0; i < history.count; i++) {
        history.entries[i] = {{static_cast<int16_t>(points[i].x), static_cast<int16_t>(points[i].y)}, points[i].time};
    }
    return history;
}

int CountAlike(const History& history, const TrailEntry& wanted)
{
    return static_cast<int>(std::count_if(history.entries, history.entries + history.count,
                                          [&](const TrailEntry& entry) { return SameEntry(entry, wanted); }));
}

// The index of the entry that is the n-th from the newest (from 1) of those alike; the count when there is none.
int IndexOfAlike(const History& history, const TrailEntry& wanted, int n)
{
    for (int i = 0; i < history.count; i++) {
        if (SameEntry(history.entries[i], wanted) && --n == 0) {
            return i;
        }
    }
    return history.count;
}

// How many of the newest entries were not taken yet.
int UnseenCount(const History& history)
{
    const TrailEntry& seen = trail.hasMark ? trail.mark : trail.press;
    const int alike = CountAlike(history, seen);
    if (alike > 0) {
        // New entries stand before old ones, so that the ones taken are the oldest of those alike.
        const int taken = trail.hasMark ? std::min(trail.markCount, alike) : 1;
        return IndexOfAlike(history, seen, alike - taken + 1);
    }
    // Not there: it was pushed out by newer entries, or the press was at a position reported earlier. Either way what
    // has its time came after it.
    int unseen = 0;
    while (unseen < history.count && TimeAfter(history.entries[unseen].time, seen.time) >= 0) {
        unseen++;
    }
    return unseen;
}

// How many of the newest entries came after the release. What carries the release's own millisecond is later when it
// is newer than the release's position there, or when that position had been reached before.
int CountAfter(const History& history, const TrailEntry& release)
{
    int later = 0;
    while (later < history.count && TimeAfter(history.entries[later].time, release.time) > 0) {
        later++;
    }
    if (CountAlike(history, release) > 0) {
        return IndexOfAlike(history, release, 1);
    }
    while (later < history.count && history.entries[later].time == release.time) {
        later++;
    }
    return later;
}

// Takes the entries between those taken before and the newest skipped ones, oldest first.
void TakeNewEntries(const History& history, int skipped)
{
    const int unseen = UnseenCount(history);
    for (int i = unseen - 1; i >= skipped; i--) {
        trail.waiting[trail.waitingCount++] = history.entries[i];
    }
    if (unseen > skipped) {
        trail.mark = history.entries[skipped];
        trail.markCount = 0;
        for (int i = skipped; i < history.count; i++) {
            trail.markCount += SameEntry(history.entries[i], trail.mark) ? 1 : 0;
        }
        trail.hasMark = true;
    }
}

} // namespace

// ---- following ----

void BeginPointerTrail(const EventRecord* press)
{
    const MSG& message = press->platformMessage;
    trail = {};
    trail.press = {message.pt, message.time};
    trail.last = message.pt;
    // A press of the right button acts on one place only.
    trail.following = message.message == WM_LBUTTONDOWN;
}

namespace {

// Collects what is new. The order of the steps is what keeps the positions in order and those of after the release
// out: the history is read when it holds what led to the pointer's position, and before the queue is found without a
// release.
void CollectPositions()
{
    POINT pointer = {};
    GetCursorPos(&pointer);
    const bool held = StillDown() != 0;
    const History history = ReadHistory();
    MSG message = {};
    const bool releaseSeen = PeekMessageA(&message, nullptr, WM_LBUTTONUP, WM_LBUTTONUP, PM_NOREMOVE);
    trail.following = !PressHasEnded(&trail.watch, held, releaseSeen);
    if (releaseSeen) {
        const TrailEntry release = {message.pt, message.time};
        const History whole = ReadHistory();
        TakeNewEntries(whole, CountAfter(whole, release));
        trail.waiting[trail.waitingCount++] = release;
        return;
    }
    if (!held) {
        return;
    }
    TakeNewEntries(history, 0);
    if (trail.waitingCount == 0) {
        trail.waiting[trail.waitingCount++] = {pointer, 0};
    }
}

// The next position that differs from the last one; to stay in place is nothing new.
bool TakeWaiting()
{
    while (trail.waitingNext < trail.waitingCount) {
        const POINT position = trail.waiting[trail.waitingNext++].position;
        if (!SamePosition(position, trail.last)) {
            trail.last = position;
            return true;
        }
    }
    trail.waitingNext = 0;
    trail.waitingCount = 0;
    return false;
}

} // namespace

int NextTrailPoint(Point* point)
{
    bool found = TakeWaiting();
    if (!found && trail.following) {
        CollectPositions();
        found = TakeWaiting();
    }
    *point = PointFrom(trail.last);
    GlobalToLocal(point);
    return found || trail.following ? 1 : 0;
}
