// The map flows of the File and Edit menus: open, new, properties, save, quit.
#pragma once

#include "mapdata/map_record.h"

// ---- names ----

void DataFileNameForID(int id, char* name); // "Map101c.dat"
void ArtFileNameForID(int id, char* name);  // "Map101c.bmp"
int MapNumberInName(const char* name);      // in its 4th to 6th character; 0 when there is none from 100 to 999
void FileNameRuleAlert(int which, const char* name); // 1 data file, 2 art file

// The system's open-file dialog over the map window. path: 260 bytes. Nonzero when the user chose a file.
int ShowFileDialog(WindowPtr owner, const char* title, const char* filter, int filterIndex, char* pathBuffer,
                   const char* initialFolder, int changeFolder);

// ---- open ----

void OpenMapCommand();
int16_t ChooseMapDataFile(MapFiles* files);
int16_t OpenMapDataFile();
int16_t FinishMapLoad(); // window, map image, art and title of the map in memory; shared with New Map
void ForgetFailedMap();  // what an attempt left in currentMap, unless a map is shown; shared with New Map

// ---- new map and properties ----

void NewMapCommand();
int16_t ChooseArtFile(MapFiles* files);
int16_t CheckArtFileName(const FileSpec* art, int16_t* id);
int16_t NewMapDialog(const MapFiles& files, int16_t id); // on OK the files become those of the map in memory
void MapIDDialog();
void UTMDialog();
void VersionDialog();

// ---- save and quit ----

int16_t SaveMap(bool confirm); // 0 when the file was written

// The steps of a save on the disk, in their order, without question and message. Each member is 0 or the system's
// error number; without a required backup nothing is written.
enum BackupRule { backupIfPossible, backupRequired, noBackup };
struct SaveStatus {
    DWORD backup = 0;
    DWORD create = 0;
    DWORD open = 0;
    DWORD write = 0;
};
SaveStatus WriteMapFiles(BackupRule rule);

int AskSaveBeforeQuit(); // 1 Save, 2 No Save, 3 Cancel, 0 when the dialog could not be made
void QuitCommand();
