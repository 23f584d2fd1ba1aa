// All state of the program on one page. A test resets a record by assigning it a fresh one.
#include "editing/editing.h"
#include "mapdata/map_record.h"
#include "toolbox/shell_door.h"

ShellState shell;
ViewState view;
Colours colours;
CurrentMap currentMap;
EditingState editing;
