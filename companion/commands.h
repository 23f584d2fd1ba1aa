// The commands of kestrel-map. Each takes what the command line said and gives an exit status; what it has to say
// goes to the report.
#pragma once

#include "companion/report.h"

#include <string>
#include <vector>

struct InfoOptions {
    std::vector<std::string> files;
    bool json = false;
};
int RunInfo(const InfoOptions& options, Report* report);

struct CheckOptions {
    std::vector<std::string> paths; // files, and folders to search
    bool json = false;
    int jobs = 0; // threads; 0 for as many as there are processors
};
int RunCheck(const CheckOptions& options, Report* report);
