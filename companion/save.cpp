#include "companion/save.h"

#include "mapdata/failure.h"
#include "mapdata/map_commands.h"
#include "toolbox/resources.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

std::string OldPath(const std::string& path)
{
    return path + "_old";
}

bool IsWhole(const std::string& bytes)
{
    MapData map;
    return DecodeMap(bytes, &map) == 0 && map.fileBytes == map.wholeBytes;
}

bool HasWholeOld(const FileBefore& before)
{
    Report unused;
    std::string bytes;
    std::string fault;
    return ReadBytes(&unused, OldPath(before.path), mostMapBytes, &bytes, &fault) && IsWhole(bytes);
}

bool IsAsBefore(const FileBefore& before)
{
    Report unused;
    FileBefore now;
    return ReadBefore(&unused, before.path, &now) && now.exists == before.exists && now.bytes == before.bytes;
}

// The map, with its cells where they are, as the one that the save writes.
bool LendMap(const std::string& path, MapData* map)
{
    std::error_code error;
    const fs::path whole = fs::absolute(path, error);
    FileSpec spec = {};
    const std::string folder = whole.parent_path().string() + "/";
    if (error || MakeFileSpec(folder.c_str(), whole.filename().c_str(), &spec) != 0) {
        return false;
    }
    currentMap = {};
    currentMap.dataFileSpec = spec;
    currentMap.record = map->record;
    currentMap.loadedMapID = map->record.mapID;
    for (int x = 0; x < map->record.columnCount; x++) {
        currentMap.cellColumns[x] = &CellOf(map, x, 0);
    }
    currentMap.allocatedColumns = map->record.columnCount;
    return true;
}

// What is left of a save that failed. With a backup that file goes back to its place.
void TakeBack(const FileBefore& before, BackupRule rule)
{
    std::error_code error;
    if (rule == backupRequired) {
        fs::rename(OldPath(before.path), before.path, error);
    } else if (!before.exists) {
        fs::remove(before.path, error);
    }
}

std::string ReasonText(DWORD reason)
{
    char text[textBufferSize] = "";
    AppendReason(text, reason);
    return text;
}

} // namespace

bool ReadBefore(Report* report, const std::string& path, FileBefore* before)
{
    std::string fault;
    if (path == standardStream) {
        Fail(report, path, "a map that is changed must be a file");
        return false;
    }
    before->path = path;
    before->exists = ReadBytes(report, path, mostMapBytes, &before->bytes, &fault);
    if (!before->exists && errno != ENOENT) {
        Fail(report, path, "cannot be read: " + fault);
        return false;
    }
    return true;
}

bool SaveMapData(Report* report, const FileBefore& before, const MapData& map)
{
    MapData lent = map;
    const bool keepsBackup = before.exists && (IsWhole(before.bytes) || !HasWholeOld(before));
    const BackupRule rule = keepsBackup ? backupRequired : noBackup;
    if (!IsAsBefore(before)) {
        Fail(report, before.path, "another program changed it meanwhile; nothing is written");
        return false;
    }
    if (!LendMap(before.path, &lent)) {
        Fail(report, before.path, "its path is too long");
        return false;
    }
    const SaveStatus status = WriteMapFiles(rule);
    currentMap = {};
    if (status.backup != 0) {
        Fail(report, before.path, "nothing is written, since there is no backup: " + ReasonText(status.backup));
        return false;
    }
    if (const DWORD reason = std::max({status.create, status.open, status.write}); reason != 0) {
        TakeBack(before, rule);
        Fail(report, before.path, "cannot be written: " + ReasonText(reason));
        return false;
    }
    return true;
}
