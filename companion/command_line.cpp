#include "companion/command_line.h"

#include "companion/commands.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <new>

namespace {

// The command that was parsed; its options live as long as the parser.
struct CommandLine {
    CLI::App app{"Looks at map files of the Kestrel Map Tool, and changes them, without a window.", "kestrel-map"};
    InfoOptions info;
    CheckOptions check;
    RenderOptions render;
    DiffOptions diff;
    ExportOptions toOthers;
    ImportOptions fromOthers;
    SetOptions set;
    RescueOptions rescue;
    Report* report = nullptr;
    int status = statusFailed;
};

CLI::App* AddCommand(CommandLine* line, const char* name, const std::string& does, const std::string& example)
{
    CLI::App* command = line->app.add_subcommand(name, does);
    command->footer("Example: kestrel-map " + example);
    return command;
}

template <typename Options>
void RunWith(CommandLine* line, CLI::App* command, const Options* options, int (*run)(const Options&, Report*))
{
    command->callback([=] { line->status = run(*options, line->report); });
}

void AddInfo(CommandLine* line)
{
    CLI::App* command = AddCommand(line, "info", "Tells what is in map data files", "info Map101c.dat Map102c.dat");
    command->add_option("FILE", line->info.files, "map data files; - for standard input")->required();
    command->add_flag("--json", line->info.json, "as a JSON array");
    RunWith(line, command, &line->info, RunInfo);
}

void AddCheck(CommandLine* line)
{
    CLI::App* command = AddCommand(line, "check", "Finds damaged and doubtful maps; exit status 1 when there are any",
                                   "check -j 2 campaign/ && echo all fine");
    command->add_option("PATH", line->check.paths, "map data files, and folders to search for them")->required();
    command->add_flag("--json", line->check.json, "as a JSON array");
    command->add_option("-j", line->check.jobs, "maps looked at at a time")->check(CLI::Range(1, 64));
    RunWith(line, command, &line->check, RunCheck);
}

void AddRender(CommandLine* line)
{
    RenderOptions& options = line->render;
    CLI::App* command = AddCommand(line, "render", "Draws the editor's picture of a map as a PNG file",
                                   "render Map101c.dat --view costs --numbers -o costs.png");
    command->add_option("FILE", options.file, "map data file, its art beside it")->required();
    command->add_option("-o", options.output, "PNG file; - for standard output")->required();
    command->add_option("--view", options.view, "art, features, costs or analysis (art)")
        ->check(CLI::IsMember({"art", "features", "costs", "analysis"}));
    CLI::Option* grid = command->add_flag("--grid", options.grid, "with the UTM grid");
    command->add_flag("--numbers", options.numbers, "with the UTM grid and its kilometre numbers")->excludes(grid);
    command->add_option("--style", options.style, "of the marks: solid, dot or frame (solid)")
        ->check(CLI::IsMember({"solid", "dot", "frame"}));
    CLI::Option* feature = command->add_option("--feature", options.feature, "what the features view marks");
    command->add_option("--no-go", options.noGo, "NO-GO level that it marks, 1 to 3 (all)")->excludes(feature);
    command->add_option("--cost", options.costs, "cost that the costs view shows, once for each (all)")
        ->allow_extra_args(false);
    command->add_option("--area", options.area, "L,T,R,B: that part, in map pixels");
    command->add_option("--scale", options.scale, "2 to 16 for larger, 1/2 to 1/16 for smaller (1)");
    RunWith(line, command, &options, RunRender);
}

void AddDiff(CommandLine* line)
{
    CLI::App* command =
        AddCommand(line, "diff", "Tells what differs between two maps; exit status 1 when anything does",
                   "diff Map101c.dat_old Map101c.dat -o changed.png");
    command->add_option("OLD", line->diff.before, "map data file")->required();
    command->add_option("NEW", line->diff.after, "map data file")->required();
    command->add_option("-o", line->diff.output, "PNG file of NEW with the changed cells framed in red");
    command->add_flag("--json", line->diff.json, "as a JSON object, with every changed cell");
    RunWith(line, command, &line->diff, RunDiff);
}

void AddExport(CommandLine* line)
{
    ExportOptions& options = line->toOthers;
    CLI::App* command = AddCommand(line, "export", "Writes every field and cell of a map for other programs",
                                   "export Map101c.dat --to asc -o grids/map101");
    command->add_option("FILE", options.file, "map data file; - for standard input")->required();
    command->add_option("--to", options.format, "csv, json or asc (ESRI ASCII grids of the terrain)")
        ->required()
        ->check(CLI::IsMember({"csv", "json", "asc"}));
    command->add_option("-o", options.output, "file; - for standard output; of asc the beginning of the files' names")
        ->required();
    RunWith(line, command, &options, RunExport);
}

void AddImport(CommandLine* line)
{
    ImportOptions& options = line->fromOthers;
    CLI::App* command = AddCommand(
        line, "import", "Makes a map data file of what export wrote; one that is there becomes its _old file",
        "import Map101c.dat --from csv -i map101.csv");
    command->add_option("FILE", options.file, "map data file to make or replace")->required();
    command->add_option("--from", options.format, "csv or json")->required()->check(CLI::IsMember({"csv", "json"}));
    command->add_option("-i", options.input, "file to read; - for standard input (-)");
    RunWith(line, command, &options, RunImport);
}

void AddSet(CommandLine* line)
{
    SetOptions& options = line->set;
    CLI::App* command = AddCommand(line, "set", "Sets or clears one feature, NO-GO level or movement cost",
                                   "set Map101c.dat --feature woods --mask woods.png --threshold 30");
    command->add_option("FILE", options.file, "map data file; the one before becomes its _old file")->required();
    CLI::Option_group* what = command->add_option_group("what");
    what->add_option("--feature", options.feature, "hilow, woods, town, road or misclosblock");
    what->add_option("--no-go", options.noGo, "NO-GO level: 1, 2 or 3");
    what->add_option("--cost", options.cost, "clear, rough1 to rough4 or water");
    what->require_option(1);
    command->add_flag("--clear", options.clears, "clears it where it is, instead of setting it");
    CLI::Option_group* where = command->add_option_group("where");
    where->add_option("--mask", options.mask, "where this PNG file is bright; it has the map's pixels or its cells");
    where->add_flag("--all", options.all, "everywhere");
    where->require_option(1);
    command->add_option("--threshold", options.threshold, "percent of a cell that must be covered (50)")
        ->check(CLI::Range(1, 100));
    RunWith(line, command, &options, RunSet);
}

void AddRescue(CommandLine* line)
{
    RescueOptions& options = line->rescue;
    CLI::App* command = AddCommand(line, "rescue", "Lists, shows, restores or drops the editor's rescue copies",
                                   "rescue restore Map101c.dat");
    command->add_option("ACTION", options.action, "list, show, restore or drop (list)")
        ->check(CLI::IsMember({"list", "show", "restore", "drop"}));
    command->add_option("FILE", options.file, "the map's data file, or the name of a copy");
    command->add_flag("--force", options.forced, "restores over a file that changed since");
    RunWith(line, command, &options, RunRescue);
}

int Parse(CommandLine* line, const std::vector<std::string>& arguments)
{
    try {
        line->app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        return line->status;
    } catch (const CLI::CallForVersion& version) {
        line->report->out = std::string(version.what()) + "\n";
    } catch (const CLI::CallForAllHelp&) {
        line->report->out = line->app.help("", CLI::AppFormatMode::All);
    } catch (const CLI::CallForHelp&) {
        line->report->out = line->app.help(); // of the command that was named, if one was
    } catch (const CLI::ParseError& error) {
        const std::vector<CLI::App*> commands = line->app.get_subcommands();
        return Fail(line->report, "",
                    std::string(error.what()) + "; see kestrel-map " +
                        (commands.empty() ? "" : commands.front()->get_name() + " ") + "--help");
    }
    return statusFine;
}

} // namespace

int RunCommandLine(const std::vector<std::string>& arguments, Report* report)
{
    try {
        CommandLine line;
        line.report = report;
        line.app.require_subcommand(1);
        line.app.set_version_flag("--version", "kestrel-map " KESTREL_VERSION);
        line.app.footer("kestrel-map COMMAND --help tells the options of a command and shows an example.\n"
                        "Exit status: 0 all is fine, 1 something was found or differs, 2 it could not be done.");
        AddInfo(&line);
        AddCheck(&line);
        AddRender(&line);
        AddDiff(&line);
        AddExport(&line);
        AddImport(&line);
        AddSet(&line);
        AddRescue(&line);
        return Parse(&line, arguments);
    } catch (const std::bad_alloc&) {
        return Fail(report, "", "there is not enough memory");
    } catch (const std::exception& error) {
        return Fail(report, "", error.what());
    }
}
