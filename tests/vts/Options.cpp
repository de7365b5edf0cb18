#include "tests/vts/Options.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/vts/Methods.h"

namespace {

constexpr const char* kUsage =
        "Holds the running configuration service against the set that it runs on.\n"
        "\n"
        "  --writes        calls the setters too; what they change is put back at the end of each\n"
        "                  test, also when it fails\n"
        "  --restart       has init restart the service, for the tests of its death\n"
        "  --kill=PID      kills the service's process for them; somebody else has to restart it\n"
        "  --list-methods  prints each method, whether it is a setter, and the test that calls it\n"
        "\n"
        "Options of GoogleTest, such as --gtest_filter=PATTERN, work as well: --gtest_help.\n"
        "Nothing may have changed the set since the service started. Exit status: 0 if all tests\n"
        "passed, 1 if one failed, 2 for a wrong command line.\n";

Options gOptions;

bool readPid(const char* text, pid_t& pid) {
    char* end = nullptr;
    const long number = strtol(text, &end, 10);
    pid = static_cast<pid_t>(number);
    return *text != '\0' && *end == '\0' && number > 1 && pid == number;
}

}  // namespace

const Options& options() {
    return gOptions;
}

int readOptions(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const char* const word = argv[i];
        if (strcmp(word, "--writes") == 0) {
            gOptions.writes = true;
        } else if (strcmp(word, "--restart") == 0) {
            gOptions.restart = true;
        } else if (strncmp(word, "--kill=", 7) == 0 && readPid(word + 7, gOptions.kill)) {
            continue;
        } else if (strcmp(word, "--list-methods") == 0) {
            vendor::morlak::mlkconfigs::V1_0::vts::listMethods();
            return 0;
        } else if (strcmp(word, "--help") == 0) {
            fputs(kUsage, stdout);
            return 0;
        } else {
            fprintf(stderr, "%s: not understood\n\n%s", word, kUsage);
            return 2;
        }
    }
    return -1;
}
