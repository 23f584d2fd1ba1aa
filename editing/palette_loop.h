// What both palettes share: building one from a table, its loop, its groups of check boxes.
#pragma once

#include "dialogs/modal.h"

struct PaletteItemRow {
    int32_t itemID;
    int kind; // DialogItemKindNumber
    int16_t left;
    int16_t top;
    int16_t right;
    int16_t bottom;
    int textID; // of the string table
};

struct Palette {
    int width;
    int height;
    int titleID;
    const PaletteItemRow* items;
    int itemCount;
    uint32_t* openFlag;                             // of the shell
    void (*open)(WindowPtr palette);                // sets the settings that each opening begins with
    bool (*hasTool)();                              // a press in the map paints only then, else it beeps
    void (*stroke)(WindowPtr palette);              // a press in the map
    void (*hit)(WindowPtr palette, int32_t itemID); // a press on an item
    void (*close)();                                // forgets the tool
};

void RunPalette(const Palette* palette);

// Turns off the boxes first to last and turns the clicked one on, unless it was on. Returns 1 when it is on now.
int ToggleInGroup(WindowPtr palette, int32_t first, int32_t last, int32_t clicked);
void ClearGroup(WindowPtr palette, int32_t first, int32_t last);
// Brings the terrain analysis up to date while it is shown.
void RefreshAnalysis();
