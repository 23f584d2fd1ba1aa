// The program's embedded resources. The tables are generated at build time from resources/ by tools/.
#pragma once

#include <cstdint>

struct ModuleResource {
    const char* typeName; // null: typeNumber counts (RT_ values of the Windows API)
    int typeNumber;
    const char* name; // null: number counts
    int number;
    const uint8_t* data; // aligned to 16 bytes
    uint32_t size;
};

struct ModuleString {
    uint32_t id;
    const char* text; // UTF-8
};

// Formats: RT_BITMAP a packed device-independent bitmap (header, colour table, rows); RT_CURSOR a .cur file, RT_ICON
// an .ico file, both numbered by their group; "WAVE" a RIFF file; RT_MENU text: a line for each title ("File") and
// below it, indented by two blanks, its items ("101 New Map...|Ctrl+N", or "-" for a separator).
extern const ModuleResource moduleResources[];
extern const int moduleResourceCount;
extern const ModuleString moduleStrings[]; // in the order of their ids
extern const int moduleStringCount;
