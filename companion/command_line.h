// What the command line may say, and its help.
#pragma once

#include "companion/report.h"

#include <string>
#include <vector>

// Runs the command that the arguments name (without the program's name). The result is the process's exit status.
// Nothing that a library throws comes out.
int RunCommandLine(const std::vector<std::string>& arguments, Report* report);
