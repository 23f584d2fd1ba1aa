// The bytes of the map data file, decoded and encoded in memory: no files, windows or messages here. The words are
// little-endian; header words, the text with its zero byte and the cell words follow each other without gaps.
#pragma once

#include "mapdata/map_record.h"

constexpr size_t mapHeaderWordCount = 28;
constexpr size_t mapHeaderWordBytes = 2 * mapHeaderWordCount;
constexpr size_t maxMapHeaderBytes = mapHeaderWordBytes + sizeof(MapRecord::mapText);

enum MapHeaderFault { mapTooWide = 1, mapTooHigh = 2, mapHeaderDamaged = 4 };

struct HeaderWords {
    int16_t* word[mapHeaderWordCount];
};
// The header words in the order of the file, which has left before top and columns before rows.
HeaderWords HeaderWordsOf(MapRecord* record);

// Decodes header words and text into the record; what the bytes lack keeps its value. Returns the sum of the faults.
// After one in the sizes only the words up to mapRect are new. bytesTaken: where the cells begin, at most count.
int DecodeMapHeader(const uint8_t* bytes, size_t count, MapRecord* record, size_t* bytesTaken);

// Header words and text of a record; bytes holds maxMapHeaderBytes. Returns how many were stored.
size_t EncodeMapHeader(const MapRecord* record, uint8_t* bytes);

// A run of whole rows of a grid, columnCount cells each. Cells that the bytes lack keep their value.
void DecodeCellRows(const uint8_t* bytes, size_t count, TerrainCell* const* columns, int columnCount, int firstRow,
                    int rowCount);
// bytes holds 2 * columnCount * rowCount.
void EncodeCellRows(TerrainCell* const* columns, int columnCount, int firstRow, int rowCount, uint8_t* bytes);
