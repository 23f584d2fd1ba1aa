// The map flows of the File and Edit menus: open, new, properties, save, quit.
#pragma once

#include "mapdata/map_record.h"

// ---- names ----

void DataFileNameForID(int id, char* name); // "Map101c.dat"
void ArtFileNameForID(int id, char* name);  // "Map101c.bmp"
void FileNameRuleAlert(int which);          // 1 data file, 2 art file

// The system's open-file dialog over the map window. path: 260 bytes. Nonzero when the user chose a file.
int ShowFileDialog(WindowPtr owner, const char* title, const char* filter, int filterIndex, char* pathBuffer,
                   const char* initialFolder, int changeFolder);

// ---- open ----

void OpenMapCommand();
int16_t ChooseMapDataFile();
int16_t OpenMapDataFile();
int16_t FinishMapLoad(); // window, map image, art and title of the map in memory; shared with New Map

// ---- new map and properties ----

void NewMapCommand();
int16_t ChooseArtFile();
int16_t CheckArtFileName(int16_t* id);
int16_t NewMapDialog(int16_t id);
void MapIDDialog();
void UTMDialog();
void VersionDialog();

// ---- save and quit ----

int16_t SaveMap(bool confirm); // 0 when the file was written
int AskSaveBeforeQuit();       // 1 Save, 2 No Save, 3 Cancel, 0 when the dialog could not be made
void QuitCommand();
