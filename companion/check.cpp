// kestrel-map check: which maps are damaged or doubtful.
#include "companion/commands.h"
#include "companion/map_data.h"
#include "platform/gdi/surface.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <thread>

namespace {

namespace fs = std::filesystem;

struct Finding {
    std::string file;
    const char* code; // stable; the manual page lists them
    std::string message;
    bool isUnreadable = false;
};

constexpr char oldEnding[] = "_old";

// The files of a folder by their names in small letters, since names may differ in case.
struct Folder {
    fs::path path;
    std::map<std::string, std::string> names;
};

std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char next) { return static_cast<char>(tolower(next)); });
    return text;
}

bool EndsWith(const std::string& text, const std::string& ending)
{
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

// The number of "map###c.dat", 0 for another name.
int NumberInName(const std::string& lowerName)
{
    int number = 0;
    int taken = 0;
    const bool isMap = lowerName.size() == 11 && sscanf(lowerName.c_str(), "map%3dc.dat%n", &number, &taken) == 1 &&
                       taken == 11 && isdigit(static_cast<unsigned char>(lowerName[3])) != 0;
    return isMap && number >= minMapID && number <= maxMapID ? number : 0;
}

std::string PathIn(const Folder& folder, const std::string& lowerName)
{
    const auto entry = folder.names.find(lowerName);
    return entry != folder.names.end() ? (folder.path / entry->second).string() : "";
}

// ---- one map ----

enum FileState { fileMissing, fileUnreadable, fileDamaged, fileWhole };

FileState ReadState(const std::string& path, MapData* map, std::string* fault)
{
    Report unused; // a file of a folder is never standard input
    std::string bytes;
    if (path.empty()) {
        return fileMissing;
    }
    if (!ReadBytes(&unused, path, mostMapBytes, &bytes, fault)) {
        return fileUnreadable;
    }
    if (const int faults = DecodeMap(bytes, map); faults != 0) {
        *fault = FaultText(faults);
    } else {
        *fault = LengthFault(*map);
    }
    return fault->empty() ? fileWhole : fileDamaged;
}

struct Findings {
    std::string file;
    std::vector<Finding> list;
};

void Add(Findings* findings, const char* code, const std::string& message)
{
    findings->list.push_back({findings->file, code, message});
}

void CheckHeader(const MapRecord& record, int number, Findings* findings)
{
    const int width = record.mapRect.right - record.mapRect.left;
    const int height = record.mapRect.bottom - record.mapRect.top;
    if (record.columnCount != CellCountOf(width) || record.rowCount != CellCountOf(height)) {
        Add(findings, "counts",
            std::to_string(record.columnCount) + " x " + std::to_string(record.rowCount) + " cells for " +
                std::to_string(width) + " x " + std::to_string(height) + " pixels");
    }
    if (number != 0 && record.mapID != number) {
        Add(findings, "number", "the file says that it is map " + std::to_string(record.mapID));
    } else if (record.mapID < minMapID || record.mapID > maxMapID) {
        Add(findings, "number", "there is no map " + std::to_string(record.mapID));
    }
    const auto checkRange = [&](const char* name, int value, int least, int greatest) {
        if (value < least || value > greatest) {
            Add(findings, "range",
                std::string(name) + " " + std::to_string(value) + " is not from " + std::to_string(least) + " to " +
                    std::to_string(greatest));
        }
    };
    checkRange("easting", record.utmEasting, 0, 99);
    checkRange("northing", record.utmNorthing, 0, 99);
    checkRange("version", record.versionNumber, 100, 999);
}

void CheckCells(const MapData& map, Findings* findings)
{
    bool isKnownCost[1 << (16 - cellMoveCostShift)] = {};
    bool isKnownLevel[(cellNoGoMask >> cellNoGoShift) + 1] = {true};
    for (const TerrainRow& row : TerrainRows(moveCostTerrain)) {
        isKnownCost[MoveCostCodeOf(row.value)] = true;
    }
    for (const TerrainRow& row : TerrainRows(noGoTerrain)) {
        isKnownLevel[NoGoLevelOf(row.value)] = true;
    }
    long costs = 0;
    long levels = 0;
    long freeBits = 0;
    for (const TerrainCell cell : map.cells) {
        costs += isKnownCost[MoveCostCodeOf(cell)] ? 0 : 1;
        levels += isKnownLevel[NoGoLevelOf(cell)] ? 0 : 1;
        freeBits += (cell & cellFreeBits) == 0 ? 0 : 1;
    }
    const auto tell = [&](long count, const char* code, const char* what) {
        if (count != 0) {
            Add(findings, code, Count(count, "cell has ", "cells have ") + what);
        }
    };
    tell(costs, "cost", "a movement cost that the editor does not know");
    tell(levels, "no-go", "a NO-GO value that the editor does not know");
    tell(freeBits, "free-bits", "bits set that have no meaning");
}

void CheckArt(const Folder& folder, const std::string& lowerName, const MapRecord* record, Findings* findings)
{
    const std::string artName = lowerName.substr(0, lowerName.size() - 3) + "bmp";
    const std::string path = PathIn(folder, artName);
    if (path.empty()) {
        Add(findings, "art-missing", "there is no " + artName);
        return;
    }
    Report unused;
    std::string head;
    std::string fault;
    std::error_code error;
    const uint64_t size = fs::file_size(path, error);
    int width = 0;
    int height = 0;
    if (error || !ReadBytes(&unused, path, bitmapHeadBytes, &head, &fault)) {
        findings->list.push_back({path, "art-unreadable", error ? error.message() : fault, true});
    } else if (!BitmapSizeFromHead(reinterpret_cast<const uint8_t*>(head.data()),
                                   head.size() > bitmapHeadBytes ? std::max<uint64_t>(size, head.size())
                                                                 : head.size(),
                                   &width, &height)) {
        findings->list.push_back({path, "art-damaged", "no bitmap that the editor can load"});
    } else if (record != nullptr && (width != record->mapRect.right - record->mapRect.left ||
                                     height != record->mapRect.bottom - record->mapRect.top)) {
        Add(findings, "art-size",
            "the art has " + std::to_string(width) + " x " + std::to_string(height) + " pixels");
    }
}

// The file that a save leaves of the one before, and which of the two can be used.
void CheckOld(const std::string& oldPath, FileState state, const MapData& map, Findings* findings)
{
    MapData old;
    std::string fault;
    const FileState oldState = ReadState(oldPath, &old, &fault);
    if (oldState == fileMissing) {
        return;
    }
    if (oldState == fileUnreadable) {
        findings->list.push_back({oldPath, "unreadable", fault, true});
    } else if (oldState == fileDamaged) {
        findings->list.push_back({oldPath, "old-damaged", fault});
    } else if (state == fileWhole && (old.record.mapID != map.record.mapID ||
                                      memcmp(&old.record.mapRect, &map.record.mapRect, sizeof(Rect)) != 0 ||
                                      old.cells.size() != map.cells.size())) {
        findings->list.push_back({oldPath, "old-stale", "it is of a map of another number or size"});
    }
    if (state != fileWhole) {
        Add(findings, oldState == fileWhole ? "use-old" : "none-whole",
            oldState == fileWhole ? oldPath + " is whole" : "neither this file nor its _old is whole");
    }
}

std::vector<Finding> CheckMap(const Folder& folder, const std::string& lowerName)
{
    Findings findings;
    findings.file = PathIn(folder, lowerName);
    MapData map;
    std::string fault;
    const int number = NumberInName(lowerName);
    const FileState state = ReadState(findings.file, &map, &fault);
    const bool hasRecord = state == fileWhole || map.wholeBytes != 0;
    if (findings.file.empty()) {
        findings.file = (folder.path / lowerName).string();
        Add(&findings, "missing", "only its _old is there");
    }
    if (number == 0) {
        Add(&findings, "name", "the name is not Map + three digits + c.dat");
    }
    if (state == fileUnreadable) {
        findings.list.push_back({findings.file, "unreadable", fault, true});
    } else if (state == fileDamaged) {
        Add(&findings, !hasRecord ? "header" : map.fileBytes < map.wholeBytes ? "ends-early" : "ends-late", fault);
    }
    if (hasRecord) {
        CheckHeader(map.record, number, &findings);
        CheckCells(map, &findings);
    }
    if (EndsWith(lowerName, ".dat")) {
        CheckArt(folder, lowerName, hasRecord ? &map.record : nullptr, &findings);
    }
    CheckOld(PathIn(folder, lowerName + oldEnding), state, map, &findings);
    return findings.list;
}

// ---- many maps ----

struct Search {
    const CheckOptions* options;
    Report* report;
    int status = statusFine;
    long mapCount = 0;
    nlohmann::ordered_json found = nlohmann::ordered_json::array();
};

void TellFinding(Search* search, const Finding& finding)
{
    Report* report = search->report;
    if (finding.isUnreadable) {
        search->status = Fail(report, finding.file, "cannot be read: " + finding.message);
        return;
    }
    search->status = std::max<int>(search->status, statusFound);
    if (search->options->json) {
        search->found.push_back({{"file", finding.file}, {"code", finding.code}, {"message", finding.message}});
    } else {
        report->out +=
            finding.file + ": " + Coloured(*report, redColour, finding.code) + ": " + finding.message + "\n";
    }
}

// A folder's maps are shared out among the threads; what they find is told in the order of the names.
void CheckMaps(Search* search, const Folder& folder, const std::vector<std::string>& lowerNames)
{
    std::vector<std::vector<Finding>> found(lowerNames.size());
    std::atomic<size_t> next = 0;
    const auto work = [&] {
        for (size_t i = next++; i < lowerNames.size(); i = next++) {
            found[i] = CheckMap(folder, lowerNames[i]);
        }
    };
    const size_t processors = std::max(1u, std::thread::hardware_concurrency());
    const size_t jobs = search->options->jobs > 0 ? static_cast<size_t>(search->options->jobs) : processors;
    std::vector<std::thread> helpers;
    for (size_t i = 1; i < std::min(jobs, lowerNames.size()); i++) {
        helpers.emplace_back(work);
    }
    work();
    for (std::thread& helper : helpers) {
        helper.join();
    }
    for (const std::vector<Finding>& ofMap : found) {
        for (const Finding& finding : ofMap) {
            TellFinding(search, finding);
        }
    }
    search->mapCount += static_cast<long>(lowerNames.size());
    if (search->report->errorsSeen) {
        fprintf(stderr, "\r%ld maps", search->mapCount);
    }
}

bool ListFolder(Search* search, const fs::path& path, Folder* folder, std::vector<fs::path>* subfolders)
{
    std::error_code error;
    folder->path = path;
    folder->names.clear();
    const fs::path listed = path.empty() ? fs::path(".") : path;
    for (fs::directory_iterator entry(listed, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        std::error_code unknown;
        if (!entry->is_directory(unknown)) {
            folder->names[Lower(name)] = name;
        } else if (!entry->is_symlink(unknown) && name != ".git") {
            subfolders->push_back(path / name);
        }
    }
    if (error) {
        search->status = Fail(search->report, listed.string(), "cannot be read: " + error.message());
    }
    return !error;
}

// The maps of a folder and of those below it. Only one folder's names are in memory at a time, and the ways to those
// that are still to come.
void SearchFolder(Search* search, const fs::path& root)
{
    std::vector<fs::path> waiting = {root};
    while (!waiting.empty()) {
        const fs::path path = waiting.back();
        waiting.pop_back();
        Folder folder;
        std::vector<fs::path> subfolders;
        if (!ListFolder(search, path, &folder, &subfolders)) {
            continue;
        }
        std::sort(subfolders.rbegin(), subfolders.rend());
        waiting.insert(waiting.end(), subfolders.begin(), subfolders.end());
        std::vector<std::string> maps;
        for (const auto& [lower, name] : folder.names) {
            if (lower.compare(0, 3, "map") != 0) {
                continue;
            }
            const std::string ofOld = EndsWith(lower, oldEnding) ? lower.substr(0, lower.size() - 4) : "";
            if (EndsWith(lower, ".dat")) {
                maps.push_back(lower);
            } else if (NumberInName(ofOld) != 0 && folder.names.count(ofOld) == 0) {
                maps.push_back(ofOld);
            }
        }
        CheckMaps(search, folder, maps);
    }
}

} // namespace

int RunCheck(const CheckOptions& options, Report* report)
{
    Search search;
    search.options = &options;
    search.report = report;
    Folder folder; // of the files that are named one by one; mostly they lie in one
    bool isListed = false;
    for (const std::string& argument : options.paths) {
        const fs::path path = argument;
        std::error_code error;
        if (fs::is_directory(path, error)) {
            SearchFolder(&search, path);
            continue;
        }
        std::vector<fs::path> unused;
        if (!isListed || folder.path != path.parent_path()) {
            isListed = ListFolder(&search, path.parent_path(), &folder, &unused);
        }
        const std::string lower = Lower(path.filename().string());
        if (!isListed) {
            continue;
        }
        if (folder.names.count(lower) == 0) {
            search.status = Fail(report, argument, "cannot be read: there is no such file");
            continue;
        }
        CheckMaps(&search, folder, {lower});
    }
    if (report->errorsSeen && search.mapCount > 0) {
        fputs("\n", stderr);
    }
    if (options.json) {
        report->out = search.found.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    }
    return search.status;
}
