#include "mapdata/map_bytes.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t sizeWordCount = 9; // the words that the sizes are known after

// The word at an offset. Of a word that the bytes end inside of, the low byte is new; one behind them is the old
// value.
uint16_t DecodeWord(const uint8_t* bytes, size_t count, size_t offset, uint16_t old)
{
    const int low = offset < count ? bytes[offset] : old & 0xFF;
    const int high = offset + 1 < count ? bytes[offset + 1] : old >> 8;
    return static_cast<uint16_t>(low | high << 8);
}

void EncodeWord(uint16_t word, uint8_t* bytes)
{
    bytes[0] = static_cast<uint8_t>(word & 0xFF);
    bytes[1] = static_cast<uint8_t>(word >> 8);
}

int SizeFaults(const MapRecord* record)
{
    const int width = record->mapRect.right - record->mapRect.left;
    const int height = record->mapRect.bottom - record->mapRect.top;
    const bool countsPossible = record->columnCount >= 1 && record->columnCount <= maxCellCount &&
                                record->rowCount >= 1 && record->rowCount <= maxCellCount;
    int faults = 0;
    if (width > maxMapSide) {
        faults |= mapTooWide;
    }
    if (height > maxMapSide) {
        faults |= mapTooHigh;
    }
    if (!countsPossible || width < 1 || height < 1) {
        faults |= mapHeaderDamaged;
    }
    return faults;
}

} // namespace

HeaderWords HeaderWordsOf(MapRecord* record)
{
    return {{
        &record->mapID,           &record->auxWord1,         &record->auxWord2,         &record->columnCount,
        &record->rowCount,        &record->mapRect.left,     &record->mapRect.top,      &record->mapRect.right,
        &record->mapRect.bottom,  &record->areaFlag1,        &record->areaRect1.left,   &record->areaRect1.top,
        &record->areaRect1.right, &record->areaRect1.bottom, &record->areaFlag2,        &record->areaRect2.left,
        &record->areaRect2.top,   &record->areaRect2.right,  &record->areaRect2.bottom, &record->areaFlag3,
        &record->areaRect3.left,  &record->areaRect3.top,    &record->areaRect3.right,  &record->areaRect3.bottom,
        &record->markerWord,      &record->utmEasting,       &record->utmNorthing,      &record->versionNumber,
    }};
}

int DecodeMapHeader(const uint8_t* bytes, size_t count, MapRecord* record, size_t* bytesTaken)
{
    const HeaderWords words = HeaderWordsOf(record);
    const auto decodeWords = [&](size_t first, size_t end) {
        for (size_t i = first; i < end; i++) {
            const uint16_t old = static_cast<uint16_t>(*words.word[i]);
            *words.word[i] = static_cast<int16_t>(DecodeWord(bytes, count, 2 * i, old));
        }
    };

    decodeWords(0, sizeWordCount);
    *bytesTaken = std::min(count, 2 * sizeWordCount);
    const int faults = SizeFaults(record);
    if (faults != 0) {
        return faults;
    }

    decodeWords(sizeWordCount, mapHeaderWordCount);
    record->markerWord = 1;
    *bytesTaken = std::min(count, mapHeaderWordBytes);
    if (count <= mapHeaderWordBytes) {
        return 0;
    }

    const char* text = reinterpret_cast<const char*>(bytes) + mapHeaderWordBytes;
    const size_t available = std::min(count - mapHeaderWordBytes, sizeof record->mapText);
    const size_t length = strnlen(text, available);
    if (length == sizeof record->mapText) {
        return mapHeaderDamaged;
    }
    memcpy(record->mapText, text, length);
    record->mapText[length] = 0;
    *bytesTaken = std::min(count, mapHeaderWordBytes + length + 1);
    return 0;
}

size_t EncodeMapHeader(const MapRecord* record, uint8_t* bytes)
{
    MapRecord copy = *record;
    const HeaderWords words = HeaderWordsOf(&copy);
    for (size_t i = 0; i < mapHeaderWordCount; i++) {
        EncodeWord(static_cast<uint16_t>(*words.word[i]), bytes + 2 * i);
    }
    const size_t length = strnlen(record->mapText, sizeof record->mapText - 1);
    memcpy(bytes + mapHeaderWordBytes, record->mapText, length);
    bytes[mapHeaderWordBytes + length] = 0;
    return mapHeaderWordBytes + length + 1;
}

void DecodeCellRows(const uint8_t* bytes, size_t count, TerrainCell* const* columns, int columnCount, int firstRow,
                    int rowCount)
{
    size_t offset = 0;
    for (int y = firstRow; y < firstRow + rowCount; y++) {
        for (int x = 0; x < columnCount; x++) {
            columns[x][y] = DecodeWord(bytes, count, offset, columns[x][y]);
            offset += 2;
        }
    }
}

void EncodeCellRows(TerrainCell* const* columns, int columnCount, int firstRow, int rowCount, uint8_t* bytes)
{
    for (int y = firstRow; y < firstRow + rowCount; y++) {
        for (int x = 0; x < columnCount; x++) {
            EncodeWord(columns[x][y], bytes);
            bytes += 2;
        }
    }
}
