// The dialog that New Map and the map properties share: numbers with labels, checked against their limits.
#pragma once

#include "generated/text_names.h"
#include "mapdata/map_commands.h"

enum NumberFieldKind { shownNumber, editedNumber };

struct NumberField {
    NumberFieldKind kind;
    int32_t itemID;
    int top;
    int value; // shown at first; as the user left it after OK
    int least;
    int greatest;
    TextID label;
    TextID error; // said when the value is outside its limits
};

// A dialog of that size with OK and Cancel, an optional line of text on top and the fields. OK ends it only when
// every number is within its limits; the first one that is not gets its message. 1 for OK; 0 for Cancel, for a
// program that is to end, and when the dialog could not be made. The map window is not repainted and the menu titles
// stay gray.
int RunNumberDialog(int width, int height, const char* heading, NumberField* fields, int fieldCount);
