#include "mapdata/rescue_files.h"

#include "toolbox/resources.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr char dataEnding[] = ".dat";
constexpr char recordEnding[] = ".txt";
constexpr char lockEnding[] = ".lock";
constexpr char asideFolder[] = "aside/";
constexpr int keptAside = 5;              // of one map
constexpr int32_t recordLimit = 4 * 1024; // bytes of a record
constexpr UINT readFailed = static_cast<UINT>(-1);

typedef char PathBuffer[MAX_PATH];

// ---- paths ----

bool Joined(char* path, const char* folder, const char* name, const char* ending)
{
    const int length = snprintf(path, MAX_PATH, "%s%s%s", folder, name, ending);
    return length > 0 && length < MAX_PATH;
}

// Of the rescue copies, with a separator at its end. No folder is made.
bool RescueFolder(char* folder)
{
    PathBuffer state = "";
    return SUCCEEDED(SHGetFolderPathA(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, state)) &&
           Joined(folder, state, "/kestrel-map-tool/rescue/", "");
}

bool RescuePath(char* path, const char* name, const char* ending)
{
    PathBuffer folder;
    return RescueFolder(folder) && Joined(path, folder, name, ending);
}

bool MakeFolder(const char* path)
{
    return CreateDirectoryA(path, nullptr) || GetLastError() == ERROR_ALREADY_EXISTS;
}

bool MakeRescueFolders()
{
    PathBuffer path = "";
    if (FAILED(
            SHGetFolderPathA(nullptr, CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT, path))) {
        return false;
    }
    const size_t stateLength = strlen(path);
    for (const char* folder : {"/kestrel-map-tool", "/kestrel-map-tool/rescue"}) {
        path[stateLength] = 0;
        PathBuffer whole;
        if (!Joined(whole, path, folder, "") || !MakeFolder(whole)) {
            return false;
        }
    }
    return true;
}

// ---- files ----

// Beside and renamed, so that whoever looks finds the old file or the new one whole.
bool WriteFileWhole(const char* path, const void* bytes, int32_t count)
{
    PathBuffer beside;
    if (!Joined(beside, path, ".new", "")) {
        return false;
    }
    const HFILE file = _lcreat(beside, 0);
    if (file == HFILE_ERROR) {
        return false;
    }
    const bool written = _lwrite(file, static_cast<const char*>(bytes), static_cast<UINT>(count)) != readFailed;
    const bool closed = _lclose(file) != HFILE_ERROR;
    if (written && closed && MoveFileExA(beside, path, MOVEFILE_REPLACE_EXISTING)) {
        return true;
    }
    DeleteFileA(beside);
    return false;
}

uint64_t Joined64(DWORD high, DWORD low)
{
    return static_cast<uint64_t>(high) << 32 | low;
}

// ---- locks ----

struct {
    char mark[rescueNameSize]; // of this program; empty until the lock is held
    HFILE file;
} ownLock = {"", HFILE_ERROR};

// A copy's name ends with the mark of its program, "-" + process number + "-" + start: "Map101c-1234-5f3a9c".
const char* MarkIn(const char* name)
{
    int dashes = 0;
    const char* place = name + strlen(name);
    while (place > name && dashes < 2) {
        place--;
        dashes += *place == '-' ? 1 : 0;
    }
    return dashes == 2 ? place : nullptr;
}

// True while the program that the copy belongs to runs; the lock of one that does not is removed.
bool IsOwned(const char* name)
{
    const char* mark = MarkIn(name);
    if (mark == nullptr) {
        return false;
    }
    if (strcmp(mark, ownLock.mark) == 0) {
        return true;
    }
    PathBuffer path;
    if (!RescuePath(path, mark, lockEnding)) {
        return false;
    }
    const HFILE lock = _lopen(path, OF_READWRITE | OF_SHARE_EXCLUSIVE);
    if (lock == HFILE_ERROR) {
        return GetLastError() == ERROR_SHARING_VIOLATION;
    }
    _lclose(lock);
    DeleteFileA(path);
    return false;
}

// ---- records ----

