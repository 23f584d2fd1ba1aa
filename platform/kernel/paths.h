// How a path finds its file.
#pragma once

#include <cstddef>

// Stores the path of the file meant: the path itself where that is there, else its folder's entry whose name equals
// the last component without regard to ASCII and Latin-1 letter case (the first in byte order when there are
// several), else the path as given. False, with the last error set, when the path is empty, MAX_PATH long or does not
// fit.
bool ResolvePath(const char* path, char* resolved, size_t size);

// Whether two UTF-8 names differ at most in the case of ASCII and Latin-1 letters.
bool SameFileName(const char* first, const char* second);

// Whether a name is what the pattern describes: '*' stands for any characters or none, '?' for one; letter case as
// above.
bool MatchesPattern(const char* pattern, const char* name);
