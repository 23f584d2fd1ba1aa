#include "companion/exchange.h"

#include <algorithm>
#include <iterator>

bool TakeNumberField(FieldsRead* fields, const std::string& name, long long value, std::string* fault)
{
    const auto* const place = std::find(std::begin(headerWordNames), std::end(headerWordNames), name);
    const size_t index = static_cast<size_t>(place - headerWordNames);
    if (index == mapHeaderWordCount) {
        *fault = "there is no field \"" + name + "\"";
    } else if (fields->isThere[index]) {
        *fault = "the field " + name + " is there twice";
    } else if (value < INT16_MIN || value > INT16_MAX) {
        *fault = "the field " + name + " is not from -32768 to 32767";
    } else {
        fields->isThere[index] = true;
        *HeaderWordsOf(&fields->map->record).word[index] = static_cast<int16_t>(value);
        return true;
    }
    return false;
}

bool TakeTextField(FieldsRead* fields, const std::string& value, std::string* fault)
{
    bool& isThere = fields->isThere[mapHeaderWordCount];
    if (isThere || !TextFromUtf8(value, &fields->map->record)) {
        *fault = isThere ? "the field mapText is there twice"
                         : "the field mapText has more than 255 characters or ones that a map cannot have";
        return false;
    }
    isThere = true;
    return true;
}

bool FinishFields(const FieldsRead& fields, std::string* fault)
{
    for (size_t i = 0; i <= mapHeaderWordCount; i++) {
        if (!fields.isThere[i]) {
            *fault = std::string("the field ") + (i < mapHeaderWordCount ? headerWordNames[i] : textFieldName) +
                     " is missing";
            return false;
        }
    }
    // What no reader of the file would take is not made.
    uint8_t bytes[maxMapHeaderBytes];
    MapRecord unused;
    size_t taken = 0;
    const size_t count = EncodeMapHeader(&fields.map->record, bytes);
    if (const int faults = DecodeMapHeader(bytes, count, &unused, &taken); faults != 0) {
        *fault = "the fields cannot be a map's: " + FaultText(faults);
        return false;
    }
    MakeCells(fields.map);
    return true;
}
