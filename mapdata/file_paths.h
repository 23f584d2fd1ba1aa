// Choosing a map's file and turning one of its two names into the other.
#pragma once

#include "mapdata/file_access.h"

// The open-file dialog over the map window, beginning in the current folder, which the chosen file's becomes. False
// when the user cancelled, and when the path is too long, which is told; then spec is unchanged. filter: text and
// pattern, each zero-terminated.
bool ChooseFileSpec(const char* title, const char* filter, FileSpec* spec);

// Puts a type such as "bmp" in the place of the 9th to 11th character. False for a name without these.
bool ReplaceMapFileType(char* name, const char* type);
