// Maps as JSON: the fields by their names, the cell words row by row.
#include "companion/exchange.h"

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

bool TakeFields(const Json& json, MapData* map, std::string* fault)
{
    FieldsRead fields = {map};
    for (const auto& field : json.items()) {
        const bool isText = field.key() == textFieldName;
        if (isText ? !field.value().is_string() : !field.value().is_number_integer()) {
            *fault = "the field " + field.key() + " is no " + (isText ? "text" : "whole number");
            return false;
        }
        if (isText ? !TakeTextField(&fields, field.value().get<std::string>(), fault)
                   : !TakeNumberField(&fields, field.key(), field.value().get<long long>(), fault)) {
            return false;
        }
    }
    return FinishFields(fields, fault);
}

bool TakeCells(const Json& json, MapData* map, std::string* fault)
{
    const size_t columnCount = static_cast<size_t>(map->record.columnCount);
    const size_t rowCount = static_cast<size_t>(map->record.rowCount);
    if (json.size() != rowCount) {
        *fault = "cells has " + std::to_string(json.size()) + " of " + std::to_string(rowCount) + " rows";
        return false;
    }
    for (size_t y = 0; y < rowCount; y++) {
        const Json& row = json[y];
        if (!row.is_array() || row.size() != columnCount) {
            *fault = "cells, row " + std::to_string(y) + ": there are not " + std::to_string(columnCount) + " cells";
            return false;
        }
        for (size_t x = 0; x < columnCount; x++) {
            if (!row[x].is_number_integer() || row[x].get<long long>() < 0 || row[x].get<long long>() > UINT16_MAX) {
                *fault = "cells, row " + std::to_string(y) + ", column " + std::to_string(x) +
                         ": not a number from 0 to 65535";
                return false;
            }
            CellOf(map, static_cast<int>(x), static_cast<int>(y)) = row[x].get<TerrainCell>();
        }
    }
    return true;
}

} // namespace

std::string JsonTextOf(const MapData& map)
{
    MapRecord record = map.record;
    const HeaderWords words = HeaderWordsOf(&record);
    Json fields;
    for (size_t i = 0; i < mapHeaderWordCount; i++) {
        fields[headerWordNames[i]] = *words.word[i];
    }
    fields[textFieldName] = Utf8Text(record);
    std::string text = "{\n\"fields\": " + fields.dump(1) + ",\n\"cells\": [\n";
    for (int y = 0; y < record.rowCount; y++) { // a line for each row, so that versions compare well
        for (int x = 0; x < record.columnCount; x++) {
            text += x == 0 ? '[' : ',';
            text += std::to_string(CellOf(map, x, y));
        }
        text += y + 1 < record.rowCount ? "],\n" : "]\n";
    }
    return text + "]\n}\n";
}

bool MapFromJson(const std::string& text, MapData* map, std::string* fault)
{
    *map = {};
    try {
        const Json json = Json::parse(text);
        if (!json.is_object() || json.size() != 2 || !json.contains("fields") || !json["fields"].is_object() ||
            !json.contains("cells") || !json["cells"].is_array()) {
            *fault = "it has not the two members fields and cells";
            return false;
        }
        return TakeFields(json["fields"], map, fault) && TakeCells(json["cells"], map, fault);
    } catch (const Json::exception& error) {
        *fault = error.what();
        return false;
    }
}