// The lines of a record, in their order; the first one says what the file is.
constexpr char recordFormat[] = "Kestrel Map Tool: work on a map that was not saved\n"
                                "map: %s\n"
                                "save goes to: %s\n"
                                "file exists: %d\n"
                                "file size: %u\n"
                                "file time: %llu\n"
                                "file hash: %016llx\n"
                                "saving: %d\n"
                                "opened as map: %d\n"
                                "process: %lu\n"
                                "written: %04d-%02d-%02d %02d:%02d:%02d\n";

bool TakeText(const char* text, const char* label, char* value)
{
    const char* start = strstr(text, label);
    if (start == nullptr) {
        return false;
    }
    start += strlen(label);
    const size_t length = strcspn(start, "\n");
    if (length >= MAX_PATH) {
        return false;
    }
    memcpy(value, start, length);
    value[length] = 0;
    return true;
}

template <typename Number>
bool TakeNumber(const char* text, const char* label, const char* format, Number* value)
{
    PathBuffer digits;
    return TakeText(text, label, digits) && sscanf(digits, format, value) == 1;
}

bool ReadRecord(const char* folder, const char* name, RescueRecord* record)
{
    PathBuffer path;
    char text[recordLimit + 1];
    if (strlen(name) >= sizeof record->name || !Joined(path, folder, name, recordEnding)) {
        return false;
    }
    const int32_t length = ReadWholeFile(path, reinterpret_cast<uint8_t*>(text), recordLimit);
    if (length < 0) {
        return false;
    }
    text[length] = 0;
    strcpy(record->name, name);
    unsigned long long time = 0;
    unsigned long long hash = 0;
    const bool complete =
        TakeText(text, "\nmap: ", record->mapPath) && TakeText(text, "\nsave goes to: ", record->targetPath) &&
        TakeNumber(text, "\nfile exists: ", "%d", &record->file.exists) &&
        TakeNumber(text, "\nfile size: ", "%u", &record->file.size) &&
        TakeNumber(text, "\nfile time: ", "%llu", &time) && TakeNumber(text, "\nfile hash: ", "%llx", &hash) &&
        TakeNumber(text, "\nsaving: ", "%d", &record->saving) &&
        TakeNumber(text, "\nopened as map: ", "%d", &record->loadedMapID);
    record->file.time = time;
    record->file.hash = hash;
    WIN32_FIND_DATAA found;
    const HANDLE search =
        Joined(path, folder, name, dataEnding) ? FindFirstFileA(path, &found) : INVALID_HANDLE_VALUE;
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    FindClose(search);
    record->copyTime = Joined64(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime);
    return complete;
}

// Calls visit with the name of every record in the folder, without its ending.
template <typename Visit>
void ForEachRecord(const char* folder, Visit visit)
{
    PathBuffer pattern;
    WIN32_FIND_DATAA found;
    const HANDLE search =
        Joined(pattern, folder, "*", recordEnding) ? FindFirstFileA(pattern, &found) : INVALID_HANDLE_VALUE;
    if (search == INVALID_HANDLE_VALUE) {
        return;
    }
    do {
        const size_t length = strlen(found.cFileName);
        if (length > strlen(recordEnding) && length - strlen(recordEnding) < rescueNameSize) {
            found.cFileName[length - strlen(recordEnding)] = 0;
            visit(found.cFileName);
        }
    } while (FindNextFileA(search, &found));
    FindClose(search);
}

bool IsOfMap(const RescueRecord& record, const char* path)
{
    return EqualString(record.mapPath, path, 0, 0) || EqualString(record.targetPath, path, 0, 0);
}

void RemoveIn(const char* folder, const char* name)
{
    PathBuffer path;
    for (const char* ending : {dataEnding, recordEnding}) {
        if (Joined(path, folder, name, ending)) {
            DeleteFileA(path);
        }
    }
}

