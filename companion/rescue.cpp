// kestrel-map rescue: the copies that the editor keeps of work that is not in a map's file.
#include "companion/commands.h"
#include "companion/map_data.h"
#include "companion/save.h"
#include "mapdata/rescue_files.h"
#include "toolbox/resources.h"

#include <algorithm>
#include <filesystem>

namespace {

using Copies = std::vector<FoundRescueCopy>;

// Of the map at that path, or the one copy of that name; the newest first.
Copies CopiesOf(const std::string& file)
{
    std::error_code error;
    const std::string path = std::filesystem::absolute(file, error).lexically_normal().string();
    Copies copies = AllRescueCopies();
    const auto isOther = [&](const FoundRescueCopy& copy) {
        return !file.empty() && file != copy.record.name && path != copy.record.mapPath &&
               path != copy.record.targetPath;
    };
    copies.erase(std::remove_if(copies.begin(), copies.end(), isOther), copies.end());
    std::sort(copies.begin(), copies.end(), [](const FoundRescueCopy& first, const FoundRescueCopy& second) {
        return first.record.copyTime > second.record.copyTime;
    });
    return copies;
}

const char* StateOf(const FoundRescueCopy& copy)
{
    return copy.isOwned ? "the editor runs" : copy.isAside ? "put aside" : "left behind";
}

std::string TimeOf(const FoundRescueCopy& copy)
{
    char text[textBufferSize];
    FormatRescueTime(copy.record, text);
    return text;
}

int List(const Copies& copies, Report* report)
{
    for (const FoundRescueCopy& copy : copies) {
        report->out +=
            TimeOf(copy) + "  " + copy.record.mapPath + "  " + copy.record.name + "  (" + StateOf(copy) + ")\n";
    }
    return statusFine;
}

bool ReadCopy(const FoundRescueCopy& copy, MapData* map, std::string* fault)
{
    std::string bytes(mostMapBytes, 0);
    const int32_t count = ReadRescueBytes(copy.record.name, reinterpret_cast<uint8_t*>(bytes.data()),
                                          static_cast<int32_t>(bytes.size()));
    bytes.resize(static_cast<size_t>(std::max(count, 0)));
    if (const int faults = DecodeMap(bytes, map); faults != 0) {
        *fault = FaultText(faults);
    } else {
        *fault = LengthFault(*map);
    }
    return fault->empty();
}

int Show(const FoundRescueCopy& copy, Report* report)
{
    const RescueRecord& record = copy.record;
    const FileIdentity now = IdentityOfFile(record.mapPath);
    MapData map;
    std::string fault;
    const bool isWhole = ReadCopy(copy, &map, &fault);
    report->out += std::string("copy:         ") + record.name + "\nmap:          " + record.mapPath +
                   "\nsave goes to: " + record.targetPath + "\nwritten:      " + TimeOf(copy) +
                   "\nstate:        " + StateOf(copy) + (record.saving != 0 ? ", a save broke off" : "") +
                   "\nits file:     " +
                   (SameIdentity(record.file, now) ? "as it was"
                    : now.exists != 0              ? "changed since"
                                                   : "not there") +
                   "\ncontents:     " + (isWhole ? "whole, map " + std::to_string(map.record.mapID) : fault) + "\n";
    return isWhole ? statusFine : statusFound;
}

// The same steps as the save that did not come about.
int Restore(const FoundRescueCopy& copy, bool forced, Report* report)
{
    const RescueRecord& record = copy.record;
    FileBefore before;
    MapData map;
    std::string fault;
    if (copy.isOwned) {
        return Fail(report, record.mapPath, "the editor that keeps this copy still runs");
    }
    if (!ReadCopy(copy, &map, &fault)) {
        return Fail(report, record.name, fault);
    }
    if (!ReadBefore(report, record.targetPath, &before)) {
        return statusFailed;
    }
    MapData present;
    const bool isDamaged = before.exists && (DecodeMap(before.bytes, &present) != 0 || !LengthFault(present).empty());
    const bool isMaps = before.path == record.mapPath;
    if (!forced && record.saving == 0 && !isDamaged && before.exists &&
        (!isMaps || !SameIdentity(record.file, IdentityOfFile(record.mapPath)))) {
        return Fail(report, before.path, "it changed since the copy was made; --force restores it all the same");
    }
    if (!SaveMapData(report, before, map)) {
        return statusFailed;
    }
    if (!copy.isAside) {
        PutRescueCopyAside(record);
    }
    report->out += before.path + ": restored as of " + TimeOf(copy) + "\n";
    return statusFine;
}

int Drop(const Copies& copies, Report* report)
{
    int status = statusFine;
    for (const FoundRescueCopy& copy : copies) {
        if (copy.isOwned) {
            status = Fail(report, copy.record.mapPath, "the editor that keeps this copy still runs");
            continue;
        }
        RemoveRescueCopy(copy.record.name);
        report->out += std::string(copy.record.name) + ": dropped\n";
    }
    return status;
}

} // namespace

int RunRescue(const RescueOptions& options, Report* report)
{
    const Copies copies = CopiesOf(options.file);
    if (options.action == "list") {
        return List(copies, report);
    }
    if (options.file.empty()) {
        return Fail(report, "", "rescue " + options.action + " needs a map's file or a copy's name");
    }
    if (copies.empty()) {
        return Fail(report, options.file, "there is no rescue copy of it");
    }
    return options.action == "show"      ? Show(copies.front(), report)
           : options.action == "restore" ? Restore(copies.front(), options.forced, report)
                                         : Drop(copies, report);
}
