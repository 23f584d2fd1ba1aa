// All state of the program on one page. A test resets a record by assigning it a fresh one.
//
// Named here but kept in one file each, because no other may read it and it means nothing from one use to the next:
//   toolbox/events.cpp         the time of the last message
//   toolbox/pointer_trail.cpp  the press that is being followed
//   toolbox/windows.cpp        the paint record between BeginUpdate and EndUpdate
//   toolbox/sounds.cpp         the sound slots, all empty
//   mapdata/failure.cpp        the failure that was told last
//   mapdata/rescue_files.cpp   the lock that says that this program runs
// The platform layer's state is not the program's but what a system would keep: windows, messages and input in
// platform/user/state.h, the rest beside the functions that own it.
#include "editing/editing.h"
#include "mapdata/rescue.h"
#include "toolbox/drawing.h"
#include "toolbox/events.h"
#include "toolbox/shell_door.h"

ShellState shell;
ViewState view;
Colours colours;
CurrentMap currentMap;
EditingState editing;
RescueState rescue;
WindowPtr currentPort;
EventRecord currentEvent;