// Of the copies of one map put aside the oldest go, until so many are left.
void KeepLastAside(const char* folder, const char* mapPath)
{
    for (;;) {
        int count = 0;
        RescueRecord oldest;
        ForEachRecord(folder, [&](const char* name) {
            RescueRecord record;
            if (ReadRecord(folder, name, &record) && EqualString(record.mapPath, mapPath, 0, 0)) {
                if (count == 0 || record.copyTime < oldest.copyTime) {
                    oldest = record;
                }
                count++;
            }
        });
        if (count <= keptAside) {
            return;
        }
        RemoveIn(folder, oldest.name);
    }
}

} // namespace

// ---- contents ----

// FNV-1a over words of eight bytes, the last one filled up with zeros, then over the length.
uint64_t ContentHash(const uint8_t* bytes, size_t count)
{
    constexpr uint64_t prime = 0x100000001B3;
    uint64_t hash = 0xCBF29CE484222325;
    for (size_t offset = 0; offset < count; offset += 8) {
        uint64_t word = 0;
        for (size_t i = std::min<size_t>(8, count - offset); i > 0; i--) {
            word = word << 8 | bytes[offset + i - 1];
        }
        hash = (hash ^ word) * prime;
        hash ^= hash >> 32;
    }
    return (hash ^ count) * prime;
}

int32_t ReadWholeFile(const char* path, uint8_t* bytes, int32_t limit)
{
    const HFILE file = _lopen(path, OF_READ);
    if (file == HFILE_ERROR) {
        return -1;
    }
    const UINT count = _lread(file, bytes, static_cast<UINT>(limit));
    char further = 0;
    const bool isWhole = count != readFailed && _lread(file, &further, 1) == 0;
    _lclose(file);
    return isWhole ? static_cast<int32_t>(count) : -1;
}

FileIdentity IdentityOfFile(const char* path)
{
    FileIdentity identity;
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA(path, &found);
    if (search == INVALID_HANDLE_VALUE) {
        return identity;
    }
    FindClose(search);
    const HFILE file = _lopen(path, OF_READ);
    if (file == HFILE_ERROR) {
        return identity;
    }
    uint64_t hash = 0;
    uint8_t block[16 * 1024];
    UINT count = 0;
    while ((count = _lread(file, block, sizeof block)) != 0 && count != readFailed) {
        hash = hash * 31 + ContentHash(block, count);
    }
    _lclose(file);
    if (count == readFailed) {
        return identity;
    }
    identity.exists = 1;
    identity.size = found.nFileSizeLow;
    identity.time = Joined64(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime);
    identity.hash = hash;
    return identity;
}

// ---- this program's copy ----

bool NameRescueCopy(const char* baseName, char* name)
{
    const int length = snprintf(name, rescueNameSize, "%.40s%s", baseName, ownLock.mark);
    return ownLock.mark[0] != 0 && length < rescueNameSize;
}

bool HoldRescueFolder()
{
    if (ownLock.file != HFILE_ERROR) {
        return true;
    }
    PathBuffer path;
    char mark[rescueNameSize];
    snprintf(mark, sizeof mark, "-%lu-%lx", static_cast<unsigned long>(GetCurrentProcessId()),
             static_cast<unsigned long>(GetTickCount()));
    if (!MakeRescueFolders() || !RescuePath(path, mark, lockEnding)) {
        return false;
    }
    const HFILE created = _lcreat(path, 0);
    if (created == HFILE_ERROR) {
        return false;
    }
    _lclose(created);
    ownLock.file = _lopen(path, OF_READWRITE | OF_SHARE_EXCLUSIVE);
    if (ownLock.file == HFILE_ERROR) {
        return false;
    }
    strcpy(ownLock.mark, mark);
    return true;
}

void ReleaseRescueFolder()
{
    if (ownLock.file == HFILE_ERROR) {
        return;
    }
    _lclose(ownLock.file);
    PathBuffer path;
    if (RescuePath(path, ownLock.mark, lockEnding)) {
        DeleteFileA(path);
    }
    ownLock = {"", HFILE_ERROR};
}

