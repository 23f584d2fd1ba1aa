#include "mapdata/rescue.h"

#include "dialogs/modal.h"
#include "mapdata/map_bytes.h"
#include "mapdata/map_commands.h"
#include "mapdata/rescue_files.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

#include <cstring>

namespace {

constexpr int32_t maxMapBytes = maxMapHeaderBytes + sizeof(TerrainCell) * maxCellCount * maxCellCount;

// The map as bytes of a data file. It is always there, so that keeping a copy needs no memory.
uint8_t mapBytes[maxMapBytes];

bool MapIsThere()
{
    const MapRecord& record = currentMap.record;
    return record.columnCount > 0 && record.rowCount > 0 && currentMap.allocatedColumns == record.columnCount;
}

int32_t EncodeMap()
{
    const MapRecord& record = currentMap.record;
    const size_t headerBytes = EncodeMapHeader(&record, mapBytes);
    EncodeCellRows(currentMap.cellColumns, record.columnCount, 0, record.rowCount, mapBytes + headerBytes);
    return static_cast<int32_t>(headerBytes + sizeof(TerrainCell) * record.columnCount * record.rowCount);
}

uint64_t MapHash()
{
    return ContentHash(mapBytes, static_cast<size_t>(EncodeMap()));
}

bool OwnName(char* name)
{
    char base[textBufferSize];
    CopyText(rescue.file.name, base);
    if (char* ending = strrchr(base, '.'); ending != nullptr) {
        *ending = 0;
    }
    return NameRescueCopy(base, name);
}

void RemoveOwnCopy()
{
    char name[rescueNameSize];
    if (rescue.copyKept && OwnName(name)) {
        RemoveRescueCopy(name);
    }
    rescue.copyKept = 0;
}

bool WriteOwnRecord(const char* name)
{
    RescueRecord record;
    strcpy(record.name, name);
    if (!FullPath(&rescue.file, record.mapPath)) {
        return false;
    }
    FileSpec target = rescue.file;
    if (currentMap.record.mapID != currentMap.loadedMapID) {
        DataFileNameForID(currentMap.record.mapID, target.name);
    }
    if (!FullPath(&target, record.targetPath)) {
        return false;
    }
    record.file = rescue.identity;
    record.saving = rescue.saving;
    record.loadedMapID = currentMap.loadedMapID;
    return WriteRescueRecord(record);
}

// The record goes first: a copy without one would belong to no map.
bool WriteOwnCopy(int32_t count)
{
    char name[rescueNameSize];
    return HoldRescueFolder() && OwnName(name) && WriteOwnRecord(name) && WriteRescueBytes(name, mapBytes, count);
}

void KeepCopy()
{
    const int32_t count = EncodeMap();
    const uint64_t hash = ContentHash(mapBytes, static_cast<size_t>(count));
    if (hash == rescue.savedHash && !rescue.saving) {
        RemoveOwnCopy();
    } else if (!rescue.copyKept || hash != rescue.keptHash) {
        if (WriteOwnCopy(count)) {
            rescue.copyKept = 1;
            rescue.keptHash = hash;
            rescue.folderFailed = 0;
        } else if (!rescue.folderFailed) {
            rescue.folderFailed = 1;
            OutputDebugStringA("Kestrel Map Tool: a rescue copy of unsaved work could not be written.\n");
        }
    }
}

// The map in memory is what its file holds, or a new map without one.
void BeginWatching(bool hasFile)
{
    RemoveOwnCopy();
    rescue.changeNoted = 0;
    rescue.workDropped = 0;
    rescue.saving = 0;
    rescue.file = currentMap.dataFileSpec;
    rescue.identity = {};
    rescue.savedHash = 0;
    if (hasFile) {
        char path[textBufferSize];
        rescue.savedHash = MapHash();
        if (FullPath(&rescue.file, path)) {
            rescue.identity = IdentityOfFile(path);
        }
    }
}

// ---- copies left behind ----

bool AskToUse(const RescueRecord& record)
{
    char question[textBufferSize];
    char time[textBufferSize];
    GetText(question, rescueQuestionText);
    FormatRescueTime(record, time);
    AppendText(question, time);
    AppendText(question, rescueQuestionEndText);
    return YesNoAlert(0, 0, 0, 0, question) != 0;
}

// Reads the copy into mapBytes and its header into the record; 0 unless it is whole. cellStart: where its cells
// begin.
int32_t ReadCopy(const RescueRecord& copy, MapRecord* record, size_t* cellStart)
{
    const int32_t count = ReadRescueBytes(copy.name, mapBytes, maxMapBytes);
    if (count < static_cast<int32_t>(mapHeaderWordBytes) ||
        DecodeMapHeader(mapBytes, static_cast<size_t>(count), record, cellStart) != 0) {
        return 0;
    }
    const size_t cellBytes = sizeof(TerrainCell) * static_cast<size_t>(record->columnCount * record->rowCount);
    return *cellStart + cellBytes == static_cast<size_t>(count) ? count : 0;
}

bool SameGrid(const MapRecord& first, const MapRecord& second)
{
    return first.columnCount == second.columnCount && first.rowCount == second.rowCount &&
           memcmp(&first.mapRect, &second.mapRect, sizeof first.mapRect) == 0;
}

void TakeCells(const MapRecord& record, int32_t count, size_t cellStart)
{
    currentMap.record = record;
    DecodeCellRows(mapBytes + cellStart, static_cast<size_t>(count) - cellStart, currentMap.cellColumns,
                   record.columnCount, 0, record.rowCount);
    currentMap.mapModified = 1;
}

void ShowTakenMap()
{
    if (currentMap.record.mapID != currentMap.loadedMapID) {
        char name[textBufferSize];
        DataFileNameForID(currentMap.record.mapID, name);
        SetWTitle(shell.mapWindow, name);
    }
    InvalidateMapRect(nullptr);
    PaintMapWindow();
}

// The copy is now this program's own work: its own copy takes the place of the one left behind.
void AdoptCopy(const char* name)
{
    rescue.changeNoted = 1;
    KeepRescueCopy();
    if (rescue.copyKept) {
        RemoveRescueCopy(name);
    }
}

enum DataFileState { unreadableFile, shortFile, wholeFile };

// Overwrites mapBytes.
DataFileState StateOfDataFile(const char* path)
{
    MapRecord record;
    size_t taken = 0;
    const int32_t count = ReadWholeFile(path, mapBytes, maxMapBytes);
    if (count <= 0 || DecodeMapHeader(mapBytes, static_cast<size_t>(count), &record, &taken) != 0) {
        return unreadableFile;
    }
    const size_t cellBytes = sizeof(TerrainCell) * static_cast<size_t>(record.columnCount * record.rowCount);
    return taken + cellBytes <= static_cast<size_t>(count) ? wholeFile : shortFile;
}

} // namespace

