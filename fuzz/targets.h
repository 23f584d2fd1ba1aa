// What each fuzzer does with one input. Every function returns what was wrong, or an empty text; faults of memory and
// undefined behaviour are left to the sanitizers. The same functions run in the unit tests over the kept inputs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// The input is a map data file: decoded, encoded and decoded again it stays the same.
std::string FuzzMapData(const uint8_t* bytes, size_t size);
// The input is a bitmap file: read, and drawn into a small picture.
std::string FuzzBitmap(const uint8_t* bytes, size_t size);
// The input is what a user does: the program runs on the headless host from its start to its end.
std::string FuzzSession(const uint8_t* bytes, size_t size);
// The input is a map as text for other programs: what is read of it is written and read again, and stays the same.
std::string FuzzImport(const uint8_t* bytes, size_t size);
