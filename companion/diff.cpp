// kestrel-map diff: what changed from one version of a map to another.
#include "companion/commands.h"
#include "companion/picture.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

struct FieldChange {
    std::string name;
    std::string before;
    std::string after;
};

struct Changes {
    std::vector<FieldChange> fields;
    std::map<std::string, int> kinds; // "woods set", "cost clear to water": cells
    std::vector<Point> cells;
};

// A kind of change by its words, told for a pair of cells; the names are looked up once for each pair.
std::vector<std::string> KindsOf(TerrainCell before, TerrainCell after)
{
    std::vector<std::string> kinds;
    for (const TerrainRow& row : TerrainRows(featureTerrain)) {
        if (HoldsTerrain(before, row) != HoldsTerrain(after, row)) {
            kinds.push_back(TerrainKey(row) + (HoldsTerrain(after, row) ? " set" : " cleared"));
        }
    }
    if (((before ^ after) & cellNoGoMask) != 0) {
        kinds.push_back("NO-GO " + NoGoName(before) + " to " + NoGoName(after));
    }
    if (((before ^ after) & cellMoveCostMask) != 0) {
        const std::string name = CostName(before);
        kinds.push_back((name.find(' ') == std::string::npos ? "cost " : "") + name + " to " + CostName(after));
    }
    if (((before ^ after) & cellFreeBits) != 0) {
        kinds.push_back("free bits");
    }
    return kinds;
}

void CompareFields(MapData first, MapData second, Changes* changes)
{
    const HeaderWords before = HeaderWordsOf(&first.record);
    const HeaderWords after = HeaderWordsOf(&second.record);
    for (size_t i = 0; i < mapHeaderWordCount; i++) {
        if (*before.word[i] != *after.word[i]) {
            changes->fields.push_back(
                {headerWordNames[i], std::to_string(*before.word[i]), std::to_string(*after.word[i])});
        }
    }
    if (Utf8Text(first.record) != Utf8Text(second.record)) {
        changes->fields.push_back({"mapText", Utf8Text(first.record), Utf8Text(second.record)});
    }
}

// Only cells that both have are compared; of another size the fields tell.
void CompareCells(const MapData& first, const MapData& second, Changes* changes)
{
    std::map<std::pair<TerrainCell, TerrainCell>, int> pairs;
    const int columns = std::min(first.record.columnCount, second.record.columnCount);
    const int rows = std::min(first.record.rowCount, second.record.rowCount);
    for (int y = 0; y < rows; y++) {
        for (int x = 0; x < columns; x++) {
            const TerrainCell before = CellOf(first, x, y);
            const TerrainCell after = CellOf(second, x, y);
            if (before != after) {
                pairs[{before, after}]++;
                changes->cells.push_back(MakePoint(x, y));
            }
        }
    }
    for (const auto& [pair, count] : pairs) {
        for (const std::string& kind : KindsOf(pair.first, pair.second)) {
            changes->kinds[kind] += count;
        }
    }
}

Json JsonOf(const DiffOptions& options, const Changes& changes)
{
    Json fields = Json::array();
    for (const FieldChange& field : changes.fields) {
        fields.push_back({{"name", field.name}, {"old", field.before}, {"new", field.after}});
    }
    Json cells = Json::array();
    for (const Point& cell : changes.cells) {
        cells.push_back({cell.h, cell.v});
    }
    return {{"old", options.before},
            {"new", options.after},
            {"fields", fields},
            {"kinds", Json(changes.kinds)},
            {"cells", cells}};
}

std::string TextOf(const Report& report, const DiffOptions& options, const Changes& changes)
{
    if (changes.fields.empty() && changes.cells.empty()) {
        return {};
    }
    std::string text = Coloured(report, redColour, "--- " + options.before) + "\n" +
                       Coloured(report, greenColour, "+++ " + options.after) + "\n";
    for (const FieldChange& field : changes.fields) {
        text += field.name + ": " + Printable(field.before) + " -> " + Printable(field.after) + "\n";
    }
    text += Count(static_cast<long>(changes.cells.size()), "cell differs", "cells differ") + "\n";
    for (const auto& [kind, count] : changes.kinds) {
        text += "  " + kind + ": " + std::to_string(count) + "\n";
    }
    return text;
}

// The terrain of the new version, with a red frame around each changed cell.
int DrawChanges(Report* report, const DiffOptions& options, const MapData& map, const Changes& changes)
{
    PictureOptions wanted;
    wanted.view = analysisView;
    wanted.area = WholeMap(map);
    wanted.framed = &changes.cells;
    Picture picture;
    std::string bytes;
    std::string fault;
    if (!DrawMap(report, map, ArtPath(options.after), wanted, &picture)) {
        return statusFailed;
    }
    if (!EncodePng(picture, &bytes, &fault)) {
        return Fail(report, options.output, "cannot be made: " + fault);
    }
    return WriteOutput(report, {{options.output, bytes}}) ? statusFine : statusFailed;
}

// What git gives for a file that is not there in one of the versions.
bool IsNoFile(const std::string& path)
{
    return path == "/dev/null";
}

} // namespace

int RunDiff(const DiffOptions& options, Report* report)
{
    MapData before;
    MapData after;
    if (!IsNoFile(options.before) && !LoadMap(report, options.before, false, &before)) {
        return statusFailed;
    }
    if (!IsNoFile(options.after) && !LoadMap(report, options.after, false, &after)) {
        return statusFailed;
    }
    Changes changes;
    CompareFields(before, after, &changes);
    CompareCells(before, after, &changes);
    for (const auto& [path, map] : {std::pair{&options.before, &before}, std::pair{&options.after, &after}}) {
        if (const std::string fault = LengthFault(*map); !fault.empty()) {
            Fail(report, *path, fault);
        }
    }
    const int found = changes.fields.empty() && changes.cells.empty() ? statusFine : statusFound;
    const std::string text = options.json
                                 ? JsonOf(options, changes).dump(2, ' ', false, Json::error_handler_t::replace) + "\n"
                                 : TextOf(*report, options, changes);
    if (!options.output.empty()) {
        if (after.cells.empty()) {
            return Fail(report, options.after, "there is no map to draw");
        }
        if (DrawChanges(report, options, after, changes) != statusFine) {
            return statusFailed;
        }
    }
    if (options.output != standardStream) {
        report->out += text;
    }
    return found;
}
