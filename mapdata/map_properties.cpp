// The three property dialogs of the Edit menu.
#include "dialogs/modal.h"
#include "mapdata/failure.h"
#include "mapdata/number_dialog.h"
#include "mapdata/rescue.h"
#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

#include <iterator>

namespace {

void FinishPropertyDialog()
{
    NoteMapChange();
    PaintMapWindow();
    AdjustMenus();
}

// A dialog for one property of the record.
bool AskForNumber(int16_t* property, int least, int greatest, TextID label, TextID error)
{
    NumberField field = {editedNumber, 105, 10, *property, least, greatest, label, error};
    if (!RunNumberDialog(280, 70, nullptr, &field, 1)) {
        return false;
    }
    *property = static_cast<int16_t>(field.value);
    currentMap.mapModified = 1;
    return true;
}

} // namespace

void MapIDDialog()
{
    if (AskForNumber(&currentMap.record.mapID, minMapID, maxMapID, mapIDDialogLabelText, mapIDDialogLimitsText)) {
        char name[256];
        DataFileNameForID(currentMap.record.mapID, name);
        SetWTitle(shell.mapWindow, name);
    }
    FinishPropertyDialog();
}

void VersionDialog()
{
    AskForNumber(&currentMap.record.versionNumber, 100, 999, versionLabelText, versionLimitsText);
    FinishPropertyDialog();
}

void UTMDialog()
{
    MapRecord& record = currentMap.record;
    NumberField fields[] = {
        {editedNumber, 106, 10, record.utmEasting, 0, 99, utmEastingLabelText, utmEastingLimitsText},
        {editedNumber, 107, 30, record.utmNorthing, 0, 99, utmNorthingLabelText, utmNorthingLimitsText},
    };
    if (RunNumberDialog(460, 100, nullptr, fields, std::size(fields))) {
        record.utmEasting = static_cast<int16_t>(fields[0].value);
        record.utmNorthing = static_cast<int16_t>(fields[1].value);
        currentMap.mapModified = 1;
        if (view.utmGridMode != 0) {
            if (ComposeMapImage() == 0) {
                InvalidateMapRect(nullptr);
            } else {
                TellFailure(artFailedText, GetLastError());
            }
        }
    }
    FinishPropertyDialog();
}
