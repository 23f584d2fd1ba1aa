// The commands of the menus and function keys, and when each is enabled. DoMenuCommand, DoFunctionKey and AdjustMenus
// are declared in toolbox/shell_door.h.
#pragma once

#include "toolbox/menus.h"
#include "toolbox/shell_door.h"

// A command of resources/menu.txt: in which states of the program it is enabled, and what it does.
struct CommandRow {
    Command command;
    unsigned states;
    void (*run)(); // null for a command that does nothing
};

extern const CommandRow commandTable[]; // in the order of the menus
extern const int commandCount;

void DoFileMenu(int item);
void DoEditMenu(int item);
void DoViewMenu(int item);
void DoHelpMenu(int item);
int IsViewItemDisabled(int item); // 1 when the View menu's title or the item is disabled
