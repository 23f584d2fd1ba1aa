#include "mapdata/failure.h"

#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

#include <cstring>

namespace {

struct ReasonRow {
    DWORD reason;
    TextID text;
};

constexpr ReasonRow reasonRows[] = {
    {ERROR_FILE_NOT_FOUND, fileMissingReasonText},
    {ERROR_PATH_NOT_FOUND, folderMissingReasonText},
    {ERROR_TOO_MANY_OPEN_FILES, openFilesReasonText},
    {ERROR_ACCESS_DENIED, accessReasonText},
    {ERROR_NOT_ENOUGH_MEMORY, memoryReasonText},
    {ERROR_INVALID_DATA, damagedReasonText},
    {ERROR_WRITE_PROTECT, writeProtectReasonText},
    {ERROR_WRITE_FAULT, writeFaultReasonText},
    {ERROR_READ_FAULT, readFaultReasonText},
    {ERROR_SHARING_VIOLATION, fileInUseReasonText},
    {ERROR_DISK_FULL, diskFullReasonText},
    {ERROR_INVALID_NAME, foreignFileReasonText},
    {ERROR_FILENAME_EXCED_RANGE, longPathReasonText},
    {ERROR_FILE_TOO_LARGE, fileSizeReasonText},
    {ERROR_DISK_QUOTA_EXCEEDED, quotaReasonText},
};

char toldFailure[textBufferSize];

} // namespace

void AppendReason(char* text, DWORD reason)
{
    for (const ReasonRow& row : reasonRows) {
        if (row.reason == reason) {
            AppendText(text, row.text);
            return;
        }
    }
    AppendText(text, otherReasonText);
    AppendNumber(text, static_cast<int32_t>(reason));
    AppendText(text, ".");
}

void TellFailure(TextID failed, DWORD reason)
{
    GetText(toldFailure, failed);
    AppendReason(toldFailure, reason);
    SetStatusText(1, 0, 0, toldFailure);
    SystemBeep();
}

void ClearFailure()
{
    if (toldFailure[0] != 0 && strcmp(view.statusText, toldFailure) == 0) {
        ClearStatusText();
    }
    toldFailure[0] = 0;
}
