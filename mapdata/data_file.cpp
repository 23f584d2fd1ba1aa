#include "mapdata/data_file.h"

#include "dialogs/modal.h"
#include "mapdata/map_bytes.h"
#include "toolbox/resources.h"

#include <algorithm>

namespace {

// Cells pass through a buffer of whole rows, so that the largest map takes a handful of transfers.
constexpr int cellBufferBytes = 64 * 1024;

template <typename Transfer>
int16_t ForEachRowBlock(Transfer transfer)
{
    const MapRecord& record = currentMap.record;
    const int rowBytes = record.columnCount * static_cast<int>(sizeof(TerrainCell));
    const int rowsPerBlock = cellBufferBytes / std::max(rowBytes, 1);
    for (int firstRow = 0; firstRow < record.rowCount; firstRow += rowsPerBlock) {
        const int rows = std::min(rowsPerBlock, record.rowCount - firstRow);
        if (transfer(firstRow, rows, rows * rowBytes) != 0) {
            return 1;
        }
    }
    return 0;
}

} // namespace

int16_t ReadMapHeader(HFILE file)
{
    uint8_t bytes[maxMapHeaderBytes];
    int32_t count = 0;
    SetFilePosition(file, 1, 0);
    if (ReadFileBytes(file, bytes, sizeof bytes, &count) != 0) {
        return 1;
    }
    size_t taken = 0;
    const int faults = DecodeMapHeader(bytes, static_cast<size_t>(count), &currentMap.record, &taken);
    currentMap.loadedMapID = currentMap.record.mapID;
    SetEditableRect();
    if ((faults & mapTooWide) != 0) {
        MessageAlert(0, 0, alertSound, mapWidthLimitsText);
    }
    if ((faults & mapTooHigh) != 0) {
        MessageAlert(0, 0, alertSound, mapHeightLimitsText);
    }
    if (faults != 0) {
        return 1;
    }
    SetFilePosition(file, 1, static_cast<int32_t>(taken));
    return 0;
}

int16_t ReadMapCells(HFILE file)
{
    const int columnCount = currentMap.record.columnCount;
    if (currentMap.allocatedColumns < columnCount) {
        return 1;
    }
    return ForEachRowBlock([&](int firstRow, int rows, int byteCount) {
        uint8_t bytes[cellBufferBytes];
        int32_t count = 0;
        const int16_t status = ReadFileBytes(file, bytes, byteCount, &count);
        DecodeCellRows(bytes, static_cast<size_t>(count), currentMap.cellColumns, columnCount, firstRow, rows);
        return status;
    });
}

int16_t WriteMapData(HFILE file)
{
    const int columnCount = currentMap.record.columnCount;
    if (currentMap.allocatedColumns < columnCount) {
        return 1;
    }
    uint8_t header[maxMapHeaderBytes];
    const size_t headerBytes = EncodeMapHeader(&currentMap.record, header);
    currentMap.record.markerWord = 1;
    SetFilePosition(file, 1, 0);
    if (TransferField(writeField, countedField, file, header, static_cast<int32_t>(headerBytes)) != 0) {
        return 1;
    }
    const int16_t status = ForEachRowBlock([&](int firstRow, int rows, int byteCount) {
        uint8_t bytes[cellBufferBytes];
        EncodeCellRows(currentMap.cellColumns, columnCount, firstRow, rows, bytes);
        return TransferField(writeField, countedField, file, bytes, byteCount);
    });
    return status != 0 || SyncFile(file) != 0 ? 1 : 0;
}

void CloseMapDataFile()
{
    CloseFile(currentMap.openDataFile);
    currentMap.openDataFile = noFile;
}
