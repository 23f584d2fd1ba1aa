// What both palettes share: their layout, their loop, their groups of check boxes.
#pragma once

#include "dialogs/modal.h"
#include "mapdata/terrain.h"

struct Palette {
    int width;
    int height;
    TextID title;
    void (*addItems)(WindowPtr palette);
    uint32_t* openFlag;                             // of the shell
    void (*open)(WindowPtr palette);                // sets the settings that each opening begins with
    bool (*hasTool)();                              // a press in the map paints only then, else it beeps
    void (*stroke)(WindowPtr palette);              // a press in the map
    void (*hit)(WindowPtr palette, int32_t itemID); // a press on an item
    void (*close)();                                // forgets the tool
};

void RunPalette(const Palette* palette);

// ---- items, in the palette's pixels ----

constexpr int paletteMargin = 10;
constexpr int paletteTop = 25;     // of what lies below the title
constexpr int paletteRowStep = 16; // from one check box to the next one below
constexpr int buttonRowHeight = 24;
constexpr int hintRowHeight = 18;

void AddPaletteBox(WindowPtr palette, int left, int top, int32_t itemID, TextID text);
void AddPaletteButton(WindowPtr palette, int left, int top, int right, int32_t itemID, TextID text);
// A bold text of that height which begins at left and ends at the palette's right margin.
void AddPaletteText(WindowPtr palette, int left, int top, int height, TextID text);
// A box for each tool of the group, one below the other. Returns where the next row begins.
int AddToolBoxes(WindowPtr palette, TerrainGroup group, int top);
// The two hints about Alt and Shift.
void AddHints(WindowPtr palette, int top);

// ---- groups ----

// Turns off the boxes first to last and turns the clicked one on, unless it was on. Returns 1 when it is on now.
int ToggleInGroup(WindowPtr palette, int32_t first, int32_t last, int32_t clicked);
void ClearGroup(WindowPtr palette, int32_t first, int32_t last);
// The same for the tools of a group.
int ToggleTool(WindowPtr palette, TerrainGroup group, int32_t clicked);
void ClearTools(WindowPtr palette, TerrainGroup group);
// Brings the terrain analysis up to date while it is shown.
void RefreshAnalysis();
