// Replacing a map's data file in the order of the editor's saving, its backup included.
#pragma once

#include "companion/map_data.h"

// What was at a data file's place when a command began.
struct FileBefore {
    std::string path;
    bool exists = false;
    std::string bytes;
};
// False after it was told that the file cannot be read.
bool ReadBefore(Report* report, const std::string& path, FileBefore* before);

// Writes the map to the place. The file that is there becomes the _old file, unless it is damaged and a whole _old is
// there: that one stays. Where the writing fails, the file that was there is put back and the failure told. A file
// that is not as it was before is left alone.
bool SaveMapData(Report* report, const FileBefore& before, const MapData& map);
