#include <android/log.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>

#include "tools/mlktree/CommandLine.h"

namespace {

std::string variable(const char* name) {
    const char* value = getenv(name);
    return value != nullptr ? value : "";
}

}  // namespace

int main(int argc, char** argv) {
    // A write to a pipe that nobody reads must fail and not kill: a shell would show a status above
    // 125.
    (void)std::signal(SIGPIPE, SIG_IGN);
    // The readers' lines for a log: findings say the same, and more.
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    mlk::Output output(STDOUT_FILENO);
    mlk::tree::Environment environment{output, std::cerr, isatty(STDERR_FILENO) != 0,
                                       variable("MLK_ROOT"), !variable("NO_COLOR").empty()};
    return static_cast<int>(mlk::tree::runCommandLine(
            std::vector<std::string>(argv + 1, argv + argc), environment));
}
