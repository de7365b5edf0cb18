#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>

#include "tools/mlkctl/CommandLine.h"
#include "tools/mlkctl/Pending.h"

int main(int argc, char** argv) {
    // A write to a pipe that nobody reads must fail and not kill: a shell would show a status above
    // 125.
    (void)std::signal(SIGPIPE, SIG_IGN);
    mlk::Output output(STDOUT_FILENO);
    mlk::ctl::Services services;
    mlk::ctl::Environment environment{STDIN_FILENO, output, std::cerr, services};
    const auto status = static_cast<int>(
            mlk::ctl::runCommandLine(std::vector<std::string>(argv + 1, argv + argc), environment));
    // A thread that still waits for a service would race with the end of the process.
    if (mlk::ctl::anyPending()) {
        _exit(status);
    }
    return status;
}
