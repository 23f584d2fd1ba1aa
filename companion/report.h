// What a command has to say, and the files that it reads and writes. A command's standard output is collected and
// printed at the end, so that it appears whole or not at all; an output file is written beside its place and renamed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

enum ExitStatus { statusFine = 0, statusFound = 1, statusFailed = 2 };

struct Report {
    std::string out;            // standard output; text or the bytes of a file
    std::string errors;         // standard error, whole lines
    bool outIsTerminal = false; // colours may be used
    bool errorsSeen = false;    // standard error is a terminal: progress may be shown there
    std::string standardInput;  // taken by "-" once inputIsRead
    bool inputIsRead = false;
};

constexpr char standardStream[] = "-";

// Appends "kestrel-map: FILE: what is wrong". Returns statusFailed.
int Fail(Report* report, const std::string& file, const std::string& what);
std::string SystemReason(); // of the last system call that failed

// The bytes of a file, or of standard input for "-". False when it cannot be read; then fault says why. More than
// limit bytes are not kept: the text ends at limit + 1.
bool ReadBytes(Report* report, const std::string& path, size_t limit, std::string* bytes, std::string* fault);

// The files that a command makes. Nothing of their names changes before all of them are written; "-" is standard
// output. What is no file, a device or a pipe, is written as it is.
struct OutputFile {
    std::string path;
    std::string bytes;
};
bool WriteOutput(Report* report, const std::vector<OutputFile>& files);

// "3.4 %", "12 cells", "1 cell".
std::string Percent(int part, int whole);
std::string Count(long count, const char* one, const char* many);
// Colour number of a terminal around the text, where the report goes to one.
std::string Coloured(const Report& report, const char* colour, const std::string& text);
constexpr char redColour[] = "31";
constexpr char greenColour[] = "32";
constexpr char boldColour[] = "1";
// A text from a file must not steer the terminal.
std::string Printable(std::string text);