bool WriteRescueRecord(const RescueRecord& record)
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    char text[recordLimit];
    const int length = snprintf(
        text, sizeof text, recordFormat, record.mapPath, record.targetPath, record.file.exists, record.file.size,
        static_cast<unsigned long long>(record.file.time), static_cast<unsigned long long>(record.file.hash),
        record.saving, record.loadedMapID, static_cast<unsigned long>(GetCurrentProcessId()), now.wYear, now.wMonth,
        now.wDay, now.wHour, now.wMinute, now.wSecond);
    PathBuffer path;
    return length > 0 && length < recordLimit && RescuePath(path, record.name, recordEnding) &&
           WriteFileWhole(path, text, length);
}

bool WriteRescueBytes(const char* name, const uint8_t* bytes, int32_t count)
{
    PathBuffer path;
    return RescuePath(path, name, dataEnding) && WriteFileWhole(path, bytes, count);
}

int32_t ReadRescueBytes(const char* name, uint8_t* bytes, int32_t limit)
{
    PathBuffer path;
    return RescuePath(path, name, dataEnding) ? ReadWholeFile(path, bytes, limit) : -1;
}

void RemoveRescueCopy(const char* name)
{
    PathBuffer folder;
    if (RescueFolder(folder)) {
        RemoveIn(folder, name);
    }
}

// ---- copies left behind ----

void PutRescueCopyAside(const RescueRecord& record)
{
    PathBuffer folder;
    PathBuffer aside;
    PathBuffer from;
    PathBuffer to;
    if (!RescueFolder(folder) || !Joined(aside, folder, asideFolder, "")) {
        return;
    }
    aside[strlen(aside) - 1] = 0;
    MakeFolder(aside);
    aside[strlen(aside)] = '/';
    for (const char* ending : {dataEnding, recordEnding}) {
        if (Joined(from, folder, record.name, ending) && Joined(to, aside, record.name, ending)) {
            MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING);
        }
    }
    KeepLastAside(aside, record.mapPath);
}

bool FindRescueCopy(const char* path, RescueRecord* record)
{
    PathBuffer folder;
    if (!RescueFolder(folder)) {
        return false;
    }
    bool isFound = false;
    ForEachRecord(folder, [&](const char* name) {
        RescueRecord other;
        if (!ReadRecord(folder, name, &other) || !IsOfMap(other, path) || IsOwned(name)) {
            return;
        }
        if (isFound) {
            PutRescueCopyAside(other.copyTime > record->copyTime ? *record : other);
        }
        if (!isFound || other.copyTime > record->copyTime) {
            *record = other;
        }
        isFound = true;
    });
    return isFound;
}

std::vector<FoundRescueCopy> AllRescueCopies()
{
    std::vector<FoundRescueCopy> copies;
    PathBuffer folder;
    PathBuffer aside;
    if (!RescueFolder(folder) || !Joined(aside, folder, asideFolder, "")) {
        return copies;
    }
    ForEachRecord(folder, [&](const char* name) {
        RescueRecord record;
        if (ReadRecord(folder, name, &record)) {
            copies.push_back({record, IsOwned(name), false});
        }
    });
    ForEachRecord(aside, [&](const char* name) {
        RescueRecord record;
        PathBuffer whole;
        if (ReadRecord(aside, name, &record) && Joined(whole, asideFolder, name, "") &&
            strlen(whole) < sizeof record.name) {
            strcpy(record.name, whole);
            copies.push_back({record, false, true});
        }
    });
    return copies;
}

bool SameIdentity(const FileIdentity& first, const FileIdentity& second)
{
    return first.exists == second.exists &&
           (first.exists == 0 ||
            (first.size == second.size && first.time == second.time && first.hash == second.hash));
}

void FormatRescueTime(const RescueRecord& record, char* text)
{
    const FILETIME time = {static_cast<DWORD>(record.copyTime), static_cast<DWORD>(record.copyTime >> 32)};
    FILETIME local = {};
    SYSTEMTIME parts = {};
    FileTimeToLocalFileTime(&time, &local);
    FileTimeToSystemTime(&local, &parts);
    snprintf(text, textBufferSize, "%04d-%02d-%02d %02d:%02d", parts.wYear, parts.wMonth, parts.wDay, parts.wHour,
             parts.wMinute);
}
