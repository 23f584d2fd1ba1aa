// Maps as comma-separated values: a line for each field, then one for each cell with a column for each thing in it.
#include "companion/exchange.h"

#include <algorithm>

namespace {

constexpr char columnTitle[] = "column";
constexpr char rowTitle[] = "row";

// A column of the cells' lines: so many bits of the cell word, as a number.
struct CellPart {
    std::string title;
    TerrainCell mask;
    int shift;
};

std::vector<CellPart> CellParts()
{
    std::vector<CellPart> parts = {{"cost", cellMoveCostMask, cellMoveCostShift},
                                   {"noGo", cellNoGoMask, cellNoGoShift}};
    for (const TerrainRow& row : TerrainRows(featureTerrain)) {
        int shift = 0;
        while ((row.field >> shift & 1) == 0) {
            shift++;
        }
        parts.push_back({TerrainKey(row), row.field, shift});
    }
    parts.push_back({"free", cellFreeBits, 0});
    return parts;
}

std::string Quoted(const std::string& text)
{
    std::string quoted = "\"";
    for (const char next : text) {
        quoted += next == '"' ? "\"\"" : std::string(1, next);
    }
    return quoted + "\"";
}

// ---- reading ----

struct CsvReader {
    const std::string* text;
    size_t place = 0;
    long line = 1;       // of the next record
    long recordLine = 1; // of the record that was read last
    std::vector<std::string> values = {};
};

// Reads a quoted value from behind its first quote to behind its last; false when there is no end.
bool ReadQuoted(CsvReader* reader, std::string* value)
{
    const std::string& text = *reader->text;
    while (reader->place < text.size()) {
        const char next = text[reader->place++];
        if (next == '"') {
            if (reader->place >= text.size() || text[reader->place] != '"') {
                return true;
            }
            reader->place++;
        }
        reader->line += next == '\n' ? 1 : 0;
        *value += next;
    }
    return false;
}

enum RecordState { recordRead, recordDamaged, noRecord };

// Empty lines are passed over; a line may end with a carriage return.
RecordState ReadRecord(CsvReader* reader)
{
    const std::string& text = *reader->text;
    while (reader->place < text.size() && (text[reader->place] == '\n' || text[reader->place] == '\r')) {
        reader->line += text[reader->place++] == '\n' ? 1 : 0;
    }
    if (reader->place >= text.size()) {
        return noRecord;
    }
    reader->recordLine = reader->line;
    reader->values.clear();
    for (;;) {
        std::string value;
        if (text[reader->place] == '"') {
            reader->place++;
            if (!ReadQuoted(reader, &value)) {
                return recordDamaged;
            }
        }
        const size_t end = std::min(text.find_first_of(",\r\n", reader->place), text.size());
        value.append(text, reader->place, end - reader->place);
        reader->values.push_back(value);
        reader->place = end;
        if (end >= text.size() || text[end] != ',') {
            return recordRead;
        }
        reader->place++;
        if (reader->place >= text.size()) {
            reader->values.emplace_back();
            return recordRead;
        }
    }
}

bool ReadNumber(const std::string& text, long long* number)
{
    constexpr size_t mostDigits = 12;
    const size_t start = !text.empty() && text[0] == '-' ? 1 : 0;
    if (text.size() == start || text.size() > mostDigits ||
        text.find_first_not_of("0123456789", start) != std::string::npos) {
        return false;
    }
    *number = std::stoll(text);
    return true;
}

bool TakeField(FieldsRead* fields, const std::vector<std::string>& values, std::string* fault)
{
    long long number = 0;
    if (values.size() != 2) {
        *fault = "a field has a name and a value";
        return false;
    }
    if (values[0] == textFieldName) {
        return TakeTextField(fields, values[1], fault);
    }
    if (!ReadNumber(values[1], &number)) {
        *fault = "\"" + values[1] + "\" is no whole number";
        return false;
    }
    return TakeNumberField(fields, values[0], number, fault);
}

// Which part of the cell each column holds, from the titles; the place itself is in the first two.
bool TakeTitles(const std::vector<std::string>& values, std::vector<CellPart>* columns, std::string* fault)
{
    std::vector<CellPart> parts = CellParts();
    columns->clear();
    for (size_t i = 2; i < values.size(); i++) {
        const auto part =
            std::find_if(parts.begin(), parts.end(), [&](const CellPart& one) { return one.title == values[i]; });
        if (part == parts.end()) {
            *fault = "there is no column \"" + values[i] + "\", or it is there twice";
            return false;
        }
        columns->push_back(*part);
        parts.erase(part);
    }
    if (!parts.empty() || values[1] != rowTitle) {
        *fault = "the column " + (parts.empty() ? std::string(rowTitle) : parts.front().title) + " is missing";
        return false;
    }
    return true;
}

bool TakeCell(MapData* map, const std::vector<CellPart>& columns, const std::vector<std::string>& values,
              std::vector<bool>* isThere, std::string* fault)
{
    long long x = 0;
    long long y = 0;
    if (values.size() != columns.size() + 2 || !ReadNumber(values[0], &x) || !ReadNumber(values[1], &y)) {
        *fault = "a cell has " + std::to_string(columns.size() + 2) + " numbers";
        return false;
    }
    const std::string name = "cell " + values[0] + "," + values[1];
    if (x < 0 || y < 0 || x >= map->record.columnCount || y >= map->record.rowCount) {
        *fault = name + " is outside the map's " + std::to_string(map->record.columnCount) + " x " +
                 std::to_string(map->record.rowCount) + " cells";
        return false;
    }
    const size_t index = static_cast<size_t>(x * map->record.rowCount + y);
    if ((*isThere)[index]) {
        *fault = name + " is there twice";
        return false;
    }
    (*isThere)[index] = true;
    int word = 0;
    for (size_t i = 0; i < columns.size(); i++) {
        long long number = 0;
        const CellPart& part = columns[i];
        const int most = part.mask >> part.shift;
        if (!ReadNumber(values[i + 2], &number) || number < 0 || number > most ||
            (static_cast<int>(number) << part.shift & ~part.mask) != 0) {
            *fault = name + ": its " + part.title + " cannot be \"" + values[i + 2] + "\"";
            return false;
        }
        word |= static_cast<int>(number) << part.shift;
    }
    map->cells[index] = static_cast<TerrainCell>(word);
    return true;
}

} // namespace

