// The surroundings of a fuzzed session: its folder with a small map, and what must hold in it at any time.
#pragma once

#include "tests/map_files.h"
#include "toolbox/shell_door.h"

#include <memory>

struct SessionWorld {
    std::string fault;                       // the first one noticed
    std::unique_ptr<TemporaryFolder> folder; // of the session's files
    bool gridSeen = false;
    std::vector<uint16_t> firstCells;   // as they were when the map was first seen, column by column
    std::vector<uint16_t> checkedCells; // as they were when they were last looked at
    std::vector<const uint16_t*> columns;
    int16_t columnCount = 0;
    int16_t rowCount = 0;
    Rect mapRect = {};
};

// Writes the files, makes their folder the current one and starts the host. shape: bits 2 to 6 choose the map's
// sizes.
void BeginSession(SessionWorld* world, uint8_t shape, uint8_t terrain);
// Leaves everything as it was before; returns the fault.
std::string EndSessionWorld(SessionWorld* world);
void NoteFault(SessionWorld* world, const char* fault);

// One of a few paths that a user may choose: the data file, the art file, others that cannot be opened.
std::string SessionFileName(const SessionWorld& world, int number);
WindowPtr TopSessionDialog(); // null when there is none

void CheckSession(SessionWorld* world);       // at any time
void CheckSessionAtRest(SessionWorld* world); // no dialog, no event that waits
// The data file holds what is in memory, byte for byte.
void CompareSavedFile(SessionWorld* world);
