#include "mapdata/failure.h"
#include "mapdata/file_paths.h"
#include "mapdata/number_dialog.h"
#include "mapdata/rescue.h"
#include "toolbox/drawing.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

#include <cstring>
#include <iterator>

namespace {

struct ArtSize {
    int width;
    int height;
};

bool ReadArtSize(const FileSpec* file, ArtSize* size)
{
    char path[textBufferSize];
    if (!FullPath(file, path)) {
        return false;
    }
    const HANDLE art = LoadImageA(nullptr, path, IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION);
    if (art == nullptr) {
        return false;
    }
    BITMAP bitmap = {};
    const bool known = GetObjectA(art, sizeof bitmap, &bitmap) != 0;
    DeleteObject(art);
    size->width = bitmap.bmWidth;
    size->height = bitmap.bmHeight;
    return known;
}

// auxWord1 and mapText keep their values.
void FillNewRecord(int id, const ArtSize& art, int version, int easting, int northing)
{
    MapRecord& record = currentMap.record;
    record.mapID = static_cast<int16_t>(id);
    currentMap.loadedMapID = record.mapID;
    record.auxWord2 = 0;
    record.columnCount = static_cast<int16_t>(CellCountOf(art.width));
    record.rowCount = static_cast<int16_t>(CellCountOf(art.height));
    record.mapRect = MakeRect(0, 0, art.width, art.height);
    record.areaFlag1 = 1;
    record.areaRect1 = record.mapRect;
    record.areaFlag2 = 0;
    record.areaRect2 = {};
    record.areaFlag3 = 0;
    record.areaRect3 = {};
    record.markerWord = 1;
    record.utmEasting = static_cast<int16_t>(easting);
    record.utmNorthing = static_cast<int16_t>(northing);
    record.versionNumber = static_cast<int16_t>(version);
    SetEditableRect();
}

} // namespace

void NewMapCommand()
{
    ClearFailure();
    MapFiles files;
    int16_t id = 0;
    bool created =
        ChooseArtFile(&files) == 0 && CheckArtFileName(&files.art, &id) == 0 && NewMapDialog(files, id) == 0;
    if (created) {
        created = AllocateCellColumns() == 0;
        if (created) {
            ClearAllCells();
            created = FinishMapLoad() == 0;
        }
    }
    if (created) {
        currentMap.mapModified = 1;
        NoteMapCreated();
        OfferRescueCopy();
    } else {
        ForgetFailedMap();
    }
    AdjustMenus();
    InitCursor();
}

int16_t ChooseArtFile(MapFiles* files)
{
    char title[textBufferSize];
    GetText(title, chooseArtFileText);
    if (!ChooseFileSpec(title, "Map bmp file (*.bmp)\0*.bmp\0", &files->art)) {
        return 1;
    }
    files->data = files->art;
    ReplaceMapFileType(files->data.name, "dat");
    return 0;
}

int16_t CheckArtFileName(const FileSpec* art, int16_t* id)
{
    const char* name = art->name;
    char start[4] = "";
    int number = 0;
    bool follows = strlen(name) == strlen("Map101c.bmp");
    if (follows) {
        memcpy(start, name, 3);
        follows = EqualString(start, "Map", 0, 0) && EqualString(name + 6, "c.bmp", 0, 0);
    }
    for (int i = 3; follows && i < 6; i++) {
        follows = name[i] >= '0' && name[i] <= '9';
        number = 10 * number + name[i] - '0';
    }
    if (!follows || number < minMapID || number > maxMapID) {
        FileNameRuleAlert(2, name);
        return 1;
    }
    *id = static_cast<int16_t>(number);
    return 0;
}

int16_t NewMapDialog(const MapFiles& files, int16_t id)
{
    ArtSize art = {};
    if (!ReadArtSize(&files.art, &art)) {
        TellFailure(artFailedText, GetLastError());
        return 1;
    }
    char heading[textBufferSize] = "";
    CopyText(files.data.name, heading);
    AppendText(heading, " and ");
    AppendText(heading, files.art.name);
    NumberField fields[] = {
        {shownNumber, 101, 30, id, minMapID, maxMapID, mapIDLabelText, mapIDLimitsText},
        {shownNumber, 102, 50, art.width, minMapWidth, maxMapSide, mapWidthLabelText, mapWidthLimitsText},
        {shownNumber, 103, 70, art.height, minMapHeight, maxMapSide, mapHeightLabelText, mapHeightLimitsText},
        {editedNumber, 105, 90, 100, 100, 999, versionLabelText, versionLimitsText},
        {editedNumber, 106, 110, 0, 0, 99, utmEastingLabelText, utmEastingLimitsText},
        {editedNumber, 107, 130, 0, 0, 99, utmNorthingLabelText, utmNorthingLimitsText},
    };
    // A map that was opened by its command key under the dialog stays.
    const bool accepted = RunNumberDialog(460, 190, heading, fields, std::size(fields)) && !shell.mapShown;
    PaintMapWindow();
    if (accepted) {
        TakeMapFiles(files);
        FillNewRecord(fields[0].value, art, fields[3].value, fields[4].value, fields[5].value);
    }
    AdjustMenus();
    return accepted ? 0 : 1;
}
