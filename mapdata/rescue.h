// Rescue copies: while the map in memory differs from its file, a complete data file of it lies in the user's folder
// for the program's state, so that no end of the program costs work. The copy is a map data file like any other; the
// record beside it, a readable text, says which file it belongs to and what that file was.
//
// One copy for each running program, under a name of its own; the lock file of that name is held as long as the
// program runs. Nothing here shows a message but OfferRescueCopy; a folder that cannot be written costs one line on
// standard error, and the work goes on.
#pragma once

#include "mapdata/map_record.h"

// What tells whether a data file is still the one that was opened or saved.
struct FileIdentity {
    int exists = 0;
    uint32_t size = 0;
    uint64_t time = 0; // last write, in the system's file time
    uint64_t hash = 0; // of its contents
};

struct RescueState {
    int changeNoted = 0; // the map may differ from the copy
    int copyKept = 0;    // a copy of ours is there
    int folderFailed = 0;
    int workDropped = 0;     // the user chose not to save it
    int saving = 0;          // a save has begun and none has succeeded since
    uint64_t savedHash = 0;  // of the map as its file has it; 0 while it has none
    uint64_t keptHash = 0;   // of the map as the copy has it
    FileSpec file = {};      // the data file as opened, created or last saved
    char takenName[96] = ""; // of the copy that UseRescueCopyForBrokenFile took
    FileIdentity identity = {};
};

extern RescueState rescue;

// The map in memory was just created, or read from or written to currentMap.dataFileSpec; this program's copy of it
// goes.
void NoteMapCreated();
void NoteMapOpened();
void NoteMapSaved();
// A stroke, a fill, an operation or a dialog may have changed it: a copy is due. Costs nothing.
void NoteMapChange();
// From here on the data file may be in any state, until NoteMapSaved.
void NoteSavingBegins();
// "No Save": the copy goes and no other is made.
void DropRescueCopy();

// KeepRescueCopy, which writes the copy that is due, is declared in toolbox/shell_door.h, since every loop calls it.
// The last one, whatever was noted: call it when the program ends.
void KeepLastRescueCopy();

// With the map shown: asks about the newest copy that a program which no longer runs left of it, and takes its record
// and cells over on Yes. Copies that cannot be used, and those answered with No, are put aside.
void OfferRescueCopy();
// With a data file chosen that is missing or unreadable, as a save that broke off leaves it: the same question,
// before anything else. 1 when record, cells and loadedMapID are there, as if read from the file;
// NoteBrokenFileReplaced then stands in for NoteMapOpened, once the map is shown.
int UseRescueCopyForBrokenFile(const FileSpec* file);
void NoteBrokenFileReplaced();