void NoteMapCreated()
{
    BeginWatching(false);
    rescue.changeNoted = 1;
}

void NoteMapOpened()
{
    BeginWatching(true);
}

void NoteMapSaved()
{
    BeginWatching(true);
}

void NoteMapChange()
{
    rescue.changeNoted = 1;
}

void NoteSavingBegins()
{
    if (!MapIsThere()) {
        return;
    }
    rescue.saving = 1;
    rescue.copyKept = 0; // the record changes too
    KeepCopy();
}

void DropRescueCopy()
{
    RemoveOwnCopy();
    rescue.workDropped = 1;
}

void KeepRescueCopy()
{
    if (!rescue.changeNoted) {
        return;
    }
    rescue.changeNoted = 0;
    if (shell.mapShown && MapIsThere() && !rescue.workDropped) {
        KeepCopy();
    }
}

void KeepLastRescueCopy()
{
    rescue.changeNoted = 1;
    KeepRescueCopy();
}

void OfferRescueCopy()
{
    char path[textBufferSize];
    RescueRecord copy;
    if (!FullPath(&currentMap.dataFileSpec, path) || !FindRescueCopy(path, &copy)) {
        return;
    }
    if (rescue.savedHash == 0 && copy.file.exists) {
        return; // of a map that has a file; opening that file will ask
    }
    MapRecord record;
    size_t cellStart = 0;
    // Nobody replaces a file by a short one: a save broke off, and on a full disk it could not even be noted.
    const bool brokeOff = copy.saving || StateOfDataFile(path) != wholeFile;
    const int32_t count = ReadCopy(copy, &record, &cellStart);
    const bool usable =
        count != 0 && SameGrid(record, currentMap.record) && (brokeOff || SameIdentity(copy.file, rescue.identity));
    const bool use = usable && AskToUse(copy);
    if (shell.quitRequested && usable) {
        return; // not answered: the next program asks again
    }
    // The question let the program go on, so the copy is read anew.
    if (use && ReadCopy(copy, &record, &cellStart) == count) {
        TakeCells(record, count, cellStart);
        ShowTakenMap();
        AdoptCopy(copy.name);
    } else {
        PutRescueCopyAside(copy);
    }
}

int UseRescueCopyForBrokenFile(const FileSpec* file)
{
    char path[textBufferSize];
    RescueRecord copy;
    MapRecord record;
    size_t cellStart = 0;
    if (!FullPath(file, path) || !FindRescueCopy(path, &copy) || StateOfDataFile(path) != unreadableFile ||
        ReadCopy(copy, &record, &cellStart) == 0) {
        return 0;
    }
    if (!AskToUse(copy)) {
        if (!shell.quitRequested) {
            PutRescueCopyAside(copy);
        }
        return 0;
    }
    if (shell.mapShown) {
        return 0; // opened under the question
    }
    const int32_t count = ReadCopy(copy, &record, &cellStart);
    currentMap.record = record;
    if (count == 0 || AllocateCellColumns() != 0) {
        return 0;
    }
    currentMap.loadedMapID = static_cast<int16_t>(copy.loadedMapID);
    SetEditableRect();
    TakeCells(record, count, cellStart);
    strcpy(rescue.takenName, copy.name);
    return 1;
}

void NoteBrokenFileReplaced()
{
    BeginWatching(false);
    rescue.saving = 1;
    ShowTakenMap();
    AdoptCopy(rescue.takenName);
}
