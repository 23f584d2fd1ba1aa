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
        const std::vector<CLI::App*> commands = line->app.get_subcommands();
        line->report->out = commands.empty() ? line->app.help() : commands.front()->help();
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
        return Parse(&line, arguments);
    } catch (const std::bad_alloc&) {
        return Fail(report, "", "there is not enough memory");
    } catch (const std::exception& error) {
        return Fail(report, "", error.what());
    }
}
