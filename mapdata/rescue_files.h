// The folder of the rescue copies: names, records and locks. Every path is built in a buffer of MAX_PATH characters;
// what does not fit is a failure. Nothing here shows a message.
#pragma once

#include "mapdata/rescue.h"

#include <vector>

constexpr int rescueNameSize = 96; // of a copy's name, without folder and extension

// What the record of a copy says.
struct RescueRecord {
    char name[rescueNameSize] = "";
    char mapPath[MAX_PATH] = "";
    char targetPath[MAX_PATH] = ""; // where the next save writes, with the identity number that it has now
    FileIdentity file = {};
    int saving = 0;
    int loadedMapID = 0;
    uint64_t copyTime = 0; // of the copy, in file time
};

uint64_t ContentHash(const uint8_t* bytes, size_t count);
// Size, time and contents; exists 0 when it cannot be read.
FileIdentity IdentityOfFile(const char* path);
// Bytes of a file up to limit; -1 when it cannot be read or is longer.
int32_t ReadWholeFile(const char* path, uint8_t* bytes, int32_t limit);

// The copies of this program are called baseName + "-" + its own mark.
bool NameRescueCopy(const char* baseName, char* name);
// Makes the folder and holds this program's lock, if that is not done. False when it cannot be had.
bool HoldRescueFolder();
void ReleaseRescueFolder(); // when the program ends
bool WriteRescueRecord(const RescueRecord& record);
bool WriteRescueBytes(const char* name, const uint8_t* bytes, int32_t count);
int32_t ReadRescueBytes(const char* name, uint8_t* bytes, int32_t limit); // -1 as of ReadWholeFile
void RemoveRescueCopy(const char* name);
// Moves copy and record out of the way; of one map the last five put aside stay.
void PutRescueCopyAside(const RescueRecord& record);

// The newest copy of the map at that path, as mapPath or as targetPath, that no running program owns; older ones of
// it are put aside. False when there is none.
bool FindRescueCopy(const char* path, RescueRecord* record);
// Every copy there is, also of programs that run and those put aside, whose names begin with their folder's.
struct FoundRescueCopy {
    RescueRecord record;
    bool isOwned;
    bool isAside;
};
std::vector<FoundRescueCopy> AllRescueCopies();
bool SameIdentity(const FileIdentity& first, const FileIdentity& second);
// "2026-04-05 16:30", local time.
void FormatRescueTime(const RescueRecord& record, char* text);
