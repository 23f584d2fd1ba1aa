#include "platform/kernel/file_time.h"

namespace {

constexpr int64_t unitsPerSecond = 10'000'000;
constexpr int64_t secondsTo1970 = 11'644'473'600;
constexpr int64_t nanosecondsPerUnit = 100;
constexpr int unitsPerMillisecond = 10'000;

FILETIME FromUnits(int64_t units)
{
    return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

// Negative for a time that the calls refuse.
int64_t UnitsOf(const FILETIME* time)
{
    return static_cast<int64_t>(static_cast<uint64_t>(time->dwHighDateTime) << 32 | time->dwLowDateTime);
}

SYSTEMTIME SystemTimeOf(const tm& parts, int milliseconds)
{
    constexpr int firstYear = 1900;
    return {static_cast<WORD>(parts.tm_year + firstYear),
            static_cast<WORD>(parts.tm_mon + 1),
            static_cast<WORD>(parts.tm_wday),
            static_cast<WORD>(parts.tm_mday),
            static_cast<WORD>(parts.tm_hour),
            static_cast<WORD>(parts.tm_min),
            static_cast<WORD>(parts.tm_sec),
            static_cast<WORD>(milliseconds)};
}

} // namespace

FILETIME FileTimeOf(const timespec& time)
{
    const int64_t seconds = time.tv_sec + secondsTo1970;
    if (seconds < 0) {
        return FromUnits(0);
    }
    return FromUnits(seconds * unitsPerSecond + time.tv_nsec / nanosecondsPerUnit);
}

void WINAPI GetLocalTime(LPSYSTEMTIME time)
{
    constexpr int nanosecondsPerMillisecond = 1'000'000;
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    tm parts = {};
    localtime_r(&now.tv_sec, &parts);
    *time = SystemTimeOf(parts, static_cast<int>(now.tv_nsec / nanosecondsPerMillisecond));
}

BOOL WINAPI FileTimeToLocalFileTime(const FILETIME* time, LPFILETIME local)
{
    const int64_t units = UnitsOf(time);
    const time_t now = std::time(nullptr);
    tm parts = {};
    localtime_r(&now, &parts);
    const int64_t shifted = units + parts.tm_gmtoff * unitsPerSecond;
    if (units < 0 || shifted < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *local = FromUnits(shifted);
    return TRUE;
}

BOOL WINAPI FileTimeToSystemTime(const FILETIME* time, LPSYSTEMTIME parts)
{
    const int64_t units = UnitsOf(time);
    if (units < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const time_t seconds = units / unitsPerSecond - secondsTo1970;
    tm broken = {};
    gmtime_r(&seconds, &broken);
    *parts = SystemTimeOf(broken, static_cast<int>(units % unitsPerSecond / unitsPerMillisecond));
    return TRUE;
}