std::string CsvOf(const MapData& map)
{
    MapRecord record = map.record;
    const HeaderWords words = HeaderWordsOf(&record);
    std::string text = "field,value\n";
    for (size_t i = 0; i < mapHeaderWordCount; i++) {
        text += std::string(headerWordNames[i]) + "," + std::to_string(*words.word[i]) + "\n";
    }
    text += std::string(textFieldName) + "," + Quoted(Utf8Text(record)) + "\n" + columnTitle + "," + rowTitle;
    const std::vector<CellPart> parts = CellParts();
    for (const CellPart& part : parts) {
        text += "," + part.title;
    }
    text += "\n";
    for (int y = 0; y < record.rowCount; y++) {
        for (int x = 0; x < record.columnCount; x++) {
            const TerrainCell cell = CellOf(map, x, y);
            text += std::to_string(x) + "," + std::to_string(y);
            for (const CellPart& part : parts) {
                text += "," + std::to_string((cell & part.mask) >> part.shift);
            }
            text += "\n";
        }
    }
    return text;
}

bool MapFromCsv(const std::string& text, MapData* map, std::string* fault)
{
    *map = {};
    CsvReader reader = {&text};
    constexpr char byteOrderMark[] = "\xEF\xBB\xBF";
    reader.place = text.compare(0, 3, byteOrderMark) == 0 ? 3 : 0;
    FieldsRead fields = {map};
    std::vector<CellPart> columns;
    std::vector<bool> isThere;
    bool isRight = true;
    RecordState state = noRecord;
    bool isFirst = true;
    while (isRight && (state = ReadRecord(&reader)) == recordRead) {
        const std::vector<std::string>& values = reader.values;
        if (!columns.empty()) {
            isRight = TakeCell(map, columns, values, &isThere, fault);
        } else if (values.size() > 2 && values[0] == columnTitle) {
            isRight = FinishFields(fields, fault) && TakeTitles(values, &columns, fault);
            isThere.assign(map->cells.size(), false);
        } else if (!isFirst || values != std::vector<std::string>{"field", "value"}) {
            isRight = TakeField(&fields, values, fault);
        }
        isFirst = false;
    }
    if (isRight && state == recordDamaged) {
        *fault = "a quotation mark is missing";
        isRight = false;
    }
    const auto missing = std::find(isThere.begin(), isThere.end(), false);
    if (isRight && (columns.empty() || missing != isThere.end())) {
        const long place = missing - isThere.begin();
        *fault = columns.empty() ? "the cells are missing"
                                 : "there is no cell " + std::to_string(place / map->record.rowCount) + "," +
                                       std::to_string(place % map->record.rowCount) + " up to here";
        isRight = false;
    }
    if (!isRight) {
        *fault = "line " + std::to_string(reader.recordLine) + ": " + *fault;
    }
    return isRight;
}
