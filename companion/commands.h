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

struct RenderOptions {
    std::string file;
    std::string output;
    std::string view = "art";
    bool grid = false;
    bool numbers = false;
    std::string style = "solid";
    std::string feature; // of the features view; without one and without a level all NO-GO levels are marked
    std::string noGo;
    std::vector<std::string> costs; // of the costs view; none for all
    std::string area;
    std::string scale = "1";
};
int RunRender(const RenderOptions& options, Report* report);

struct DiffOptions {
    std::string before;
    std::string after;
    std::string output;
    bool json = false;
};
int RunDiff(const DiffOptions& options, Report* report);

struct ExportOptions {
    std::string file;
    std::string format;
    std::string output;
};
int RunExport(const ExportOptions& options, Report* report);

struct ImportOptions {
    std::string file;
    std::string format;
    std::string input = standardStream;
};
int RunImport(const ImportOptions& options, Report* report);

struct SetOptions {
    std::string file;
    std::string feature; // one of the three
    std::string noGo;
    std::string cost;
    bool clears = false;
    std::string mask; // none for all cells
    bool all = false;
    int threshold = 50; // percent
};
int RunSet(const SetOptions& options, Report* report);

struct RescueOptions {
    std::string action = "list";
    std::string file;
    bool forced = false;
};
int RunRescue(const RescueOptions& options, Report* report);
