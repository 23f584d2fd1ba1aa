#include "companion/command_line.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

bool HasColours(int descriptor)
{
    const char* terminal = getenv("TERM");
    return isatty(descriptor) != 0 && getenv("NO_COLOR") == nullptr &&
           (terminal == nullptr || std::string(terminal) != "dumb");
}

} // namespace

int main(int argumentCount, char** arguments)
{
    signal(SIGXFSZ, SIG_IGN); // a write beyond the limit of file sizes fails like one to a full disk
    Report report;
    report.outIsTerminal = HasColours(STDOUT_FILENO);
    report.errorsSeen = isatty(STDERR_FILENO) != 0;
    int status = RunCommandLine({arguments + 1, arguments + argumentCount}, &report);
    const bool printed =
        fwrite(report.out.data(), 1, report.out.size(), stdout) == report.out.size() && fflush(stdout) == 0;
    if (!printed) {
        status = Fail(&report, "", "standard output: " + SystemReason());
    }
    fputs(report.errors.c_str(), stderr);
    return status;
}
