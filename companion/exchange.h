// Maps as text that other programs read and write. What was exported reads back as the same bytes.
#pragma once

#include "companion/map_data.h"

std::string CsvOf(const MapData& map);
std::string JsonTextOf(const MapData& map);

// False with what is wrong, and the line or place, in fault.
bool MapFromCsv(const std::string& text, MapData* map, std::string* fault);
bool MapFromJson(const std::string& text, MapData* map, std::string* fault);

// ---- what both readers share ----

constexpr char textFieldName[] = "mapText";
// The fields of a map that were read so far.
struct FieldsRead {
    MapData* map;
    bool isThere[mapHeaderWordCount + 1] = {};
};
// Takes a header word or the text by its name. False for a name that there is not or that was there before, and a
// value that no word holds.
bool TakeNumberField(FieldsRead* fields, const std::string& name, long long value, std::string* fault);
bool TakeTextField(FieldsRead* fields, const std::string& value, std::string* fault);
// With all fields there and a map possible: makes the cells. Otherwise false.
bool FinishFields(const FieldsRead& fields, std::string* fault);
