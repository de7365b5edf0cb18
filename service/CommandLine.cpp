#include "service/CommandLine.h"

#include <cstdio>
#include <cstring>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kName = "vendor.morlak.mlconfigs@1.0-service";

constexpr const char* kHelp =
        R"(vendor.morlak.mlconfigs@1.0-service - the configuration service of a television

Usage: vendor.morlak.mlconfigs@1.0-service [--help]

Reads the configuration partitions and the system properties of this set, registers
IMlkProjectConfigs, IMlkTvConfigs and IMlkFrameworkConfigs of the package
vendor.morlak.mlkconfigs@1.0 under the name "default", and answers calls until something ends it.
On a television init starts it. It takes no argument but --help: files and properties decide
everything.

Options:
  -h, --help  this text

The platform decides where partitions, properties and registered names are. On a Linux host
environment variables do: README.md lists them under "On a host".

Exit status:
  0  the help was printed
  1  the help could not be written
  2  the command line is wrong
  A service that cannot register aborts.
)";

}  // namespace

std::optional<int> answerArguments(int argc, const char* const* argv) {
    if (argc < 2) {
        return std::nullopt;
    }
    const char* first = argv[1];
    if (strcmp(first, "--help") == 0 || strcmp(first, "-h") == 0) {
        const bool isWritten = fputs(kHelp, stdout) >= 0 && fflush(stdout) == 0;
        return isWritten ? 0 : 1;
    }
    fprintf(stderr, "%s: it takes no argument '%s'; see --help\n", kName, first);
    return 2;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
