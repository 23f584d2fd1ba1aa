#include "companion/exchange.h"
#include "fuzz/targets.h"

// The first byte tells the format. What a reader takes is written and read again, and stays the same.
std::string FuzzImport(const uint8_t* bytes, size_t size)
{
    if (size == 0) {
        return {};
    }
    const bool isJson = bytes[0] == 'j';
    const auto read = isJson ? MapFromJson : MapFromCsv;
    const std::string text(reinterpret_cast<const char*>(bytes) + 1, size - 1);
    MapData map;
    MapData again;
    std::string fault;
    if (!read(text, &map, &fault)) {
        return fault.empty() ? "a refusal without a reason" : "";
    }
    const std::string encoded = EncodeMap(map);
    if (DecodeMap(encoded, &again) != 0 || !LengthFault(again).empty() || again.cells != map.cells) {
        return "what was read is no map's file";
    }
    if (!read(isJson ? JsonTextOf(map) : CsvOf(map), &again, &fault) || EncodeMap(again) != encoded) {
        return "what was written reads back as something else: " + fault;
    }
    return {};
}
